"""What goes wrong ends in one sentence that names the argument, and leaves no file."""
import os
import struct
import unittest

from command_test import CommandTest, FAILED, IS_WINDOWS_PROGRAM, USAGE
from pictures import PNG_SIGNATURE, bmp_bytes, chunk, pattern, png_bytes


class CommandLine(CommandTest):
    def test_refused_arguments(self):
        self.write("in.png", pattern(2, 2, 3))
        before, files = self.names(), ("in.png", "out.png")
        for shows, arguments, words in (
                ("unknown effect", ["apply", "lihgten", *files], ["\"lihgten\"", "Did you mean lighten?"]),
                ("unknown option", ["apply", "lighten", "--amuont", "3", *files], ["lighten", "--amuont", "--amount?"]),
                ("option of another effect", ["apply", "lighten", "--axis", "rows", "then", "mirror", *files],
                 ["lighten has no option --axis"]),
                ("above the range", ["apply", "lighten", "--amount", "65", *files], ["--amount", "-64 to 64", "65"]),
                ("below the range", ["apply", "lighten", "--amount", "-65", *files], ["--amount", "-64 to 64", "-65"]),
                ("between steps", ["apply", "lighten", "--amount", "3", *files], ["steps of 2"]),
                ("not whole", ["apply", "mirror", "--first-row", "1.5", *files], ["a whole number", "1.5"]),
                ("not a number", ["apply", "lighten", "--amount", "much", *files], ["--amount", "much"]),
                ("not finite", ["apply", "paint", "--strength", "nan", *files], ["from 0 to 1"]),
                ("no such choice", ["apply", "mirror", "--axis", "row", *files],
                 ["one of columns, rows", "Did you mean rows?"]),
                ("no colour", ["apply", "paint", "--color", "#12345", *files], ["#rrggbb"]),
                ("no channel", ["apply", "lighten", "--channel-mask", "rx", *files], ["rgba"]),
                ("missing value", ["apply", "lighten", "in.png", "out.png", "--amount"], ["--amount"]),
                ("no effect", ["apply"], ["zlv apply EFFECT"]),
                ("no files", ["apply", "lighten"], ["input", "output"]),
                ("one file", ["apply", "lighten", "in.png"], ["one file name"]),
                ("files before then", ["apply", "lighten", "in.png", "then", "lighten", "out.png"], ["in.png", "then"]),
                ("nothing after then", ["apply", "lighten", "then"], ["then"]),
                ("quality out of range", ["apply", "lighten", "in.png", "out.jpg", "--quality", "101"],
                 ["--quality", "1 to 100"]),
                ("jobs not a number", ["apply", "lighten", "in.png", "out.png", "--jobs", "x"], ["--jobs"]),
                ("unknown format", ["apply", "lighten", "in.png", "out.png", "--format", "gif"], ["--format", "gif"]),
                ("several inputs, one output", ["apply", "lighten", "in.png", *files], ["{name}"]),
                ("two inputs, same place", ["apply", "lighten", "in.png", "./in.png", "out/{name}.png"],
                 ["both", "{number}"]),
                ("unknown placeholder", ["apply", "lighten", "in.png", "out/{nam}.png"],
                 ["{nam}", "Did you mean name?"]),
                ("open placeholder", ["apply", "lighten", "in.png", "out/{name.png"], ["{ without a }"])):
            with self.subTest(shows):
                self.refuse(self.run_shapes(*arguments), USAGE, *words)
                self.assertEqual(self.names(), before)


