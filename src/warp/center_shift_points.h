// The base of warps that bend the line through the middle of a picture.
#pragma once

#include "runtime/array.h"
#include "runtime/error.h"
#include "runtime/transform.h"

namespace zlv {

// A table says for each column to which row the picture's middle row goes there, or the same for rows and the middle
// column. The picture is stretched on both sides of that line, its edges stay where they are.
class CZLVTransform::CCenterShiftPoints : public CXFormer {
public:
    // False without memory.
    [[nodiscard]] virtual bool BuildShiftTable() = 0;

    virtual bool MapByColumn(f64 x, f64 y, f64* outX, f64* outY);
    virtual bool MapByRow(f64 x, f64 y, f64* outX, f64* outY);

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override;
    void MapRun(PointRun& run) override;

protected:
    // What a mode comes to: nothing moves in modes that are not known.
    enum class Lookup : u8 { None, ByColumn, ByRow };

    // Of a mode that is a ZLV40_SHIFT_ value or not known.
    static Lookup ShiftLookup(u32 mode);

    // Takes the mode and builds the table; to be called once, when all that goes into it is stored.
    [[nodiscard]] Error SetUpTable(u32 newMode, Lookup newLookup);

    // Of the table: the size across the shift. Its entries are around the middle of the other axis.
    u32 TableLength() const { return lookup == Lookup::ByColumn ? width : height; }
    f64 BaseLine() const { return lookup == Lookup::ByColumn ? centerY : centerX; }

    // The work of BuildShiftTable: entry i is valueOf(i), with i as a double.
    template <class ValueOf>
    [[nodiscard]] bool FillTable(ValueOf valueOf)
    {
        table.Clear();
        if (lookup == Lookup::None) return true;
        if (!table.Resize(i32(TableLength()))) return false;  // also for more entries than an i32 counts
        for (u32 i = 0; i < TableLength(); ++i) table[i] = valueOf(i);
        return true;
    }

    ZLVArray<f64> table;
    u32 mode = 0;
    Lookup lookup = Lookup::None;

private:
    void Bend(f64& along, f64& across, u32 size, f64 middle, u32 sizeAcross) const;
    u32 MapRow(PointRun& run, u32 i) const;
};

using CCenterShiftPoints = CZLVTransform::CCenterShiftPoints;

}  // namespace zlv
