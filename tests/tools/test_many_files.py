"""Many pictures in one call."""
import unittest

from command_test import CommandTest, DONE, FAILED
from pictures import inverted, pattern

COUNT = 12


class ManyFiles(CommandTest):
    def setUp(self):
        super().setUp()
        self.originals = {f"p{i}": pattern(8 + i, 5, 1 + i % 4, seed=i + 1) for i in range(COUNT)}
        self.inputs = [self.write(f"{name}.png", picture) for name, picture in self.originals.items()]

    def check(self, name):
        for stem, original in self.originals.items():
            self.assertEqual(self.png(name.format(stem)), inverted(original), stem)

    def test_pattern_with_several_jobs(self):
        for jobs in ("1", "4", "0", "64"):
            with self.subTest(jobs=jobs):
                answer = self.run_command("apply", "invert", *self.inputs, "out/{name}-inverted.png", "--jobs", jobs)
                self.succeed(answer)
                self.check("out/{}-inverted.png")

    def test_output_option_makes_all_names_inputs(self):
        self.succeed(self.run_command("apply", "invert", "-o", "new/{name}.{ext}", *self.inputs, "-j2"))
        self.check("new/{}.png")

    def test_a_folder_keeps_the_names(self):
        (self.folder / "into").mkdir()
        self.succeed(self.run_command("apply", "invert", *self.inputs, "into"))
        self.check("into/{}.png")

    def test_numbers_keep_equal_names_apart(self):
        self.write("a/x.png", pattern(2, 2, 3))
        self.write("b/x.png", pattern(3, 3, 3))
        self.succeed(self.run_command("apply", "invert", "a/x.png", "b/x.png", "{name}-{number}.png"))
        self.assertEqual((self.png("x-1.png").width, self.png("x-2.png").width), (2, 3))

    def test_one_bad_picture_fails_the_call_and_stops_no_other(self):
        self.write("bad.png", b"no picture")
        for jobs in ("1", "3"):
            with self.subTest(jobs=jobs):
                names = [*self.inputs[:3], "bad.png", *self.inputs[3:]]
                answer = self.run_command("apply", "invert", *names, "out/{name}.png", "--jobs", jobs)
                self.assertEqual(answer.code, FAILED)
                self.assertIn("Cannot read \"bad.png\"", answer.errors)
                self.assertIn(f"1 of {COUNT + 1} pictures failed", answer.errors)
                self.check("out/{}.png")
                self.assertNotIn("out/bad.png", self.names())

    def test_results_do_not_depend_on_the_jobs(self):
        for jobs in ("1", "5"):
            self.run_shapes("apply", "lighten", "then", "mirror", *self.inputs, f"{jobs}/{{name}}.png", "--jobs", jobs)
        for stem in self.originals:
            self.assertEqual(self.read(f"1/{stem}.png"), self.read(f"5/{stem}.png"))

    def test_the_bar_is_shown_when_asked_for_and_ends_at_all(self):
        answer = self.run_shapes("apply", "lighten", *self.inputs, "out/{name}.png", "--progress", "--jobs", "2")
        self.assertEqual(answer.code, DONE)
        shares = [int(part.split("%")[0].split()[-1]) for part in answer.errors.split("\r") if "%" in part]
        self.assertEqual(shares, sorted(shares))
        self.assertEqual(shares[-1], 100)

    def test_the_bar_follows_the_reports_of_the_library(self):
        answer = self.run_shapes("apply", "slow", "--pause", "1", self.inputs[0], "out.png", "--progress")
        shares = {part.split("%")[0].split()[-1] for part in answer.errors.split("\r") if "%" in part}
        self.assertGreater(len(shares), 4, answer.errors)


if __name__ == "__main__":
    unittest.main()
