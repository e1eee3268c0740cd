"""Ctrl-C ends the work soon and leaves whole files only."""
import subprocess
import time
import unittest

from command_test import INTERRUPTED, SHAPES, CommandTest, interrupt, needs_signals
from pictures import pattern

SOON = 5.0  # seconds; the effect itself would take a hundred


@needs_signals
class Interrupt(CommandTest):
    def start(self, *arguments, program=SHAPES):
        return subprocess.Popen(self.line(arguments, program), cwd=self.folder, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def finish(self, process):
        started = time.monotonic()
        interrupt(process)
        _, errors = process.communicate(timeout=60)
        self.assertLess(time.monotonic() - started, SOON)
        self.assertEqual(process.returncode, INTERRUPTED)
        self.assertIn("Interrupted", errors.decode())

    def wait_for_progress(self, process):
        """The bar's first character says that the effect is running."""
        self.assertTrue(process.stderr.read(1))

    def test_a_running_effect_is_cancelled_through_the_callback(self):
        self.write("in.png", pattern(4, 4, 4))
        process = self.start("apply", "slow", "--pause", "100", "in.png", "out.png", "--progress")
        self.wait_for_progress(process)
        self.finish(process)
        self.assertEqual(self.names(), ["in.png"])

    def test_every_worker_is_cancelled(self):
        names = [self.write(f"{i}.png", pattern(4, 4, 4)) for i in range(6)]
        process = self.start("apply", "slow", "--pause", "100", *names, "out/{name}.png", "--jobs", "3", "--progress")
        self.wait_for_progress(process)
        self.finish(process)
        self.assertEqual(self.names(), sorted(names))

    def test_between_files_the_finished_ones_stay(self):
        names = [self.write(f"{i}.png", pattern(4, 4, 4)) for i in range(20)]
        process = self.start("apply", "slow", "--pause", "0", "then", "slow", "--pause", "1", *names, "out/{name}.png")
        while not (self.folder / "out" / "1.png").exists():
            time.sleep(0.01)
        self.finish(process)
        written = [name for name in self.names() if name.startswith("out")]
        self.assertTrue(2 <= len(written) < 20, written)
        for name in written:
            self.assertEqual(self.png(name), pattern(4, 4, 4))

    def test_the_former_output_stays_when_the_work_is_interrupted(self):
        self.write("in.png", pattern(4, 4, 4))
        self.write("out.png", b"the former one")
        process = self.start("apply", "slow", "--pause", "100", "in.png", "out.png", "--progress")
        self.wait_for_progress(process)
        self.finish(process)
        self.assertEqual((self.read("out.png"), self.names()), (b"the former one", ["in.png", "out.png"]))


if __name__ == "__main__":
    unittest.main()
