"""The commands that work on frequencies: the whole way of a picture through the library's transform."""
import math
import unittest

from command_test import CommandTest
from pictures import Picture


def gray(width, height, level):
    """A gray picture of level(x, y)."""
    return Picture(width, height, 1, bytes(level(x, y) for y in range(height) for x in range(width)))


class Frequencies(CommandTest):
    def apply(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_command("apply", *arguments, "in.png", "out.png"))
        return self.png("out.png")

    def test_a_filter_that_lets_everything_pass_gives_the_picture_back(self):
        for width, height in ((16, 8), (21, 13), (5, 40), (1, 7)):
            with self.subTest(width=width, height=height):
                original = gray(width, height, lambda x, y: (x * 37 + y * 101) % 200)
                darkest, lightest = min(original.samples), max(original.samples)
                result = self.apply(original, "frequency-filter", "--filter", "ideal-low-pass", "--radius", "1000")
                self.assertEqual((result.width, result.height), (width, height))
                for before, after in zip(original.samples, result.samples):
                    self.assertAlmostEqual((before - darkest) * 255 / (lightest - darkest), after, delta=1.001)

    def test_a_low_pass_takes_short_waves_and_keeps_long_ones(self):
        wave = gray(32, 32, lambda x, y: round(128 + 60 * math.sin(math.tau * x / 32) + (20 if y % 2 else -20)))
        result = self.apply(wave, "frequency-filter", "--filter", "butterworth-low-pass", "--radius", "4",
                            "--order", "8")
        rows = [result.samples[y * 32:(y + 1) * 32] for y in range(32)]
        self.assertGreater(max(rows[0]) - min(rows[0]), 200)
        for row in rows[1:]:
            for before, after in zip(rows[0], row):
                self.assertAlmostEqual(before, after, delta=2)

    def test_the_spectrum_of_a_wave_is_two_points_beside_the_middle(self):
        wave = gray(32, 32, lambda x, y: round(128 + 100 * math.sin(math.tau * 4 * x / 32)))
        result = self.apply(wave, "spectrum", "--contrast", "0")
        bright = {(i % 32, i // 32) for i, sample in enumerate(result.samples) if sample > 100}
        self.assertEqual(bright, {(12, 16), (20, 16)})

    def test_contrast_shows_weak_waves(self):
        picture = gray(32, 32, lambda x, y: (x * 37 + y * y * 11) % 256)
        dim, bright = (sum(self.apply(picture, "spectrum", "--contrast", value).samples) for value in ("0", "100"))
        self.assertGreater(bright, 2 * dim)

    def test_one_level_is_middle_gray_and_has_no_spectrum(self):
        level = gray(9, 9, lambda x, y: 77)
        for sample in self.apply(level, "frequency-filter").samples:
            self.assertAlmostEqual(sample, 127, delta=1)
        self.assertEqual(self.apply(level, "spectrum").samples, bytes(81))


if __name__ == "__main__":
    unittest.main()
