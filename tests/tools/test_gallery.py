"""zlv gallery: one page, well-formed, complete in itself."""
import base64
import json
import re
import shlex
import unittest
import xml.etree.ElementTree as xml

from command_test import CommandTest, DONE, FAILED, USAGE
from pictures import inverted, pattern, read_png

HTML = "{http://www.w3.org/1999/xhtml}"


class GalleryTest(CommandTest):
    def page(self, run, name="photo.png", picture=None):
        self.write(name, picture or pattern(40, 24, 3))
        self.answer = run("gallery", name, "shown/page")
        self.text = self.read("shown/page/index.html").decode("utf-8")
        self.assertTrue(self.text.startswith("<!DOCTYPE html>\n"))
        return xml.fromstring(self.text.removeprefix("<!DOCTYPE html>"))

    def figures(self, page):
        return {figure.get("id"): figure for figure in page.iter(HTML + "figure")}

    def test_every_effect_in_each_of_its_modes_in_the_listed_order(self):
        wanted = []
        for effect in json.loads(self.run_command("list", "--json").text):
            wanted.append(effect["name"])
            wanted += [f"{effect['name']}-{parameter['name']}-{choice['name']}" for parameter in effect["parameters"]
                       for choice in parameter.get("choices", []) if choice["name"] != parameter["default"]]
        page = self.page(self.run_command)
        self.assertEqual(self.answer.code, DONE)
        self.assertEqual(list(self.figures(page)), wanted + ["seam-carve-seams", "seam-carve"])

    def test_seams_are_drawn_over_the_picture_and_taken_out(self):
        # Checks on both sides of a flat stripe: the seams run down the stripe.
        stripe = range(20, 40)
        samples = bytes(90 if x in stripe else 255 * ((x // 2 + y // 2) % 2)
                        for y in range(24) for x in range(60) for _ in range(3))
        page = self.page(self.run_command, picture=pattern(60, 24, 3).__class__(60, 24, 3, samples))
        shown = {name: figure.find(f".//{HTML}img").get("src") for name, figure in self.figures(page).items()
                 if name.startswith("seam-carve")}
        pictures = {name: read_png(base64.b64decode(uri.split(",")[1])) for name, uri in shown.items()
                    if uri.startswith("data:image/png")}
        marks = [x for y in range(24) for x in range(60)
                 if pictures["seam-carve-seams"].samples[(y * 60 + x) * 3:(y * 60 + x) * 3 + 3] == bytes((255, 40, 40))]
        self.assertEqual(len(marks), 12 * 24)
        self.assertGreaterEqual(min(marks), 18)
        self.assertLessEqual(max(marks), 41)
        self.assertIn("--width 80%", "".join(self.figures(page)["seam-carve"].itertext()))

    def test_nothing_lies_outside_the_page(self):
        page = self.page(self.run_command)
        references = [element.get(key) for element in page.iter() for key in ("src", "href") if element.get(key)]
        self.assertGreaterEqual(len(references), 2)
        for reference in references:
            self.assertTrue(reference.startswith(("data:image/", "#")), reference[:60])
        for reference in re.findall(r"url\(([^)]*)\)", self.text):
            self.assertTrue(reference.startswith("data:image/"), reference[:60])
        self.assertNotIn("@import", self.text)
        self.assertEqual(self.names(), ["photo.png", "shown/page/index.html"])

    def test_the_pictures_are_original_and_result(self):
        original = pattern(12, 10, 4)
        page = self.page(self.run_command, picture=original)
        shown = self.figures(page)["invert"].find(f".//{HTML}img").get("src")
        self.assertEqual(read_png(base64.b64decode(shown.split(",")[1])), inverted(original))
        behind = re.search(r"\.original \{ background-image: url\(data:image/png;base64,([^)]*)\)", self.text)
        self.assertEqual(read_png(base64.b64decode(behind[1])), original)

    def test_values_timings_and_commands_are_told(self):
        page = self.page(self.run_shapes)
        figure = self.figures(page)["lighten"]
        text = "".join(figure.itertext())
        self.assertIn("amount10levels", text)
        self.assertRegex(text, r"\d ?(ms|s)")
        self.assertEqual(figure.find(f".//{HTML}code").text,
                         "zlv apply lighten --amount 10 --channel-mask all photo.png lighten.png")

    def test_a_command_line_of_the_page_makes_the_picture_of_the_page(self):
        page = self.page(self.run_shapes, picture=pattern(6, 5, 4))
        for name in ("lighten", "mirror", "mirror-axis-rows", "paint"):
            with self.subTest(name):
                figure = self.figures(page)[name]
                program, *arguments = shlex.split(figure.find(f".//{HTML}code").text)
                self.assertEqual(program, "zlv")
                self.succeed(self.run_shapes(*arguments))
                shown = figure.find(f".//{HTML}img").get("src")
                self.assertEqual(read_png(base64.b64decode(shown.split(",")[1])), self.png(f"{name}.png"))

    def test_effects_on_a_shape_say_when_there_is_none(self):
        for channels, is_told in ((3, True), (1, True), (4, False), (2, False)):
            figures = self.figures(self.page(self.run_command, picture=pattern(20, 16, channels)))
            told = {name for name, figure in figures.items() if "this picture has none" in "".join(figure.itertext())}
            self.assertEqual(told, {"drop-shadow", "outer-glow", "inner-glow"} if is_told else set(), channels)

    def test_an_effect_that_fails_says_so_in_its_figure(self):
        page = self.page(self.run_shapes)
        self.assertEqual(self.answer.code, FAILED)
        self.assertIn("refuse failed", self.answer.errors)
        figure = self.figures(page)["refuse"]
        self.assertIsNone(figure.find(f".//{HTML}img"))
        self.assertIn("refuse failed", "".join(figure.itertext()))

    def test_large_pictures_are_shown_small(self):
        self.page(self.run_command, picture=pattern(100, 50, 1))
        self.succeed(self.run_command("gallery", "photo.png", "small", "--size", "64", "-q"))
        self.assertIn('width="64" height="32"', self.read("small/index.html").decode())

    def test_names_that_need_escapes(self):
        page = self.page(self.run_command, name="Zo\u00eb & 'co'.png")
        self.assertEqual(page.find(f".//{HTML}h1").text, "Zo\u00eb & 'co'.png")

    def test_a_folder_that_cannot_be_made(self):
        self.write("photo.png", pattern(16, 16, 3))
        self.write("file", b"x")
        self.refuse(self.run_command("gallery", "photo.png", "file", "-q"), FAILED, "\"file\"")
        self.refuse(self.run_command("gallery", "none.png", "shown", "-q"), FAILED, "none.png")
        self.refuse(self.run_command("gallery", "photo.png"), USAGE, "FOLDER")
        self.assertEqual(self.names(), ["file", "photo.png"])


if __name__ == "__main__":
    unittest.main()
