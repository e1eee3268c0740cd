"""What all tests of the command share: a folder of their own, a way to run it, words for what is expected."""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

from pictures import png_bytes, read_png

COMMAND, SHAPES, API = (os.environ.get(name, "") for name in ("ZLV_COMMAND", "ZLV_SHAPES", "ZLV_API"))
EMULATOR = os.environ.get("ZLV_EMULATOR", "")
IS_WINDOWS_PROGRAM = COMMAND.endswith(".exe")
DONE, FAILED, USAGE, INTERRUPTED = 0, 1, 2, 130
sys.path.insert(0, API)


class Answer:
    def __init__(self, code, output, errors):
        self.code, self.bytes = code, output
        self.text = output.decode("utf-8", "replace").replace("\r\n", "\n")
        self.errors = errors.decode("utf-8", "replace").replace("\r\n", "\n")


class CommandTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """Wine starts up anew, for seconds, unless a program is running already: one waits for input meanwhile."""
        if EMULATOR:
            waiting = subprocess.Popen([EMULATOR, COMMAND, "apply", "invert", "-", "-"], stdin=subprocess.PIPE,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            cls.addClassCleanup(waiting.communicate)

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="zlv-tools-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def line(self, arguments, program=COMMAND):
        self.assertTrue(program, "ZLV_COMMAND and ZLV_SHAPES name the programs")
        return ([EMULATOR] if EMULATOR else []) + [program, *map(str, arguments)]

    def run_command(self, *arguments, program=COMMAND, data=None):
        answer = self.run_once(*arguments, program=program, data=data)
        # The command never fails without a sentence. Wine, on a busy machine, ends a program before it has begun.
        if EMULATOR and answer.code == FAILED and not answer.bytes and not answer.errors:
            answer = self.run_once(*arguments, program=program, data=data)
        return answer

    def run_once(self, *arguments, program, data):
        # Files, not pipes: services that Wine starts inherit a pipe and hold it open after the program has ended.
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors, tempfile.TemporaryFile() as given:
            given.write(data or b"")
            given.seek(0)
            done = subprocess.run(self.line(arguments, program), cwd=self.folder, stdin=given, stdout=output,
                                  stderr=errors, timeout=300)
            output.seek(0)
            errors.seek(0)
            return Answer(done.returncode, output.read(), errors.read())

    def run_shapes(self, *arguments):
        return self.run_command(*arguments, program=SHAPES)

    def write(self, name, data):
        """Writes bytes, or a picture as PNG; returns the name as an argument."""
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data if isinstance(data, bytes) else png_bytes(data))
        return name

    def read(self, name):
        return (self.folder / name).read_bytes()

    def png(self, name):
        return read_png(self.read(name))

    def names(self):
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file())

    def succeed(self, answer):
        self.assertEqual((answer.code, answer.errors), (DONE, ""))
        return answer

    def refuse(self, answer, code, *words):
        """One sentence on standard error that holds all the words, and nothing on standard output."""
        self.assertEqual(answer.code, code, answer.errors)
        self.assertEqual(answer.text, "")
        self.assertEqual(answer.errors.count("\n"), 1, answer.errors)
        self.assertRegex(answer.errors, r"^zlv: .*[.?]\n$")
        for word in words:
            self.assertIn(word, answer.errors)


def needs_signals(test):
    reason = "a console's Ctrl-C cannot be sent to a program under Wine that has no console"
    return unittest.skipIf(IS_WINDOWS_PROGRAM, reason)(test)


def interrupt(process):
    process.send_signal(signal.SIGINT)
