#include "runtime/base_tables.h"

#include <cstring>

namespace zlv {

namespace {

constinit BaseTables tables = {};

u8 ReverseBits(u32 byte)
{
    u32 reversed = 0;
    for (u32 i = 0; i < 8; ++i) reversed |= ((byte >> i) & 1) << (7 - i);
    return u8(reversed);
}

void FillByteTables(u32 byte)
{
    const f64 share = byte / 255.0;
    for (u32 a = 0; a < 256; ++a) tables.product[byte][a] = u8(a * share);
    tables.grayRamp[byte] = {{u8(byte), u8(byte), u8(byte), 0}};
    tables.reversed[byte] = ReverseBits(byte);
    tables.reversedInverted[byte] = u8(~ReverseBits(byte));
    for (u32 i = 0; i < 8; ++i) tables.expanded[byte][i] = (byte >> (7 - i)) & 1;
    std::memcpy(tables.expandedWords[byte], tables.expanded[byte], 8);
}

void FillBitTables(u32 i)
{
    tables.bit[i] = u8(1u << i);
    tables.bitFromTop[i] = u8(1u << (7 - i));
    tables.bitCleared[i] = u8(~(1u << i));
    for (u32 c = 0; c < 8; ++c) tables.run[i][c] = u8((0xFFu << c) & (0xFFu >> (7 - i)));
}

}  // namespace

constinit const BaseTables& baseTables = tables;

void InitBaseTables()
{
    for (u32 byte = 0; byte < 256; ++byte) FillByteTables(byte);
    for (u32 i = 0; i < 8; ++i) FillBitTables(i);
}

}  // namespace zlv
