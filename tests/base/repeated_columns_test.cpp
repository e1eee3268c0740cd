#include "base/gaussian_blur.h"
#include "support/bytes.h"

#include <algorithm>

namespace zlv {
namespace {

using zlvtest::Bytes;

// Clients must not do that, but nothing else is touched and nothing waits where another row will be written.
TEST(RepeatedColumns, RowsThatOverlapAreWrittenOneAfterTheOther)
{
    constexpr u32 kWidth = 24, kHeight = 20, kStride = 10;
    Bytes source(kWidth * kHeight), apart(source.size()), got((kHeight - 1) * kStride + kWidth);
    // One distinct column, and rows like the one above.
    for (u32 y = 0; y < kHeight; ++y) std::fill_n(&source[y * kWidth], kWidth, u8(y < 8 ? 200 : y * 11));
    Bytes wanted(got.size());
    for (const f64 sigma : {1.5, 6.0}) {
        SCOPE(sigma);
        ASSERT_EQ(MV40_GaussianBlurImage(source.data(), kWidth, kHeight, 1, kWidth, apart.data(), kWidth, sigma, 1),
                  1u);
        for (u32 y = 0; y < kHeight; ++y) std::copy_n(&apart[y * kWidth], kWidth, &wanted[y * kStride]);
        EXPECT_EQ(MV40_GaussianBlurImage(source.data(), kWidth, kHeight, 1, kWidth, got.data(), kStride, sigma, 1), 1u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    }
}

}  // namespace
}  // namespace zlv
