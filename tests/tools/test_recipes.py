"""Commands of effects that need more than one call: noise slices, curves, warps, regions, shadows, edges."""
import unittest

from command_test import CommandTest
from pictures import Picture, pattern, smooth


class Applied(CommandTest):
    def apply(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_command("apply", *arguments, "in.png", "out.png"))
        return self.png("out.png")


def pixels(picture):
    return {(x, y): picture.pixel(x, y) for y in range(picture.height) for x in range(picture.width)}


class Noise(Applied):
    PAGE = Picture(40, 30, 1, bytes(1200))

    def test_whole_numbers_have_no_noise(self):
        for command, level in (("noise-slice", 127), ("noise-contours", 0), ("noise-turned", 128)):
            more = ["--angle", "0"] if command == "noise-turned" else []
            result = self.apply(self.PAGE, command, "--scale", "1", "--z", "0", *more)
            self.assertEqual(result.samples, bytes([level]) * 1200, command)

    def test_the_planes_are_of_one_field(self):
        bytes_ = self.apply(self.PAGE, "noise-slice", "--scale", "0.1")
        self.assertGreater(max(bytes_.samples) - min(bytes_.samples), 60)
        for before, after in zip(bytes_.samples, self.apply(self.PAGE, "noise-turned", "--scale", "0.1", "--angle",
                                                            "0").samples):
            self.assertAlmostEqual(before, after, delta=2)
        moved = self.apply(self.PAGE, "noise-turned", "--scale", "0.1", "--angle", "0", "--offset-x", "0.5")
        for y in range(30):
            for x in range(35):
                self.assertAlmostEqual(moved.pixel(x, y)[0], bytes_.pixel(x + 5, y)[0], delta=2)

    def test_half_a_turn_turns_the_picture(self):
        straight, turned = (self.apply(self.PAGE, "noise-turned", "--scale", "0.1", "--angle", angle)
                            for angle in ("0", "180"))
        for (x, y), sample in pixels(turned).items():
            if x and y:
                self.assertAlmostEqual(sample[0], straight.pixel(40 - x, 30 - y)[0], delta=1)

    def test_contours_rise_and_fall_back(self):
        slice_, contours = (self.apply(self.PAGE, "noise-" + name, "--scale", "0.1").samples
                            for name in ("slice", "contours"))
        for gray, step in zip(slice_, contours):
            wanted = (gray - 127) / 128 * 6 % 1
            self.assertLess(min(abs(wanted - step / 255), 1 - abs(wanted - step / 255)), 0.06)


class Spline(Applied):
    def test_the_line_begins_and_ends_at_a_tip_and_leaves_the_rest(self):
        original = pattern(61, 61, 3)
        result = self.apply(original, "spline", "--thickness", "6", "--color", "#102030")
        line = {place for place, pixel in pixels(result).items() if pixel == (16, 32, 48)}
        self.assertIn((30, 2), line)
        self.assertIn((28, 2), line)
        self.assertNotIn((30, 30), line)
        for place, pixel in pixels(result).items():
            if place not in line:
                self.assertEqual(pixel, original.pixel(*place))

    def test_straight_lines_go_through_the_corners(self):
        result = self.apply(Picture(41, 41, 3, bytes(41 * 41 * 3)), "spline", "--tips", "4", "--order", "2", "--color",
                            "#ffffff")
        # Tips at 0.95 and corners at 0.4 of 20.5 pixels from the middle.
        for place in ((20, 1), (39, 20), (20, 39), (1, 20), (26, 14), (14, 26)):
            self.assertEqual(result.pixel(*place), (255, 255, 255), place)


