"""Builds the library again in another folder and compares the files with those of build/<preset>, byte for byte.

    reproducible.py <preset> [folder to work in]
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILT_FILES = {
    "windows": ("src/zlv40.dll", "src/libzlv40.dll.a", "src/zlv40.lib", "api/generated/zlv40.def"),
    "linux": ("src/libzlv40.so", "api/generated/zlv40.map"),
}


def run(*command, folder):
    done = subprocess.run(command, cwd=folder, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} failed in {folder}:\n{done.stdout}{done.stderr}")
    return done.stdout


def source_files():
    """What git knows or would take; every file when the tree is no repository."""
    if (ROOT / ".git").exists():
        listed = run("git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", folder=ROOT)
        return sorted({name for name in listed.split("\0") if name and (ROOT / name).is_file()})
    return sorted(path.relative_to(ROOT).as_posix() for path in ROOT.rglob("*")
                  if path.is_file() and path.relative_to(ROOT).parts[0] != "build" and "__pycache__" not in path.parts)


def build(names, folder, preset):
    for name in names:
        copy = folder / name
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(ROOT / name, copy)
    run("cmake", "--preset", preset, "-DBUILD_TESTING=OFF", "-DZLV_TOOLS=OFF", folder=folder)
    run("cmake", "--build", "--preset", preset, "--target", "zlv40", "-j2", folder=folder)
    return folder / "build" / preset


def first_difference(one, other):
    for i, (a, b) in enumerate(zip(one, other)):
        if a != b:
            return f"at {i:#x}: {one[i - 16:i + 32]!r} and {other[i - 16:i + 32]!r}"
    return f"{len(one)} and {len(other)} bytes"


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    preset = sys.argv[1]
    names = source_files()
    if "src/CMakeLists.txt" not in names:
        sys.exit("the list of source files is empty")
    differences = 0
    with tempfile.TemporaryDirectory(dir=sys.argv[2] if len(sys.argv) > 2 else None) as scratch:
        first = ROOT / "build" / preset
        second = build(names, pathlib.Path(scratch) / "another folder of a longer name", preset)
        for name in BUILT_FILES["windows" if preset == "windows" else "linux"]:
            one, other = (first / name).read_bytes(), (second / name).read_bytes()
            if not one or one != other:
                differences += 1
                print(f"{name} differs: {first_difference(one, other)}")
            else:
                print(f"{name}: the same {len(one)} bytes")
            if str(ROOT).encode() in one or scratch.encode() in other:
                differences += 1
                print(f"{name} holds the name of the folder it was built in")
    sys.exit(1 if differences else 0)


if __name__ == "__main__":
    main()
