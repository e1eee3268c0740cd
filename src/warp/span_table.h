// The convex hull of a polygon as one span a line: rows, or columns of the polygon with its axes exchanged.
#pragma once

#include "runtime/array.h"

#include "zlv40.h"

namespace zlv {

struct LineSpan {
    i32 line;
    f64 start, end;
};

class SpanTable {
public:
    enum class Lines : bool { Rows, Columns };

    // Keeps the spans of lines 0 to lastLine. False, with an empty table, for a polygon of which nothing is left to
    // fill, one that can't be used, and without memory.
    [[nodiscard]] bool Build(const point* polygon, u32 count, Lines lines, u32 lastLine);

    // Looks lines up that are near each other.
    class Cursor {
    public:
        explicit Cursor(const SpanTable& table) : table_(table) {}

        // The span of the line that holds this coordinate, which is not below 0; null where there is none.
        const LineSpan* Find(f64 coordinate);

    private:
        bool IsAt(i64 line) const { return at_ < table_.count_ && table_.spans_[at_].line == line; }

        const SpanTable& table_;
        u64 at_ = 0;
    };

private:
    [[nodiscard]] bool KeepFirstOfLines(const i32* lines, const f64* starts, const f64* ends, u32 count, u32 lastLine);

    MVBuffer<LineSpan> spans_;  // sorted by line, each line once
    u64 count_ = 0;
};

}  // namespace zlv
