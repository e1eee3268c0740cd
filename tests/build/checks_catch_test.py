"""Shows that the checks find what they look for: each row breaks one rule on purpose."""

import unittest

import build_context
import source_rules
import symbols

BAD_TEXTS = (  # what it shows, rule, path, text
    ("an effect of another folder", source_rules.include_arrows, "src/tone/a.cpp", '#include "warp/b.h"\n'),
    ("upwards", source_rules.include_arrows, "src/runtime/a.h", '#include "base/b.h"\n'),
    ("platform sees nothing of ours", source_rules.include_arrows, "src/platform/a.cpp", '#include "zlv40.h"\n'),
    ("an arrow through ..", source_rules.include_arrows, "src/runtime/a.cpp", '#include "../base/b.h"\n'),
    ("a command that looks inside", source_rules.include_arrows, "tools/zlv/a.cpp", '#include "runtime/frame.h"\n'),
    ("the public header stands alone", source_rules.include_arrows, "include/zlv40.h", '#include "platform/types.h"\n'),
    ("an intrinsics header", source_rules.intrinsics, "src/base/a.cpp", "#include <immintrin.h>\n"),
    ("another one", source_rules.intrinsics, "src/base/a.kernels.h", "#include <emmintrin.h>\n"),
    ("a kernel's header outside kernels", source_rules.kernel_headers, "src/base/a.kernels.h",
     '#include "base/kernel_vectors.h"\n'),
    ("a builtin", source_rules.intrinsics, "src/base/a.cpp", "void F() { __builtin_ia32_pause(); }\n"),
    ("std::exp", source_rules.mathematics, "src/tone/a.cpp", "double y = std::exp(x);\n"),
    ("the address of std::pow", source_rules.mathematics, "src/tone/a.cpp", "auto f = &std::pow;\n"),
    ("plain atan2", source_rules.mathematics, "src/tone/a.cpp", "double y = atan2 (x, z);\n"),
    ("single precision", source_rules.mathematics, "src/tone/a.cpp", "float y = ::cosf(x);\n"),
    ("a builtin in a header", source_rules.mathematics, "src/tone/a.h", "double y = __builtin_log(x);\n"),
    ("after a digit separator", source_rules.mathematics, "src/tone/a.cpp", "int a = 1'000; double y = sin(x);\n"),
    ("a system header", source_rules.system_headers, "src/base/a.cpp", "#include <windows.h>\n"),
    ("a container", source_rules.standard_library, "src/base/a.cpp", "#include <vector>\n"),
    ("a throw", source_rules.standard_library, "src/base/a.cpp", "void F() { throw 1; }\n"),
    ("thread_local", source_rules.standard_library, "src/base/a.cpp", "thread_local int a;\n"),
    ("a long line", source_rules.plain_text, "src/a.cpp", "x" * 121 + "\n"),
    ("a letter beyond ASCII", source_rules.plain_text, "src/a.cpp", "// \u00e9\n"),
    ("a tab", source_rules.plain_text, "src/a.cpp", "\tint a;\n"),
    ("goto", source_rules.no_goto, "src/a.cpp", "void F() { goto end; }\n"),
    ("a long file", source_rules.file_length, "src/a.cpp", "\n" * 601),
)

GOOD_TEXTS = (
    ("an intrinsic that kernels share", source_rules.intrinsics, "src/base/kernel_a.h", "__m128i a;\n"),
    ("and its header in a kernel", source_rules.kernel_headers, "src/tone/a.kernels.cpp",
     '#include "base/kernel_a.h"\n'),
    ("names in comments", source_rules.mathematics, "src/a.cpp", "// exp(x) and /* log(x) */\n"),
    ("names in texts", source_rules.mathematics, "src/a.cpp", 'const char* t = "pow(x, y)";\n'),
    ("a member of that name", source_rules.mathematics, "src/a.cpp", "error.log(1);\n"),
    ("our own set", source_rules.mathematics, "src/a.cpp", "f64 y = Exp(x) + MathPow(x, y);\n"),
    ("exact functions", source_rules.mathematics, "src/a.cpp", "f64 y = std::sqrt(x) + std::floor(x);\n"),
    ("downwards", source_rules.include_arrows, "src/tone/a.cpp", '#include "base/b.h"\n#include "zlv40.h"\n'),
    ("a neighbour", source_rules.include_arrows, "src/warp/a.cpp", '#include "warp/b.h"\n#include "c.inc"\n'),
    ("the public header may be long", source_rules.file_length, "include/zlv40.h", "\n" * 900),
    ("a generated table may be long", source_rules.file_length, "src/runtime/a_table.inc", "\n" * 900),
)

