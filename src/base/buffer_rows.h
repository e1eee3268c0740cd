// Rows of bytes, whatever they mean.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Turns a buffer of `rows` rows upside down in place. Reports (2 * i, rows) after each exchange; the middle row of an
// odd count is exchanged with itself. Codes: 5 for a null buffer, 1 for rows of no bytes or without memory for one
// row, 14.
ZLV_BASE u32 MV40_VerticalFlipImage(void* buffer, u32 rowBytes, u32 rows);

// Copies the smaller of the two row sizes, row by row. Never reports. Code 5 for a null pointer.
ZLV_BASE u32 MV40_CopyBuffer(const void* source, u32 sourceRowBytes, u32 rows, u32 destinationRowBytes,
                             void* destination);

}  // namespace zlv