class Warps(Applied):
    def test_one_mirror_repeats_the_lower_half(self):
        original = smooth(31, 21, 3)
        result = self.apply(original, "kaleidoscope", "--mirrors", "1", "--start", "0")
        for (x, y), pixel in pixels(result).items():
            for sample, wanted in zip(pixel, original.pixel(x, max(y, 20 - y))):
                self.assertAlmostEqual(sample, wanted, delta=1)

    def test_a_diamond_has_the_picture_in_it_and_nothing_in_the_corners(self):
        white = Picture(41, 41, 1, bytes([255]) * 1681)
        for mode in ("rows", "columns", "both"):
            result = self.apply(white, "polygon", "--corners", "4", "--mode", mode)
            self.assertEqual(result.pixel(20, 20), (255,), mode)
            self.assertEqual(result.pixel(15, 12), (255,), mode)
            for corner in ((1, 1), (39, 1), (1, 39), (39, 39), (8, 8)):
                self.assertEqual(result.pixel(*corner), (0,), mode)


class Regions(Applied):
    def test_a_region_keeps_its_colours(self):
        red, blue = (200, 20, 30), (20, 30, 200)
        halves = Picture(20, 4, 3, bytes((red * 10 + blue * 10) * 4))
        left, right = (self.apply(halves, "color-region", "--x", x) for x in ("10", "90"))
        gray = [(level,) * 3 for level in (75, 46)]  # 0.299 R + 0.587 G + 0.114 B
        self.assertEqual((left.pixel(0, 0), left.pixel(19, 3)), (red, gray[1]))
        self.assertEqual((right.pixel(0, 0), right.pixel(19, 3)), (gray[0], blue))

    def test_dark_regions_of_some_contrast_are_multiplied(self):
        row = [200] * 20 + [20, 24] * 10
        result = self.apply(Picture(40, 9, 1, bytes(row * 9)), "local-enhancement", "--window", "3", "--gain", "2")
        self.assertEqual(result.samples[160:160 + 19], bytes([200] * 19))
        self.assertEqual([result.pixel(x, 4)[0] for x in range(30, 34)], [40, 48, 40, 48])
        bright = self.apply(Picture(40, 9, 1, bytes(row * 9)), "local-enhancement", "--window", "3", "--no-dark")
        self.assertEqual([bright.pixel(x, 4)[0] for x in range(30, 34)], [20, 24, 20, 24])

    def test_edges_light_up_by_their_height(self):
        steps = Picture(12, 5, 3, bytes(([0, 0, 0] * 6 + [10, 20, 90] * 6) * 5))
        result = self.apply(steps, "sobel")
        for x, wanted in ((4, (0, 0, 0)), (5, (40, 80, 255)), (6, (40, 80, 255)), (7, (0, 0, 0))):
            self.assertEqual(result.pixel(x, 2), wanted)
        self.assertEqual(self.apply(steps, "sobel", "--gain", "0.5").pixel(5, 2), (20, 40, 180))


class Shadows(Applied):
    def test_the_shadow_lies_beside_a_shape_that_stays(self):
        samples = bytes(sample for y in range(40) for x in range(40)
                        for sample in ((9, 8, 7, 255) if 15 <= x < 25 and 15 <= y < 25 else (0, 0, 0, 0)))
        result = self.apply(Picture(40, 40, 4, samples), "drop-shadow", "--distance", "8", "--angle", "90", "--blur",
                            "0", "--color", "#ff0000")
        for place in ((15, 15), (20, 20), (24, 24)):
            self.assertEqual(result.pixel(*place), (9, 8, 7, 255))
        self.assertEqual(result.pixel(29, 20)[:3], (255, 0, 0))
        self.assertGreater(result.pixel(29, 20)[3], 250)
        for place in ((8, 20), (20, 8), (20, 32), (39, 20)):
            self.assertEqual(result.pixel(*place)[3], 0, place)

    def test_the_card_is_the_picture_without_its_margin(self):
        original = pattern(60, 50, 3)
        result = self.apply(original, "card", "--margin", "20", "--distance", "0", "--blur", "0", "--ground", "#405060")
        self.assertEqual((result.width, result.height), (60, 50))
        self.assertEqual(result.pixel(0, 0), (64, 80, 96))
        found = [(x, y) for x in range(17, 24) for y in range(17, 24)
                 if all(result.pixel(x + i, y + j) == original.pixel(20 + i, 20 + j)
                        for i in range(20) for j in range(10))]
        self.assertEqual(len(found), 1)


if __name__ == "__main__":
    unittest.main()
