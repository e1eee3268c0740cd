"""Reference pages in Markdown: one a family, and an index with all effects."""
import description
from generators import catalogue

PROGRESS = {"none": "It never reports progress.", "row": "It reports once a row.",
            "channel": "It reports once a channel.", "stage": "It reports once a stage."}
ACCESS = {"in": "read", "out": "written", "inout": "changed in place"}
ZERO = {"nothing": "0 is nothing to do"}
OUTSIDE = {"limited": "others are limited to it", "ignored": "others are ignored",
           "accepted": "others are accepted"}


def cell(text):
    """A text that does not end a cell of a table."""
    return text.replace("|", "\\|").replace("\n", " ")


def table(heads, rows):
    lines = [heads, ["---"] * len(heads), *rows]
    return "".join("| " + " | ".join(cell(text) for text in line) + " |\n" for line in lines)


def effects_table(families):
    """All effects as the README shows them: name, command, summary."""
    rows = [[f"`{export.function}`", f"`{export.facts['command']}`", export.summary]
            for _, export in catalogue.commands(families)]
    return table(["Function", "Command", "What it does"], rows)


def error_name(code):
    return f"`ZLV40_ERROR_{code}`"


def range_text(argument):
    """The accepted range and unit of a number, as far as they are described."""
    facts = argument.facts
    lowest, highest = facts.get("minimum"), facts.get("maximum")
    text = ""
    if lowest is not None and highest is not None:
        text = f"{lowest} to {highest}"
    elif lowest is not None:
        text = f"{lowest} or more"
    elif highest is not None:
        text = f"{highest} or less"
    if "step" in facts:
        text += f" in steps of {facts['step']}"
    return " ".join(part for part in (text, facts.get("unit", "")) if part)


def meaning(argument):
    """What an argument is, in one cell."""
    facts = argument.facts
    parts = []
    if argument.role == "image":
        parts.append(f"{'text' if facts.get('text') else 'an image'}, {ACCESS[facts['access']]}")
    if "about" in facts:
        parts.append(facts["about"])
    if argument.role == "flags" and "mask" in facts:
        parts.append(f"channels ({facts['mask']}): {catalogue.MASK_ABOUT}")
    for flag in facts.get("flags", []):
        parts.append(f"`{flag['name']}` ({flag['value']}): {flag['about']}")
    for choice in facts.get("choices", []):
        parts.append(f"{choice['value']}: {choice.get('about') or choice['name']}")
    if "null" in facts:
        parts.append("null is allowed" if facts["null"] == "allowed" else f"null gives {error_name(facts['null'])}")
    if "zero" in facts:
        parts.append(ZERO.get(facts["zero"]) or f"0 gives {error_name(facts['zero'])}")
    if "outside" in facts:
        parts.append(OUTSIDE.get(facts["outside"]) or f"others give {error_name(facts['outside'])}")
    return "; ".join(parts)


def declaration(export):
    arguments = ", ".join(f"{argument.c_type} {argument.name}" for argument in export.arguments) or "void"
    return f"```c\n{description.RESULTS[export.result]} {export.name}({arguments});\n```\n"


def behaviour(export):
    """Errors, progress, threads and randomness of an effect, in sentences."""
    facts = export.facts
    errors = ", ".join(error_name(code) for code in facts["errors"])
    lines = [f"Errors: {errors}." if errors else "It leaves no error.",
             PROGRESS.get(facts["progress"], f"It reports once a {facts['progress']}."),
             "The callback can cancel it." if facts["cancel"] else "It cannot be cancelled.",
             "It starts threads of its own." if facts["threads"] == "own" else "It works on the calling thread."]
    if facts["random"]:
        lines.append("It draws from the thread's random generator.")
    return f"Channels: {', '.join(str(count) for count in facts['channels'])}. " + " ".join(lines) + "\n"


def command_part(export):
    """How the command calls it."""
    rows = []
    for _, parameter in catalogue.parameters_of(export):
        allowed = ", ".join(choice["name"] for choice in parameter.get("choices", []))
        if parameter["kind"] in ("integer", "real"):
            allowed = " to ".join(str(parameter[key]) for key in ("minimum", "maximum") if parameter[key] is not None)
        default = {True: "on", False: "off"}.get(parameter["default"], str(parameter["default"])) \
            if parameter["kind"] == "switch" else str(parameter["default"])
        rows.append([f"`--{parameter['name']}`", parameter["kind"], allowed, default, parameter["about"]])
    text = f"```sh\nzlv apply {export.facts['command']} in.png out.png\n```\n"
    return text + ("\n" + table(["Option", "Kind", "Allowed", "Default", "Meaning"], rows) if rows else "")


def export_part(export):
    text = f"## {export.name}\n\n{export.summary}\n\n{declaration(export)}"
    rows = [[f"`{argument.name}`", f"`{argument.c_type}`", range_text(argument), meaning(argument)]
            for argument in export.arguments]
    if rows:
        text += "\n" + table(["Argument", "Type", "Range", "Meaning"], rows)
    if export.is_effect:
        text += "\n" + behaviour(export)
    if "command" in export.facts:
        text += "\n" + command_part(export)
    return text


def recipe_part(recipe):
    return f"## {recipe.name}\n\n{recipe.summary} The command makes it of several calls.\n\n{command_part(recipe)}"


def family_page(family):
    parts = "\n".join([*map(export_part, family.exports), *map(recipe_part, family.recipes)])
    return f"# {family.title}\n\n{family.about}\n\n{parts}"


def index_page(families):
    rows = [[f"[{family.title}]({family.name}.md)", str(len(family.exports)), family.about] for family in families]
    return ("# Reference\n\nEvery function of the library, by family. The public header `zlv40.h` tells what all "
            "have in common: images, results, threads.\n\n" + table(["Family", "Functions", "About"], rows) +
            "\n## Effects of the command\n\n" + effects_table(families))


def write(families):
    pages = {f"reference/{family.name}.md": family_page(family) for family in families}
    return {"reference/index.md": index_page(families)} | pages
