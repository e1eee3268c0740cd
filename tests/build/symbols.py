"""What the checks of objects look for."""

import re

import build_context
from pe_file import CoffObject

_FUNCTIONS = ("exp exp2 exp10 expm1 log log2 log10 log1p pow sin cos sincos tan asin acos atan atan2 sinh cosh tanh "
              "asinh acosh atanh hypot cbrt erf erfc tgamma lgamma cexp clog cpow csqrt cabs fma").split()
# Every one of the C run-time's mathematical functions whose last bits differ from one run-time to the next, and fma,
# which the library never wants.
MATH_FUNCTIONS = frozenset(name + suffix for name in _FUNCTIONS for suffix in ("", "f", "l"))

CXX_RUN_TIME = re.compile(r"_Z(n[wa]|d[la])|__cxa_|__gxx_|_Unwind_|_ZS|_ZN(K?)St|_ZNSt|_ZT[IVS]|__emutls|"
                          r"_tls_index|__tls_get_addr|_ZTH|_ZTW|atexit$")
THREAD_LOCAL_SECTION = re.compile(r"\.(tdata|tbss|tls)\b")

WIDE_REGISTER = re.compile(r"%[yz]mm\d+")
ALIGNED_WIDE_MOVE = re.compile(r"\bvmov(aps|apd|dqa(32|64)?)\s[^#]*%[yz]mm\d+")


def undefined(file):
    """Names that an object or library wants from elsewhere, without import prefixes and symbol versions."""
    names = []
    for line in build_context.run(build_context.context.nm, "-P", "--undefined-only", file).splitlines():
        if line and not line.endswith(":"):
            names.append(line.split()[0].split("@")[0].removeprefix("__imp_"))
    return names


def defined(file):
    """Names that an object has for others."""
    lines = build_context.run(build_context.context.nm, "-P", "-g", "--defined-only", file).splitlines()
    return {line.split()[0] for line in lines if line and not line.endswith(":")}


def mathematical(names):
    return sorted(name for name in names if name.removeprefix("__").removesuffix("_finite") in MATH_FUNCTIONS)


def of_cxx_run_time(names):
    return sorted(name for name in names if CXX_RUN_TIME.match(name))


def mergeable(file):
    """Symbols of which the linker would keep one copy of many, and weak references."""
    if build_context.context.is_windows:
        # A .refptr holds the address of a variable: the same in every copy, whatever it was compiled for.
        found = CoffObject(file.read_bytes()).mergeable_symbols()
        return sorted(name for name in found if not name.startswith(".refptr."))
    lines = build_context.run(build_context.context.nm, "-P", file).splitlines()
    return sorted(line.split()[0] for line in lines if line.split()[1] in "VvWwu")


def section_names(file):
    """The sections of an object."""
    listing = build_context.run(build_context.context.objdump, "-hw", file)
    return [line.split()[1] for line in listing.splitlines() if re.match(r"\s*\d+ \S", line)]


def wide_instructions(file):
    """Disassembled instructions that use a register wider than 16 bytes."""
    listing = build_context.run(build_context.context.objdump, "-dw", "--no-show-raw-insn", file)
    return [line.strip() for line in listing.splitlines() if WIDE_REGISTER.search(line)]


def aligned_wide_moves(instructions):
    """Those that would fault on an address that is a multiple of 16 only."""
    return [line for line in instructions if ALIGNED_WIDE_MOVE.search(line) and "(" in line]
