#!/usr/bin/env python3
"""Writes the constant tables of the mathematical functions, *_table.inc, beside this file.

Everything is computed in integers (fixed point with PRECISION binary places) from series that need
nothing but arithmetic, so the tables come out the same on every machine.

    make_tables.py            write the tables
    make_tables.py --check    compare with the tables that are there; exit code 1 when one differs
"""
import sys
from fractions import Fraction
from pathlib import Path

PRECISION = 1500
ONE = 1 << PRECISION


# ---- functions in fixed point --------------------------------------------------------------------

def fixed(value):
    """A fraction as fixed point."""
    return value.numerator * ONE // value.denominator


def arc_tangent(x):
    """atan(x) for a fraction 0 <= x <= 1, by Euler's series: terms shrink at least by half."""
    square = x * x
    factor = square / (1 + square)
    term = fixed(x / (1 + square))
    total, n = 0, 0
    while term:
        total += term
        n += 1
        term = term * 2 * n * factor.numerator // ((2 * n + 1) * factor.denominator)
    return total


def logarithm(x):
    """log(x) for a positive fraction near 1, as 2 * atanh((x - 1) / (x + 1))."""
    ratio = (x - 1) / (x + 1)
    sign = -1 if ratio < 0 else 1
    ratio = abs(ratio)
    power, total, n = fixed(ratio), 0, 1
    while power:
        total += power // n
        power = power * ratio.numerator ** 2 // ratio.denominator ** 2
        n += 2
    return 2 * sign * total


def exponential(x):
    """exp(x) of a fixed-point number 0 <= x < 1."""
    term, total, n = ONE, 0, 0
    while term:
        total += term
        n += 1
        term = (term * x >> PRECISION) // n
    return total


def sine_and_cosine(x):
    """Of a fixed-point number 0 <= x < 1."""
    sums = [0, 0]
    term, n = ONE, 0
    while term:
        sums[n % 2] += term if n % 4 < 2 else -term
        n += 1
        term = (term * x >> PRECISION) // n
    return sums[1], sums[0]


PI = 4 * arc_tangent(Fraction(1))
LN2 = logarithm(Fraction(2))


# ---- floating-point numbers ----------------------------------------------------------------------

def rounded(value, bits=53):
    """The fixed-point number nearest to value with that many significant bits."""
    magnitude = abs(value)
    drop = magnitude.bit_length() - bits
    if drop > 0:
        half = 1 << (drop - 1)
        kept = magnitude + half >> drop
        if magnitude & ((half << 1) - 1) == half and kept & 1:
            kept -= 1
        magnitude = kept << drop
    return -magnitude if value < 0 else magnitude


def on_grid(value, exponent):
    """The fixed-point number nearest to value that is a multiple of 2**exponent."""
    shift = PRECISION + exponent
    return (value + (1 << (shift - 1)) >> shift) << shift


def parts(value, *bits):
    """value as a sum of numbers of so many significant bits, the leading one first."""
    result = []
    for count in bits:
        part = rounded(value, count)
        result.append(part)
        value -= part
    return result


def literal(value):
    """A fixed-point number that a double holds, as a C++ hexadecimal literal."""
    number = float(Fraction(rounded(value), ONE))
    assert Fraction(number) == Fraction(value, ONE), "more than 53 bits"
    return number.hex()


# ---- the tables ----------------------------------------------------------------------------------

EXP_STEPS = 256
LOG_STEPS = 512
LOG_FIRST = Fraction(11, 16)  # significands of log go from here to twice that: 1 lies inside
LN2_GRID = -42                # times an exponent of 11 bits stays exact
SINE_STEPS = 256              # of the full circle
ARC_STEPS = 128               # of the ratios 0..1
ARC_GRID = -46                # angles to pi add up exactly
TWO_OVER_PI_WORDS = 21


def header(what):
    return ["// Written by make_tables.py: do not edit.", f"// {what}"]


