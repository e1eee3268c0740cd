"""The generators refuse what the command cannot call, and the reference pages tell every function."""
import copy
import pathlib
import unittest

import command_test  # finds the folder of the description
import description
from generators import catalogue, reference

SHAPES = pathlib.Path(__file__).resolve().parent / "shapes" / "shapes.toml"


class Pages(unittest.TestCase):
    def test_every_function_stands_on_the_page_of_its_family(self):
        families = description.read_all()
        pages = reference.write(families)
        self.assertGreaterEqual(len(families), 2)
        for family in families:
            page = pages[f"reference/{family.name}.md"]
            for export in family.exports:
                self.assertIn(f"## {export.name}\n", page)
                for argument in export.arguments:
                    self.assertIn(f"| `{argument.name}` | `{argument.c_type}` |", page)
            self.assertIn(f"({family.name}.md)", pages["reference/index.md"])

    def test_the_table_of_effects_has_a_row_for_every_command(self):
        families = description.read_all()
        rows = reference.effects_table(families).splitlines()
        self.assertEqual(len(rows), 2 + len(catalogue.commands(families)))
        invert = "| `ZLV40_InvertImage` | `invert` | Inverts an image in place: every sample v becomes 255 - v. |"
        self.assertIn(invert, rows)

    def test_a_bar_does_not_end_a_cell(self):
        self.assertEqual(reference.table(["a"], [["b | c"]]).splitlines()[-1], "| b \\| c |")


class Refused(unittest.TestCase):
    def changed(self, name, change):
        family = copy.deepcopy(description.read_family(SHAPES))
        change(next(export for export in family.exports if export.name == name))
        return [family]

    def argument(self, export, name):
        return next(argument for argument in export.arguments if argument.name == name)

    def test_descriptions_that_the_command_cannot_call(self):
        for shows, name, change, words in (
                ("a number without default", "ZLV40_TestLighten",
                 lambda export: self.argument(export, "amount").facts.pop("default"), "needs a default"),
                ("an option that the command has", "ZLV40_TestLighten",
                 lambda export: self.argument(export, "amount").facts.update(option="jobs"), "jobs is taken"),
                ("two options of one name", "ZLV40_TestLighten",
                 lambda export: self.argument(export, "amount").facts.update(option="channel-mask"), "is taken"),
                ("a pointer that must not be null", "ZLV40_TestPaint",
                 lambda export: self.argument(export, "curve").facts.update(null="BAD_ARGUMENT"), "role in"),
                ("a default that is no choice", "ZLV40_TestMirror",
                 lambda export: self.argument(export, "axis").facts.update(default=9), "no choice"),
                ("a default bit without a flag", "ZLV40_TestPaint",
                 lambda export: self.argument(export, "flags").facts.update(default=8), "no flag names"),
                ("no picture is written", "ZLV40_TestLighten",
                 lambda export: self.argument(export, "buffer").facts.update(access="in"), "changes one picture"),
                ("two effects of one name", "ZLV40_TestMirror",
                 lambda export: export.facts.update(command="lighten"), "are called lighten")):
            with self.subTest(shows):
                with self.assertRaisesRegex(description.DescriptionError, words):
                    catalogue.write(self.changed(name, change))

    def test_the_description_as_it_is_is_accepted(self):
        self.assertIn("catalogue_table.cpp", catalogue.write([description.read_family(SHAPES)]))


if __name__ == "__main__":
    unittest.main()
