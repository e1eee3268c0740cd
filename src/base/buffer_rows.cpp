#include "base/buffer_rows.h"

#include "runtime/array.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

u32 FlipRows(MVThreadContext& context, Error& error, u8* buffer, u32 rowBytes, u32 rows)
{
    BaseWork work(context, error);
    if (!buffer) return work.Fail(Error::BadArgument);
    MVBuffer<u8> row;
    if (!row.Resize(rowBytes)) return work.Fail(Error::OutOfMemory);
    const u32 exchanges = u32((u64(rows) + 1) / 2);
    for (u32 i = 0; i < exchanges; ++i) {
        u8* const upper = buffer + size_t(i) * rowBytes;
        u8* const lower = buffer + size_t(rows - 1 - i) * rowBytes;
        if (upper != lower) {
            std::memcpy(row.GetData(), upper, rowBytes);
            std::memcpy(upper, lower, rowBytes);
            std::memcpy(lower, row.GetData(), rowBytes);
        }
        if (!work.Report(2 * i, rows)) return 0;
    }
    return 1;
}

}  // namespace

u32 MV40_VerticalFlipImage(void* buffer, u32 rowBytes, u32 rows)
{
    return InBaseCall("MV40_VerticalFlipImage", [&](MVThreadContext& context, Error& error) {
        return FlipRows(context, error, static_cast<u8*>(buffer), rowBytes, rows);
    });
}

u32 MV40_CopyBuffer(const void* source, u32 sourceRowBytes, u32 rows, u32 destinationRowBytes, void* destination)
{
    return InBaseCall("MV40_CopyBuffer", [&](MVThreadContext& context, Error& error) {
        BaseWork work(context, error);
        if (!source || !destination) return work.Fail(Error::BadArgument);
        const u32 bytes = std::min(sourceRowBytes, destinationRowBytes);
        for (u32 y = 0; y < rows; ++y) {
            std::memmove(static_cast<u8*>(destination) + size_t(y) * destinationRowBytes,
                         static_cast<const u8*>(source) + size_t(y) * sourceRowBytes, bytes);
        }
        return 1u;
    });
}

}  // namespace zlv
