"""zlv apply on one picture: pixels, formats, chains, values."""
import struct
import unittest

from command_test import CommandTest, IS_WINDOWS_PROGRAM
from pictures import bmp_bytes, inverted, pattern, png_bytes, read_bmp, smooth

# JPEG stores quantised waves: at quality 95 a smooth picture comes back within a few levels.
JPEG_TOLERANCE = 6


class Formats(CommandTest):
    def test_png_of_every_shape_is_inverted_sample_by_sample(self):
        for channels, name in ((1, "gray"), (2, "gray with alpha"), (3, "RGB"), (4, "RGBA")):
            for width, height in ((1, 1), (5, 3), (64, 2)):
                with self.subTest(name, width=width):
                    original = pattern(width, height, channels)
                    self.write("in.png", original)
                    self.succeed(self.run_command("apply", "invert", "in.png", "out.png"))
                    self.assertEqual(self.png("out.png"), inverted(original))

    def test_png_of_16_bits_keeps_its_high_bytes(self):
        original = pattern(7, 4, 3)
        self.write("in.png", png_bytes(original, depth=16))
        self.succeed(self.run_command("apply", "invert", "in.png", "out.png"))
        self.assertEqual(self.png("out.png"), inverted(original))

    def test_bmp_rows_of_every_padding(self):
        for width in (1, 2, 3, 4, 5):
            with self.subTest(width=width):
                original = pattern(width, 3, 3)
                self.write("in.bmp", bmp_bytes(original))
                self.succeed(self.run_command("apply", "invert", "in.bmp", "out.bmp"))
                self.assertEqual(read_bmp(self.read("out.bmp")), inverted(original))

    def test_bmp_keeps_alpha_and_makes_rgb_of_gray(self):
        colour = pattern(3, 2, 4)
        self.write("colour.png", colour)
        self.succeed(self.run_command("apply", "invert", "colour.png", "colour.bmp"))
        self.assertEqual(read_bmp(self.read("colour.bmp")), inverted(colour))
        gray = pattern(3, 2, 1)
        self.write("gray.png", gray)
        self.succeed(self.run_command("apply", "invert", "gray.png", "gray.bmp"))
        wanted = bytes(255 - v for v in gray.samples for _ in range(3))
        self.assertEqual(read_bmp(self.read("gray.bmp")).samples, wanted)

    def test_jpeg_comes_back_within_its_tolerance(self):
        original = smooth(40, 24, 3)
        self.write("in.png", original)
        self.succeed(self.run_command("apply", "invert", "in.png", "a.jpg", "--quality", "95"))
        self.assertEqual(self.read("a.jpg")[:3], b"\xFF\xD8\xFF")
        self.succeed(self.run_command("apply", "invert", "a.jpg", "b.png"))
        again = self.png("b.png")
        self.assertEqual((again.width, again.height, again.channels), (40, 24, 3))
        far = max(abs(a - b) for a, b in zip(again.samples, original.samples))
        self.assertLessEqual(far, JPEG_TOLERANCE)

    def test_jpeg_lays_transparent_pixels_over_white(self):
        self.write("in.png", pattern(16, 16, 4).__class__(16, 16, 4, bytes((10, 200, 30, 0)) * 256))
        self.succeed(self.run_command("apply", "invert", "--protect-alpha", "in.png", "out.jpg"))
        self.succeed(self.run_command("apply", "invert", "out.jpg", "out.png"))
        self.assertLessEqual(max(self.png("out.png").samples), 1)

    def test_jpeg_quality_changes_the_size(self):
        self.write("in.png", pattern(64, 64, 3))
        for quality in ("10", "95"):
            self.succeed(self.run_command("apply", "invert", "in.png", f"q{quality}.jpg", "--quality", quality))
        self.assertLess(len(self.read("q10.jpg")) * 2, len(self.read("q95.jpg")))

    def test_a_photograph_is_turned_as_its_camera_noted(self):
        # 6: the sensor's first row is the right-hand side. A dark left half of the sensor becomes the upper half.
        self.write("in.png", pattern(16, 32, 1).__class__(16, 32, 1, bytes([0] * 8 + [255] * 8) * 32))
        self.succeed(self.run_command("apply", "invert", "then", "invert", "in.png", "plain.jpg", "--quality", "95"))
        tiff = b"MM\0*" + struct.pack(">IHHHIHHI", 8, 1, 0x0112, 3, 1, 6, 0, 0)
        segment = b"Exif\0\0" + tiff
        plain = self.read("plain.jpg")
        self.write("noted.jpg", plain[:2] + b"\xFF\xE1" + struct.pack(">H", len(segment) + 2) + segment + plain[2:])
        self.succeed(self.run_command("apply", "invert", "noted.jpg", "out.png"))
        out = self.png("out.png")
        self.assertEqual((out.width, out.height), (32, 16))
        self.assertGreater(out.pixel(4, 3)[0], 240)
        self.assertLess(out.pixel(28, 12)[0], 15)

    def test_format_option_goes_before_the_extension(self):
        self.write("in.png", pattern(3, 3, 3))
        self.succeed(self.run_command("apply", "invert", "in.png", "out.data", "--format", "bmp"))
        self.assertEqual(read_bmp(self.read("out.data")), inverted(pattern(3, 3, 3)))

    def test_standard_input_and_output(self):
        original = pattern(30, 11, 3, seed=10)
        answer = self.run_command("apply", "invert", "-", "-", data=png_bytes(original))
        self.assertEqual((answer.code, answer.errors), (0, ""))
        self.write("out.png", answer.bytes)
        self.assertEqual(self.png("out.png"), inverted(original))

    def test_unicode_file_names(self):
        original = pattern(4, 4, 3)
        for name in ("Zo\u00eb \u2013 \u00c4rger", "\u5199\u771f", "\u044d\u0444\u0444\u0435\u043a\u0442"):
            with self.subTest(name):
                self.write(name + ".png", original)
                self.succeed(self.run_command("apply", "invert", name + ".png", name + "-neu.png"))
                self.assertEqual(self.png(name + "-neu.png"), inverted(original))

    def test_an_existing_output_is_replaced_and_may_be_the_input(self):
        original = pattern(6, 6, 3)
        self.write("picture.png", original)
        self.succeed(self.run_command("apply", "invert", "picture.png", "picture.png"))
        self.assertEqual((self.png("picture.png"), self.names()), (inverted(original), ["picture.png"]))


