"""One page with every function: its picture, its parameters, its limits, and what the header says of it.

A function's picture is made by the command. `zlv apply COMMAND` with default values makes it when the function, or a
recipe that is about it, has a command; `pictures` of an export names other lines, in which IN and OUT are the files.
"""
import pathlib

import description
from generators import catalogue, header_text, reference

FOLDER = "pictures"
SAMPLES = "examples/pictures"
SAMPLE = "coffee-small.png"
ROLE_WORDS = {"width": "a row", "height": "rows", "channels": "samples a pixel",
              "stride": "from one row to the next"}
RENDERING = "--quality 75"


def lines_of(family, export):
    """The command lines that make its pictures, without the program; none for a function that makes no picture."""
    if "pictures" in export.facts:
        return export.facts["pictures"]
    commands = [one.facts["command"] for one in [export, *family.recipes]
                if one.function == export.name and "command" in one.facts]
    return [f"apply {commands[0]} IN OUT"] if commands else []


def pictures(families):
    """[(file below docs, command line)] of all pictures; files of text end in .txt."""
    found = []
    for family in families:
        for export in family.exports:
            for number, line in enumerate(lines_of(family, export)):
                ending = "txt" if line.startswith("ascii ") else "jpg"
                name = export.name + (f"-{number + 1}" if number else "")
                found.append((f"{FOLDER}/{name}.{ending}", filled(export, line, "OUT")))
    return found


def filled(export, line, output):
    sample = f"{SAMPLES}/{export.facts.get('sample', SAMPLE)}"
    return "zlv " + line.replace("IN", sample).replace("OUT", output)


def rendering(families):
    """The command lines as the script that makes the pictures runs them, below the project's folder."""
    return "".join(line.replace("OUT", f"docs/{name}") + (f" {RENDERING}" if name.endswith(".jpg") else "") + "\n"
                   for name, line in pictures(families))


def anchor(title):
    return "".join(letter for letter in title.lower().replace(" ", "-") if letter.isalnum() or letter in "-_")


def picture_part(family, export, folder):
    text = ""
    for number, line in enumerate(lines_of(family, export)):
        name = export.name + (f"-{number + 1}" if number else "")
        if line.startswith("ascii "):
            art = (folder / FOLDER / f"{name}.txt").read_text()
            shown, output = f"```text\n{art}```\n", "out.txt"
        else:
            shown, output = f"![{export.name}]({FOLDER}/{name}.jpg)\n", "out.jpg"
        text += f"{shown}\n```sh\n{filled(export, line, output)}\n```\n\n"
    return text


def allowed(argument):
    """The accepted values of an argument, in a cell."""
    facts = argument.facts
    if facts.get("choices"):
        return ", ".join(str(choice["value"]) for choice in facts["choices"])
    bits = sorted([flag["value"] for flag in facts.get("flags", [])] + ([facts["mask"]] if "mask" in facts else []))
    if bits:
        return "bits " + ", ".join(map(str, bits))
    if argument.role in ("width", "height") and facts.get("zero", "nothing") != "nothing" and "minimum" not in facts:
        return "1 or more"
    numbers = argument.__class__(argument.name, argument.type, argument.role,
                                 {key: value for key, value in facts.items() if key != "unit"})
    return reference.range_text(numbers)


def default(argument):
    facts = argument.facts
    if "default" not in facts or argument.role == "count":
        return ""
    if argument.role == "mask" or facts.get("mask") and facts["default"] & facts["mask"] == facts["mask"]:
        return "all"
    if facts.get("unit") == "colour":
        return f"0x{facts['default']:06X}"
    if argument.role == "choice":
        return next((f"{choice['value']} ({choice['name']})" for choice in facts["choices"]
                     if choice["value"] == facts["default"]), str(facts["default"]))
    return str(facts["default"])


def meaning(argument):
    """What an argument is; of those that describe an image, what their role says."""
    words = ROLE_WORDS.get(argument.role, "") if "about" not in argument.facts else ""
    if words and argument.role == "width":
        words = f"{argument.facts.get('unit', 'pixels')} a row"
    if words and "of" in argument.facts:
        words += f" of `{argument.facts['of']}`"
    return "; ".join(part for part in (words, reference.meaning(argument)) if part)


def parameters_part(export):
    rows = [[f"`{argument.name}`", f"`{argument.c_type}`", allowed(argument), default(argument),
             argument.facts.get("unit", ""), meaning(argument)] for argument in export.arguments]
    return reference.table(["Parameter", "Type", "Range", "Default", "Unit", "Meaning"], rows) + "\n" if rows else ""


def images_text(export):
    """Whether it works in place."""
    access = [argument.facts["access"] for argument in export.arguments
              if argument.role == "image" and "per" not in argument.facts]
    if "inout" in access:
        return "Reads one image and changes another one." if "in" in access else "In place: the image is changed."
    if "in" in access and "out" in access:
        return "Reads one image and writes another one."
    return ""


