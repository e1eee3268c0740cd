"""zlv list, info, help and version: the whole description arrives."""
import json
import unittest

from command_test import SHAPES, CommandTest, DONE, USAGE
import description
from generators import catalogue


def described_commands():
    return {export.facts["command"]: (family, export) for family, export in catalogue.commands(description.read_all())}


class List(CommandTest):
    def test_json_names_every_described_effect_with_its_facts(self):
        listed = json.loads(self.succeed(self.run_command("list", "--json")).text)
        described = described_commands()
        self.assertGreaterEqual(len(described), 1)
        self.assertEqual([effect["name"] for effect in listed], list(described))
        for effect in listed:
            family, export = described[effect["name"]]
            with self.subTest(effect["name"]):
                self.assertEqual(effect["function"], export.function)
                self.assertEqual(effect["family"], family.name)
                self.assertEqual(effect["summary"], export.summary)
                self.assertEqual(effect["cancel"], catalogue.facts_of(export)["cancel"])

    def test_json_has_every_argument_that_can_be_set(self):
        listed = {effect["name"]: effect for effect in json.loads(self.run_command("list", "--json").text)}
        for name, (_, export) in described_commands().items():
            wanted = {argument.name for argument in export.arguments if not argument.facts.get("fixed")
                      and (argument.role in ("number", "choice", "mask", "point") or argument.facts.get("flags"))}
            self.assertEqual({parameter["argument"] for parameter in listed[name]["parameters"]}, wanted)

    def test_table_has_a_line_for_every_effect(self):
        lines = self.succeed(self.run_command("list")).text.splitlines()
        for name, (family, export) in described_commands().items():
            with self.subTest(name):
                self.assertIn(family.title, lines)
                found = [line for line in lines if line.split()[:1] == [name]]
                self.assertEqual(len(found), 1)
                self.assertTrue(found[0].endswith("  " + export.summary))

    def test_json_of_test_effects_has_ranges_choices_and_defaults(self):
        listed = {effect["name"]: effect for effect in json.loads(self.run_shapes("list", "--json").text)}
        amount, mask = listed["lighten"]["parameters"]
        self.assertEqual([amount[key] for key in ("kind", "minimum", "maximum", "step", "default", "unit")],
                         ["integer", -64, 64, 2, 10, "levels"])
        self.assertEqual((mask["name"], mask["default"]), ("channel-mask", "all"))
        axis = listed["mirror"]["parameters"][0]
        self.assertEqual(axis["default"], "columns")
        self.assertEqual([choice["name"] for choice in axis["choices"]], ["columns", "rows"])
        colour, strength, negative, paint = listed["paint"]["parameters"]
        self.assertEqual((colour["default"], strength["default"]), ("#ff0000", 0.5))
        self.assertEqual((negative["default"], paint["default"]), (False, True))


class Info(CommandTest):
    def test_every_effect_tells_its_function_and_its_parameters(self):
        for effect in json.loads(self.run_command("list", "--json").text):
            with self.subTest(effect["name"]):
                text = self.succeed(self.run_command("info", effect["name"])).text
                for word in (effect["function"], effect["summary"]):
                    self.assertIn(word, text)
                for parameter in effect["parameters"]:
                    self.assertRegex(text, rf"--(\[no-\])?{parameter['name']}\n")

    def test_ranges_units_and_defaults_are_told(self):
        text = self.succeed(self.run_shapes("info", "lighten")).text
        self.assertIn("a whole number from -64 to 64 in steps of 2 (levels); default 10", text)
        self.assertIn("Ctrl-C stops it", text)
        text = self.succeed(self.run_shapes("info", "paint")).text
        self.assertIn("a number from 0 to 1; default 0.5", text)
        self.assertIn("a colour as #rrggbb; default #ff0000", text)
        self.assertIn("--[no-]paint-it", text)
        text = self.succeed(self.run_shapes("info", "mirror")).text
        self.assertIn("one of columns, rows; default columns", text)

    def test_json_of_one_effect_is_its_entry_of_the_list(self):
        entries = {entry["name"]: entry for entry in json.loads(self.run_command("list", "--json").text)}
        self.assertEqual(json.loads(self.run_command("info", "invert", "--json").text), entries["invert"])

    def test_unknown_effect_suggests_a_near_name(self):
        self.refuse(self.run_command("info", "invrt"), USAGE, "\"invrt\"", "Did you mean invert?")


class Help(CommandTest):
    def test_version_is_the_text_of_the_library(self):
        self.assertEqual(self.succeed(self.run_command("--version")).text, "ZLV 4.0.10.3\n")

    def test_everything_has_help(self):
        for arguments in (["--help"], ["-h"], ["help"], ["help", "apply"], ["list", "--help"], ["info", "--help"],
                          ["apply", "--help"], ["apply", "invert", "--help"], ["gallery", "--help"]):
            with self.subTest(" ".join(arguments)):
                text = self.succeed(self.run_command(*arguments)).text
                self.assertIn("Usage", text)

    def test_help_of_an_effect_lists_its_options(self):
        text = self.succeed(self.run_command("apply", "lighten", "--help", program=SHAPES)).text
        self.assertIn("--amount VALUE", text)
        self.assertIn("from -64 to 64", text)

    def test_without_arguments_the_help_is_shown_and_the_code_says_usage(self):
        answer = self.run_command()
        self.assertEqual(answer.code, USAGE)
        self.assertIn("zlv apply", answer.text)

    def test_unknown_word_suggests_a_near_one(self):
        self.refuse(self.run_command("aply"), USAGE, "\"aply\"", "Did you mean apply?")
        self.refuse(self.run_command("--versoin"), USAGE, "--versoin", "Did you mean --version?")
        self.assertEqual(self.run_command("list").code, DONE)


if __name__ == "__main__":
    unittest.main()
