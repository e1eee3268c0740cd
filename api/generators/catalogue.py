"""The command's catalogue: a C++ table of the effects, and for each a function that calls its export.

Only exports with a `command` stand in it: those that one call applies to one picture, and warps, which a call puts into
the warp list before a picture goes through it. The table's types are declared in tools/zlv/catalogue.h. The values of a
call travel as doubles, one slot an argument that the user can set; a double holds every i32 and u32 exactly.
"""
import json

import description

VALUE_ROLES = ("number", "choice", "mask", "flags", "point")
LIMITS = {"u8": (0, 2**8 - 1), "u16": (0, 2**16 - 1), "u32": (0, 2**32 - 1),
          "i8": (-2**7, 2**7 - 1), "i16": (-2**15, 2**15 - 1), "i32": (-2**31, 2**31 - 1)}
REALS = ("f32", "f64")
OF_THE_COMMAND = {"help", "jobs", "output", "quality", "format", "quiet", "progress", "version"}
CHANNELS_OF_PICTURES = (1, 2, 3, 4)
LONGEST_LITERAL = 2000
ALL_CHANNELS = 255  # an effect takes eight at most
MASK_OF_FLAGS, MASK_ABOUT = "channel-mask", "bit c selects channel c"


def dashed(name):
    """channelMask -> channel-mask."""
    return "".join("-" + letter.lower() if letter.isupper() else letter for letter in name).strip("-")


def ranged_number(facts, argument, where):
    """The facts of a number: kind, range, step, default."""
    is_real = argument.type in REALS
    if not is_real and argument.type not in LIMITS:
        description.fail(where, f"the command has no numbers of type {argument.type}")
    lowest, highest = (None, None) if is_real else LIMITS[argument.type]
    return {"kind": "real" if is_real else "integer", "unit": facts.get("unit", ""),
            "minimum": facts.get("minimum", lowest), "maximum": facts.get("maximum", highest),
            "step": facts.get("step"), "default": facts["default"]}


def switches(argument, where):
    """A flags argument becomes one switch a bit."""
    default = argument.facts.get("default", 0) & ~argument.facts.get("mask", 0)
    if default & ~sum(flag["value"] for flag in argument.facts.get("flags", [])):
        description.fail(where, "the default has bits that no flag names")
    for flag in argument.facts.get("flags", []):
        if "option" not in flag and not flag.get("sweeps", True):
            continue
        if "option" not in flag:
            description.fail(where, f"{flag['name']} needs an option")
        yield {"name": flag["option"], "argument": argument.name, "kind": "switch", "about": flag["about"],
               "bit": flag["value"], "default": bool(default & flag["value"]), "channels": flag.get("channels", [])}


def coordinates(argument, where):
    """A point becomes two numbers: pairs of how far behind its slot one stands, and the parameter."""
    if "default" not in argument.facts:
        description.fail(where, "the command needs a default")
    for offset, axis in enumerate("xy"):
        yield offset, {"name": f"{argument.facts.get('option', dashed(argument.name))}-{axis}",
                       "argument": argument.name, "kind": "integer", "unit": "pixels",
                       "minimum": LIMITS["i32"][0], "maximum": LIMITS["i32"][1], "step": None,
                       "default": argument.facts["default"][offset],
                       "about": f"{axis} of {argument.facts['about']}"}


