#include "base/polygon_scanlines.h"

#include "base/client_block.h"
#include "base/polygon_pairs.h"

namespace zlv {

namespace {

struct Scanlines {
    i32** rows;
    f64** lefts;
    f64** rights;
    u32* count;

    bool IsComplete() const { return rows && lefts && rights && count; }
    void Clear() const
    {
        if (rows) *rows = nullptr;
        if (lefts) *lefts = nullptr;
        if (rights) *rights = nullptr;
        if (count) *count = 0;
    }
};

u32 MakeScanlines(MVThreadContext& context, Error& error, const f64* points, u32 count, const Scanlines& scanlines)
{
    BaseWork work(context, error);
    scanlines.Clear();
    if (!points || !scanlines.IsComplete()) return work.Fail(Error::BadArgument);

    ScanConverter scan;
    const Error preparing = scan.Prepare(points, count);
    if (preparing != Error::None) return work.Fail(preparing);
    const u64 spanCount = CountSpans(scan, ClientBlock<f64>::kRefusedBytes / sizeof(f64));
    if (spanCount == 0) return 1;

    ClientBlock<i32> rows;
    ClientBlock<f64> lefts, rights;
    if (!lefts.Allocate(spanCount) || !rights.Allocate(spanCount) || !rows.Allocate(spanCount)) {
        return work.Fail(Error::OutOfMemory);
    }
    size_t i = 0;
    VisitAllSpans(scan, [&](const ScanSpan& span) {
        rows[i] = i32(span.row);
        lefts[i] = span.leftX;
        rights[i] = span.rightX;
        ++i;
        return true;
    });
    *scanlines.rows = rows.Release();
    *scanlines.lefts = lefts.Release();
    *scanlines.rights = rights.Release();
    *scanlines.count = u32(spanCount);
    return 1;
}

}  // namespace

u32 MV40_GetPolygonScanlineArray(const f64* points, u32 count, i32** rows, f64** lefts, f64** rights, u32* spanCount)
{
    return InBaseCall("MV40_GetPolygonScanlineArray", [&](MVThreadContext& context, Error& error) {
        return MakeScanlines(context, error, points, count, {rows, lefts, rights, spanCount});
    });
}

}  // namespace zlv
