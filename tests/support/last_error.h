// The last error of the thread, from one call to the next.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "zlv40.h"

namespace zlvtest {

// Makes it 0: some exports leave an earlier code as it is.
inline void ClearLastError()
{
    std::uint8_t sample = 0;
    EXPECT_EQ(ZLV40_InvertImage(&sample, 1, 1, 1, 1, 0), 1u);
}

}  // namespace zlvtest
