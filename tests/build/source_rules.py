"""The rules that the source text keeps. Each rule takes a path (from the root, as text) and the file's text, and yields
its findings as "line: what is wrong"."""

import posixpath
import re

import symbols

EFFECT_FOLDERS = ("tone", "artistic", "filters", "fft", "morphology", "generators", "warp", "seam", "layerstyles")

# Which floors a floor may include; its own is always there. "include" is the public header.
ALLOWED_FLOORS = {
    "include": (),
    "platform": (),
    "runtime": ("platform", "include"),
    "base": ("platform", "runtime", "include"),
    **{folder: ("platform", "runtime", "base", "include") for folder in EFFECT_FOLDERS},
    "warp": ("platform", "runtime", "base", "generators", "include"),  # some warps carry a field of noise
    "tools": ("include", "generated"),
    "examples": ("include",),
    "bench": ("include", "platform", "runtime", "base", *EFFECT_FOLDERS),
}

SYSTEM_HEADERS = ("windows.h", "pthread.h", "unistd.h", "errno.h", "sys/", "dlfcn.h", "process.h", "intrin.h", "time.h",
                  "fcntl.h", "semaphore.h", "sched.h", "cfenv", "fenv.h")
# Containers and the rest of the C++ library that needs its run-time.
REFUSED_STANDARD_HEADERS = frozenset(
    "vector string map set unordered_map unordered_set deque list memory functional iostream sstream fstream ostream "
    "istream thread mutex condition_variable future stdexcept exception typeinfo random chrono locale regex complex "
    "shared_mutex filesystem valarray any variant optional".split())

MAXIMUM_COLUMNS = 120
MAXIMUM_LINES = 600

_NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.DOTALL)
_INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)
_INTRINSICS_HEADER = re.compile(r"(?:.*mmintrin|immintrin|x86intrin|x86gprintrin|intrin|cpuid)\.h|.*intrin\.h")
_MATH_NAMES = "|".join(sorted(symbols.MATH_FUNCTIONS))
_MATH_CALL = re.compile(rf"\b(?:std::|__builtin_)(?:{_MATH_NAMES})\b|(?<![\w.>])(?:{_MATH_NAMES})\s*\(")


def blank(match):
    """As many spaces as what was found; lines keep their numbers."""
    return re.sub(r"[^\n]", " ", match.group())


def code_of(text):
    """The text with comments and literals blanked. Digit separators do not begin a literal."""
    return _NOT_CODE.sub(blank, re.sub(r"(?<=[0-9a-fA-F])'(?=[0-9a-fA-F])", "_", text))


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def floor_of(path):
    parts = path.split("/")
    return parts[1] if parts[0] == "src" else parts[0]


def includes_of(text):
    """(line, whether it is in quotes, name) of each include outside comments."""
    uncommented = re.sub(r"//[^\n]*|/\*.*?\*/", blank, text, flags=re.DOTALL)
    for match in _INCLUDE.finditer(uncommented):
        yield line_of(uncommented, match.start()), match.group(1) == '"', match.group(2)


def floor_of_include(path, name):
    """The floor that a quoted include leads to."""
    if name == "zlv40.h":
        return "include"
    if "/" not in name or name.startswith("."):
        return floor_of(posixpath.normpath(posixpath.join(posixpath.dirname(path), name)))
    return name.split("/")[0]


def include_arrows(path, text):
    floor = floor_of(path)
    known = (*ALLOWED_FLOORS, "generated")
    for line, is_quoted, name in includes_of(text):
        if not is_quoted:
            if name == "zlv40.h" and path.startswith("src/"):
                yield f"{line}: the public header is included in quotes"
            continue
        target = floor_of_include(path, name)
        if target == floor or (target not in known and floor in ("tools", "examples", "bench")):
            continue  # its own folder
        if target not in ALLOWED_FLOORS[floor]:
            yield f"{line}: {floor} includes {name}"


def is_kernel_file(path):
    """Whether a file is compiled as part of kernels alone: kernel_*.h holds what several of them share."""
    return path.endswith(".kernels.cpp") or re.fullmatch(r"(?:.*/)?kernel_\w+\.h", path) is not None


def kernel_headers(path, text):
    """What is compiled for one instruction set must not reach the rest of the library."""
    if is_kernel_file(path):
        return
    for line, _, name in includes_of(text):
        if is_kernel_file(name):
            yield f"{line}: {name} is for kernel files alone"


def intrinsics(path, text):
    if is_kernel_file(path):
        return
    for line, _, name in includes_of(text):
        if _INTRINSICS_HEADER.fullmatch(name):
            yield f"{line}: {name} outside a kernel file"
    if path == "src/platform/float_environment.h":
        return
    code = code_of(text)
    for match in re.finditer(r"__builtin_ia32_\w+|\b_mm\d*_\w+|\b__m(?:128|256|512)[id]?\b", code):
        yield f"{line_of(code, match.start())}: {match.group()} outside a kernel file"


def mathematics(path, text):
    code = code_of(text)
    for match in _MATH_CALL.finditer(code):
        yield f"{line_of(code, match.start())}: {match.group().rstrip('( ')} of the C run-time: use runtime/math.h"
    for line, _, name in includes_of(text):
        if name in ("math.h", "complex.h", "ccomplex", "complex", "tgmath.h", "ctgmath"):
            yield f"{line}: <{name}> is not for the library"


def system_headers(path, text):
    """What differs between operating systems is one folder's business."""
    if path.startswith("src/platform/"):
        return
    for line, is_quoted, name in includes_of(text):
        if not is_quoted and name.startswith(SYSTEM_HEADERS):
            yield f"{line}: <{name}> outside src/platform"


def standard_library(path, text):
    for line, is_quoted, name in includes_of(text):
        if not is_quoted and name in REFUSED_STANDARD_HEADERS:
            yield f"{line}: <{name}> needs the C++ run-time or differs between libraries"
    code = code_of(text)
    for match in re.finditer(r"\b(thread_local|__thread|throw|try|catch|dynamic_cast|typeid)\b", code):
        yield f"{line_of(code, match.start())}: {match.group()} in the library"


def plain_text(path, text):
    for number, line in enumerate(text.split("\n"), 1):
        if not line.isascii():
            yield f"{number}: not plain ASCII"
        if len(line) > MAXIMUM_COLUMNS and not path.endswith((".md", ".toml")):  # rows of tables may be long
            yield f"{number}: {len(line)} columns"
        if "\t" in line and not path.endswith("Makefile"):
            yield f"{number}: a tab"
        if line != line.rstrip():
            yield f"{number}: white space at the end"
    if text and not text.endswith("\n"):
        yield "no newline at the end"


def no_goto(path, text):
    code = code_of(text)
    for match in re.finditer(r"\bgoto\b", code):
        yield f"{line_of(code, match.start())}: goto"


def file_length(path, text):
    """Not of generated tables, nor of the public header: clients have one, with all that is to know."""
    count = text.count("\n")
    if count > MAXIMUM_LINES and not path.endswith(("_table.inc", "include/zlv40.h")):
        yield f"{count} lines: look for the second topic"


def repeated_names(paths):
    """Names that more than one file has."""
    seen = {}
    for path in paths:
        seen.setdefault(posixpath.basename(path), []).append(path)
    return [files for name, files in sorted(seen.items()) if len(files) > 1 and name != "CMakeLists.txt"]
