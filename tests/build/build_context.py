"""What the checks know about the build: paths, tools, objects. Read from the file that CMake writes."""

import json
import pathlib
import subprocess
import sys
import unittest


class BuildContext:
    def __init__(self, file):
        values = json.loads(pathlib.Path(file).read_text())
        self.source = pathlib.Path(values["source"])
        self.generated = pathlib.Path(values["generated"])
        self.scratch = pathlib.Path(values["scratch"])
        self.library = pathlib.Path(values["library"])
        self.is_windows = values["system"] == "Windows"
        self.is_portable = values["portable"] == "1"
        self.compiler = values["compiler"]
        self.nm, self.objdump, self.readelf = values["nm"], values["objdump"], values["readelf"]
        self.library_flags = values["library_flags"].split()
        self.avx2_flags = values["avx2_flags"].split()
        self.objects = [pathlib.Path(path) for path in values["objects"].split("|") if path]

    @property
    def kernel_objects(self):
        return [path for path in self.objects if ".kernels.cpp." in path.name]


def run(*command):
    """The output of a tool that must succeed."""
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))} failed:\n{done.stdout}{done.stderr}")
    return done.stdout


def expect_none(test, findings, hint=""):
    """Fails with a list of the findings, one a line."""
    if isinstance(findings, dict):
        findings = [f"{name}: {', '.join(found)}" for name, found in findings.items()]
    if findings:
        test.fail("\n".join([hint, *findings]))


def main():
    """Runs the tests of the calling program; its first argument is build_context.json."""
    global context
    context = BuildContext(sys.argv.pop(1))
    sys.modules["build_context"].context = context
    unittest.main(module="__main__", verbosity=1)


context = None
