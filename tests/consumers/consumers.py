"""Compiles users' programs against an installed library and runs them; then again from where the tree was moved to.

    consumers.py <consumers.json> [words that a case's name must contain]
"""

import json
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import traceback
import types

STRICT = ("-Wall", "-Wextra", "-Werror", "-pedantic-errors")
ALL_RIGHT = 100  # what msvc_abi.c answers


def run(*command, status=0, folder=None, **environment):
    words = [str(word) for word in command]
    done = subprocess.run(words, cwd=folder, capture_output=True, text=True,
                          env={**os.environ, **{key: str(value) for key, value in environment.items()}})
    if done.returncode != status:
        raise RuntimeError(f"{' '.join(words)}\nexit status {done.returncode}, not {status}\n"
                           f"{done.stdout}{done.stderr}")
    return done.stdout


def tool(name):
    if not settings[name]:
        raise RuntimeError(f"{name.replace('_', '-')} is not installed (Debian: clang, lld, llvm, pkg-config)")
    return settings[name]


def program(place, name):
    return place.scratch / (name + (".exe" if is_windows else ""))


def run_program(place, path, status=0):
    """Runs a program with the installed library in its reach. On Windows the library stands beside it."""
    if is_windows:
        shutil.copy(place.prefix / "bin" / "zlv40.dll", path.parent)
        return run(settings["emulator"], path, status=status)
    return run(path, status=status, LD_LIBRARY_PATH=place.prefix / "lib")


def check_output(text):
    if "the pixels are right" not in text:
        raise RuntimeError(f"unexpected output: {text}")


def compile_and_run(place, name, compiler, source, *flags):
    built = program(place, name)
    run(compiler, *flags, *STRICT, "-I", place.prefix / "include", place.sources / source, "-o", built,
        "-L", place.prefix / "lib", "-lzlv40", *(["-static"] if is_windows else []))
    check_output(run_program(place, built))


def c99(place):
    compile_and_run(place, "c99", settings["c"], "invert.c", "-std=c99")


def cxx17(place):
    compile_and_run(place, "cxx17", settings["cxx"], "invert.cpp", "-std=c++17", "-pthread")


def cmake_package(place):
    build = place.scratch / "package"
    toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={settings['toolchain']}"] if settings["toolchain"] else []
    # The toolchain file looks for packages in the system's own tree only; a user names the place of this one.
    run(settings["cmake"], "-S", place.sources / "package", "-B", build, f"-DCONSUMER_SOURCES={place.sources}",
        f"-Dzlv40_DIR={place.prefix / 'lib' / 'cmake' / 'zlv40'}", *toolchain)
    run(settings["cmake"], "--build", build)
    check_output(run_program(place, build / ("consumer.exe" if is_windows else "consumer")))


def pkg_config(place):
    found = {"PKG_CONFIG_PATH": place.prefix / "lib" / "pkgconfig", "PKG_CONFIG_LIBDIR": ""}
    words = shlex.split(run(tool("pkg_config"), "--cflags", "--libs", "zlv40", **found))
    built = program(place, "pkg_config")
    run(settings["c"], "-std=c99", *STRICT, place.sources / "invert.c", "-o", built, *words,
        *(["-static"] if is_windows else []))
    check_output(run_program(place, built))


def msvc_abi(place):
    """An import library of kernel32 is made here: nothing of Microsoft's is needed."""
    definition = place.scratch / "kernel32.def"
    definition.write_text("LIBRARY KERNEL32.dll\nEXPORTS\n    ExitProcess\n    GlobalFree\n")
    kernel32 = place.scratch / "kernel32.lib"
    run(tool("llvm_dlltool"), "-m", "i386:x86-64", "-d", definition, "-l", kernel32)
    built = place.scratch / "msvc_abi.obj"
    run(tool("clang"), "--target=x86_64-pc-windows-msvc", "-ffreestanding", "-nostdlibinc", "-fno-builtin", "-std=c99",
        "-O1", *STRICT, "-I", place.prefix / "include", "-c", place.sources / "msvc_abi.c", "-o", built)
    linked = program(place, "msvc_abi")
    run(tool("lld_link"), "/nodefaultlib", "/entry:Start", "/subsystem:console", f"/out:{linked}", built,
        place.prefix / "lib" / "zlv40.lib", kernel32)
    run_program(place, linked, status=ALL_RIGHT)


