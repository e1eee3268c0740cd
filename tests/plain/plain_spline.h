// The spline, by the recursion that defines it. Its time doubles with each order.
#pragma once

#include <cstdint>
#include <vector>

class PlainSpline {
public:
    PlainSpline(int controlCount, int order) : n_(controlCount - 1), t_(order)
    {
        for (int j = 0; j <= n_ + t_; ++j) knots_.push_back(j < t_ ? 0 : j <= n_ ? j - t_ + 1 : n_ - t_ + 2);
    }

    double Blend(int k, int t, double v) const
    {
        const auto& u = knots_;
        if (t == 1) return u[k] <= v && v < u[k + 1] ? 1.0 : 0.0;
        const bool a = u[k + t - 1] == u[k], b = u[k + t] == u[k + 1];
        if (a && b) return 0.0;
        if (a) return Down(k, t, v);
        if (b) return Up(k, t, v);
        return Down(k, t, v) + Up(k, t, v);
    }

    void Evaluate(const double* x, const double* y, const double* z, std::uint32_t outCount, double* outX, double* outY,
                  double* outZ) const
    {
        const double step = double(n_ - t_ + 2) / (double(outCount) - 1);
        double v = 0;
        for (std::uint32_t i = 0; i + 1 < outCount; ++i) {
            outX[i] = outY[i] = outZ[i] = 0;
            for (int k = 0; k <= n_; ++k) {
                const double b = Blend(k, t_, v);
                outX[i] += b * x[k];
                outY[i] += b * y[k];
                outZ[i] += b * z[k];
            }
            v += step;
        }
        outX[outCount - 1] = x[n_];
        outY[outCount - 1] = y[n_];
        outZ[outCount - 1] = z[n_];
    }

private:
    double Down(int k, int t, double v) const
    {
        return (knots_[k + t] - v) / (knots_[k + t] - knots_[k + 1]) * Blend(k + 1, t - 1, v);
    }
    double Up(int k, int t, double v) const
    {
        return (v - knots_[k]) / (knots_[k + t - 1] - knots_[k]) * Blend(k, t - 1, v);
    }

    int n_, t_;
    std::vector<int> knots_;
};
