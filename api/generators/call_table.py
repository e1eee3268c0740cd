"""The exports as a table that tests and fuzz targets walk: what each argument is, and a way to call with any values.

All of them are in it. `isSwept` marks those that can be called knowing no more than the description.

A row of arguments is an array of Value, one an argument; `call` hands them to the export with their own types.
"""
import struct

import description
from generators import export_lists

PACKED = {"u8": "<B", "i32": "<i", "u32": "<I", "f64": "<d"}
ANSWERS = {"status": "Status", "code": "Status", "handle": "Object", "doubles": "Object"}
ROLE_NAMES = {role: "Role::" + "".join(part.capitalize() for part in role.split("-")) for role in description.ROLES}


def value(argument, index):
    """The C++ expression that turns Value `index` into the argument."""
    if argument.type in description.FUNCTIONS:
        return f"reinterpret_cast<{argument.c_type}>(values[{index}].pointer)"
    if argument.is_pointer:
        return f"static_cast<{argument.c_type}>(values[{index}].pointer)"
    if argument.type in ("f32", "f64"):
        return f"{argument.c_type}(values[{index}].real)"
    return f"{argument.c_type}(values[{index}].integer)"


def result(export, call):
    """The C++ statement that turns what the export returns into the result of the row's call."""
    if export.result == "void":
        return f"{call};\n         return std::uint64_t(0);"
    if export.result in ("status", "code", "u32"):
        return f"return std::uint64_t({call});"
    return f"return reinterpret_cast<std::uint64_t>({call});"


def answer(export):
    """How a caller learns that a call was refused. The code of a call that is no effect is no refusal."""
    if export.result == "code" and not export.is_effect:
        return "Nothing"
    return ANSWERS.get(export.result, "Nothing")


def kind(argument):
    if argument.is_pointer:
        return "Function" if argument.type in description.FUNCTIONS else "Pointer"
    return "Real" if argument.type in ("f32", "f64") else "Integer"


def element_bytes(argument):
    """How many bytes an element of an array has."""
    pointed = argument.type.removeprefix("const ")[:-1]
    if pointed.endswith(("*", "const")) or pointed == "point":
        return 8
    return 1 if pointed in ("char", "void") else int(pointed[1:]) // 8


def array_shape(export, argument):
    """The fields of an array: the size of an element, and the number of them as far as the description tells it."""
    names = [other.name for other in export.arguments]
    number, of = 1, []
    for factor in argument.facts.get("count", "").split(" * "):
        if factor in names:
            of.append(names.index(factor))
        else:
            number *= int(factor or 0)
    return (f".elementBytes = {element_bytes(argument)}, .count = {number}, "
            f".countOf = {{{', '.join(str(index) for index in of)}}}")


def sample_bits(argument):
    """How many bits a sample of an image has: those of its type, or 1 for packed masks."""
    return argument.facts.get("bits", description.SAMPLE_BITS[argument.type.removeprefix("const ").rstrip("*")])


def stride_bytes(export, place):
    """How many bytes a stride counts."""
    return {"words": 2, "doubles": 8}.get(export.arguments[place].facts.get("unit"), 1) if place >= 0 else 1


def image_shape(export, image):
    """Where among the arguments an image finds its numbers: those that are `of` it, or of no image in particular."""
    def place(role):
        places = {argument.facts.get("of", ""): index for index, argument in enumerate(export.arguments)
                  if argument.role == role}
        return places.get(image.name, places.get("", -1))

    names = [argument.name for argument in export.arguments]
    counts = image.facts.get("channels", [])
    channels = place("channels")
    # A count of the image's own goes before one that belongs to no image in particular.
    if counts and channels >= 0 and "of" not in export.arguments[channels].facts:
        channels = -1
    fixed = counts[0] if counts and channels < 0 else 0
    return (f"{{.width = {place('width')}, .height = {place('height')}, .channels = {channels}, "
            f".stride = {place('stride')}, .strideBytes = {stride_bytes(export, place('stride'))}, "
            f".fixedChannels = {fixed}, .sampleBits = {sample_bits(image)}, "
            f".isWritten = {'false' if image.facts['access'] == 'in' else 'true'}, "
            f".hasWholeRows = {'true' if 'padding' in image.facts else 'false'}, "
            f".isPerChannel = {'true' if image.facts.get('per') == 'channel' else 'false'}, "
            f".isText = {'true' if image.facts.get('text') else 'false'}, "
            f".wider = {names.index(image.facts['wider']) if 'wider' in image.facts else -1}}}")