def parameters_of_argument(argument, where):
    """What the user can set of one argument, as the JSON listing shows it."""
    facts = argument.facts
    if argument.role == "flags":
        yield from switches(argument, where)
        return
    if argument.role != "mask" and "default" not in facts:
        description.fail(where, "the command needs a default")
    parameter = {"name": facts.get("option", dashed(argument.name)), "argument": argument.name}
    if argument.role == "mask":
        chosen = facts.get("default", ALL_CHANNELS)
        parameter |= {"kind": "mask", "default": "all" if chosen & ALL_CHANNELS == ALL_CHANNELS else chosen}
    elif argument.role == "choice":
        choices = [{key: choice.get(key, "") for key in ("name", "value", "about")} for choice in facts["choices"]]
        named = [choice["name"] for choice in choices if choice["value"] == facts["default"]]
        if not named:
            description.fail(where, f"no choice has the default's value {facts['default']}")
        parameter |= {"kind": "choice", "default": named[0], "choices": choices}
    elif facts.get("unit") == "colour":
        parameter |= {"kind": "colour", "default": "#" + facts["default"].to_bytes(3, "little").hex()}
    else:
        parameter |= ranged_number(facts, argument, where)
    yield parameter | {"about": facts.get("about", "")}


def slots_of(argument):
    """How many values of a call an argument is made of: a flags argument with a mask has two, and a point; a fixed one
    none."""
    if argument.facts.get("fixed"):
        return 0
    return ((argument.role in VALUE_ROLES) + (argument.role == "flags" and "mask" in argument.facts)
            + (argument.role == "point"))


def parameters_of(export):
    """All parameters of an export, each with the slot that it sets."""
    found, slot = [], 0
    for argument in export.arguments:
        where = f"{export.family}, {export.name}, {argument.name}"
        if argument.role == "flags" and slots_of(argument) == 2:
            found.append((slot + 1, {"name": MASK_OF_FLAGS, "argument": argument.name, "kind": "mask",
                                     "default": "all", "about": MASK_ABOUT}))
        if argument.role == "point":
            found.extend((slot + offset, parameter) for offset, parameter in coordinates(argument, where))
        elif slots_of(argument):
            found.extend((slot, parameter) for parameter in parameters_of_argument(argument, where))
        slot += slots_of(argument)
    names = [parameter["name"] for _, parameter in found]
    for name in names:
        if names.count(name) > 1 or name in OF_THE_COMMAND or name.startswith("no-"):
            description.fail(f"{export.family}, {export.name}", f"the option {name} is taken; set `option`")
    return found


# What a warp's Add function leaves to the function that sends a picture through the list.
WARP_FACTS = {"channels": [1, 2, 3, 4], "progress": "row", "cancel": True, "random": False, "threads": "caller"}


def is_warp(export):
    return export.facts.get("warp", False)


def facts_of(export):
    return WARP_FACTS | export.facts if is_warp(export) else export.facts


def images_of(export):
    """{image argument: its name in the call}: one picture worked on in place, or a source and a target."""
    where = f"{export.family}, {export.name}"
    if is_warp(export):
        return {}
    images = [argument for argument in export.arguments if argument.role == "image"]
    written = [image for image in images if image.facts["access"] != "in"]
    if len(written) != 1 or len(images) > 2 or export.result != "status":
        description.fail(where, "a command changes one picture, or makes a second one from it, and returns a status")
    return {image.name: "target" if image in written else "source" for image in images}


def image_called(export, role):
    """The image argument that is the call's source or target; None when there is no source."""
    names = [name for name, called in images_of(export).items() if called == role]
    return next((argument for argument in export.arguments if argument.name in names), None)


def channels_read(export):
    """The counts of channels of a picture that the effect takes."""
    if is_warp(export):
        return WARP_FACTS["channels"]
    image = image_called(export, "source") or image_called(export, "target")
    return [count for count in image.facts.get("channels", export.facts["channels"]) if count in CHANNELS_OF_PICTURES]


def channels_made(export):
    """The counts of the picture that it makes; empty when they are those of the picture that it takes."""
    return image_called(export, "target").facts.get("channels", []) if image_called(export, "source") else []


