// Packed rows in vectors. A row is moved by whole bytes through the address, and by the rest as two shifts: of the
// bytes there, and of the bytes behind them. Shifts of wider lanes do for bytes what crosses a byte is masked out.
#include "morphology/bit_windows.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Vector = RealsOf<u64>;
using Bytes = RealsOf<u8>;

struct Union {
    static constexpr u64 kNeutral = 0;
    static Vector Of(Vector a, Vector b) { return a | b; }
};

struct Intersection {
    static constexpr u64 kNeutral = ~u64(0);
    static Vector Of(Vector a, Vector b) { return a & b; }
};

u64 InEachByte(u32 value) { return (value & 0xFF) * 0x0101010101010101u; }

// Moves by 0 to 7 pixels.
class Move {
public:
    explicit Move(u32 pixels)
        : left_(int(pixels)),
          right_(int(8 - pixels)),
          leftMask_(Vector{} + InEachByte(0xFFu << pixels)),
          rightMask_(~leftMask_)
    {
    }
    Vector operator()(const Vector& bytes, const Vector& behind) const
    {
        return ((bytes << left_) & leftMask_) | ((behind >> right_) & rightMask_);
    }

private:
    const int left_, right_;
    const Vector leftMask_, rightMask_;
};

template <class Op>
void Span(const u8* row, size_t distance, size_t count, u8* out)
{
    const Move move(u32(distance % 8));
    const u8* const moved = row + distance / 8;
    for (size_t i = 0; i < count; i += kVectorBytes) {
        Store(out + i, Op::Of(Load<Vector>(row + i), move(Load<Vector>(moved + i), Load<Vector>(moved + i + 1))));
    }
}

template <class Op>
void Join(const u8* a, const u8* b, size_t count, u8* out)
{
    for (size_t i = 0; i < count; i += kVectorBytes) Store(out + i, Op::Of(Load<Vector>(a + i), Load<Vector>(b + i)));
}

constexpr size_t kVectors = 4;
constexpr size_t kBlock = kVectors * kVectorBytes;
static_assert(kBlock + kVectorBytes < kBitSlack);

// A column over a block.
template <class Op>
void AddColumn(const u8* const* rows, const BitColumn& column, i64 at, Vector* found)
{
    if (column.pixels == 0) {
        for (u32 j = 0; j < column.rows; ++j) {
#pragma GCC unroll 4
            for (size_t v = 0; v < kVectors; ++v) {
                found[v] = Op::Of(found[v], Load<Vector>(rows[j] + at + v * kVectorBytes));
            }
        }
        return;
    }
    Vector bytes[kVectors], behind[kVectors];
#pragma GCC unroll 4
    for (size_t v = 0; v < kVectors; ++v) {
        bytes[v] = Load<Vector>(rows[0] + at + v * kVectorBytes);
        behind[v] = Load<Vector>(rows[0] + at + v * kVectorBytes + 1);
    }
    for (u32 j = 1; j < column.rows; ++j) {
#pragma GCC unroll 4
        for (size_t v = 0; v < kVectors; ++v) {
            bytes[v] = Op::Of(bytes[v], Load<Vector>(rows[j] + at + v * kVectorBytes));
            behind[v] = Op::Of(behind[v], Load<Vector>(rows[j] + at + v * kVectorBytes + 1));
        }
    }
    const Move move(column.pixels);
#pragma GCC unroll 4
    for (size_t v = 0; v < kVectors; ++v) found[v] = Op::Of(found[v], move(bytes[v], behind[v]));
}

template <class Op>
void Window(const u8* const* rows, const BitColumn* columns, size_t columnCount, size_t count, u8* out)
{
    for (size_t i = 0; i < count; i += kBlock) {
        Vector found[kVectors];
        for (size_t v = 0; v < kVectors; ++v) found[v] = Vector{} + Op::kNeutral;
        const u8* const* next = rows;
        for (size_t c = 0; c < columnCount; ++c) {
            AddColumn<Op>(next, columns[c], i64(i) + columns[c].bytes, found);
            next += columns[c].rows;
        }
        for (size_t v = 0; v < kVectors; ++v) Store(out + i + v * kVectorBytes, found[v]);
    }
}

void FindSkipped(const u8* row, size_t count, u8* skipped)
{
    for (size_t i = 0; i < count; i += kVectorBytes) {
        const Bytes isEmpty = Bytes(Load<Bytes>(row + i) == 0), isEmptyBefore = Bytes(Load<Bytes>(row + i - 1) == 0);
        Store(skipped + i, isEmpty | (isEmptyBefore & 0x80));
    }
}

void ClearSkipped(const u8* skipped, size_t count, u8* values)
{
    for (size_t i = 0; i < count; i += kVectorBytes) {
        Store(values + i, Load<Vector>(values + i) & ~Load<Vector>(skipped + i));
    }
}

// Putting a byte twice is putting it once: what is left behind the last whole vector is done with one that begins
// earlier.
void PutVisited(const u8* values, const u8* skipped, size_t count, u8* out)
{
    const auto put = [=](size_t i) {
        const Vector keeps = Load<Vector>(skipped + i);
        Store(out + i, (Load<Vector>(out + i) & keeps) | (Load<Vector>(values + i) & ~keeps));
    };
    if (count < kVectorBytes) {
        for (size_t i = 0; i < count; ++i) out[i] = u8((out[i] & skipped[i]) | (values[i] & ~skipped[i]));
        return;
    }
    size_t i = 0;
    for (; i + kVectorBytes <= count; i += kVectorBytes) put(i);
    if (i < count) put(count - kVectorBytes);
}

template <class Op>
constexpr BitWindowKernels::Operation kOperation = {Span<Op>, Join<Op>, Window<Op>};

}  // namespace

extern const BitWindowKernels kBitWindowKernels;
const BitWindowKernels kBitWindowKernels = {kOperation<Union>, kOperation<Intersection>, FindSkipped, ClearSkipped,
                                            PutVisited};

}  // namespace zlv::ZLV_TARGET
