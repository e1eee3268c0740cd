// The warp that scatters, said plainly, a point at a time; includes nothing of the library.
#pragma once

#include "plain/plain_warp.h"

// A thread's random generator.
struct PlainDraws {
    std::uint32_t state = 1;

    std::uint32_t Next()
    {
        state = state * 214013 + 2531011;
        return (state >> 16) & 32767;
    }
};

// The draws go on from point to point, and from one warp of the list to the next.
inline PlainStep PlainScatter(PlainDraws& draws, double amount)
{
    return [&draws, amount](double, double, double* outX, double* outY) {
        *outX += (1 - (draws.Next() % 1000) / 1000.0) * amount - amount * 0.5;
        *outY += (1 - (draws.Next() % 1000) / 1000.0) * amount - amount * 0.5;
        return true;
    };
}
