"""Pictures whose channels an effect does not take are converted and come back as one would expect."""
import unittest

from command_test import CommandTest
from pictures import Picture, inverted, pattern


def luma(red, green, blue):
    return (299 * red + 587 * green + 114 * blue + 500) // 1000


class Channels(CommandTest):
    def apply(self, original, *arguments):
        self.write("in.png", original)
        self.succeed(self.run_shapes("apply", *arguments, "in.png", "out.png"))
        return self.png("out.png")

    def lightened(self, samples):
        return bytes(min(255, v + 10) for v in samples)

    def test_protected_alpha_of_rgba_stays(self):
        original = pattern(5, 3, 4)
        self.write("in.png", original)
        self.succeed(self.run_command("apply", "invert", "--protect-alpha", "in.png", "out.png"))
        self.assertEqual(self.png("out.png"), inverted(original, skipped=(3,)))

    def test_protected_alpha_of_a_picture_without_alpha_changes_nothing(self):
        for channels in (1, 3):
            with self.subTest(channels=channels):
                original = pattern(5, 3, channels)
                self.write("in.png", original)
                self.succeed(self.run_command("apply", "invert", "--protect-alpha", "in.png", "out.png"))
                self.assertEqual(self.png("out.png"), inverted(original))

    def test_protected_alpha_of_gray_with_alpha_stays(self):
        original = pattern(5, 3, 2)
        self.write("in.png", original)
        self.succeed(self.run_command("apply", "invert", "--protect-alpha", "in.png", "out.png"))
        self.assertEqual(self.png("out.png"), inverted(original, skipped=(1,)))

    def test_gray_for_a_colour_effect_stays_gray_without_colour(self):
        original = pattern(5, 3, 1)
        self.assertEqual(self.apply(original, "lighten"), Picture(5, 3, 1, self.lightened(original.samples)))

    def test_gray_for_a_colour_effect_becomes_rgb_with_colour(self):
        original = pattern(5, 3, 1)
        result = self.apply(original, "lighten", "--channel-mask", "r")
        self.assertEqual(result.samples, bytes(part for v in original.samples for part in (min(255, v + 10), v, v)))

    def test_alpha_is_put_aside_and_attached_again(self):
        original = pattern(5, 3, 4)
        result = self.apply(original, "lighten")
        wanted = bytes(v if i % 4 == 3 else min(255, v + 10) for i, v in enumerate(original.samples))
        self.assertEqual(result, Picture(5, 3, 4, wanted))

    def test_gray_with_alpha_keeps_both_around_a_colour_effect(self):
        original = pattern(5, 3, 2)
        result = self.apply(original, "lighten")
        wanted = bytes(v if i % 2 else min(255, v + 10) for i, v in enumerate(original.samples))
        self.assertEqual(result, Picture(5, 3, 2, wanted))

    def test_rgb_for_an_effect_of_rgba_comes_back_rgb(self):
        original = pattern(5, 3, 3)
        self.assertEqual(self.apply(original, "slow"), original)

    def test_colour_for_a_gray_effect_is_its_luma(self):
        original = pattern(2, 2, 3)
        result = self.apply(original, "paint", "--no-paint-it")
        wanted = [luma(*original.pixel(x, y)) for y in range(2) for x in range(2)]
        self.assertEqual(result.samples, bytes(v for v in wanted for _ in range(3)))

    def test_alpha_of_a_gray_effect_that_makes_rgb_is_attached_to_rgb(self):
        original = pattern(2, 2, 4)
        result = self.apply(original, "paint")
        self.assertEqual(result.channels, 4)
        self.assertEqual(result.samples[3::4], original.samples[3::4])


if __name__ == "__main__":
    unittest.main()
