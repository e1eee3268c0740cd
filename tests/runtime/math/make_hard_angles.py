#!/usr/bin/env python3
"""Writes hard_angles_table.inc: for every exponent, the doubles nearest to a multiple of pi/2.

m * 2^e is near k * pi/2 where k/m is a convergent of the continued fraction of 2^e / (pi/2).
Convergents whose m has 53 bits or fewer are doubles; the last ones of each exponent are the nearest
there are.
"""
from fractions import Fraction
from pathlib import Path

PLACES = 2400


def pi_times_power(places):
    """pi * 2^places, by Machin's formula."""
    guard = places + 64

    def inverse_tangent(n):
        term = (1 << guard) // n
        total, k = 0, 0
        while term:
            total += (-1) ** k * (term // (2 * k + 1))
            term //= n * n
            k += 1
        return total

    return 4 * (4 * inverse_tangent(5) - inverse_tangent(239)) >> 64


def convergent_denominators(value, limit):
    """Denominators of the convergents of a fraction, up to the limit."""
    before, last = 1, 0
    result = []
    while True:
        whole = value.numerator // value.denominator
        before, last = last, whole * last + before
        if last >= limit:
            return result
        result.append(last)
        value -= whole
        if not value:
            return result
        value = 1 / value


def main():
    half_pi = Fraction(pi_times_power(PLACES), 2 << PLACES)
    angles = set()
    for exponent in range(-52, 972):
        ratio = Fraction(2) ** exponent / half_pi
        for significand in convergent_denominators(ratio, 1 << 53)[-3:]:
            if significand * Fraction(2) ** exponent > Fraction(1, 2):
                angles.add(float(significand) * 2.0 ** exponent)
    lines = ["// Written by make_hard_angles.py: do not edit.",
             "// Doubles next to multiples of pi/2, for every exponent."]
    lines += [f"{angle.hex()}," for angle in sorted(angles)]
    (Path(__file__).resolve().parent / "hard_angles_table.inc").write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
