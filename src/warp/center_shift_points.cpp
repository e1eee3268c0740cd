#include "warp/center_shift_points.h"

#include "zlv40.h"

namespace zlv {

namespace {

// Where a position on an axis of the length `last` + 1 comes from when its middle goes to `line`. A line that is no
// number, or on the far edge, gives what its arithmetic gives: no index comes from it.
f64 Stretched(f64 position, f64 line, f64 middle, f64 last)
{
    if (line > position) return line != 0 ? position * middle / line : position;
    const f64 behind = position - line, room = last - line;
    return behind != 0 && room != 0 ? behind / room * middle + middle : position;
}

// The end of the points that are in one row with point `i`.
u32 EndOfRow(const PointRun& run, u32 i)
{
    const f64 y = run.y[i++];
    while (i < run.count && run.y[i] == y) ++i;
    return i;
}

}  // namespace

CCenterShiftPoints::Lookup CCenterShiftPoints::ShiftLookup(u32 mode)
{
    switch (mode) {
    case ZLV40_SHIFT_Y: return Lookup::ByColumn;
    case ZLV40_SHIFT_X: return Lookup::ByRow;
    default: return Lookup::None;
    }
}

Error CCenterShiftPoints::SetUpTable(u32 newMode, Lookup newLookup)
{
    mode = newMode;
    lookup = newLookup;
    return BuildShiftTable() ? Error::None : Error::OutOfMemory;
}

// Beyond the table a point goes onto or behind the picture's edge; one that is no number stays where it is.
void CCenterShiftPoints::Bend(f64& along, f64& across, u32 size, f64 middle, u32 sizeAcross) const
{
    if (along >= table.GetCount()) along = size;
    else if (along < 0) along = 0;
    else if (along >= 0) across = Stretched(across, table[size_t(along)], middle, f64(sizeAcross) - 1);
}

bool CCenterShiftPoints::MapByColumn(f64 x, f64 y, f64* outX, f64* outY)
{
    Bend(x, y, width, centerY, height);
    *outX = x;
    *outY = y;
    return true;
}

bool CCenterShiftPoints::MapByRow(f64 x, f64 y, f64* outX, f64* outY)
{
    Bend(y, x, height, centerX, width);
    *outX = x;
    *outY = y;
    return true;
}

bool CCenterShiftPoints::MapPoint(f64 x, f64 y, f64* outX, f64* outY)
{
    *outX = x;
    *outY = y;
    switch (lookup) {
    case Lookup::ByColumn: return MapByColumn(x, y, outX, outY);
    case Lookup::ByRow: return MapByRow(x, y, outX, outY);
    case Lookup::None: break;
    }
    return true;
}

void CCenterShiftPoints::MapRun(PointRun& run)
{
    if (lookup == Lookup::ByColumn) {
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) Bend(run.x[i], run.y[i], width, centerY, height);
        }
    } else if (lookup == Lookup::ByRow) {
        for (u32 i = 0; i < run.count;) i = MapRow(run, i);
    }
}

// Maps point `i` and those that are in one row with it, whose entry is looked up once; returns their end.
u32 CCenterShiftPoints::MapRow(PointRun& run, u32 i) const
{
    const u32 end = EndOfRow(run, i);
    const f64 y = run.y[i], right = f64(width) - 1;
    if (!(y >= 0 && y < table.GetCount())) {
        for (; i < end; ++i) {
            if (!run.isLost[i]) Bend(run.y[i], run.x[i], height, centerX, width);
        }
        return end;
    }
    const f64 line = table[size_t(y)];
    for (; i < end; ++i) {
        if (!run.isLost[i]) run.x[i] = Stretched(run.x[i], line, centerX, right);
    }
    return end;
}

}  // namespace zlv
