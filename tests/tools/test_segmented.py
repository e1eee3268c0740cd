"""The commands of effects that need a hand: the library gives indices and a palette, or leaves a border alone."""
import unittest

from command_test import CommandTest
from pictures import Picture

DARK, BRIGHT = (16, 32, 48), (200, 210, 220)


def drawn(rows):
    """A picture of two colours; '#' is dark."""
    pixels = [DARK if pixel == "#" else BRIGHT for row in rows for pixel in row]
    return Picture(len(rows[0]), len(rows), 3, bytes(sample for pixel in pixels for sample in pixel))


HALVES = ["##########.........."] * 12
SPECKED = [row[:4] + "." + row[5:15] + "#" + row[16:] if y in (3, 8) else row for y, row in enumerate(HALVES)]


class Applied(CommandTest):
    def apply(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_command("apply", *arguments, "in.png", "out.png"))
        return self.png("out.png")


class SegmentedColorize(Applied):
    def test_specks_go_with_their_regions_and_colours_stay(self):
        self.assertNotEqual(drawn(SPECKED).samples, drawn(HALVES).samples)
        result = self.apply(drawn(SPECKED), "segmented-colorize", "--colors", "2")
        self.assertEqual((result.width, result.height), (20, 12))
        self.assertEqual(result.samples, drawn(HALVES).samples)

    def test_a_median_of_one_pixel_leaves_specks(self):
        result = self.apply(drawn(SPECKED), "segmented-colorize", "--colors", "2", "--filter-size", "1")
        self.assertEqual(result.samples, drawn(SPECKED).samples)

    def test_one_colour_is_the_mean(self):
        result = self.apply(drawn(HALVES), "segmented-colorize", "--colors", "1")
        self.assertEqual(result.samples, bytes((108, 121, 134)) * 240)

    def test_boundaries_are_lines_on_one_colour(self):
        result = self.apply(drawn(["########........"] * 8), "segmented-colorize", "--colors", "2", "--mode",
                            "boundary", "--filter-size", "0")
        self.assertEqual(result.samples, drawn([".......#........"] * 8).samples)

    def test_every_mode_keeps_to_the_colours(self):
        for mode in ("median", "close", "hit-or-miss", "boundary"):
            with self.subTest(mode=mode):
                samples = self.apply(drawn(SPECKED), "segmented-colorize", "--colors", "2", "--mode", mode).samples
                self.assertLessEqual({tuple(samples[i:i + 3]) for i in range(0, len(samples), 3)}, {DARK, BRIGHT})


class Crackle(Applied):
    def test_the_border_is_the_pictures_own(self):
        # Level ground has a shade of 122: 120 * 122 / 256 is 57 in 36 pixels of 64, the 28 of the border keep 120.
        # Equalised, 57 becomes 36 * 255 / 64 and 120 becomes 255.
        result = self.apply(Picture(8, 8, 3, bytes([120]) * 192), "crackle")
        rows = [result.samples[y * 24:(y + 1) * 24] for y in range(8)]
        self.assertEqual(rows[0], bytes([255]) * 24)
        self.assertEqual(rows[3], bytes([255] * 3 + [143] * 18 + [255] * 3))

    def test_every_kind_and_range_gives_a_picture_of_its_own(self):
        original = Picture(40, 30, 3, bytes((x * x + 3 * y * x + c * 40) % 251
                                            for y in range(30) for x in range(40) for c in range(3)))
        seen = {self.apply(original, "crackle", "--kind", kind, *wide).samples
                for kind in ("open", "tophat", "close", "dilate", "erode") for wide in ((), ("--wide-range",))}
        self.assertEqual(len(seen), 10)


if __name__ == "__main__":
    unittest.main()