def argument_row(export, argument):
    facts = argument.facts
    null = facts.get("null", "allowed")
    zero = facts.get("zero", "")
    parts = [
        f'.name = "{argument.name}"',
        f".role = {ROLE_NAMES[argument.role]}",
        f".kind = ArgumentKind::{kind(argument)}",
        f".nullError = {0 if null == 'allowed' else description.ERRORS[null]}",
        f".zero = {'Zero::Nothing' if zero == 'nothing' else 'Zero::Refused' if zero else 'Zero::Plain'}",
    ]
    # In the order of the fields of DescribedArgument.
    if zero not in ("", "nothing"):
        parts.append(f".zeroError = {description.ERRORS[zero]}")
    for key in ("minimum", "maximum", "default"):
        if key in facts and argument.role != "point":
            parts.append(f".{key}{'_' if key == 'default' else ''} = {float(facts[key])!r}")
    for key in ("minimum", "maximum"):
        if key in facts:
            parts.append(f".has{key.capitalize()} = true")
    if facts.get("costs"):
        parts.append(".costs = true")
    if argument.type.startswith("i"):
        parts.append(".isSigned = true")
    if kind(argument) == "Integer":
        parts.append(f".bits = {argument.type[1:]}")
    if "outside" in facts and facts["outside"] not in description.ERRORS:
        parts.append(".isOutsideAccepted = true")
    flags = "".join(f"{{{flag['value']}u, {{{', '.join(str(c) for c in flag.get('channels', []))}}}}}, "
                    for flag in facts.get("flags", []))
    parts.append(f".flags = {{{flags.rstrip(', ')}}}")
    unswept = sum(flag["value"] for flag in facts.get("flags", []) if not flag.get("sweeps", True))
    if unswept:
        parts.append(f".unsweptFlags = {unswept}u")
    if argument.role == "image":
        parts.append(f".image = {image_shape(export, argument)}")
    if argument.role == "point":
        x, y = facts["default"]
        parts.append(f".defaultPoint = {{{x}, {y}}}")
    if "values" in facts:
        data = b"".join(struct.pack(PACKED[argument.element], number) for number in facts["values"])
        parts.append(f".bytes = {{{', '.join(str(byte) for byte in data)}}}")
    if argument.role in ("in", "out"):
        parts.append(array_shape(export, argument))
        parts.append(f".isRead = {'true' if argument.type.startswith('const') else 'false'}")
    return "        {" + ", ".join(parts) + "},"


def effect_row(export):
    arguments = ", ".join(value(argument, i) for i, argument in enumerate(export.arguments))
    facts = export.facts
    channels = ", ".join(str(count) for count in facts.get("channels", []))
    errors = [description.ERRORS[error] for error in facts.get("errors", [])]
    cancelled = description.ERRORS["CANCELLED"]
    lines = [
        f'    {{.name = "{export.name}",',
        f"     .isSwept = {'true' if export.is_swept else 'false'},",
        f"     .answer = Answer::{answer(export)},",
        f"     .channels = {{{channels}}},",
        f"     .errors = {{{', '.join(str(error) for error in errors)}}},",
        f"     .reports = {'false' if facts.get('progress', 'none') == 'none' else 'true'},",
        f"     .canCancel = {'true' if facts.get('cancel') else 'false'},",
        *(["     .repeats = false,"] if not facts.get("repeats", True) else []),
        f"     .cancelError = {cancelled if cancelled in errors else 0},",
        f"     .isCancelQuiet = {'true' if facts.get('quiet_cancel') else 'false'},",
        "     .arguments = {",
        *(argument_row(export, argument) for argument in export.arguments),
        "     },",
        "     .call = []([[maybe_unused]] const Value* values) {",
        f"         {result(export, f'{export.name}({arguments})')}",
        "     }},",
    ]
    return "\n".join(lines)


def write(families):
    exports = [export for family in families for export in family.exports]
    names = "\n".join(f'"{symbol.removeprefix("_")}",' for symbol in export_lists.symbols(families))
    head = "// Generated by api/generators/call_table.py; not edited by hand.\n"
    return {"call_table.inc": head + "\n".join(effect_row(export) for export in exports) + "\n",
            "export_names.inc": head + names + "\n"}
