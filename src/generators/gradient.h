// Gradients: colours that change with a distance, from a list of stops.
#pragma once

#include "runtime/array.h"
#include "runtime/frame.h"

namespace zlv {

// Pixels of a row that are done at once, at most.
inline constexpr size_t kGradientBlock = 256;

// Stands for a pixel that takes the first stop's colour whatever its distance is: below every position.
inline constexpr f64 kFirstStop = -1;

struct CZLVGradient {
    // Colours are four bytes with channel 0 in the low one. A position is a percentage, 0 to 100.
    struct ColorStop {
        u32 color;
        f64 position;
    };

    struct Point {
        f64 x, y;
        bool operator==(const Point&) const = default;
    };

    using StopArray = MVBuffer<ColorStop>;

    // Turns percentages into colours; what derives from it turns pixels into percentages.
    class CGradientBase {
    public:
        CGradientBase() = default;
        CGradientBase(const CGradientBase&) = delete;
        CGradientBase& operator=(const CGradientBase&) = delete;

        // Paints the image, row by row, with the lowest bytesPerPixel bytes of the colours. 0 when the client cancels.
        virtual u32 Fill(CallFrame& frame, u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride) const;

        // The colour of a pixel; 0 when the gradient is not valid.
        virtual u32 ColorAt(u32 x, u32 y) const;

        // Takes copies of the stops, sorted; those at one position keep their order. The length is what 100 percent
        // stands for. With fewer than two stops or a length of 0 the gradient is not valid: false, and code 5. Without
        // memory: false, and code 1.
        [[nodiscard]] virtual bool SetStops(CallFrame& frame, f64 length, const StopArray& stops, f64 gamma);

        // The colour at a percentage. NaN has none: its bytes are 0.
        virtual u32 InterpolateColor(f64 percent) const;

        virtual ~CGradientBase() = default;
        static void* operator new(size_t bytes) noexcept { return platform::Allocate(bytes); }
        static void operator delete(void* block) { platform::Free(block); }

    protected:
        // The percentages of `count` pixels of a row from x on, at most kGradientBlock. Those above 100 count as 100.
        virtual void PercentsOfRow(u32 x, u32 y, f64* percents, size_t count) const;

        f64 Length() const { return length_; }

    private:
        // Percentages from `from` to below `to`, which have one colour or blends of the same two.
        struct Segment {
            f64 from, to;
            ColorStop low, high;  // with one colour: the same
        };
        Segment SegmentOf(f64 percent) const;
        void ColorsOf(const f64* percents, size_t count, u32 channels, u32* colors) const;
        void ColorsOfSegment(const Segment& segment, const f64* percents, size_t count, u32 channels,
                             u32* colors) const;

        bool valid_ = false;
        f64 length_ = 0;
        StopArray stops_;
        f64 gamma_ = 1;
    };

    class CLinearGradient2 final : public CGradientBase {
    public:
        // False when both points are the same (code 5), or as SetStops says. With mode 1 all pixels on the other side
        // of `start` than `end` have the first stop's colour; with any other the gradient is mirrored there.
        [[nodiscard]] bool Set(CallFrame& frame, Point start, Point end, u32 mode, const StopArray& stops, f64 gamma);

    private:
        void PercentsOfRow(u32 x, u32 y, f64* percents, size_t count) const override;

        u32 mode_ = 0;
        Point start_ = {}, lineEnd_ = {}, end_ = {};
        f64 lineLength_ = 0;
    };

    class CRadialGradient final : public CGradientBase {
    public:
        // As SetStops says. The mode is kept and not looked at.
        [[nodiscard]] bool Set(CallFrame& frame, f64 radius, i32 centerX, i32 centerY, u32 mode, const StopArray& stops,
                               f64 gamma);

    private:
        void PercentsOfRow(u32 x, u32 y, f64* percents, size_t count) const override;

        i32 centerX_ = 0, centerY_ = 0;
        u32 mode_ = 0;
    };
};

}  // namespace zlv
