// Runs the rows: ours, the peer, and a copy of the same bytes as the physical limit.
//
//   --rows=TEXT     only rows whose name contains the text
//   --all-targets   ours once more for each other instruction set that this processor runs
//
// Everything else goes to Google Benchmark. Outputs are compared with the peer's, and every instruction set's with each
// other, before anything is timed; a difference ends the program.
#include "bench_row.h"
#include "opencv_peers.h"
#include "runtime/targets.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

namespace zlvbench {

namespace {

constexpr u64 kImageSeed = 20;
constexpr u64 kOutputSeed = 21;
constexpr int kCopyRepetitions = 25;

struct Options {
    std::string rows;
    bool hasAllTargets = false;
};

// Takes our own options out of the arguments.
Options TakeOptions(int& argc, char** argv)
{
    Options options;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--rows=", 7) == 0) options.rows = argv[i] + 7;
        else if (std::strcmp(argv[i], "--all-targets") == 0) options.hasAllTargets = true;
        else argv[kept++] = argv[i];
    }
    argc = kept;
    return options;
}

// The first bytes of the seed's sequence. It is kept: drawing it takes longer than most of what is measured.
std::vector<u8> Fill(size_t bytes, u64 seed)
{
    struct Sequence {
        RandomBytes random;
        std::vector<u8> bytes;
    };
    static std::map<u64, Sequence> sequences;
    Sequence& known = sequences.try_emplace(seed, Sequence{RandomBytes(seed), {}}).first->second;
    while (known.bytes.size() < bytes) known.bytes.push_back(u8(known.random.Next()));
    return {known.bytes.begin(), known.bytes.begin() + std::ptrdiff_t(bytes)};
}

class Memory {
public:
    explicit Memory(const BenchRow& row)
        : image_(Fill(row.shape.Bytes(), kImageSeed)), output_(Fill(row.outputBytes, kOutputSeed))
    {
    }

