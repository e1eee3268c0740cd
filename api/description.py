"""Reads and checks the description of the exports (families/*.toml)."""
import pathlib
import tomllib
from dataclasses import dataclass, field

FAMILIES = pathlib.Path(__file__).resolve().parent / "families"

RESULTS = {"status": "uint32_t", "code": "uint32_t", "u32": "uint32_t", "void": "void", "pointer": "char*",
           "callback": "ZLVProgressCallback", "handle": "void*", "doubles": "double*"}
FRAMES = {"full", "no-nest-count", "no-call-depth", "callback-span", "error-slot", "out-code", "dispatcher",
          "forwarder", "none"}
SCALARS = {"u8": "uint8_t", "u16": "uint16_t", "u32": "uint32_t", "u64": "uint64_t", "i8": "int8_t",
           "i16": "int16_t", "i32": "int32_t", "i64": "int64_t", "f64": "double", "f32": "float", "char": "char",
           "void": "void", "point": "point"}
FUNCTIONS = {"callback": "ZLVProgressCallback", "warp": "ZLVWarpFunction"}
SAMPLE_BITS = {"u8": 8, "u16": 16, "u32": 32, "f32": 32, "f64": 64, "void": 8}
ROLES = {"image", "width", "height", "channels", "stride", "mask", "flags", "number", "choice", "count", "out", "in",
         "point", "handle", "callback", "callback-data"}
ERRORS = {"OUT_OF_MEMORY": 1, "BAD_ARGUMENT": 5, "CANCELLED": 14, "COULD_NOT_RUN": 17, "NO_BASE_CONTEXT": 55,
          "POLYGON": 61, "TARGET_TOO_SMALL": 68, "TIME_OUT": 84}
EFFECT_KEYS = {"frame", "threads", "progress", "cancel", "random", "depends", "errors", "channels"}


class DescriptionError(Exception):
    """A mistake in a family file; the message names file, export and argument."""


@dataclass
class Argument:
    name: str
    type: str
    role: str
    facts: dict = field(default_factory=dict)

    @property
    def element(self):
        """What a pointer points to."""
        return self.type.removeprefix("const ").rstrip("*")

    @property
    def c_type(self):
        """The type as the public header writes it."""
        if self.type in FUNCTIONS:
            return FUNCTIONS[self.type]
        words = self.type.removeprefix("const ")
        base = words.partition("*")[0]
        return ("const " if self.type.startswith("const ") else "") + SCALARS[base] + words[len(base):]

    @property
    def is_pointer(self):
        return self.type.endswith("*") or self.type in FUNCTIONS


@dataclass
class Export:
    name: str
    family: str
    summary: str
    result: str
    arguments: list
    facts: dict

    @property
    def is_effect(self):
        return "frame" in self.facts

    @property
    def is_swept(self):
        """Whether tests and fuzzers can call it knowing no more than the description."""
        has_handle = any(argument.role == "handle" for argument in self.arguments)
        return self.is_effect and self.result == "status" and not has_handle and self.facts.get("sweeps", True)

    @property
    def function(self):
        """The export that a command shows: itself, or the one that a recipe is about."""
        return self.facts.get("function", self.name)

    @property
    def symbol(self):
        return "_" + self.name


@dataclass
class Family:
    name: str
    title: str
    about: str
    exports: list
    recipes: list  # effects of the command that take several calls, described like exports
    place: int = 0  # where it stands among the others, wherever families are listed


def fail(where, what):
    raise DescriptionError(f"{where}: {what}")


def read_argument(where, facts):
    for key in ("name", "type", "role"):
        if key not in facts:
            fail(where, f"an argument lacks its {key}")
    where = f"{where}, {facts['name']}"
    if facts["role"] not in ROLES:
        fail(where, f"unknown role {facts['role']}")
    argument = Argument(facts["name"], facts["type"], facts["role"],
                        {k: v for k, v in facts.items() if k not in ("name", "type", "role")})
    try:
        argument.c_type
    except KeyError:
        fail(where, f"unknown type {facts['type']}")
    if argument.role == "image" and argument.type.removeprefix("const ").rstrip("*") not in SAMPLE_BITS:
        fail(where, f"an image has no samples of type {argument.type}")
    if argument.role == "point" and argument.type != "const point*":
        fail(where, "a point is a const point*")
    if argument.is_pointer and "null" not in facts:
        fail(where, "a pointer says what null gives")
    for flag in facts.get("flags", []):
        if not {"name", "value", "about"} <= flag.keys():
            fail(where, "a flag needs name, value and about")
    return argument


def read_export(where, family, facts):
    if not facts.get("name", "").startswith("ZLV40_"):
        fail(where, "every export starts with ZLV40_")
    return read_function(where, family, facts)


def read_recipe(where, family, facts):
    recipe = read_function(where, family, facts | {"result": "status"})
    if not {"command", "function", "frame"} <= recipe.facts.keys():
        fail(where, f"{recipe.name}: a recipe has a command and a function, and is described like an effect")
    return recipe


def read_function(where, family, facts):
    name = facts.get("name", "")
    where = f"{where}, {name}"
    if facts.get("result") not in RESULTS:
        fail(where, f"unknown result {facts.get('result')}")
    if "frame" in facts:
        missing = EFFECT_KEYS - facts.keys()
        if missing:
            fail(where, f"an effect also needs {', '.join(sorted(missing))}")
        if facts["frame"] not in FRAMES:
            fail(where, f"unknown frame {facts['frame']}")
        unknown = set(facts["errors"]) - ERRORS.keys()
        if unknown:
            fail(where, f"unknown errors {', '.join(sorted(unknown))}")
    arguments = [read_argument(where, argument) for argument in facts.get("arguments", [])]
    names = [argument.name for argument in arguments]
    if len(set(names)) != len(names):
        fail(where, "two arguments have one name")
    rest = {k: v for k, v in facts.items() if k not in ("name", "summary", "result", "arguments")}
    return Export(name, family, facts.get("summary", ""), facts["result"], arguments, rest)


def read_family(path):
    with open(path, "rb") as source:
        facts = tomllib.load(source)
    if facts.get("family") != path.stem:
        fail(path.name, "the family is named like its file")
    exports = [read_export(path.name, facts["family"], export) for export in facts.get("export", [])]
    recipes = [read_recipe(path.name, facts["family"], recipe) for recipe in facts.get("recipe", [])]
    return Family(facts["family"], facts["title"], facts["about"], exports, recipes, facts.get("place", 0))


def read_all():
    """All families in the order of their places. An export stands in one of them only."""
    families = sorted((read_family(path) for path in FAMILIES.glob("*.toml")), key=lambda family: family.place)
    if not all(before.place < behind.place for before, behind in zip(families, families[1:])):
        fail("families", "each has a place of its own")
    seen = {}
    for family in families:
        for export in family.exports:
            if export.name in seen:
                fail(family.name, f"{export.name} stands in {seen[export.name]} too")
            seen[export.name] = family.name
    return families