class Chains(CommandTest):
    def test_two_inversions_give_the_original_samples(self):
        for channels in (1, 2, 3, 4):
            with self.subTest(channels=channels):
                original = pattern(9, 5, channels)
                self.write("in.png", original)
                self.succeed(self.run_command("apply", "invert", "then", "invert", "in.png", "out.png"))
                self.assertEqual(self.png("out.png"), original)

    def test_an_option_belongs_to_the_effect_before_it(self):
        original = pattern(9, 5, 4)
        self.write("in.png", original)
        self.succeed(self.run_command("apply", "invert", "--protect-alpha", "then", "invert", "in.png", "out.png"))
        colours_kept = bytes(255 - v if i % 4 == 3 else v for i, v in enumerate(original.samples))
        self.assertEqual(self.png("out.png").samples, colours_kept)

    def test_general_options_stand_anywhere(self):
        original = pattern(4, 4, 3)
        self.write("in.png", original)
        for arguments in (["--jobs", "2", "invert", "in.png", "out.png"], ["invert", "-q", "in.png", "out.png"],
                          ["invert", "in.png", "out.png", "--quality", "50"], ["invert", "in.png", "-o", "out.png"]):
            with self.subTest(arguments):
                self.succeed(self.run_command("apply", *arguments))
                self.assertEqual(self.png("out.png"), inverted(original))
                (self.folder / "out.png").unlink()