def header_alone(place):
    """The public header as the only text, in every dialect, before and after <windows.h>."""
    header = '#include "zlv40.h"\n'
    texts = {"alone": header, "twice": header + header}
    if is_windows:
        windows = "#include <windows.h>\n"
        lean = "#define WIN32_LEAN_AND_MEAN\n" + windows
        texts.update({"after_windows": windows + header, "before_windows": header + windows,
                      "after_lean_windows": lean + header})
    use = "uint32_t Use(uint8_t* p);\nuint32_t Use(uint8_t* p) { return ZLV40_InvertImage(p, 1, 1, 1, 1, 0); }\n"
    compilers = [(settings["c"], "c"), (settings["cxx"], "c++")]
    if not is_windows:
        compilers += [(tool("clang"), "c"), (tool("clang"), "c++")]
    count = 0
    for compiler, language in compilers:
        for standard in (("c99", "c11") if language == "c" else ("c++17", "c++20")):
            for name, text in texts.items():
                source = place.scratch / f"header_{name}.{'c' if language == 'c' else 'cpp'}"
                source.write_text(text + use)
                run(compiler, f"-x{language}", f"-std={standard}", *STRICT, "-Wshadow", "-I", place.prefix / "include",
                    "-c", source, "-o", place.scratch / "header.o")
                count += 1
    if count < 8:
        raise RuntimeError(f"only {count} combinations")


def tree_is_relocatable(place):
    """No installed text names the folder that it was built in or installed to first."""
    texts = [path for path in place.prefix.rglob("*") if path.suffix in (".cmake", ".pc", ".h", ".def")]
    if len(texts) < 4:
        raise RuntimeError(f"only {len(texts)} texts are installed")
    for path in texts:
        for folder in (settings["build"], first_prefix):
            if str(folder) in path.read_text():
                raise RuntimeError(f"{path.relative_to(place.prefix)} names {folder}")


def installed_files(place):
    library = {"bin/zlv40.dll", "lib/libzlv40.dll.a", "lib/zlv40.lib", "lib/zlv40.def"} if is_windows else {
        "lib/libzlv40.so"}
    wanted = library | {"include/zlv40.h", "lib/cmake/zlv40/zlv40Config.cmake",
                        "lib/cmake/zlv40/zlv40ConfigVersion.cmake", "lib/pkgconfig/zlv40.pc", "share/doc/zlv40/LICENSE"}
    found = {path.relative_to(place.prefix).as_posix() for path in place.prefix.rglob("*") if path.is_file()}
    missing = wanted - found
    if missing:
        raise RuntimeError(f"not installed: {', '.join(sorted(missing))}")
    internal = [name for name in found if "internal" in name]
    if internal:
        raise RuntimeError(f"installed, and must not be: {', '.join(internal)}")


CASES = [installed_files, tree_is_relocatable, header_alone, c99, cxx17, cmake_package, pkg_config]
WINDOWS_CASES = [msvc_abi]

settings = {}
is_windows = False
first_prefix = None


def run_cases(title, prefix, scratch, wanted):
    scratch.mkdir(parents=True)
    place = types.SimpleNamespace(prefix=prefix, scratch=scratch, sources=pathlib.Path(settings["sources"]))
    failures = ran = 0
    for case in CASES + (WINDOWS_CASES if is_windows else []):
        name = f"{title}/{case.__name__}"
        if any(word not in name for word in wanted):
            continue
        ran += 1
        try:
            case(place)
            print(f"passed  {name}")
        except Exception as problem:
            failures += 1
            print(f"FAILED  {name}\n{problem}" if isinstance(problem, RuntimeError) else traceback.format_exc())
    return ran, failures


def main():
    global is_windows, first_prefix
    settings.update(json.loads(pathlib.Path(sys.argv[1]).read_text()))
    is_windows = settings["system"] == "Windows"
    scratch = pathlib.Path(settings["scratch"])
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir(parents=True)
    first_prefix = scratch / "prefix"
    run(settings["cmake"], "--install", settings["build"], "--prefix", first_prefix, *(
        ["--config", settings["configuration"]] if settings["configuration"] else []))
    results = [run_cases("installed", first_prefix, scratch / "installed", sys.argv[2:])]
    moved = scratch / "elsewhere" / "deeper" / "moved tree"
    moved.parent.mkdir(parents=True)
    first_prefix.rename(moved)
    results.append(run_cases("moved", moved, scratch / "moved", sys.argv[2:]))
    ran, failures = (sum(column) for column in zip(*results))
    print(f"{ran - failures} of {ran} cases passed")
    sys.exit(1 if failures or not ran else 0)


if __name__ == "__main__":
    main()