    Buffers Pointers() { return {image_.data(), output_.empty() ? nullptr : output_.data()}; }
    bool operator==(const Memory&) const = default;

private:
    std::vector<u8> image_;
    std::vector<u8> output_;
};

Memory ResultOf(const BenchRow& row, const Work& work)
{
    Memory memory(row);
    work(memory.Pointers());
    return memory;
}

void RequireSame(bool isSame, const BenchRow& row, const char* other)
{
    if (isSame) return;
    std::fprintf(stderr, "%s: the output is not that of %s\n", row.name.c_str(), other);
    std::exit(1);
}

void CompareOutputs(const BenchRow& row, const std::vector<Target>& targets)
{
    const Memory ours = ResultOf(row, row.ours);
    RequireSame(!(ours == Memory(row)), row, "a function that does something");
    for (const Target target : targets) {
        activeTarget = target;
        RequireSame(ResultOf(row, row.ours) == ours, row, kTargetNames[u32(target)]);
    }
    ChooseTarget();
    if (row.peer.work && row.peer.isBitEqual) RequireSame(ResultOf(row, row.peer.work) == ours, row, row.peer.name);
}

void Count(benchmark::State& state, size_t pixels, size_t bytes)
{
    state.SetItemsProcessed(i64(state.iterations()) * i64(pixels));
    state.SetBytesProcessed(i64(state.iterations()) * i64(bytes));
    state.counters["pixels"] = f64(pixels);
    state.counters["bytes"] = f64(bytes);
}

void RunWork(benchmark::State& state, const BenchRow& row, const Work& work, Target target, const std::string& label,
             bool warmsUp)
{
    Memory memory(row);
    const Buffers buffers = memory.Pointers();
    activeTarget = target;
    if (warmsUp) work(buffers);
    for ([[maybe_unused]] auto _ : state) {
        work(buffers);
        benchmark::ClobberMemory();
    }
    ChooseTarget();
    Count(state, row.resultPixels ? row.resultPixels : row.shape.Pixels(), row.shape.Bytes());
    state.SetLabel(label);
}

void RunCopy(benchmark::State& state, size_t bytes)
{
    const std::vector<u8> from = Fill(bytes, kImageSeed);
    std::vector<u8> to(bytes);
    for ([[maybe_unused]] auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
    Count(state, bytes, bytes);
}

template <class Run>
void Register(const std::string& name, Run run, int repetitions)
{
    benchmark::RegisterBenchmark(name.c_str(), run)->Repetitions(repetitions);
}

// How work is measured that takes so long: often where it is cheap. The whole table is to take minutes.
struct Plan {
    int repetitions;
    bool warmsUp;  // long runs do that by themselves

    Plan(const BenchRow& row, const Work& work)
    {
        constexpr f64 kSeconds = 0.2, kSecondsOfShortRun = 0.015, kLongRun = 0.03, kVeryLongRun = 1;
        constexpr int kFewest = 3, kMost = 12;
        Memory memory(row);
        const auto start = std::chrono::steady_clock::now();
        work(memory.Pointers());
        const f64 taken = std::chrono::duration<f64>(std::chrono::steady_clock::now() - start).count();
        warmsUp = taken < kLongRun;
        repetitions = std::clamp(int(kSeconds / std::max(taken, kSecondsOfShortRun)), kFewest, kMost);
        if (taken > kVeryLongRun) repetitions = 1;
    }
};

void RegisterRow(const BenchRow& row, const std::vector<Target>& targets)
{
    const Target best = BestTarget();
    const auto registerWork = [&](const std::string& name, const Work& work, Target target, const std::string& label) {
        const Plan plan(row, work);
        const auto run = [=](benchmark::State& state) { RunWork(state, row, work, target, label, plan.warmsUp); };
        Register(name, run, plan.repetitions);
    };
    const auto registerOurs = [&](const std::string& name, Target target) {
        const std::string label = std::string(kTargetNames[u32(target)]) + " " + row.unit;  // table.py reads both
        registerWork(name, row.ours, target, label);
    };
    registerOurs(row.name, best);
    for (const Target target : targets) registerOurs(row.name + "/target=" + kTargetNames[u32(target)], target);
    if (row.peer.work) registerWork(row.name + "/peer", row.peer.work, best, row.peer.name);
}

int Main(int argc, char** argv)
{
    const Options options = TakeOptions(argc, argv);
    PrepareOpenCv();

    std::vector<Target> targets;
    for (u32 i = 0; options.hasAllTargets && i < u32(BestTarget()); ++i) targets.push_back(Target(i));

    u32 count = 0;
    std::set<size_t> copies;
    const auto families = {
        AdaptiveRows,   ArtisticRows, BaseRows,      BufferRows,   CallRows,     CrackleRows,     EachWarpRows,
        EdgesRows,      FilterRows,   FrequencyRows, GaussianRows, GenerateRows, LayerStylesRows, MedianRows,
        MorphologyRows, NoiseRows,    OverlayRows,   PaletteRows,  PolygonRows,  PushRows,        ReflectionRows,
        ResizeRows,     SeamRows,     SegmentedRows, SplineRows,   ToneRows,     WarpRows,        WindowRows,
    };
    for (const auto rowsOfFamily : families) {
        for (const BenchRow& row : rowsOfFamily()) {
            if (row.name.find(options.rows) == std::string::npos) continue;
            CompareOutputs(row, targets);
            RegisterRow(row, targets);
            copies.insert(row.shape.Bytes());
            ++count;
        }
    }
    if (count == 0) {
        std::fprintf(stderr, "no row's name contains \"%s\"\n", options.rows.c_str());
        return 1;
    }
    for (const size_t bytes : copies) {
        Register(
            "memcpy/" + std::to_string(bytes), [=](benchmark::State& state) { RunCopy(state, bytes); },
            kCopyRepetitions);
    }

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace

}  // namespace zlvbench

int main(int argc, char** argv) { return zlvbench::Main(argc, argv); }
