"""Checks of the source text: include arrows, what the library must not use, file hygiene."""

import unittest

import build_context
import source_rules

CODE = (".cpp", ".h", ".c", ".inc")
TEXT = (*CODE, ".py", ".txt", ".cmake", ".toml", ".md", ".sh", ".rc", ".json", ".in")
TEXT_FOLDERS = ("src", "include", "api", "cmake", "scripts", "tools", "tests", "bench", "examples", "bindings", "docs")


def files_in(folders, endings):
    """{path from the root: text}"""
    root = build_context.context.source
    return {path.relative_to(root).as_posix(): path.read_text(encoding="utf-8")
            for folder in folders for path in sorted((root / folder).rglob("*"))
            if path.is_file() and path.name.endswith(endings) and "__pycache__" not in path.parts}


def findings(rule, files):
    return [f"{path}:{finding}" for path, text in files.items() for finding in rule(path, text)]


class Library(unittest.TestCase):
    def setUp(self):
        self.files = files_in(["src", "include"], CODE)
        for known in ("include/zlv40.h", "src/tone/invert.cpp", "src/base/table_pass.kernels.cpp"):
            self.assertIn(known, list(self.files))

    def check(self, rule):
        build_context.expect_none(self, findings(rule, self.files))

    def test_intrinsics_stand_in_kernel_files(self):
        self.check(source_rules.intrinsics)

    def test_kernel_headers_stay_in_kernels(self):
        self.assertIn("src/base/kernel_vectors.h", list(self.files))
        self.check(source_rules.kernel_headers)

    def test_mathematics_comes_through_one_door(self):
        self.check(source_rules.mathematics)

    def test_standard_library_without_its_run_time(self):
        self.check(source_rules.standard_library)

    def test_no_goto(self):
        self.check(source_rules.no_goto)

    def test_file_length(self):
        self.check(source_rules.file_length)

    def test_system_headers_stand_in_platform(self):
        sources = {path: text for path, text in self.files.items() if path.startswith("src/")}
        self.assertTrue(sources)
        build_context.expect_none(self, findings(source_rules.system_headers, sources))

    def test_file_names_are_unique(self):
        root = build_context.context.source
        paths = [path.as_posix() for path in (root / "src").rglob("*")
                 if path.is_file() and "__pycache__" not in path.parts]
        self.assertGreater(len(paths), 20)
        self.assertEqual([], source_rules.repeated_names(paths))


class Tree(unittest.TestCase):
    def test_include_arrows_point_downwards(self):
        files = files_in(["include", "src", "tools", "examples", "bench"], CODE)
        arrows = [name for text in files.values() for _, is_quoted, name in source_rules.includes_of(text) if is_quoted]
        self.assertIn("runtime/frame.h", arrows)
        self.assertEqual([], [path for path in files if source_rules.floor_of(path) not in source_rules.ALLOWED_FLOORS],
                         "files on no known floor")
        build_context.expect_none(self, findings(source_rules.include_arrows, files))

    def test_plain_text(self):
        files = files_in(TEXT_FOLDERS, TEXT)
        self.assertIn("include/zlv40.h", list(files))
        build_context.expect_none(self, findings(source_rules.plain_text, files))


if __name__ == "__main__":
    build_context.main()
