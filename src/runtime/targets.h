// Instruction sets: which one the kernels of this process run on.
//
// A kernel file (*.kernels.cpp) is compiled once for each target, into zlv::<target>, and exports one constant table of
// function pointers there. The header beside it declares the tables with ZLV_DECLARE_KERNELS and the rest of the
// library reaches the right one through Kernels<Table>(). The choice is made once, when the library loads; it changes
// no result.
#pragma once

#include "platform/types.h"

namespace zlv {

enum class Target : u8 { Baseline, Avx2, Avx512 };

#ifdef ZLV_PORTABLE
inline constexpr u32 kTargetCount = 1;
#else
inline constexpr u32 kTargetCount = 3;
#endif

inline constexpr const char* kTargetNames[] = {"baseline", "avx2", "avx512"};

// The target in use. Written by ChooseTarget when the library loads, and by tests that compare targets.
extern Target activeTarget;

// The best target that this processor and its operating system can run.
Target BestTarget();

inline void ChooseTarget() { activeTarget = BestTarget(); }

// One table a target. Specialised by ZLV_DECLARE_KERNELS.
template <class Table>
struct KernelTables;

template <class Table>
const Table& Kernels()
{
    return *KernelTables<Table>::byTarget[static_cast<u32>(activeTarget)];
}

}  // namespace zlv

// ZLV_DECLARE_KERNELS(TablePassKernels, kTablePassKernels): declares zlv::<target>::kTablePassKernels for every target.
// Use it in namespace zlv, in the header beside the kernel file.
#ifdef ZLV_PORTABLE
#define ZLV_DECLARE_KERNELS(Table, name)                              \
    namespace baseline {                                              \
    extern const Table name;                                          \
    }                                                                 \
    template <>                                                       \
    struct KernelTables<Table> {                                      \
        static constexpr const Table* byTarget[] = {&baseline::name}; \
    }
#else
#define ZLV_DECLARE_KERNELS(Table, name)                                                          \
    namespace baseline {                                                                          \
    extern const Table name;                                                                      \
    }                                                                                             \
    namespace avx2 {                                                                              \
    extern const Table name;                                                                      \
    }                                                                                             \
    namespace avx512 {                                                                            \
    extern const Table name;                                                                      \
    }                                                                                             \
    template <>                                                                                   \
    struct KernelTables<Table> {                                                                  \
        static constexpr const Table* byTarget[] = {&baseline::name, &avx2::name, &avx512::name}; \
    }
#endif