def counts_text(counts, argument):
    """Counts of channels, or the range of the argument that tells them."""
    lowest, highest = (argument.facts.get(key) for key in ("minimum", "maximum")) if argument else (1, counts[-1])
    if lowest is not None and highest is None:
        return f"{lowest} or more"
    if highest is not None and highest > counts[-1]:
        return f"{lowest} to {highest}"
    if len(counts) > 2 and counts == list(range(counts[0], counts[-1] + 1)):
        return f"{counts[0]} to {counts[-1]}"
    return ", ".join(map(str, counts))


def channels_text(export):
    """The counts of channels that it accepts, image by image where they differ."""
    told = next((argument for argument in export.arguments if argument.role == "channels"), None)
    found = {}
    for image in export.arguments:
        if image.role != "image" or "per" in image.facts:
            continue
        is_told = told and (told.facts.get("of") == image.name or "channels" not in image.facts)
        counts = export.facts.get("channels", []) if is_told else image.facts.get("channels", [])
        if counts:
            found[image.name] = counts_text(counts, told if is_told else None)
    if len(set(found.values())) > 1:
        return "Channels: " + ", ".join(f"`{name}` {counts}" for name, counts in found.items()) + "."
    return f"Channels: {next(iter(found.values()))}." if found else ""


def errors_text(export):
    if "errors" not in export.facts:
        return ""
    codes = export.facts["errors"]
    if not codes:
        return "Leaves no code."
    return "Codes: " + ", ".join(f"`ZLV40_ERROR_{code}` ({description.ERRORS[code]})" for code in codes) + "."


def calls_text(export):
    """Progress, cancel, threads and randomness."""
    facts = export.facts
    if "errors" not in facts:
        return "Works on the calling thread."
    progress = facts.get("progress", "none")
    words = ["Reports no progress" if progress == "none" else f"Reports once a {progress}",
             "can be cancelled" if facts.get("cancel") else "can't be cancelled",
             "starts threads of its own" if facts.get("threads") == "own" else "works on the calling thread"]
    text = ", ".join(words) + "."
    return text + (" Draws from the thread's random generator." if facts.get("random") else "")


def limits_part(export):
    sentences = [images_text(export), channels_text(export), errors_text(export),
                 calls_text(export)]
    return "".join(f"- {sentence}\n" for sentence in sentences if sentence) + "\n"


def details(summary, text):
    return f"<details><summary>{summary}</summary>\n\n```c\n{text}\n```\n\n</details>\n\n"


def export_part(family, export, folder, functions):
    commands = [one.facts["command"] for one in [export, *family.recipes]
                if one.function == export.name and "command" in one.facts]
    command = f"Command: `{commands[0]}`.\n\n" if commands else ""
    return (f"### {export.name}\n\n{export.summary}\n\n{command}{picture_part(family, export, folder)}"
            f"{parameters_part(export)}{limits_part(export)}"
            f"{details('In the header', functions[export.name])}")


def family_part(family, folder, functions, common):
    shared = common.get(family.title, "")
    return (f"## {family.title}\n\n{family.about}\n\n" + (details("What they have in common", shared) if shared else "")
            + "".join(export_part(family, export, folder, functions) for export in family.exports))


def contents(families):
    rows = []
    for family in families:
        links = ", ".join(f"[{export.name.removeprefix('ZLV40_')}](#{anchor(export.name)})"
                          for export in family.exports)
        rows.append(f"- [{family.title}](#{anchor(family.title)}): {links}\n")
    return "".join(rows)


def write(families, header, folder):
    """The page that stands in `folder`, from the description, the text of the header and the pictures of text."""
    functions, common = header_text.read(header)
    count = sum(len(family.exports) for family in families)
    made_by = "<!-- Written by api/generators/effects_page.py; `make docs` makes it and its pictures. -->"
    lead = (f"All {count} functions of the library, by family. The command lines work in the project's folder; each "
            f"made the picture above it, with `{RENDERING}` more. Defaults are those of the command. What all "
            "functions have in common, such as images, results and threads, is told at the top of "
            "[the header](../include/zlv40.h).")
    samples = (f"| `{SAMPLES}/{SAMPLE}` | `{SAMPLES}/cup.png` |\n| --- | --- |\n"
               f"| ![the photograph](../{SAMPLES}/{SAMPLE}) | ![the cup, cut out](../{SAMPLES}/cup.png) |")
    parts = "".join(family_part(family, folder, functions, common) for family in families)
    return f"# Effects\n\n{made_by}\n\n{lead}\n\n{samples}\n\n{contents(families)}\n{parts}".rstrip("\n") + "\n"


def check(path, families, header):
    """Sentences about what is wrong with the committed page."""
    if not path.exists() or path.read_text() != write(families, header, path.parent):
        return [f"{path} is not what the description and the header give; make docs"]
    missing = [name for name, _ in pictures(families) if not (pathlib.Path(path.parent) / name).exists()]
    return [f"{path}: {name} is missing; make docs" for name in missing]
