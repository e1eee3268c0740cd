"""zlv ascii: the size of the text, its characters, and where it goes."""
import os
import unittest

from command_test import CommandTest, FAILED, IS_WINDOWS_PROGRAM, USAGE
from pictures import Picture, pattern

RAMP = "WM$@#%^x*o=+:~. "


def gray(width, height, samples):
    return Picture(width, height, 1, bytes(samples))


class Ascii(CommandTest):
    def draw(self, *arguments):
        text = self.succeed(self.run_command("ascii", *arguments)).text
        self.assertTrue(text.endswith("\n"), text)
        return text[:-1].split("\n")

    def test_without_a_terminal_it_is_80_columns_wide(self):
        self.write("in.png", pattern(160, 100, 3))
        lines = self.draw("in.png")
        self.assertEqual({len(line) for line in lines}, {80})
        self.assertEqual(len(lines), 25, "a character is twice as high as wide")

    def test_proportions_are_kept(self):
        for width, height, columns, rows in ((100, 100, 40, 20), (300, 100, 60, 10), (100, 300, 10, 15), (7, 7, 1, 1),
                                             (1000, 1, 50, 1), (3, 3, 90, 45)):
            with self.subTest(width=width, height=height, columns=columns):
                self.write("in.png", pattern(width, height, 3))
                lines = self.draw("in.png", "--columns", columns)
                self.assertEqual((len(lines), {len(line) for line in lines}), (rows, {columns}))

    def test_sixteen_levels_from_dark_to_light(self):
        self.write("in.png", gray(16, 2, [16 * level for level in range(16)] * 2))
        self.assertEqual(self.draw("in.png", "--columns", "16"), [RAMP])
        self.assertEqual(self.draw("in.png", "--columns", "16", "--dark"), [RAMP[::-1]])

    def test_large_pictures_are_averaged(self):
        # Single samples of it would be black or white.
        self.write("in.png", gray(64, 64, [255 * ((x + y) % 2) for y in range(64) for x in range(64)]))
        self.assertEqual(self.draw("in.png", "--columns", "8"), [RAMP[8] * 8] * 4)

    def test_transparent_parts_lie_on_white(self):
        self.write("in.png", Picture(2, 2, 4, bytes((0, 0, 0, 0, 0, 0, 0, 255) * 2)))
        self.assertEqual(self.draw("in.png", "--columns", "2"), [" W"])

    def test_a_file_is_written_instead_of_printing(self):
        self.write("in.png", pattern(40, 20, 3))
        printed = self.succeed(self.run_command("ascii", "in.png", "--columns", "30")).text
        self.assertEqual(self.succeed(self.run_command("ascii", "in.png", "--columns", "30", "-o", "out.txt")).text, "")
        self.assertEqual(self.read("out.txt").decode("ascii"), printed)

    def test_standard_input(self):
        name = self.write("in.png", pattern(40, 20, 3))
        answer = self.succeed(self.run_command("ascii", "-", "--columns", "30", data=self.read(name)))
        self.assertEqual(answer.text, self.succeed(self.run_command("ascii", "in.png", "--columns", "30")).text)

    def test_refusals(self):
        self.write("in.png", pattern(4, 4, 3))
        self.write("text.png", b"no picture")
        for code, arguments, words in ((USAGE, [], ["IN"]), (USAGE, ["in.png", "--columns", "0"], ["--columns"]),
                                       (USAGE, ["in.png", "--columns", "10001"], ["--columns"]),
                                       (USAGE, ["in.png", "--columns", "many"], ["--columns"]),
                                       (USAGE, ["in.png", "--colums", "8"], ["--columns?"]),
                                       (FAILED, ["none.png"], ["none.png"]), (FAILED, ["text.png"], ["text.png"])):
            with self.subTest(arguments):
                self.refuse(self.run_command("ascii", *arguments), code, *words)
        self.assertEqual(self.names(), ["in.png", "text.png"])

    @unittest.skipIf(IS_WINDOWS_PROGRAM, "a console under Wine has no size to set")
    def test_a_terminal_gives_the_width(self):
        import fcntl
        import pty
        import struct
        import subprocess
        import termios
        self.write("in.png", pattern(40, 20, 3))
        ours, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 37, 0, 0))
        running = subprocess.Popen(self.line(["ascii", "in.png"]), cwd=self.folder, stdout=theirs)
        os.close(theirs)
        text = b""
        try:
            while piece := os.read(ours, 4096):
                text += piece
        except OSError:  # how Linux tells the end
            pass
        os.close(ours)
        self.assertEqual(running.wait(timeout=60), 0)
        lines = text.decode("ascii").split("\r\n")
        self.assertEqual({len(line) for line in lines[:-1]}, {37})


if __name__ == "__main__":
    unittest.main()
