"""Checks of the linked library: what it exports and imports, how it is hardened, what it says about itself."""

import pathlib
import re
import unittest

import build_context
import pe_file
import symbols


def lines_of(path):
    return [line for line in pathlib.Path(path).read_text().splitlines() if line]


class Exports(unittest.TestCase):
    def setUp(self):
        self.described = lines_of(build_context.context.generated / "exports.txt")
        self.assertGreater(len(self.described), 5)

    def exported(self):
        context = build_context.context
        if context.is_windows:
            return pe_file.PeFile(context.library.read_bytes()).export_names()
        listing = build_context.run(context.nm, "-P", "-D", "--defined-only", context.library)
        return [line.split()[0] for line in listing.splitlines()]

    def test_exports_are_the_described_ones(self):
        exported = self.exported()
        self.assertTrue(exported)
        self.assertEqual(sorted(self.described), sorted(exported))

    def test_nothing_is_exported_by_number_alone(self):
        if build_context.context.is_windows:
            dll = pe_file.PeFile(build_context.context.library.read_bytes())
            self.assertEqual(len(self.described), dll.export_count())

    def test_described_names_are_of_the_fixed_list(self):
        fixed = lines_of(pathlib.Path(__file__).with_name("exports.txt"))
        self.assertEqual(117, len(set(fixed)))
        self.assertEqual([], [name for name in self.described if name.removeprefix("_") not in fixed])
        self.assertEqual([], [name for name in self.described if not name.startswith("_ZLV40_")])


class WindowsFile(unittest.TestCase):
    def setUp(self):
        if not build_context.context.is_windows:
            self.skipTest("a Linux build")
        self.dll = pe_file.PeFile(build_context.context.library.read_bytes())

    def test_imports_windows_own_libraries_only(self):
        imports = self.dll.imports()
        self.assertIn("GlobalAlloc", imports["KERNEL32.dll"])
        self.assertEqual({"KERNEL32.dll", "msvcrt.dll"}, set(imports))

    def test_imports_no_mathematical_function(self):
        names = [name for of_dll in self.dll.imports().values() for name in of_dll]
        self.assertTrue(names)
        self.assertEqual([], symbols.mathematical(names))

    def test_is_hardened(self):
        for name, bit in pe_file.DLL_CHARACTERISTICS.items():
            self.assertTrue(self.dll.dll_characteristics & bit, name)

    def test_can_be_relocated(self):
        self.assertFalse(self.dll.flags & pe_file.RELOCATIONS_STRIPPED)
        self.assertGreater(self.dll.directories[pe_file.RELOCATIONS][1], 0)

    def test_has_no_thread_local_storage(self):
        self.assertEqual(0, self.dll.directories[pe_file.THREAD_STORAGE][1])

    def test_carries_no_time(self):
        self.assertEqual(0, self.dll.time_stamp)

    def test_version_resource(self):
        strings = pe_file.version_strings(self.dll.resource(pe_file.VERSION_RESOURCE))
        listed = (build_context.context.source / "CMakeLists.txt").read_text()
        version = re.search(r"project\(zlv40 VERSION ([0-9.]+)", listed).group(1)
        self.assertEqual(tuple(map(int, version.split("."))), strings["FILEVERSION"])
        self.assertEqual(version, strings["FileVersion"])
        self.assertEqual(version, strings["ProductVersion"])
        self.assertEqual("zlv40.dll", strings["OriginalFilename"])
        self.assertEqual("Zelvane", strings["ProductName"])
        self.assertEqual("Zelvane", strings["CompanyName"])


class LinuxFile(unittest.TestCase):
    def setUp(self):
        if build_context.context.is_windows:
            self.skipTest("a Windows build")

    def read(self, option):
        return build_context.run(build_context.context.readelf, "-W", option, build_context.context.library)

    def test_needs_libc_only(self):
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", self.read("-d"))
        allowed = {"libc.so.6", "libm.so.6"} if build_context.context.is_portable else {"libc.so.6"}
        self.assertIn("libc.so.6", needed)
        self.assertEqual(set(), set(needed) - allowed)

    def test_says_its_name(self):
        self.assertEqual(["libzlv40.so"], re.findall(r"\(SONAME\).*\[(.*)\]", self.read("-d")))

    def test_is_hardened(self):
        segments = self.read("-l")
        self.assertIn("GNU_RELRO", segments)
        self.assertIn("BIND_NOW", self.read("-d"))
        stack = re.findall(r"GNU_STACK.*", segments)
        self.assertEqual(1, len(stack))
        self.assertNotIn("RWE", stack[0])
        self.assertNotIn("TEXTREL", self.read("-d"))

    def test_has_no_thread_local_storage(self):
        self.assertIn("LOAD", self.read("-l"))
        self.assertIsNone(re.search(r"^\s*TLS\s", self.read("-l"), re.MULTILINE))

    def test_wants_no_mathematical_function_and_no_cxx_run_time(self):
        context = build_context.context
        listing = build_context.run(context.nm, "-P", "-D", "--undefined-only", context.library)
        names = [line.split()[0].split("@")[0] for line in listing.splitlines()]
        self.assertIn("malloc", names)
        self.assertEqual([], symbols.mathematical(names))
        self.assertEqual([], [name for name in symbols.of_cxx_run_time(names) if name != "__cxa_finalize"])


if __name__ == "__main__":
    build_context.main()
