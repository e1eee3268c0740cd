"""The benchmarks' table: what it says of made-up runs, and that no export is left out of it."""

import importlib
import re
import sys
import tomllib
import unittest

import build_context


def load(folder, name):
    sys.path.insert(0, str(build_context.context.source / folder))
    return importlib.import_module(name)


def run(name, nanoseconds, label="avx2 px", pixels=100, size=300):
    return {"name": name, "run_type": "iteration", "real_time": nanoseconds / 1000, "time_unit": "us", "label": label,
            "pixels": pixels, "bytes": size}


RAW = {"benchmarks": [
    run("Blur/rgb8", 500), run("Blur/rgb8", 300), run("Blur/rgb8", 400), run("Blur/rgb8/peer", 100, "cv::blur"),
    {"name": "Blur/rgb8_mean", "run_type": "aggregate"},
    run("Blur/rgb8/target=baseline", 900, "baseline px"),
    run("Hash/call", 50, "avx2 call", 1, 32),
    run("Invert/rgb8/repeats:25", 200), run("Invert/rgb8/peer", 100, "cv::bitwise_not"),
    run("Median/rgb8", 1000), run("Median/rgb8/peer", 200, "cv::medianBlur"),
    run("memcpy/300", 30, ""), run("memcpy/32", 5, ""),
]}
WANTED = {"Blur/rgb8": {"ns": 3}, "Invert/rgb8": {"ns": 1, "peer": 0.5}, "Median/rgb8": {"ns": 99, "peer": 20}}


class Table(unittest.TestCase):
    def setUp(self):
        self.table = load("bench", "table")
        rows = self.table.make_rows(self.table.fastest_runs(RAW), WANTED)
        self.rows = {row["name"]: row for row in rows}

    def test_a_figure_is_the_fastest_repetition(self):
        self.assertAlmostEqual(self.rows["Blur/rgb8"]["ns"], 3)

    def test_peers_and_copies_are_no_rows(self):
        self.assertEqual(list(self.rows), ["Blur/rgb8", "Blur/rgb8/target=baseline", "Hash/call", "Invert/rgb8",
                                           "Median/rgb8"])

    def test_ratios(self):
        row = self.rows["Blur/rgb8"]
        self.assertAlmostEqual(row["to_peer"], 3)
        self.assertAlmostEqual(row["to_memcpy"], 10)

    def test_another_instruction_set_has_the_same_peer_and_no_goal(self):
        row = self.rows["Blur/rgb8/target=baseline"]
        self.assertAlmostEqual(row["to_peer"], 9)
        self.assertIsNone(row["wanted_ns"])

    def test_verdicts(self):
        verdicts = {name: row["verdict"] for name, row in self.rows.items() if row["verdict"]}
        self.assertEqual(verdicts, {"Blur/rgb8": "reached", "Invert/rgb8": "reached", "Median/rgb8": "missed"})

    def test_a_goal_is_a_ratio_where_the_peer_is_known_and_else_a_time(self):
        verdict_of = self.table.verdict_of
        self.assertEqual(verdict_of(9, 1.5, {"ns": 3, "peer": 2}), "reached")
        self.assertEqual(verdict_of(1, 1.6, {"ns": 3, "peer": 2}), "missed")
        self.assertEqual(verdict_of(3, 9, {"ns": 3}), "reached")
        self.assertEqual(verdict_of(3.1, None, {"ns": 3, "peer": 2}), "missed")
        self.assertIsNone(verdict_of(3, 1, None))

    def test_a_unit_of_its_own(self):
        row = self.rows["Hash/call"]
        self.assertEqual((row["unit"], row["peer"], row["to_peer"]), ("call", None, None))
        self.assertAlmostEqual(row["ns"], 50)

    def test_next_are_rows_beyond_twice_the_peer_and_the_worst_comes_first(self):
        slow = [row["name"] for row in self.table.slow_rows(self.rows.values())]
        self.assertEqual(slow, ["Blur/rgb8/target=baseline", "Median/rgb8", "Blur/rgb8"])
        self.assertEqual([line.split()[:2] for line in self.table.next_lines(self.rows.values())[3:]],
                         [["Blur/rgb8/target=baseline", "9.00"], ["Median/rgb8", "5.00"], ["Blur/rgb8", "3.00"]])

    def test_nothing_is_next(self):
        self.assertEqual(len(self.table.next_lines([self.rows["Invert/rgb8"]])), 1)

    def test_a_line_has_the_row_the_peer_and_both_ratios(self):
        [line] = [line for line in self.table.all_lines(self.rows.values()) if line.startswith("Blur/rgb8 ")]
        self.assertEqual(line.split(), ["Blur/rgb8", "3.0000", "px", "cv::blur", "1.0000", "3.00", "10.00", "3.0000",
                                        "-", "reached"])

    def test_exports_without_a_row_are_named(self):
        exports = ["ZLV40_Blur", "ZLV40_BlurMore", "ZLV40_Exit"]
        missing = self.table.exports_without_row(exports, self.rows, {"Exit": ""})
        self.assertEqual(missing, ["ZLV40_BlurMore"])

    def test_goals_without_a_row_are_named(self):
        stale = self.table.stale_names(self.rows.values(), {**WANTED, "Blur/gray8": {"ns": 1}})
        self.assertEqual(stale, ["Blur/gray8"])


class Coverage(unittest.TestCase):
    """What a whole run checks as well, by the names in the source: it needs no benchmark."""

    def setUp(self):
        families = load("api", "description").read_all()
        self.exports = [export.name.removeprefix("ZLV40_") for family in families for export in family.exports]
        self.assertIn("InvertImage", self.exports)
        bench = build_context.context.source / "bench"
        text = "".join(path.read_text() for path in sorted(bench.glob("*_rows.cpp")))
        self.starts_of_names = set(re.findall(r'"(\w+)["/]', text))
        self.targets = tomllib.loads((bench / "targets.toml").read_text())

    def test_every_export_has_a_row_or_a_reason(self):
        covered = self.starts_of_names | set(self.targets["without_row"])
        build_context.expect_none(self, [name for name in self.exports if name not in covered], "no row in bench/ for")

    def test_reasons_are_of_exports_without_a_row(self):
        excused = set(self.targets["without_row"])
        self.assertTrue(excused <= set(self.exports))
        self.assertFalse(excused & self.starts_of_names)


if __name__ == "__main__":
    build_context.main()
