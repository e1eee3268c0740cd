"""zlv warp: lists of warps, how they are sampled, what is outside."""
import unittest

from command_test import FAILED, USAGE, CommandTest
from pictures import pattern


def shifted(picture, dx, fill):
    """The picture moved to the right by dx pixels."""
    c, row = picture.channels, picture.width * picture.channels
    rows = [picture.samples[y * row:(y + 1) * row] for y in range(picture.height)]
    moved = [bytes(fill) * dx + line[:row - dx * c] if dx >= 0 else line[-dx * c:] + bytes(fill) * -dx for line in rows]
    return picture.__class__(picture.width, picture.height, c, b"".join(moved))


class Warps(CommandTest):
    def setUp(self):
        super().setUp()
        self.original = pattern(7, 5, 3)
        self.write("in.png", self.original)

    def warp(self, *words):
        self.succeed(self.run_command("warp", "in.png", "out.png", *words))
        return self.png("out.png")

    def test_one_warp_with_its_options(self):
        shift = ("offset", "--shift-x", "2", "--shift-y", "0", "--wrap", "none")
        self.assertEqual(self.warp(*shift), shifted(self.original, 2, (0, 0, 0)))
        self.assertEqual(self.warp(*shift, "--background", "#102030"), shifted(self.original, 2, (0x10, 0x20, 0x30)))

    def test_apply_knows_each_warp_as_an_effect(self):
        self.succeed(self.run_command("apply", "offset", "--shift-x", "2", "--shift-y", "0", "--wrap", "none", "in.png",
                                      "out.png"))
        self.assertEqual(self.png("out.png"), shifted(self.original, 2, (0, 0, 0)))

    def test_general_options_stand_anywhere(self):
        for words in (("--keep", "offset", "--shift-x", "9", "--wrap", "none"),
                      ("offset", "--keep", "--shift-x", "9", "--wrap", "none"),
                      ("offset", "--shift-x", "9", "--wrap", "none", "--keep"),
                      ("--sampling", "nearest", "offset", "--shift-x=9", "--wrap=none", "--keep", "--quiet")):
            with self.subTest(words):
                self.assertEqual(self.warp(*words), self.original)

    def test_several_warps_act_in_their_order(self):
        # What the first one moves out on the right stays away; the other way round it comes back on the left.
        right = ("offset", "--shift-x", "3", "--shift-y", "0", "--wrap", "none")
        wrap = ("offset", "--shift-x", "-1", "--shift-y", "0", "--wrap", "x")
        row = [bytes(self.original.samples[3 * x:3 * x + 3]) for x in range(7)]
        black = bytes(3)
        first = self.warp("--sampling", "nearest", *right, *wrap)
        self.assertEqual(first.samples[:21], b"".join([black, black, row[0], row[1], row[2], row[3], black]))
        second = self.warp("--sampling", "nearest", *wrap, *right)
        self.assertEqual(second.samples[:21], b"".join([row[5], row[6], *row[:5]]))

    def test_clamping_repeats_the_edge(self):
        out = self.warp("--clamp", "offset", "--shift-x", "2", "--shift-y", "0", "--wrap", "none")
        edge = self.original.samples[:3]
        self.assertEqual(out.samples[:21], edge * 2 + self.original.samples[:15])

    def test_samplings_differ_between_pixels(self):
        outs = {name: self.warp("--sampling", name, "offset", "--shift-x", "0.5", "--shift-y", "0").samples
                for name in ("nearest", "bilinear", "bicubic")}
        self.assertEqual(len(set(outs.values())), 3)

    def test_several_pictures_go_to_a_folder(self):
        self.write("second.png", pattern(4, 4, 1))
        self.succeed(self.run_command("warp", "in.png", "second.png", "made/{name}.png", "offset", "--shift-x", "0",
                                      "--shift-y", "0"))
        self.assertEqual(self.png("made/in.png"), self.original)
        self.assertEqual(self.png("made/second.png"), pattern(4, 4, 1))

    def test_the_extent_is_told_and_nothing_written(self):
        answer = self.succeed(self.run_command("warp", "in.png", "--extent", "offset", "--shift-x", "2.5", "--shift-y",
                                               "1", "--wrap", "none"))
        self.assertEqual(answer.text, "in.png: 7 x 5, positions from x -2.5 to 3.5, from y -1 on\n")
        self.assertEqual(self.names(), ["in.png"])

    def test_help_is_shown_for_the_command_and_for_a_warp(self):
        self.assertIn("WARP", self.succeed(self.run_command("warp", "--help")).text)
        self.assertIn("--shift-x", self.succeed(self.run_command("warp", "a", "b", "offset", "--help")).text)

    def test_mistakes_are_refused_with_a_sentence(self):
        for words, code, *wanted in ((("in.png", "out.png"), USAGE, "warp is missing"),
                                     (("in.png", "out.png", "ofset"), USAGE, "warp is missing", "offset"),
                                     (("in.png", "offset"), USAGE, "one file name"),
                                     (("in.png", "out.png", "offset", "ofset"), USAGE, "no warp", "offset"),
                                     (("in.png", "out.png", "offset", "--shift", "2"), USAGE, "--shift"),
                                     (("in.png", "out.png", "offset", "--shift-x", "wide"), USAGE, "wide"),
                                     (("in.png", "out.png", "--sampling", "best", "offset"), USAGE, "best"),
                                     (("--extent", "offset"), USAGE, "input is missing"),
                                     (("none.png", "out.png", "offset"), FAILED, "none.png"),
                                     (("none.png", "--extent", "offset"), FAILED, "none.png")):
            with self.subTest(words):
                self.refuse(self.run_command("warp", *words), code, *wanted)


if __name__ == "__main__":
    unittest.main()
