"""zlv seam-carve: widths, masks, channels, progress and Ctrl-C."""
import subprocess
import time
import unittest

from command_test import COMMAND, DONE, FAILED, INTERRUPTED, USAGE, CommandTest, interrupt, needs_signals
from pictures import Picture, pattern


def columns(width, height, levels, channels=3):
    """Every column a colour of its own, from a list of levels."""
    row = b"".join(bytes([levels[x]] * channels) for x in range(width))
    return Picture(width, height, channels, row * height)


class Widths(CommandTest):
    def carve(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_command("seam-carve", "in.png", "out.png", *arguments))
        return self.png("out.png")

    def test_columns_and_percentages(self):
        for text, width in (("14", 14), ("20", 20), ("27", 27), ("50%", 10), ("100%", 20), ("133%", 27), ("22%", 4)):
            with self.subTest(text):
                made = self.carve(pattern(20, 9, 3), "--width", text)
                self.assertEqual((made.width, made.height, made.channels), (width, 9, 3))

    def test_the_same_width_is_the_same_picture(self):
        for channels in (1, 2, 3, 4):
            original = pattern(8, 5, channels)
            self.assertEqual(self.carve(original, "--width", "8"), original)

    def test_every_shape_of_picture_comes_back_in_its_channels(self):
        for channels in (1, 2, 3, 4):
            with self.subTest(channels=channels):
                for width in (9, 17):
                    made = self.carve(pattern(12, 7, channels), "--width", width)
                    self.assertEqual((made.width, made.channels), (width, channels))

    def test_what_is_flat_goes_first(self):
        """A flat half of 10 columns loses 6; the steep half keeps each of its values."""
        steep = [0, 255, 20, 235, 40, 215, 60, 195, 80, 175]
        made = self.carve(columns(20, 8, [128] * 10 + steep), "--width", "14")
        for y in range(8):
            row = [made.pixel(x, y)[0] for x in range(14)]
            self.assertEqual(row[-9:], steep[1:])

    def test_a_mask_protects(self):
        """A seam beside the protected columns is merged with the first of them; the others stay as they are."""
        levels = [x * 12 for x in range(16)]
        self.write("mask.png", columns(16, 6, [128] * 4 + [255] * 5 + [128] * 7, 1))
        made = self.carve(columns(16, 6, levels), "--width", "10", "--mask", "mask.png")
        for y in range(6):
            row = [made.pixel(x, y)[0] for x in range(10)]
            self.assertEqual([v for v in row if v in levels[5:9]], levels[5:9])

    def test_one_run_is_like_the_other_in_both_forms(self):
        for form in ([], ["--two-threads"]):
            first = self.carve(pattern(40, 30, 3), "--width", "30", *form)
            self.assertEqual(self.carve(pattern(40, 30, 3), "--width", "30", *form), first)

    def test_formats_and_streams(self):
        self.write("in.png", pattern(9, 5, 3))
        self.succeed(self.run_command("seam-carve", "in.png", "out.data", "--width", "7", "--format", "bmp"))
        self.assertEqual(self.read("out.data")[:2], b"BM")
        answer = self.run_command("seam-carve", "-", "-", "--width", "7", data=self.read("in.png"))
        self.assertEqual((answer.code, answer.errors), (DONE, ""))
        self.assertEqual(answer.bytes[:4], b"\x89PNG")


class Refusals(CommandTest):
    def test_command_lines(self):
        self.write("in.png", pattern(9, 5, 3))
        for word, arguments in (("--width", []), ("--width", ["--width", "3"]), ("\"0%\"", ["--width", "0%"]),
                                ("\"wide\"", ["--width", "wide"]), ("\"-5\"", ["--width=-5"]),
                                ("\"\"", ["--width", ""]),
                                ("\"%\"", ["--width", "%"]), ("\"5.5\"", ["--width", "5.5"]),
                                ("\"1001%\"", ["--width", "1001%"]), ("\"9999999999\"", ["--width", "9999999999"]),
                                ("--penalty", ["--width", "7", "--penalty", "65536"]),
                                ("--format", ["--width", "7", "--format", "gif"]),
                                ("--mask", ["--width", "7", "--mas", "m"])):
            with self.subTest(arguments):
                self.refuse(self.run_command("seam-carve", "in.png", "out.png", *arguments), USAGE, word)
        self.assertEqual(self.names(), ["in.png"])

    def test_pictures(self):
        self.write("in.png", pattern(9, 5, 3))
        self.write("low.png", pattern(9, 2, 3))
        self.write("mask.png", pattern(9, 4, 1))
        for words, arguments in ((("none.png",), ["none.png", "out.png", "--width", "7"]),
                                 (("low.png", "too small"), ["low.png", "out.png", "--width", "7"]),
                                 (("in.png", "3 wide"), ["in.png", "out.png", "--width", "30%"]),
                                 (("mask.png", "9 x 4"), ["in.png", "out.png", "--width", "7", "--mask", "mask.png"]),
                                 (("out.xyz",), ["in.png", "out.xyz", "--width", "7"])):
            with self.subTest(arguments):
                self.refuse(self.run_command("seam-carve", *arguments), FAILED, *words)
        self.assertEqual(self.names(), ["in.png", "low.png", "mask.png"])

    def test_help_names_the_options(self):
        answer = self.succeed(self.run_command("seam-carve", "--help"))
        for option in ("--width", "--mask", "--penalty", "--two-threads", "--progress"):
            self.assertIn(option, answer.text)


class Progress(CommandTest):
    def test_the_bar_counts_seams(self):
        self.write("in.png", pattern(40, 10, 3))
        answer = self.run_command("seam-carve", "in.png", "out.png", "--width", "30", "--progress")
        self.assertEqual(answer.code, DONE)
        self.assertIn("100%  in.png", answer.errors)

    @needs_signals
    def test_ctrl_c_ends_the_work_and_leaves_the_former_output(self):
        self.write("in.png", pattern(1200, 400, 3))
        self.write("out.png", b"the former one")
        line = self.line(["seam-carve", "in.png", "out.png", "--width", "1000%", "--progress"], COMMAND)
        process = subprocess.Popen(line, cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertTrue(process.stderr.read(1))
        started = time.monotonic()
        interrupt(process)
        _, errors = process.communicate(timeout=60)
        self.assertLess(time.monotonic() - started, 5)
        self.assertEqual(process.returncode, INTERRUPTED)
        self.assertIn("Interrupted", errors.decode())
        self.assertEqual((self.read("out.png"), self.names()), (b"the former one", ["in.png", "out.png"]))


if __name__ == "__main__":
    unittest.main()
