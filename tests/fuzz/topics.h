// What the fuzzer and the soak run: calls of one family of functions with whatever arguments a few bytes spell.
//
// A topic may run on any number of threads at once. It ends the program where something does not hold, leaves the
// callback as it was, and the warp list empty.
#pragma once

#include "boundary/call_table.h"
#include "fuzz/input.h"

#include <functional>
#include <string>
#include <vector>

namespace zlvtest {

void FuzzFilters(Input& input);
void FuzzFrequency(Input& input);
void FuzzMorphology(Input& input);
void FuzzOverlays(Input& input);
void FuzzPalettes(Input& input);
void FuzzPerlin(Input& input);
void FuzzPolygons(Input& input);
void FuzzRecords(Input& input);
void FuzzReflection(Input& input);
void FuzzResize(Input& input);
void FuzzSeams(Input& input);
void FuzzSegmented(Input& input);
void FuzzShadows(Input& input);
void FuzzSplines(Input& input);
void FuzzWarps(Input& input);
void FuzzWorkers(Input& input);

// One call of a described effect.
void FuzzEffect(const DescribedEffect& effect, Input& input);

struct Topic {
    std::string name;
    std::function<void(Input&)> run;
    bool isOfExports;  // calls nothing below them, as a client's callback may
};

// Those above by their names, then one for every described effect.
const std::vector<Topic>& Topics();

}  // namespace zlvtest
