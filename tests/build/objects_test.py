"""Checks of the library's objects, before the link."""

import unittest

import build_context
import symbols


def in_each(objects, find):
    """{name of an object: what `find` found in it}, without those that are clean."""
    found = {f"{path.parent.name}/{path.name}": find(path) for path in objects}
    return {name: findings for name, findings in found.items() if findings}


class Objects(unittest.TestCase):
    def setUp(self):
        self.context = build_context.context
        self.assertGreater(len(self.context.objects), 10)
        for path in self.context.objects:
            self.assertTrue(path.is_file(), f"{path} is missing: build first")

    def test_reader_sees_references(self):
        wanted = {name for path in self.context.objects for name in symbols.undefined(path)}
        self.assertIn("memmove", wanted)

    def test_no_mathematical_function_of_the_c_run_time(self):
        find = lambda path: symbols.mathematical(symbols.undefined(path))
        build_context.expect_none(self, in_each(self.context.objects, find), "use runtime/math.h")

    def test_free_of_the_cxx_run_time(self):
        # Virtual tables of abstract bases, and what stands in them: the library's own.
        own = set().union(*(symbols.defined(path) for path in self.context.objects))
        self.assertIn("__cxa_pure_virtual", own)
        find = lambda path: symbols.of_cxx_run_time(set(symbols.undefined(path)) - own)
        build_context.expect_none(self, in_each(self.context.objects, find))

    def test_no_thread_local_storage(self):
        self.assertIn(".text", symbols.section_names(self.context.objects[0]))
        find = lambda path: [name for name in symbols.section_names(path) if symbols.THREAD_LOCAL_SECTION.match(name)]
        build_context.expect_none(self, in_each(self.context.objects, find))


class KernelObjects(unittest.TestCase):
    def setUp(self):
        self.context = build_context.context
        self.targets = 1 if self.context.is_portable else 3
        self.assertGreaterEqual(len(self.context.kernel_objects), self.targets)
        files = list((self.context.source / "src").rglob("*.kernels.cpp"))
        self.assertEqual(len(files) * self.targets, len(self.context.kernel_objects),
                         "every kernel file in every target")

    def test_no_symbol_that_the_linker_merges(self):
        build_context.expect_none(self, in_each(self.context.kernel_objects, symbols.mergeable),
                                  "a copy for one instruction set could become everybody's: use internal linkage")

    def test_wide_registers_in_wide_kernels_alone(self):
        wide = [path for path in self.context.kernel_objects if "_baseline." not in path.parts[-2]]
        narrow = [path for path in self.context.objects if path not in wide]
        self.assertTrue(narrow)
        build_context.expect_none(self, in_each(narrow, lambda path: symbols.wide_instructions(path)[:3]))

    def test_no_aligned_wide_move(self):
        if not self.context.is_windows or self.context.is_portable:
            self.skipTest("only Windows keeps its stack on 16 bytes")
        instructions = [line for path in self.context.kernel_objects for line in symbols.wide_instructions(path)]
        self.assertTrue([line for line in instructions if "vmovup" in line or "vmovdqu" in line])
        build_context.expect_none(self, symbols.aligned_wide_moves(instructions),
                                  "assemble wide kernels with -Wa,-muse-unaligned-vector-move")


if __name__ == "__main__":
    build_context.main()