def argument_text(export, argument, images, slot):
    """The C++ expression for one argument of the call."""
    values = "values" if is_warp(export) else "call.values"
    if argument.role == "image":
        return f"call.{images[argument.name]}.samples"
    if is_warp(export) and argument.role in ("width", "height"):
        return argument.role
    if argument.role in ("width", "height", "channels", "stride"):
        of = argument.facts.get("of", next(iter(images)))
        return f"static_cast<{argument.c_type}>(call.{images[of]}.{argument.role})"
    if argument.facts.get("fixed") or argument.role == "count":
        return f"static_cast<{argument.c_type}>({argument.facts['default']})"
    if argument.role == "in" and "values" in argument.facts:
        return argument.name
    if argument.role == "mask":
        return f"static_cast<{argument.c_type}>(call.Mask({slot}))"
    if argument.role == "point":
        return f"&{argument.name}"
    if argument.role in VALUE_ROLES:
        text = f"static_cast<{argument.c_type}>({values}[{slot}])"
        return f"{text} | call.Mask({slot + 1})" if slots_of(argument) == 2 else text
    if argument.is_pointer and argument.facts["null"] == "allowed":
        return "nullptr"
    return description.fail(f"{export.family}, {export.name}, {argument.name}",
                            f"the command cannot pass an argument with the role {argument.role}")


def recipe_declaration(recipe):
    """What a recipe does is written by hand, below tools/zlv."""
    return f"uint32_t Call{recipe.name}(const EffectCall& call);\n"


def call_function(export):
    images = images_of(export)
    texts, constants, slot = [], "", 0
    for argument in export.arguments:
        if argument.role == "point":
            x, y = (f"static_cast<int32_t>(call.values[{slot + offset}])" for offset in (0, 1))
            constants += f"    const point {argument.name} = {{{x}, {y}}};\n"
        if argument.role == "in" and "values" in argument.facts:
            values = ", ".join(str(value) for value in argument.facts["values"])
            element = description.SCALARS[argument.element]
            constants += f"    static constexpr {element} {argument.name}[] = {{{values}}};\n"
        texts.append(argument_text(export, argument, images, slot))
        slot += slots_of(argument)
    stem = export.name.removeprefix("ZLV40_")
    call = f"uint32_t Call{stem}(const EffectCall& call)"
    body = f"{{\n{constants}    return {export.name}(\n        " + ",\n        ".join(texts) + ");\n}\n"
    if not is_warp(export):
        return f"{call}\n{body}"
    return (f"uint32_t Warp{stem}(uint32_t width, uint32_t height, std::span<const double> values)\n{body}\n"
            f"{call}\n{{\n    return WarpOnce(call, Warp{stem});\n}}\n")


def quoted(text):
    return json.dumps(text, ensure_ascii=True)


def long_quoted(text):
    """A text as several literals: compilers need not take one of any length."""
    pieces = [text[start:start + LONGEST_LITERAL] for start in range(0, len(text), LONGEST_LITERAL)]
    return "\n    ".join(quoted(piece) for piece in pieces)


def number(value, when_missing):
    return when_missing if value is None else repr(float(value))


def default_value(parameter):
    """The default as the number that is passed; a mask's "all" is every bit."""
    default = parameter["default"]
    if parameter["kind"] == "choice":
        return next(choice["value"] for choice in parameter["choices"] if choice["name"] == default)
    if parameter["kind"] == "colour":
        return int.from_bytes(bytes.fromhex(default[1:]), "little")
    if parameter["kind"] == "switch":
        return parameter["bit"] if default else 0
    return 0xFFFFFFFF if default == "all" else default


def channel_bits(counts):
    return sum(1 << count for count in counts)


def record(*fields):
    return "    {" + ", ".join(str(field) for field in fields) + "},\n"


def truth(value):
    return "true" if value else "false"


def parameter_entry(identifier, index, slot, parameter):
    """The fields of a Parameter, in their order."""
    return record(
        quoted(parameter["name"]), quoted(parameter["about"]), quoted(parameter.get("unit", "")),
        "Parameter::Kind::" + parameter["kind"].capitalize(), slot,
        number(parameter.get("minimum"), "-kUnlimited"), number(parameter.get("maximum"), "kUnlimited"),
        number(parameter.get("step"), "0.0"), number(default_value(parameter), None),
        f"{parameter.get('bit', 0)}u", f"{channel_bits(parameter.get('channels', []))}u",
        f"{identifier}Choices{index}" if parameter["kind"] == "choice" else "{}")