def constants():
    ln2_step = LN2 // EXP_STEPS
    ln2_high = on_grid(LN2, LN2_GRID)
    step_high = rounded(ln2_step, 34)
    circle = 2 * PI // SINE_STEPS
    circle_parts = parts(circle, 33, 33, 53)
    lines = header("In parts: the leading ones have few bits, so that small multiples are exact.")

    def constant(name, value):
        lines.append(f"inline constexpr f64 {name} = {literal(value)};")

    constant("kExpStepsPerUnit", rounded(EXP_STEPS * ONE * ONE // LN2))
    constant("kExpStepHigh", step_high)
    constant("kExpStepLow", rounded(ln2_step - step_high))
    constant("kLn2High", ln2_high)
    constant("kLn2Low", rounded(LN2 - ln2_high))
    constant("kSineStepsPerUnit", rounded(ONE * ONE // circle))
    constant("kSineStep1", circle_parts[0])
    constant("kSineStep2", circle_parts[1])
    constant("kSineStep3", circle_parts[2])
    constant("kSineStepHigh", rounded(circle, 27))
    constant("kSineStepLow", rounded(circle - rounded(circle, 27)))
    half_turn = on_grid(PI, ARC_GRID)
    quarter_turn = on_grid(PI // 2, ARC_GRID)
    constant("kPiHigh", half_turn)
    constant("kPiLow", rounded(PI - half_turn))
    constant("kHalfPiHigh", quarter_turn)
    constant("kHalfPiLow", rounded(PI // 2 - quarter_turn))
    return lines


def exp_table():
    lines = header(f"2^(i/{EXP_STEPS}): the nearest double, and what is missing, relative to it.")
    for i in range(EXP_STEPS):
        value = exponential(LN2 * i // EXP_STEPS)
        high = rounded(value)
        lines.append(f"{literal(high)}, {literal(rounded((value - high) * ONE // high))},")
    return lines


def log_table():
    lines = header("A row an interval of significands: 1/c, log(c) in two parts, a place unused.")
    step_log = LOG_STEPS.bit_length() - 1
    start = LOG_FIRST
    for _ in range(LOG_STEPS):
        width = Fraction(1, 2 ** step_log) * (1 if start >= 1 else Fraction(1, 2))
        grid = Fraction(1, 2 ** (step_log + 1 if start >= 1 else step_log))
        if start == 1 or start + width == 1:
            inverse = Fraction(1)
        else:
            inverse = round(1 / (start + width / 2) / grid) * grid
        # The reduced argument z/c - 1 is exact in a double because of this bound.
        for end in (start, start + width):
            assert abs(end * inverse - 1) <= Fraction(1, 2 ** step_log)
        value = -logarithm(inverse)
        high = on_grid(value, LN2_GRID)
        low = rounded(value - high)
        lines.append(f"{literal(fixed(inverse))}, {literal(high)}, {literal(low)}, 0,")
        start += width
    return lines


def sine_table():
    lines = header(f"sin(2 pi i/{SINE_STEPS}): 27 leading bits, and the rest.")
    quarter = SINE_STEPS // 4
    first = []
    for i in range(quarter // 2 + 1):
        first.append(sine_and_cosine(2 * PI * i // SINE_STEPS))
    first[0] = (0, ONE)
    wave = [first[i][0] if i <= quarter // 2 else first[quarter - i][1] for i in range(quarter)]
    wave += [ONE] + wave[:0:-1]
    wave += [-value for value in wave]
    for value in wave:
        high = rounded(value, 27)
        lines.append(f"{literal(high)}, {literal(rounded(value - high))},")
    return lines


def atan_table():
    lines = header(f"atan(i/{ARC_STEPS}): the part on a grid of 2^{ARC_GRID}, and the rest.")
    for i in range(ARC_STEPS + 1):
        value = arc_tangent(Fraction(i, ARC_STEPS))
        high = on_grid(value, ARC_GRID)
        lines.append(f"{literal(high)}, {literal(rounded(value - high))},")
    # Room for any index of one more bit: a lane that is not a number may ask for one.
    lines += ["0, 0,"] * (2 * ARC_STEPS - (ARC_STEPS + 1))
    return lines


def two_over_pi_table():
    lines = header("The binary places of 2/pi after a word of zeros, from the top bit down.")
    bits = 64 * TWO_OVER_PI_WORDS
    number = (2 * ONE << bits) // PI
    lowest_places = [bits - 64 * (i + 1) for i in range(TWO_OVER_PI_WORDS)]
    for word in [0] + [number >> place & (1 << 64) - 1 for place in lowest_places]:
        lines.append(f"0x{word:016X},")
    return lines


TABLES = {
    "constants_table.inc": constants,
    "exp_table.inc": exp_table,
    "log_table.inc": log_table,
    "sine_table.inc": sine_table,
    "atan_table.inc": atan_table,
    "two_over_pi_table.inc": two_over_pi_table,
}


def main():
    here = Path(__file__).resolve().parent
    differs = False
    for name, make in TABLES.items():
        text = "\n".join(make()) + "\n"
        if "--check" in sys.argv:
            if (here / name).read_text() != text:
                print(f"{name} is not what make_tables.py writes", file=sys.stderr)
                differs = True
        else:
            (here / name).write_text(text)
    return 1 if differs else 0


if __name__ == "__main__":
    sys.exit(main())
