"""The commands that work on pictures of bits, and those that do the same in gray."""
import unittest

from command_test import CommandTest
from pictures import Picture

LIGHT, DARK = 200, 50


def drawn(rows, light=255, dark=0):
    """A gray picture; '#' is light."""
    return Picture(len(rows[0]), len(rows), 1, bytes(light if pixel == "#" else dark for row in rows for pixel in row))


def block(left, top, right, bottom, width=20, height=12):
    """Rows with a light block from (left, top) to (right, bottom), both included."""
    return ["".join("#" if left <= x <= right and top <= y <= bottom else "." for x in range(width))
            for y in range(height)]


def changed(rows, *places):
    """Rows with the pixels at some places turned over."""
    return ["".join({"#": ".", ".": "#"}[pixel] if (x, y) in places else pixel for x, pixel in enumerate(row))
            for y, row in enumerate(rows)]


def without(rows, others):
    return ["".join("." if other == "#" else pixel for pixel, other in zip(row, line))
            for row, line in zip(rows, others)]


SQUARE = ("--shape", "square", "--size", "3")


class Applied(CommandTest):
    def apply(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_command("apply", *arguments, "in.png", "out.png"))
        return self.png("out.png")


class Bits(Applied):
    def becomes(self, rows, wanted, *arguments):
        result = self.apply(drawn(rows, LIGHT, DARK), *arguments)
        self.assertEqual(result, drawn(wanted), arguments)

    def test_the_level_is_the_first_light_one(self):
        result = self.apply(Picture(3, 1, 1, bytes((99, 100, 101))), "invert-bits", "--level", "100")
        self.assertEqual(result.samples, bytes((255, 0, 0)))

    def test_a_disc_of_everything_and_one_of_nothing(self):
        rows = block(0, 0, 9, 11)
        everything, nothing, rest = block(0, 0, 19, 11), block(1, 1, 0, 0), block(10, 0, 19, 11)
        for command, with_all, with_none in (("intersect-bits", rows, nothing), ("unite-bits", everything, rows),
                                             ("xor-bits", rest, rows)):
            self.becomes(rows, with_all, command, "--disc", "400")
            self.becomes(rows, with_none, command, "--disc", "0")

    def test_the_disc_lies_in_the_middle(self):
        # Of five rows 60 percent: a radius of 1.5, and (1, 1) is 1.41 away.
        self.becomes(block(0, 0, 6, 4, 7, 5), block(2, 1, 4, 3, 7, 5), "intersect-bits", "--disc", "60")

    def test_dilation_grows_by_the_element(self):
        dot = block(10, 6, 10, 6)
        self.becomes(dot, block(9, 5, 11, 7), "dilate-bits", *SQUARE)
        self.becomes(dot, changed(dot, (9, 6), (11, 6), (10, 5), (10, 7)), "dilate-bits", "--shape", "cross", "--size",
                     "3")
        corners = [(x, y) for x in (8, 12) for y in (4, 8)]
        self.becomes(dot, changed(block(8, 4, 12, 8), *corners), "dilate-bits", "--shape", "disc", "--size", "5")

    def test_erosion_shrinks_by_the_element(self):
        self.becomes(block(9, 3, 13, 7), block(10, 4, 12, 6), "erode-bits", *SQUARE)

    def test_opening_removes_specks_and_closing_fills_holes(self):
        rows = block(9, 3, 14, 9)
        self.becomes(changed(rows, (2, 2)), rows, "open-bits", *SQUARE)
        self.becomes(changed(rows, (11, 6)), rows, "close-bits", *SQUARE)

    def test_outlines_are_at_their_place_in_every_width(self):
        for width in (16, 17, 20, 23):
            rows = block(2, 2, 13, 8, width)
            self.becomes(rows, without(rows, block(3, 3, 12, 7, width)), "outline-bits", *SQUARE)

    def test_every_side_is_found(self):
        rows = block(9, 3, 14, 8)
        for side, wanted in (("left", block(9, 3, 10, 8)), ("right", block(13, 3, 14, 8)),
                             ("top", block(9, 3, 14, 4)), ("bottom", block(9, 7, 14, 8))):
            self.becomes(rows, wanted, "find-bits", "--side", side, "--distance", "2")

    def test_a_bar_is_thinned_to_a_line(self):
        result = self.apply(drawn(block(3, 4, 16, 8)), "thin-bits")
        columns = [[y for y in range(12) if result.samples[y * 20 + x]] for x in range(20)]
        for x in range(6, 14):
            self.assertEqual(columns[x], [6])
        self.assertFalse(any(columns[:3] + columns[17:]))
        self.becomes(block(3, 4, 16, 8), block(1, 1, 0, 0), "thin-bits", "--passes", "0")

    def test_the_majority_of_a_window(self):
        rows = block(0, 0, 9, 11)
        self.becomes(changed(rows, (4, 5), (15, 6)), rows, "median-bits", "--size", "3")


class Gray(Applied):
    FLAT = block(1, 1, 0, 0)

    def test_opening_and_closing(self):
        bright, dark = changed(self.FLAT, (5, 5)), changed(block(0, 0, 19, 11), (5, 5))
        for rows, command, level in ((bright, "open-gray", DARK), (dark, "close-gray", LIGHT)):
            self.assertEqual(self.apply(drawn(rows, LIGHT, DARK), command, "--size", "3").samples, bytes([level]) * 240)

    def test_the_tophat_is_what_an_opening_takes(self):
        result = self.apply(drawn(changed(self.FLAT, (5, 5)), LIGHT, DARK), "tophat-gray", "--size", "3")
        self.assertEqual(result, drawn(changed(self.FLAT, (5, 5)), LIGHT - DARK))

    def test_the_gradient_is_wide_as_the_square(self):
        result = self.apply(drawn(block(10, 0, 19, 11), LIGHT, DARK), "gradient-gray", "--size", "5")
        self.assertEqual(result, drawn(block(8, 0, 11, 11), LIGHT - DARK))


if __name__ == "__main__":
    unittest.main()
