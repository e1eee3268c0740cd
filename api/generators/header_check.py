"""Compares the public header with the description, function by function."""
import re

import description

DECLARATION = re.compile(r"ZLV40_API\s+(?P<result>[\w\s*]+?)\s*(?P<name>ZLV40_\w+)\((?P<arguments>[^)]*)\);")
COMMENT_BEFORE = re.compile(r"\*/\s*#define (?P<name>\w+) (?P<symbol>\w+)\s*ZLV40_API")


def normal(text):
    """A type with one space between words and none before a star."""
    return re.sub(r"\s*\*", "*", re.sub(r"\s+", " ", text)).strip()


def declared_arguments(text):
    """[(type, name)] of a declaration's argument list."""
    text = normal(text)
    if text in ("", "void"):
        return []
    return [tuple(re.match(r"(.*?)\s*(\w+)$", normal(one)).groups()) for one in text.split(",")]


def compare(header, families):
    """Sentences about every difference; an empty list when header and description agree."""
    declared = {match["name"]: match for match in DECLARATION.finditer(header)}
    described = {export.name: export for family in families for export in family.exports}
    commented = {match["name"]: match["symbol"] for match in COMMENT_BEFORE.finditer(header)}
    mistakes = []
    if not declared:
        mistakes.append("no declaration was found")
    mistakes += [f"{name} is declared and not described" for name in sorted(declared.keys() - described.keys())]
    mistakes += [f"{name} is described and not declared" for name in sorted(described.keys() - declared.keys())]
    for name in sorted(declared.keys() & described.keys()):
        export, match = described[name], declared[name]
        if commented.get(name) != export.symbol:
            mistakes.append(f"{name} needs a comment and '#define {name} {export.symbol}' right above its declaration")
        if normal(match["result"]) != description.RESULTS[export.result]:
            mistakes.append(f"{name} returns {normal(match['result'])}, described as {export.result}")
        wanted = [(argument.c_type, argument.name) for argument in export.arguments]
        found = declared_arguments(match["arguments"])
        if found != wanted:
            mistakes.append(f"{name} is declared with {found}, described with {wanted}")
    if not mistakes and list(declared) != list(described):
        first = next(name for name, wanted in zip(declared, described) if name != wanted)
        mistakes.append(f"{first} stands at another place than in the description; header, catalogue and pages have "
                        "one order")
    return mistakes + flag_mistakes(header, described)


def flag_mistakes(header, described):
    """Flag bits and error codes must have the values that the header gives them."""
    constants = {name: int(value) for name, value in re.findall(r"(ZLV40_[A-Z0-9_]+) = (\d+)", header)}
    mistakes = []
    for export in described.values():
        for argument in export.arguments:
            for flag in argument.facts.get("flags", []):
                if constants.get(flag["name"]) != flag["value"]:
                    mistakes.append(f"{export.name}: {flag['name']} is {constants.get(flag['name'])} in the header, "
                                    f"{flag['value']} in the description")
    for name, value in description.ERRORS.items():
        if constants.get("ZLV40_ERROR_" + name) != value:
            mistakes.append(f"ZLV40_ERROR_{name} is not {value}")
    return mistakes
