#include "layerstyles/shadow_layout.h"

#include "runtime/math.h"

namespace zlv {

namespace {

constexpr f64 kPi = 3.14159265358979323846;

point PointAt(i64 x, i64 y) { return {i32(x), i32(y)}; }

i64 Magnitude(i64 number) { return number < 0 ? -number : number; }

}  // namespace

ShadowLayout LayOutShadow(u32 width, u32 height, i32 distance, i32 blurPercent, i32 angle)
{
    const f64 radians = kPi * angle / 180;
    const i64 dx = i64(Sin(radians) * distance), dy = i64(Cos(radians) * distance);
    const f64 sigma = blurPercent / 100.0 * 4.0 + 1.0;
    const i64 kernel = i64(Ceil(sigma * 2.5) * 2.0 + 1.0);
    const i64 h = kernel / 2;

    ShadowLayout layout = {sigma, Magnitude(dx) + kernel + width, Magnitude(dy) + kernel + height, {}, {}};
    if (angle < 91) {
        layout.image = PointAt(h, h + dy);
        layout.shadow = PointAt(h + dx, h);
    } else if (angle < 181) {
        layout.image = PointAt(h, h);
        layout.shadow = PointAt(h + dx, h - dy);
    } else if (angle < 271) {
        layout.image = PointAt(h - dx, h);
        layout.shadow = PointAt(h, h - dy);
    } else if (angle < 361) {
        layout.image = PointAt(h - dx, h + dy);
        layout.shadow = PointAt(h, h);
    }
    return layout;
}

}  // namespace zlv