class Files(CommandTest):
    def test_a_missing_file_is_named_with_the_reason(self):
        self.refuse(self.run_command("apply", "invert", "none.png", "out.png"), FAILED, "\"none.png\"", "No such file")
        self.assertEqual(self.names(), [])

    def test_outputs_that_cannot_be_written(self):
        self.write("in.png", pattern(2, 2, 3))
        self.write("file", b"x")
        for shows, output, words in (("missing folder", "none/out.png", ["no folder", "none"]),
                                     ("a file is no folder", "file/out.png", ["no folder"]),
                                     ("unknown extension", "out.gif", [".gif", ".png"]),
                                     ("no extension", "out", ["extension is missing"])):
            with self.subTest(shows):
                self.refuse(self.run_command("apply", "invert", "in.png", output), FAILED, f"\"{output}\"", *words)
                self.assertEqual(self.names(), ["file", "in.png"])

    @unittest.skipIf(not IS_WINDOWS_PROGRAM and os.geteuid() == 0, "root may write to protected files")
    def test_a_protected_output_stays_as_it_was(self):
        self.write("in.png", pattern(2, 2, 3))
        self.write("out.png", b"kept")
        os.chmod(self.folder / "out.png", 0o444)
        self.refuse(self.run_command("apply", "invert", "in.png", "out.png"), FAILED, "\"out.png\"", "protected")
        self.assertEqual(self.read("out.png"), b"kept")

    def test_broken_pictures(self):
        good = png_bytes(pattern(20, 20, 3))
        jpeg = self.run_command("apply", "invert", "-", "-", "--format", "jpg", data=good).bytes
        huge = PNG_SIGNATURE + chunk(b"IHDR", struct.pack(">IIBBBBB", 0x7FFFFFFF, 0x7FFFFFFF, 8, 6, 0, 0, 0)) + \
            chunk(b"IDAT", b"\x78\x9c\x03\x00\x00\x00\x00\x01") + chunk(b"IEND", b"")
        large_bmp = bytearray(bmp_bytes(pattern(2, 2, 3)))
        struct.pack_into("<ii", large_bmp, 18, 0x00FFFFFF, 0x00FFFFFF)
        for shows, data in (("empty", b""), ("text", b"no picture at all"), ("a signature alone", PNG_SIGNATURE),
                            ("half a picture", good[:len(good) // 2]), ("huge sizes", huge),
                            ("huge BMP", bytes(large_bmp)),
                            ("zero size", PNG_SIGNATURE + chunk(b"IHDR", struct.pack(">IIBBBBB", 0, 0, 8, 2, 0, 0, 0))),
                            ("the start of a JPEG", b"\xFF\xD8\xFF\xE0\0\x10JFIF"),
                            ("half a JPEG", jpeg[:len(jpeg) * 2 // 3]),
                            ("half a BMP", bmp_bytes(pattern(9, 9, 3))[:150]), ("a GIF", b"GIF89a\1\0\1\0\0\0\0;")):
            with self.subTest(shows):
                self.write("in.png", data)
                self.refuse(self.run_command("apply", "invert", "in.png", "out.png"), FAILED, "Cannot read \"in.png\"")
                self.assertEqual(self.names(), ["in.png"])

    def test_damaged_bytes_never_crash_the_command(self):
        for name, good in (("in.png", png_bytes(pattern(9, 9, 3))), ("in.bmp", bmp_bytes(pattern(9, 9, 3)))):
            for at in range(60):
                damaged = bytearray(good)
                damaged[at] ^= 0xFF
                self.write(name, bytes(damaged))
                with self.subTest(name, at=at):
                    answer = self.run_command("apply", "invert", name, "out.png")
                    self.assertIn(answer.code, (0, FAILED))
                    self.assertEqual(answer.code == FAILED, answer.errors.startswith("zlv: Cannot read"))

    def test_a_folder_is_no_picture(self):
        (self.folder / "folder").mkdir()
        self.refuse(self.run_command("apply", "invert", "folder", "out.png"), FAILED, "\"folder\"", "it is a folder")

    def test_an_effect_that_fails_names_picture_and_effect(self):
        self.write("in.png", pattern(2, 2, 3))
        self.refuse(self.run_shapes("apply", "refuse", "in.png", "out.png"), FAILED, "\"in.png\"", "refuse failed")
        self.assertEqual(self.names(), ["in.png"])


if __name__ == "__main__":
    unittest.main()
