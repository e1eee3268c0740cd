// The blend modes as formulas, and the row functions made of them.
//
// A formula is a type whose Of() is written once for bytes and words; a row function is a plain loop over it, which
// the compiler turns into vectors of the target. For that, formulas have no branches, and no wider lanes than they
// need: products of two samples fit twice the sample's width.
#include "base/overlay_modes.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

// Numbers beside samples of type T.
template <class T>
struct Lanes;

template <>
struct Lanes<u8> {
    using Wide = u16;    // a product of two samples
    using Signed = i16;  // a sum of a few of either sign
    using Real = f32;    // a product, exactly
    static constexpr u32 kBits = 8;
};

template <>
struct Lanes<u16> {
    using Wide = u32;
    using Signed = i32;
    using Real = f64;
    static constexpr u32 kBits = 16;
};

template <class T>
using Wide = typename Lanes<T>::Wide;
template <class T>
constexpr T kMax = T(~T(0));
template <class T>
constexpr T kHalf = T(kMax<T> / 2 + 1);

template <class T>
constexpr SplitReciprocal kReciprocal = sizeof(T) == 1 ? kByteReciprocal : kWordReciprocal;

template <class T>
Wide<T> Product(T a, T b)
{
    return Wide<T>(Wide<T>(a) * Wide<T>(b));
}

// A product of two samples divided by the largest sample value, truncated.
template <class T>
T OverMax(Wide<T> product)
{
    constexpr u32 kBits = Lanes<T>::kBits;
    return T(Wide<T>(product + 1 + (product >> kBits)) >> kBits);
}

template <class T>
T Smaller(T a, T b)
{
    return a < b ? a : b;
}

template <class T>
T Larger(T a, T b)
{
    return a > b ? a : b;
}

template <class T>
T Inverse(T value)
{
    return T(~value);
}

// product / divisor, truncated, at most the largest sample; that too for a divisor of 0, even of 0 / 0, which is no
// number and so not below the limit. A quotient that is no whole number is at least 1 / divisor away from the next
// one, more than its rounding error as products are below 2^24 (2^53).
template <class T>
T Quotient(Wide<T> product, T divisor)
{
    using Real = typename Lanes<T>::Real;
    const Real quotient = Real(product) / Real(divisor);
    return T(i32(quotient < Real(kMax<T>) ? quotient : Real(kMax<T>)));
}

// The formula on inverted samples, inverted: screen is a multiplication of what is missing, burning is such a dodge.
template <class Formula>
struct Inverted {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        return Inverse(Formula::Of(Inverse(d), Inverse(s), terms));
    }
};

template <class Formula>
struct Swapped {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        return Formula::Of(s, d, terms);
    }
};

template <class Formula>
struct Not {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        return Inverse(Formula::Of(d, s, terms));
    }
};

struct And {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return T(d & s);
    }
};

struct Or {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return T(d | s);
    }
};

struct Xor {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return T(d ^ s);
    }
};

struct Lighter {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return Larger(d, s);
    }
};

struct Darker {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return Smaller(d, s);
    }
};

struct Add {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return T(d + Smaller(s, Inverse(d)));
    }
};

struct Subtract {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return T(d - Smaller(s, d));
    }
};

struct Difference {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return T(Larger(d, s) - Smaller(d, s));
    }
};

struct Multiply {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return OverMax<T>(Product(d, s));
    }
};

struct ScaledMultiply {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        const f64 share = d * kReciprocal<T>.head + d * kReciprocal<T>.tail;
        const f64 value = s * terms.factor * share;
        const f64 positive = value < 0 ? 0 : value;
        return T(i32(positive < kMax<T> ? positive : f64(kMax<T>)));
    }
};

struct AddWithBias {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        using Signed = typename Lanes<T>::Signed;
        const Signed sum = Signed(Signed(d) + Signed(s) - Signed(terms.bias));
        return T(Larger(Smaller(sum, Signed(kMax<T>)), Signed(terms.lowest)));
    }
};

struct SubtractWithBias {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        using Signed = typename Lanes<T>::Signed;
        const Signed sum = Signed(Signed(d) - Signed(s) + Signed(terms.bias));
        return T(Larger(Smaller(sum, Signed(kMax<T>)), Signed(terms.lowest)));
    }
};

