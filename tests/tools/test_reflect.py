"""The reflection within a picture: what is above the waterline stays, below it the picture is its mirror image."""
import unittest

from command_test import CommandTest
from pictures import Picture


class Reflections(CommandTest):
    WIDTH, HEIGHT, ROW = 12, 20, 36

    def reflect(self, *arguments):
        """The rows of a picture with a level a row, 10 * y, after the command."""
        original = Picture(self.WIDTH, self.HEIGHT, 3, b"".join(bytes([10 * y]) * self.ROW for y in range(self.HEIGHT)))
        self.write("in.png", original)
        self.succeed(self.run_command("apply", "reflect", *arguments, "in.png", "out.png"))
        result = self.png("out.png")
        self.assertEqual((result.width, result.height), (self.WIDTH, self.HEIGHT))
        return [result.samples[y * self.ROW:(y + 1) * self.ROW] for y in range(self.HEIGHT)]

    def test_flat_water_is_a_mirror(self):
        rows = self.reflect("--waterline", "50", "--ripple", "0", "--fade-start", "-1", "--fade-end", "2")
        for y in range(10):
            self.assertEqual(rows[y], bytes([10 * y]) * self.ROW)
            for sample in rows[10 + y]:
                self.assertAlmostEqual(sample, 10 * (9 - y), delta=1)

    def test_the_water_has_its_colour_where_the_fade_has_ended(self):
        rows = self.reflect("--waterline", "60", "--fade-end", "0.5", "--color", "#102030")
        for row in rows[16:]:
            self.assertEqual(row, bytes((0x10, 0x20, 0x30)) * self.WIDTH)
        self.assertNotEqual(rows[12], bytes((0x10, 0x20, 0x30)) * self.WIDTH)

    def test_one_row_at_least_is_reflection(self):
        rows = self.reflect("--waterline", "100")
        for y in range(19):
            self.assertEqual(rows[y], bytes([10 * y]) * self.ROW)


if __name__ == "__main__":
    unittest.main()
