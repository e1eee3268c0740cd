// Warps around a centre, said plainly, a point at a time. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_warp.h"

struct PlainRadialMath {
    double (*sin)(double);
    double (*cos)(double);
    double (*atan)(double);
};

struct PlainRadial {
    PlainRadialMath math;
    double width, height;
    double offsetX, offsetY;

    double Pi() const { return std::acos(-1.0); }
    double CenterX() const { return (width - 1) * 0.5; }
    double CenterY() const { return (height - 1) * 0.5; }
    double HalfDiagonal() const { return std::sqrt(CenterX() * CenterX() + CenterY() * CenterY()); }

    double Dx(double x) const { return x - (CenterX() + offsetX); }
    double Dy(double y) const { return y - (CenterY() + offsetY); }
    double Radius(double x, double y) const { return std::sqrt(Dx(x) * Dx(x) + Dy(y) * Dy(y)); }

    // The same bearing at another radius.
    void Rebuild(double x, double y, double newRadius, bool columnTakesOffset, double* outX, double* outY) const
    {
        const double dx = Dx(x), dy = Dy(y);
        if (dx == 0) {
            *outX = columnTakesOffset ? x + offsetX : x;
            *outY = (dy >= 0 ? CenterY() + newRadius : CenterY() - newRadius) + offsetY;
            return;
        }
        const double a = math.atan(dy / dx);
        double X = math.cos(a) * newRadius, Y = math.sin(a) * newRadius;
        if (dx < 0) {
            X = -X;
            Y = -Y;
        }
        *outX = (X + CenterX()) + offsetX;
        *outY = (Y + CenterY()) + offsetY;
    }

    void Turn(double x, double y, double angle, double* outX, double* outY) const
    {
        const double dx = Dx(x), dy = Dy(y), r = Radius(x, y);
        double base = 0;
        if (dx != 0) base = math.atan(dy / dx);
        else if (dy > 0) base = Pi() * -0.5;
        else base = Pi() * 0.5;
        const double a = base + angle;
        double X = math.cos(a) * r, Y = math.sin(a) * r;
        if (!(dx > 0)) {
            X = -X;
            Y = -Y;
        }
        *outX = (X + CenterX()) + offsetX;
        *outY = (Y + CenterY()) + offsetY;
    }
};

inline PlainStep PlainSpin(const PlainRadial& radial, double radius, double degrees)
{
    return [=](double x, double y, double* outX, double* outY) {
        const double r = radial.Radius(x, y), angle = degrees * radial.Pi() / 180;
        if (r > 0 && r <= radius) radial.Turn(x, y, (1 - r / radius) * angle, outX, outY);
        return true;
    };
}

inline PlainStep PlainSpinWave(const PlainRadial& radial, double radius, double degrees, double frequency)
{
    return [=](double x, double y, double* outX, double* outY) {
        const double r = radial.Radius(x, y), angle = degrees * radial.Pi() / 180;
        const double q = r / radius;
        if (r > 0 && r <= radius) {
            radial.Turn(x, y, (1 - radial.math.cos(q * frequency) * q) * angle, outX, outY);
        }
        return true;
    };
}

inline PlainStep PlainLens(const PlainRadial& radial, double radius)
{
    return [=](double x, double y, double* outX, double* outY) {
        const double r = radial.Radius(x, y);
        if (!(r > 0 && r <= radius)) return true;
        const double R = radial.math.sin((r / radial.HalfDiagonal()) * radial.Pi() * 0.5) * r;
        radial.Rebuild(x, y, R, true, outX, outY);
        return true;
    };
}

inline PlainStep PlainPinch(const PlainRadial& radial, double radius, double strength)
{
    return [=](double x, double y, double* outX, double* outY) {
        const double r = radial.Radius(x, y);
        if (!(r > 0 && r <= radius)) return true;
        double R = (1 - r / radial.HalfDiagonal()) * strength + r;
        if (R < 0) R = 0;
        radial.Rebuild(x, y, R, false, outX, outY);
        return true;
    };
}

inline double PlainAttraction(const PlainRadial& radial, double r, std::uint32_t mode, double f)
{
    const double hd = radial.HalfDiagonal(), pi = radial.Pi(), u = r / hd;
    switch (mode) {
    case 0: return 1 - (r * f) / hd;
    case 1: return radial.math.sin((f * pi * r) / hd);
    case 2: return radial.math.cos(u * pi * f) * 0.5 + 0.5;
    case 3: {
        const double v = -(u * f);
        return v + v * v;
    }
    case 4: {
        const double w = u - 0.7;
        return (18 * w * w * w + 12 * w * w + w - 2) * 0.5 + 1.5;
    }
    case 5: return radial.math.atan((r * f) / hd);
    default: return 0;
    }
}

inline PlainStep PlainAttractor(const PlainRadial& radial, double strength, std::uint32_t mode, double frequency)
{
    return [=](double x, double y, double* outX, double* outY) {
        const double r = radial.Radius(x, y);
        if (!(r > 0)) return true;
        double R = PlainAttraction(radial, r, mode, frequency) * strength + r;
        if (R < 0) R = 0;
        radial.Rebuild(x, y, R, false, outX, outY);
        return true;
    };
}

inline PlainStep PlainWow(const PlainRadial& radial, double radius, std::uint32_t mode)
{
    return [=](double x, double y, double* outX, double* outY) {
        const double r = radial.Radius(x, y);
        if (!(r > 0 && r <= radius)) return true;
        const double u = r / radial.HalfDiagonal();
        const double g = mode == 1 ? radial.math.sin(u * radial.Pi() * 0.125) : u;
        radial.Rebuild(x, y, (1 - g) * r, false, outX, outY);
        return true;
    };
}

struct PlainRipple {
    PlainRadialMath math;
    double centerX, centerY;  // with the offsets
    double radius, amplitude, frequency;
    std::uint32_t falloff;

    bool operator()(double x, double y, double* outX, double* outY) const
    {
        const double pi = std::acos(-1.0);
        const double dx = x - centerX, dy = y - centerY, r = std::sqrt(dx * dx + dy * dy), t = r / radius;
        if (!(r <= radius)) return true;
        double w = math.sin(pi * t * frequency) * amplitude;
        if (falloff == 1) w = w * (1 - t);
        if (falloff == 2) w = w * (1 - t) * (1 - t);
        if (falloff == 3) w = w * math.sin(pi * 0.5 * t);
        if (falloff == 4) w = w * math.cos(pi * 0.5 * t);
        const double R = w + r;
        if (dx == 0) {
            *outY = dy >= 0 ? centerY + R : centerY - R;
            return true;
        }
        const double a = math.atan(dy / dx), sign = dx < 0 ? -1 : 1;
        *outX = centerX + sign * (math.cos(a) * R);
        *outY = centerY + sign * (math.sin(a) * R);
        return true;
    }
};