struct Dodge {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return Quotient<T>(Product(d, kMax<T>), Inverse(s));
    }
};

// The limit is a signed comparison: with words, a quotient from 2^31 on passes and is stored as its low bits. That
// takes a divisor of 1. Clients' 16-bit results have these dark specks; limiting them would change files.
struct ColorDodge {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        const T limited = Dodge::Of(d, s, terms);
        if constexpr (sizeof(T) == 1) return limited;
        const bool passes = s == kMax<T> - 1 && d > kHalf<T>;
        return passes ? T(-d) : limited;
    }
};

struct SoftDodge {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        const bool isLow = s <= Inverse(d);
        const T missing = Inverse(s);
        const T quotient = Quotient<T>(Product(isLow ? d : missing, kHalf<T>), isLow ? missing : d);
        return isLow ? quotient : Inverse(quotient);
    }
};

struct OverlayFormula {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        const bool isLow = d < kHalf<T>;
        const Wide<T> product = isLow ? Product(d, s) : Product(Inverse(d), Inverse(s));
        const T share = T(product >> (Lanes<T>::kBits - 1));
        return isLow ? share : Inverse(share);
    }
};

struct SoftLight {
    template <class T>
    static T Of(T d, T s, const OverlayTerms& terms)
    {
        const T product = Multiply::Of(d, s, terms);
        const T screen = Inverted<Multiply>::Of(d, s, terms);  // never below the product
        return T(product + OverMax<T>(Product(T(screen - product), d)));
    }
};

struct Reflect {
    template <class T>
    static T Of(T d, T s, const OverlayTerms&)
    {
        return Quotient<T>(Product(d, d), Inverse(s));
    }
};

template <class T, class Formula>
void FormulaRow(T* base, const T* overlay, size_t count, const OverlayTerms& terms)
{
    const OverlayTerms own = terms;  // stores to `base` cannot change it
    for (size_t i = 0; i < count; ++i) base[i] = Formula::Of(base[i], overlay[i], own);
}

template <class T>
void SelectRow(T* base, const T* mixed, const T* overlay, size_t count, const OverlayTerms& terms)
{
    if (terms.first >= terms.end) return;
    // One comparison a sample: what lies below `first` wraps and is large.
    const T first = T(terms.first), span = T(terms.end - 1 - terms.first);
    for (size_t i = 0; i < count; ++i) {
        const T mask = T(overlay[i] - first) <= span ? kMax<T> : T(0);
        base[i] = T((mixed[i] & mask) | (base[i] & ~mask));
    }
}

template <class T>
constexpr OverlayRows<T> MakeRows()
{
    return {{
                nullptr,  // replace
                nullptr,  // replace exactly
                FormulaRow<T, And>,
                FormulaRow<T, Or>,
                FormulaRow<T, Xor>,
                FormulaRow<T, Lighter>,
                FormulaRow<T, Darker>,
                FormulaRow<T, Add>,
                FormulaRow<T, Subtract>,
                nullptr,  // replace above
                nullptr,  // replace below
                FormulaRow<T, Difference>,
                FormulaRow<T, Multiply>,
                FormulaRow<T, ScaledMultiply>,
                FormulaRow<T, Inverted<Multiply>>,
                FormulaRow<T, AddWithBias>,
                FormulaRow<T, SubtractWithBias>,
                FormulaRow<T, Not<And>>,
                FormulaRow<T, Not<Or>>,
                FormulaRow<T, Not<Xor>>,
                FormulaRow<T, ColorDodge>,
                FormulaRow<T, Inverted<Dodge>>,
                FormulaRow<T, SoftDodge>,
                FormulaRow<T, Swapped<SoftDodge>>,
                FormulaRow<T, OverlayFormula>,
                FormulaRow<T, SoftLight>,
                FormulaRow<T, Swapped<OverlayFormula>>,
                FormulaRow<T, Reflect>,
                FormulaRow<T, Swapped<Reflect>>,
                FormulaRow<T, Inverted<Reflect>>,
                FormulaRow<T, Swapped<Inverted<Reflect>>>,
            },
            SelectRow<T>};
}

}  // namespace

extern const OverlayKernels kOverlayKernels;
const OverlayKernels kOverlayKernels = {MakeRows<u8>(), MakeRows<u16>()};

}  // namespace zlv::ZLV_TARGET
