// The way of a colour through an octree, as one number.
#pragma once

#include "platform/types.h"

namespace zlv {

inline constexpr u32 kOctreeKeyBits = 24;

// A table for each component: bit b of the value comes to place 3 * b, and two, one or no places further up.
struct OctreeKeyTables {
    u32 of[3][256] = {};

    constexpr OctreeKeyTables()
    {
        for (u32 c = 0; c < 3; ++c) {
            for (u32 i = 0; i < 256; ++i) {
                for (u32 b = 0; b < 8; ++b) of[c][i] |= (i >> b & 1) << (3 * b + 2 - c);
            }
        }
    }
};
inline constexpr OctreeKeyTables kOctreeKeyTables;

// The bits of the components, interleaved: the upper three are the child to take at the root, the first component's
// bit highest, and so on, three bits a level. The upper 3 * L bits tell the node at level L.
inline u32 OctreeKey(u8 first, u8 second, u8 third)
{
    return kOctreeKeyTables.of[0][first] | kOctreeKeyTables.of[1][second] | kOctreeKeyTables.of[2][third];
}

}  // namespace zlv
