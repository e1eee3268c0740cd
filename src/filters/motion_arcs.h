// Where pixels stand that walk on arcs around an image's centre.
#pragma once

#include "filters/motion.kernels.h"
#include "filters/motion_pixels.h"

namespace zlv {

// Step i of `steps` turns by i - steps / 2 times a tenth of amount / pi.
class Arcs {
public:
    Arcs(const MotionImages& images, f64 amount, i32 steps);

    // The pixels x to x + count - 1 of row y, at most kMotionPixels, are those that walk.
    void Begin(u32 x, u32 y, size_t count);

    // Step i of a stretch of them: the offsets at which they stand, and which of them are inside. False when these are
    // not one stretch: roundings can do that.
    [[nodiscard]] bool Walk(i32 i, Stretch& stretch, size_t* offsets);

private:
    struct Turn {
        f64 angle, cosine, sine;
        f64 bound;  // see Bound
        i32 fixedCosine, fixedSine;
        bool isFixedPoint;
    };

    static constexpr i32 kKeptTurns = 128;

    Turn TurnAt(i32 i) const;
    f64 Reach() const { return centre_.x + centre_.y + 2; }
    f64 Bound(f64 angle) const;
    static u32 FractionBits(f64 reach);
    f64 FixedPointScale() const { return f64(u32(1) << fractionBits_); }
    i32 ToFixedPoint(f64 number) const;
    size_t OffsetOf(f64 x, f64 y) const;
    bool CanPlace(f64 angle) const;

    [[nodiscard]] bool TurnInFixedPoint(const Turn& turn, Stretch& stretch, size_t* offsets) const;
    [[nodiscard]] bool TurnByRotation(const Turn& turn, const Stretch& stretch, size_t* offsets) const;
    void TurnByDefinition(f64 angle, const Stretch& stretch, size_t* offsets);
    void FindPolar();

    const MotionImages& images_;
    const Centre centre_;
    const f64 amount_;
    const i32 unturned_;  // the step that does not turn
    const u32 fractionBits_;
    Turn kept_[kKeptTurns];  // of the first steps

    // The pixels that walk: from the first one to the centre; their angles and distances, once they are found.
    f64 dx_ = 0, dy_ = 0;
    size_t count_ = 0;
    bool hasPolar_ = false;
    f64 angles_[kMotionPixels], radii_[kMotionPixels];

    const size_t* last_ = nullptr;  // the offsets of the step before, if there is one
    f64 turnedBy_ = 0;
};

}  // namespace zlv
