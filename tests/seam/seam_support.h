// Images of the seam carver beside plain ones.
#pragma once

#include "plain/plain_seam.h"
#include "seam/seam_image.h"
#include "support/bytes.h"
#include "support/targets.h"

namespace zlv {

using Zelvane::CLImage;

template <class T>
PlainSeamImage<T> RandomPlain(int width, int height, int channels, int columns, std::uint64_t seed, u32 levels)
{
    zlvtest::Random random(seed);
    PlainSeamImage<T> image(width, height, channels, columns);
    for (T& element : image.elements) element = T(random.Below(levels));
    return image;
}

// The same elements, those beyond the width too.
template <class T>
void CopyPlain(const PlainSeamImage<T>& from, CLImage<T>& to)
{
    if (from.elements.empty()) {
        to.Clear();
        return;
    }
    ASSERT_TRUE(to.Create(u32(from.width), u32(from.height), u32(from.channels), u64(from.stride / from.channels)));
    std::copy(from.elements.begin(), from.elements.end(), to.Data());
}

template <class T>
void ExpectSameImage(const PlainSeamImage<T>& wanted, const CLImage<T>& got)
{
    EXPECT_EQ(u32(wanted.width), got.width);
    ASSERT_EQ(u32(wanted.stride), got.rowStride);
    EXPECT_EQ(zlvtest::Difference(wanted.elements.data(), got.ConstData(), wanted.elements.size()), "");
}

}  // namespace zlv
