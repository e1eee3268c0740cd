// What the description of an export does not tell, so that a call of it works: one row an export that needs one.
#pragma once

#include "boundary/call_table.h"

#include <string_view>

namespace zlvtest {

class DescribedCall;

// The value of one argument.
struct Setting {
    std::string_view argument;
    Value value;
};

inline Setting Null(std::string_view argument) { return {argument, {}}; }
inline Setting Number(std::string_view argument, std::int64_t number)
{
    return {argument, {std::uint64_t(number), double(number), nullptr}};
}
inline Setting Real(std::string_view argument, double number) { return {argument, {0, number, nullptr}}; }

// What an export does besides "1 and no code" and "0, a code, nothing written".
enum Manner : unsigned {
    kPlainManner = 0,
    kRefusesQuietly = 1,            // some refusals leave no code
    kSucceedsWithCode = 2,          // some failures inside leave a code, and the result is 1
    kWritesThenRefuses = 4,         // some failures come after the first write
    kHasRefusalsOfItsOwn = 8,       // what is described as out of range is answered in several ways
    kAnswersOutsideItsPixels = 16,  // writes bytes of its image that belong to no pixel
};

struct ExportRow {
    const char* name;
    std::uint32_t width = 0, height = 0;           // of the pictures; 0: as always
    std::vector<Setting> settings = {};            // before memory is made: its sizes come from here
    void (*build)(DescribedCall& call) = nullptr;  // makes what only this export takes
    // Takes back what a call has given away or used up, so that the next one works.
    void (*giveBack)(DescribedCall& call, std::uint64_t result) = nullptr;
    void (*tearDown)(DescribedCall& call) = nullptr;
    unsigned manners = kPlainManner;
};

// The row of that name; one without contents when the description tells everything.
const ExportRow& RowOf(std::string_view name);

// The rows by family.
const std::vector<ExportRow>& FrequencyRows();
const std::vector<ExportRow>& MorphologyRows();
const std::vector<ExportRow>& PictureRows();
const std::vector<ExportRow>& StateRows();
const std::vector<ExportRow>& WarpRows();

}  // namespace zlvtest