BAD_CODE = (  # what it shows, text, what is found in its object
    ("an inline function in a kernel", "inline int F(int a) { return a * 3; } int G(int a) { return F(a); } "
     "auto* h = &F;", lambda path: symbols.mergeable(path)),
    ("a template in a kernel", "template <class T> [[gnu::noinline]] T F(T a) { return a * 3; } "
     "int G(int a) { return F(a); }", lambda path: symbols.mergeable(path)),
    ("an inline variable in a kernel", "inline int v = 3; int G() { return ++v; }",
     lambda path: symbols.mergeable(path)),
    ("exp", 'extern "C" double exp(double); double G(double x) { return exp(x) + 1; }',
     lambda path: symbols.mathematical(symbols.undefined(path))),
    ("powf", 'extern "C" float powf(float, float); float G(float x) { return powf(x, x) + 1; }',
     lambda path: symbols.mathematical(symbols.undefined(path))),
    ("new", "int* G() { return new int(3); }", lambda path: symbols.of_cxx_run_time(symbols.undefined(path))),
    ("a pure virtual function", "struct A { virtual int F() = 0; A(); }; A::A() {}",
     lambda path: symbols.of_cxx_run_time(symbols.undefined(path))),
    ("a destructor at exit", "struct A { ~A(); }; A a;",
     lambda path: symbols.of_cxx_run_time(symbols.undefined(path))),
    ("thread_local", "thread_local int v; int G() { return ++v; }",
     lambda path: [name for name in symbols.section_names(path) if symbols.THREAD_LOCAL_SECTION.match(name)]
     + symbols.of_cxx_run_time(symbols.undefined(path))),
)


class Rules(unittest.TestCase):
    def test_each_breach_is_found(self):
        for shows, rule, path, text in BAD_TEXTS:
            with self.subTest(shows):
                self.assertTrue(list(rule(path, text)))

    def test_innocent_text_passes(self):
        for shows, rule, path, text in GOOD_TEXTS:
            with self.subTest(shows):
                self.assertEqual([], list(rule(path, text)))

    def test_repeated_names_are_found(self):
        paths = ["src/a/x.h", "src/b/x.h", "src/CMakeLists.txt", "CMakeLists.txt"]
        self.assertEqual([["src/a/x.h", "src/b/x.h"]], source_rules.repeated_names(paths))


class Symbols(unittest.TestCase):
    def compile(self, name, text, flags):
        folder = build_context.context.scratch
        folder.mkdir(parents=True, exist_ok=True)
        source, built = folder / f"{name}.cpp", folder / f"{name}.o"
        source.write_text(text + "\n")
        build_context.run(build_context.context.compiler, *flags, "-c", source, "-o", built)
        return built

    def test_each_breach_is_found(self):
        for level in ("-O0", "-O2"):
            for number, (shows, text, find) in enumerate(BAD_CODE):
                with self.subTest(shows, level=level):
                    built = self.compile(f"bad{number}", text, [*build_context.context.library_flags, level])
                    self.assertTrue(find(built))

    def test_innocent_code_passes(self):
        text = "namespace { int F(int a) { return a * 3; } } int G(int a) { return F(a); }"
        for number, (shows, _, find) in enumerate(BAD_CODE):
            with self.subTest(shows):
                built = self.compile("good", text, [*build_context.context.library_flags, "-O0"])
                self.assertEqual([], find(built))

    def test_aligned_wide_moves_are_found(self):
        if build_context.context.is_portable:
            self.skipTest("no wide kernels")
        # vmovaps %ymm0, (%rsp) in bytes: the assembler may turn the instruction into what is wanted.
        text = 'void F() { asm(".byte 0xc5, 0xfc, 0x29, 0x04, 0x24"); }'
        built = self.compile("wide", text, build_context.context.library_flags)
        self.assertTrue(symbols.aligned_wide_moves(symbols.wide_instructions(built)))


if __name__ == "__main__":
    build_context.main()