def parameter_tables(export, found):
    """The constant tables of one effect: choices of its parameters, the parameters."""
    identifier = "k" + export.name.removeprefix("ZLV40_")
    text, rows = "", ""
    for index, (slot, parameter) in enumerate(found):
        rows += parameter_entry(identifier, index, slot, parameter)
        if parameter["kind"] == "choice":
            choices = "".join(record(quoted(choice["name"]), number(choice["value"], None), quoted(choice["about"]))
                              for choice in parameter["choices"])
            text += f"constexpr Choice {identifier}Choices{index}[] = {{\n{choices}}};\n"
    return text + (f"constexpr Parameter {identifier}Parameters[] = {{\n{rows}}};\n" if rows else "")


def listing(family, export, found):
    """One effect as `zlv list --json` shows it."""
    facts = facts_of(export)
    return {"name": facts["command"], "function": export.function, "family": family.name, "familyTitle": family.title,
            "summary": export.summary, "channels": channels_read(export), "channelsMade": channels_made(export),
            "progress": facts["progress"], "cancel": facts["cancel"], "random": facts["random"],
            "threads": facts["threads"],
            "parameters": [parameter for _, parameter in found]}


def effect_entry(family, export, found):
    """The fields of an Effect, in their order."""
    stem, facts = export.name.removeprefix("ZLV40_"), facts_of(export)
    return record(
        quoted(facts["command"]), quoted(export.function), quoted(export.summary), quoted(family.title),
        quoted(facts["progress"]), truth(facts["cancel"]), truth(facts["random"]), truth(facts["threads"] == "own"),
        truth(is_warp(export) or image_called(export, "source")), f"{channel_bits(channels_read(export))}u",
        f"{channel_bits(channels_made(export))}u",
        sum(slots_of(argument) for argument in export.arguments),
        f"k{stem}Parameters" if found else "{}", f"Call{stem}", f"Warp{stem}" if is_warp(export) else "nullptr",
        "\n    " + long_quoted(json.dumps(listing(family, export, found))))


def in_order(family):
    """Its exports, each with the recipes about it behind it."""
    places = [export.name for export in family.exports]
    return sorted(family.exports + family.recipes,
                  key=lambda export: places.index(export.function) if export.function in places else len(places))


def commands(families):
    """[(family, export)] of the exports and recipes that are commands, in the order of the exports that they show."""
    found = [(family, export) for family in families for export in in_order(family) if "command" in export.facts]
    names = [export.facts["command"] for _, export in found]
    for (family, export), name in zip(found, names):
        if names.count(name) > 1:
            description.fail(family.name, f"{export.name}: two effects are called {name}")
    return found


def write(families):
    recipes, calls, tables, entries = "", "", "", ""
    for family, export in commands(families):
        found = parameters_of(export)
        if export in family.recipes:
            recipes += recipe_declaration(export)
        else:
            calls += call_function(export) + "\n"
        tables += parameter_tables(export, found)
        entries += effect_entry(family, export, found)
    text = ("// Written by api/generators/catalogue.py from the description of the exports. Not edited by hand.\n"
            '#include "catalogue.h"\n#include "warps.h"\n#include "zlv40.h"\n\n#include <cstdint>\n\n'
            f"namespace zlv {{\n{recipes}namespace {{\n{calls}{tables}constexpr Effect kEffects[] = {{\n{entries}}};\n"
            "}  // namespace\n\nstd::span<const Effect> AllEffects() { return kEffects; }\n}  // namespace zlv\n")
    return {"catalogue_table.cpp": text}
