#include "base/gaussian_coefficients.h"

#include "runtime/math.h"

#include <limits>

namespace zlv {

namespace {

constexpr f64 kPi = 0x1.921FB54442D18p+1;

// A fit of the Gaussian by two damped waves, cosine and sine each: amplitude * exp(decay * t / sigma), turning by
// frequency * t / sigma.
struct Wave {
    f64 cosine, sine, frequency, decay;
};

constexpr Wave kFirstWave = {1.68, 3.735, 0.6318, -1.783};
constexpr Wave kSecondWave = {-0.6803, -0.2598, 1.997, -1.723};

// The library does not use its own exponential here, and these digits of e and of 2 pi show in the entries.
constexpr f64 kShortE = 2.71828;
constexpr f64 kShortTwoPi = 6.2831853;
constexpr f64 kSigmasASide = 2.5;

f64 Sum(const f64 (&values)[5])
{
    f64 sum = 0;
    for (const f64 value : values) sum += value;
    return sum;
}

// Where the poles meet 1 the steady state has no limit; a limit of a millionth keeps it finite.
f64 SteadyStateDivisor(const f64 (&d)[5])
{
    const f64 sum = Sum(d);
    return 1 + (sum == -1.0 ? -0.999999 : sum);
}

template <class Real>
void Narrow(const f64 (&from)[5], Real (&to)[5])
{
    for (size_t i = 0; i < 5; ++i) to[i] = Real(from[i]);
}

}  // namespace

template <class Real>
RecursiveGaussianCoefficients<Real> MakeRecursiveGaussian(f32 narrowSigma)
{
    const f64 sigma = f64(narrowSigma);
    const f64 q = 1 / sigma;
    const f64 k = 1 / (Sqrt(2 * kPi) * sigma);
    const f64 w0 = kFirstWave.frequency * q, w1 = kSecondWave.frequency * q;
    const f64 e0 = kFirstWave.decay * q, e1 = kSecondWave.decay * q;
    const f64 a0 = kFirstWave.cosine * k, a1 = kFirstWave.sine * k;
    const f64 c0 = kSecondWave.cosine * k, c1 = kSecondWave.sine * k;
    const f64 cos0 = Cos(w0), sin0 = Sin(w0), cos1 = Cos(w1), sin1 = Sin(w1);

    const f64 n0 = a0 + c0;
    const f64 n1 = Exp(e1) * (c1 * sin1 - (2 * a0 + c0) * cos1) + Exp(e0) * (a1 * sin0 - (2 * c0 + a0) * cos0);
    const f64 n2 = 2 * Exp(e0 + e1) * (n0 * cos1 * cos0 - a1 * cos1 * sin0 - c1 * sin1 * cos0) + c0 * Exp(2 * e0) +
                   a0 * Exp(2 * e1);
    const f64 n3 = Exp(2 * e1 + e0) * (a1 * sin0 - a0 * cos0) + Exp(2 * e0 + e1) * (c1 * sin1 - c0 * cos1);
    const f64 n[5] = {n0, n1, n2, n3, 0};

    const f64 d1 = -2 * cos1 * Exp(e1) - 2 * cos0 * Exp(e0);
    const f64 d2 = 4 * cos0 * cos1 * Exp(e0 + e1) + Exp(2 * e1) + Exp(2 * e0);
    const f64 d3 = -2 * cos0 * Exp(e0 + 2 * e1) - 2 * cos1 * Exp(2 * e0 + e1);
    const f64 d4 = Exp(2 * e0 + 2 * e1);
    const f64 d[5] = {0, d1, d2, d3, d4};

    f64 m[5] = {};
    for (size_t i = 1; i < 5; ++i) m[i] = n[i] - d[i] * n0;

    const f64 divisor = SteadyStateDivisor(d);
    f64 forward[5], backward[5];
    for (size_t i = 0; i < 5; ++i) {
        forward[i] = d[i] * Sum(n) / divisor;
        backward[i] = d[i] * Sum(m) / divisor;
    }
    RecursiveGaussianCoefficients<Real> made;
    Narrow(n, made.n);
    Narrow(d, made.d);
    Narrow(m, made.m);
    Narrow(forward, made.forwardBoundary);
    Narrow(backward, made.backwardBoundary);
    return made;
}

template RecursiveGaussianCoefficients<f32> MakeRecursiveGaussian(f32);
template RecursiveGaussianCoefficients<f64> MakeRecursiveGaussian(f32);

bool DirectGaussian::IsPossible(f64 sigma) { return Ceil(kSigmasASide * sigma) <= kLargestRadius; }

bool DirectGaussian::Make(f64 sigma)
{
    // Of a sigma so small, all but the middle entry are 0, and the middle is past what a float holds.
    const f64 scale = Sqrt(kShortTwoPi) * sigma;
    const bool isPoint = sigma <= 0.0 || 1 / scale > f64(std::numeric_limits<f32>::max());
    radius_ = isPoint ? 0 : size_t(Ceil(kSigmasASide * sigma));
    if (!entries_.Resize(2 * radius_ + 1)) return false;
    f32* const entries = entries_.GetData();
    if (isPoint) {
        entries[0] = 1;
        return true;
    }
    f32 sum = 0;
    for (size_t at = 0; at < 2 * radius_ + 1; ++at) {
        const f64 i = f64(at) - f64(radius_);
        entries[at] = f32(Pow(kShortE, -0.5 * i * i / (sigma * sigma)) / scale);
        sum += entries[at];
    }
    for (size_t at = 0; at < 2 * radius_ + 1; ++at) entries[at] *= 1 / sum;
    return true;
}

}  // namespace zlv
