// The mathematical functions beside the C library's: nanoseconds a value.
//
// Rows are named function/form/arguments. Form "libm" is the C library called in a loop; "scalar"
// is ours; "array" is ours over arrays, once for each instruction set that this processor runs.
#include "runtime/math.h"
#include "runtime/targets.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace zlv;

constexpr size_t kValues = 4096;

struct Range {
    f64 low, high;
};

struct Arguments {
    const char* name;
    Range x, y;
};

// Spread evenly over the range, in an order without a pattern.
std::vector<f64> Fill(Range range, u64 seed)
{
    std::vector<f64> values(kValues);
    for (f64& value : values) {
        seed = seed * 6364136223846793005 + 1442695040888963407;
        value = range.low + f64(seed >> 11) * 0x1p-53 * (range.high - range.low);
    }
    return values;
}

void ReportValues(benchmark::State& state)
{
    state.SetItemsProcessed(i64(state.iterations()) * i64(kValues));
    state.counters["ns"] = benchmark::Counter(f64(state.iterations()) * f64(kValues) * 1e-9,
                                              benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

using OneNumber = f64 (*)(f64 x, f64 y);
using Loop = void (*)(const f64* x, const f64* y, f64* out);

template <OneNumber function>
void EachValue(const f64* x, const f64* y, f64* out)
{
    for (size_t i = 0; i < kValues; ++i) out[i] = function(x[i], y[i]);
}

void RunLoop(benchmark::State& state, Loop loop, Arguments arguments, Target target)
{
    const std::vector<f64> x = Fill(arguments.x, 1);
    const std::vector<f64> y = Fill(arguments.y, 2);
    std::vector<f64> out(kValues);
    activeTarget = target;
    for (auto _ : state) {
        loop(x.data(), y.data(), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    activeTarget = BestTarget();
    ReportValues(state);
}

// Before anything is timed: both sides compute the same function, up to the last places.
void CheckPeer(const char* name, Loop peer, Loop ours, Arguments arguments)
{
    const std::vector<f64> x = Fill(arguments.x, 1);
    const std::vector<f64> y = Fill(arguments.y, 2);
    std::vector<f64> expected(kValues), got(kValues);
    peer(x.data(), y.data(), expected.data());
    ours(x.data(), y.data(), got.data());
    for (size_t i = 0; i < kValues; ++i) {
        if (std::fabs(expected[i] - got[i]) > 4e-16 * std::fabs(expected[i])) {
            std::fprintf(stderr, "%s differs from the C library at %a, %a\n", name, x[i], y[i]);
            std::exit(1);
        }
    }
}

struct Row {
    const char* name;
    Loop libm, scalar, array;
    std::vector<Arguments> arguments;
};

const Row kRows[] = {
    {"Exp",
     EachValue<[](f64 x, f64) { return std::exp(x); }>,
     EachValue<[](f64 x, f64) { return Exp(x); }>,
     [](const f64* x, const f64*, f64* out) { ExpArray(x, out, kValues); },
     {{"-10..10", {-10, 10}, {}}, {"-600..600", {-600, 600}, {}}}},
    {"Log",
     EachValue<[](f64 x, f64) { return std::log(x); }>,
     EachValue<[](f64 x, f64) { return Log(x); }>,
     [](const f64* x, const f64*, f64* out) { LogArray(x, out, kValues); },
     {{"0..10", {0x1p-30, 10}, {}}, {"near 1", {0.97, 1.03}, {}}}},
    {"Pow",
     EachValue<[](f64 x, f64 y) { return std::pow(x, y); }>,
     EachValue<[](f64 x, f64 y) { return Pow(x, y); }>,
     [](const f64* x, const f64* y, f64* out) { PowArray(x, y, out, kValues); },
     {{"0..1^0.2..5", {0x1p-20, 1}, {0.2, 5}}, {"0..100^-20..20", {0x1p-20, 100}, {-20, 20}}}},
    {"Sin",
     EachValue<[](f64 x, f64) { return std::sin(x); }>,
     EachValue<[](f64 x, f64) { return Sin(x); }>,
     [](const f64* x, const f64*, f64* out) { SinArray(x, out, kValues); },
     {{"-pi..pi", {-3.1, 3.1}, {}}, {"-100..100", {-100, 100}, {}}, {"0..1e9", {0, 1e9}, {}}}},
    {"Cos",
     EachValue<[](f64 x, f64) { return std::cos(x); }>,
     EachValue<[](f64 x, f64) { return Cos(x); }>,
     [](const f64* x, const f64*, f64* out) { CosArray(x, out, kValues); },
     {{"-pi..pi", {-3.1, 3.1}, {}}, {"-100..100", {-100, 100}, {}}, {"0..1e9", {0, 1e9}, {}}}},
    {"Atan",
     EachValue<[](f64 x, f64) { return std::atan(x); }>,
     EachValue<[](f64 x, f64) { return Atan(x); }>,
     nullptr,
     {{"-1..1", {-1, 1}, {}}, {"-10..10", {-10, 10}, {}}}},
    {"Atan2",
     EachValue<[](f64 x, f64 y) { return std::atan2(x, y); }>,
     EachValue<[](f64 x, f64 y) { return Atan2(x, y); }>,
     [](const f64* y, const f64* x, f64* out) { Atan2Array(y, x, out, kValues); },
     {{"-100..100", {-100, 100}, {-100, 100}}}},
    {"Hypot",
     EachValue<[](f64 x, f64 y) { return std::hypot(x, y); }>,
     EachValue<[](f64 x, f64 y) { return Hypot(x, y); }>,
     nullptr,
     {{"-100..100", {-100, 100}, {-100, 100}}}},
};

void Register(const std::string& name, Loop loop, Arguments arguments, Target target)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { RunLoop(state, loop, arguments, target); });
}

}  // namespace

int main(int argc, char** argv)
{
    ChooseTarget();
    for (const Row& row : kRows) {
        for (const Arguments& arguments : row.arguments) {
            const std::string end = std::string("/") + arguments.name;
            const std::string name = row.name;
            CheckPeer(row.name, row.libm, row.scalar, arguments);
            Register(name + "/libm" + end, row.libm, arguments, activeTarget);
            Register(name + "/scalar" + end, row.scalar, arguments, activeTarget);
            for (u32 target = 0; row.array && target <= u32(BestTarget()); ++target)
                Register(name + "/array-" + kTargetNames[target] + end, row.array, arguments, Target(target));
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
