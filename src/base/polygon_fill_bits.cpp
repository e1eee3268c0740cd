#include "base/polygon_fill_bits.h"

#include "base/image_view.h"
#include "base/polygon_painting.h"

#include <cstring>

namespace zlv {

namespace {

constexpr u32 kFewestVertices = 3;

class BitPainter {
public:
    BitPainter(const ImageView<u8>& image, bool isSetting) : image_(image), isSetting_(isSetting) {}

    static constexpr bool kCountsRows = false;
    void BeginRows(u64) {}

    // The head of a span, up to a byte boundary, includes `right` where that is in the same byte; bytes that lie inside
    // as a whole do; the tail, which begins with a byte, stops before it. So a span that goes on beyond the image may
    // write the bit after the last one, and never more: that bit is in the same byte.
    void Paint(u32 row, u32 left, u32 right, u64)
    {
        const bool endsInHead = left % 8 != 0 && right / 8 == left / 8;
        const bool endsInFullByte = right % 8 == 7;
        if (endsInHead || endsInFullByte) WriteBits(image_.Row(row), left, right);
        else if (left < right) WriteBits(image_.Row(row), left, right - 1);
    }

    bool IsSettled(u32 row, u32 column) const
    {
        const bool isTailAlone = column % 8 == 0;
        return isTailAlone || ((image_.Row(row)[column / 8] & (0x80 >> column % 8)) != 0) == isSetting_;
    }

private:
    // Both included.
    void WriteBits(u8* row, u32 begin, u32 end) const
    {
        const u32 first = begin / 8, last = end / 8;
        const u32 head = 0xFFu >> begin % 8, tail = 0xFF00u >> (end % 8 + 1);
        if (first == last) {
            WriteByte(row[first], head & tail);
            return;
        }
        WriteByte(row[first], head);
        std::memset(row + first + 1, isSetting_ ? 0xFF : 0, last - first - 1);
        WriteByte(row[last], tail);
    }

    void WriteByte(u8& byte, u32 mask) const { byte = u8(isSetting_ ? byte | mask : byte & ~mask); }

    const ImageView<u8> image_;
    const bool isSetting_;
};

// Span after span, as the client hears of them.
u32 PaintAndReport(BaseWork& work, ScanConverter& scan, const ImageView<u8>& image, BitPainter& painter)
{
    const u32 spans = u32(CountSpans(scan, std::numeric_limits<u32>::max()));
    const bool isDone = VisitAllSpans(scan, [&](const ScanSpan& span) {
        PaintSpan(span, image.width, image.height, painter);
        return work.Report(0, spans);
    });
    return isDone ? 1 : 0;
}

u32 FillBits(MVThreadContext& context, Error& error, const ImageView<u8>& image, const f64* points, u32 count,
             bool isSetting)
{
    BaseWork work(context, error);
    if (!image.data || !points || count < kFewestVertices) return work.Fail(Error::BadArgument);
    ScanConverter scan;
    const Error preparing = scan.Prepare(points, count);
    if (preparing != Error::None) return work.Fail(preparing);

    BitPainter painter(image, isSetting);
    if (work.MayReport()) return PaintAndReport(work, scan, image, painter);
    PaintPolygon(scan, image.width, image.height, painter);
    return 1;
}

}  // namespace

u32 MV40_PolygonFill1Bit(u8* image, u32 width, u32 height, u32 stride, const f64* points, u32 count, u32 value)
{
    return InBaseCall("MV40_PolygonFill1Bit", [&](MVThreadContext& context, Error& error) {
        return FillBits(context, error, {image, width, height, 1, stride}, points, count, value != 0);
    });
}

}  // namespace zlv
