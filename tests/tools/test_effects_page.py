"""docs/effects.md: a place for every function, a picture for every effect, and command lines that work."""
import pathlib
import re
import shlex
import struct
import unittest

import command_test
import description
from command_test import CommandTest
from generators import effects_page, header_text

ROOT = pathlib.Path(command_test.API).resolve().parent
FAMILIES = description.read_all()
PAGE = (ROOT / "docs" / "effects.md").read_text(encoding="utf-8")
EXPORTS = [export for family in FAMILIES for export in family.exports]
# What neither makes nor changes a picture.
WITHOUT_PICTURE = re.compile(r"Get(LastError|Callback|LibVersion)|SetCallback|Exit|FindImage|NextPowerOfTwo"
                             r"|AllocFFTGrid|ClearAllTransforms|GetTransformDimensions"
                             r"|(Initialize|Destroy)PerlinNoise3D")


def jpeg_size(data):
    """Width and height of a JPEG file."""
    at = 2
    while data[at + 1] not in (0xC0, 0xC1, 0xC2):
        at += 2 + struct.unpack(">H", data[at + 2:at + 4])[0]
    return struct.unpack(">HH", data[at + 5:at + 9])[::-1]


class Page(unittest.TestCase):
    def part(self, export):
        return PAGE.split(f"### {export.name}\n", 1)[1].split("\n### ", 1)[0]

    def test_every_function_has_its_place_parameters_and_declaration(self):
        self.assertEqual(re.findall(r"^### (\w+)$", PAGE, re.MULTILINE), [export.name for export in EXPORTS])
        self.assertEqual(len(EXPORTS), 117)
        for export in EXPORTS:
            part = self.part(export)
            self.assertIn(f" {export.name}(", part)
            self.assertIn(f"(#{export.name.lower()})", PAGE)
            for argument in export.arguments:
                self.assertIn(f"| `{argument.name}` | `{argument.c_type}` |", part)

    def test_what_makes_a_picture_shows_one(self):
        for family in FAMILIES:
            for export in family.exports:
                lines = effects_page.lines_of(family, export)
                self.assertEqual(bool(lines), not WITHOUT_PICTURE.search(export.name), export.name)

    def test_the_pictures_are_there_and_small(self):
        named = {name for name, _ in effects_page.pictures(FAMILIES)}
        self.assertGreaterEqual(len(named), 100)
        there = {f"pictures/{path.name}" for path in (ROOT / "docs" / "pictures").iterdir()}
        self.assertEqual(there, named)
        self.assertLess(sum((ROOT / "docs" / name).stat().st_size for name in named), 1500000)
        for name in named:
            if name.endswith(".jpg"):
                self.assertLessEqual(max(jpeg_size((ROOT / "docs" / name).read_bytes())), 320, name)
                self.assertIn(f"]({name})", PAGE)

    def test_links_of_the_contents_lead_to_headings(self):
        headings = {effects_page.anchor(title) for title in re.findall(r"^##+ (.*)$", PAGE, re.MULTILINE)}
        links = set(re.findall(r"\]\(#([\w-]+)\)", PAGE))
        self.assertGreater(len(links), 117)
        self.assertLessEqual(links, headings)

    def test_the_header_tells_of_every_function_and_of_what_several_share(self):
        functions, common = header_text.read((ROOT / "include" / "zlv40.h").read_text())
        self.assertEqual(list(functions), [export.name for export in EXPORTS])
        self.assertTrue({family.title for family in FAMILIES} <= set(common))
        self.assertIn("Window statistics.", common["Filters"])
        self.assertIn("ZLV40_MATCH_SEED = 1", functions["ZLV40_GetHSVColorMatchMaskFromImage"])

    def test_every_constant_of_the_header_has_a_word_on_it(self):
        header = (ROOT / "include" / "zlv40.h").read_text()
        constants = re.findall(r"^.*\bZLV40_[A-Z0-9_]+ = \d+.*$", header, re.MULTILINE)
        self.assertGreater(len(constants), 100)
        for line in constants:
            self.assertRegex(line, r"/\* \S")


class CommandLines(CommandTest):
    def test_lines_of_their_own_work_when_pasted(self):
        # Those with default values alone are the gallery's.
        lines = [line for line in re.findall(r"^zlv .*$", PAGE, re.MULTILINE) if " --" in line or "apply" not in line]
        self.assertGreater(len(lines), 20)
        for line in lines[::6] if command_test.EMULATOR else lines:
            with self.subTest(line):
                program, *arguments = shlex.split(line)
                self.assertEqual(program, "zlv")
                arguments = [str(ROOT / one) if one.startswith("examples/") else one for one in arguments]
                self.succeed(self.run_command(*arguments))
                self.assertTrue({"out.jpg", "out.txt"} & set(self.names()))
                for name in self.names():
                    (self.folder / name).unlink()

    def test_the_text_is_what_the_command_prints(self):
        art = ROOT / "docs" / "pictures" / "ZLV40_ASCIIizeGrayscaleImage.txt"
        answer = self.run_command("ascii", ROOT / "examples" / "pictures" / "coffee-small.png", "--columns", "80")
        self.assertEqual(self.succeed(answer).text, art.read_text())
        self.assertIn(art.read_text(), PAGE)


if __name__ == "__main__":
    unittest.main()