class Values(CommandTest):
    """Every shape of call, with the test effects."""

    def apply(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_shapes("apply", *arguments, "in.png", "out.png"))
        return self.png("out.png")

    def test_numbers_and_masks_in_place(self):
        original = pattern(5, 4, 3)
        for arguments, amount, channels in (([], 10, (0, 1, 2)), (["--amount", "-64"], -64, (0, 1, 2)),
                                            (["--amount=+4", "--channel-mask", "gb"], 4, (1, 2)),
                                            (["--channel-mask", "1", "--amount", "2"], 2, (0,)),
                                            (["--amount", "4", "--amount", "6"], 6, (0, 1, 2))):
            with self.subTest(arguments):
                wanted = bytes(max(0, min(255, v + amount)) if i % 3 in channels else v
                               for i, v in enumerate(original.samples))
                self.assertEqual(self.apply(original, "lighten", *arguments).samples, wanted)

    def test_source_and_target_with_a_choice(self):
        original = pattern(3, 3, 3)
        mirrored = self.apply(original, "mirror")
        self.assertEqual([mirrored.pixel(x, 1) for x in range(3)], [original.pixel(2 - x, 1) for x in range(3)])
        mirrored = self.apply(original, "mirror", "--axis", "rows")
        self.assertEqual([mirrored.pixel(1, y) for y in range(3)], [original.pixel(1, 2 - y) for y in range(3)])

    def test_rows_that_an_effect_leaves_out_show_the_original(self):
        original = pattern(3, 3, 3)
        mirrored = self.apply(original, "mirror", "--first-row", "2")
        self.assertEqual(mirrored.samples[:18], original.samples[:18])
        self.assertEqual(mirrored.pixel(0, 2), original.pixel(2, 2))

    def test_colour_real_number_and_switches(self):
        gray = pattern(4, 2, 1)
        red = self.apply(gray, "paint")
        self.assertEqual(red.channels, 3)
        self.assertEqual(red.samples, bytes(part for v in gray.samples for part in (int(v * .5), 0, 0)))
        blue = self.apply(gray, "paint", "--color", "#0000ff", "--strength", "1", "--negative")
        self.assertEqual(blue.samples, bytes(part for v in gray.samples for part in (0, 0, 255 - v)))
        plain = self.apply(gray, "paint", "--no-paint-it")
        self.assertEqual(plain.samples, bytes(v for v in gray.samples for _ in range(3)))

    def test_a_mask_and_switches_of_one_argument_work_together(self):
        original = pattern(12, 9, 3)

        def bilateral(*arguments):
            self.write("in.png", original)
            self.succeed(self.run_command("apply", "bilateral", *arguments, "in.png", "out.png"))
            return self.png("out.png").samples

        separable, square = bilateral("--separable"), bilateral()
        self.assertNotEqual(separable[1::3], square[1::3])
        self.assertNotEqual(separable[1::3], original.samples[1::3])
        for arguments, whole in ((["--channel-mask", "g", "--separable"], separable),
                                 (["--separable", "--channel-mask", "g"], separable),
                                 (["--separable", "--channel-mask", "2", "--threads"], separable),
                                 (["--channel-mask", "g"], square)):
            with self.subTest(arguments):
                wanted = bytes(whole[i] if i % 3 == 1 else v for i, v in enumerate(original.samples))
                self.assertEqual(bilateral(*arguments), wanted)


@unittest.skipUnless(IS_WINDOWS_PROGRAM, "shells of Linux expand patterns themselves")
class WindowsNames(CommandTest):
    def test_patterns_of_inputs_are_expanded_by_the_program(self):
        for name in ("one.png", "two.png"):
            self.write(name, pattern(2, 2, 3))
        self.succeed(self.run_command("apply", "invert", "*.png", "out/{name}.png"))
        self.assertEqual(len([name for name in self.names() if name.startswith("out")]), 2)


if __name__ == "__main__":
    unittest.main()
