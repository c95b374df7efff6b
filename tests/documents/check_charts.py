#!/usr/bin/env python3
"""Checks that the charts in docs/ are what their table gives, and that bench/report/charts.py draws and refuses.

    check_charts.py FOLDER    FOLDER is the repository; ends with 1 when something is wrong
"""

import json
import os
import re
import sys
import tempfile
import unittest
from subprocess import run

sys.dont_write_bytecode = True  # nothing is left beside the sources
ROOT = os.path.abspath(sys.argv.pop(1))
DRAW = os.path.join(ROOT, "bench", "report", "charts.py")

SUFFIX = {
    "level": "F", "work": "suffix <ignoring> case", "kind": "ratio", "limit": 3,
    "measured": {"1000": 3e-05, "10000": 2e-04}, "reference": {"1000": 1e-05, "10000": 5e-05},
    "figure": {"1000": 3.0, "10000": 4.0},
}
MEMORY = {"level": "F", "work": "memory", "kind": "memory", "limit": 1, "measured": {"1000": 1}, "figure": {"1000": 1}}


class Charts(unittest.TestCase):
    def draw(self, table):
        """Returns the drawn text and the finished program."""
        with tempfile.TemporaryDirectory() as folder:
            source, target = os.path.join(folder, "table.json"), os.path.join(folder, "charts.svg")
            with open(source, "w", encoding="utf-8") as file:
                file.write(table)
            done = run([sys.executable, DRAW, source, target], capture_output=True, text=True, check=False)
            if not os.path.exists(target):
                return "", done
            with open(target, encoding="utf-8") as file:
                return file.read(), done

    def test_the_charts_in_the_documents_are_those_of_their_table(self):
        with open(os.path.join(ROOT, "docs", "performance.json"), encoding="utf-8") as file:
            drawn, done = self.draw(file.read())
        self.assertEqual(done.returncode, 0, done.stderr)
        with open(os.path.join(ROOT, "docs", "performance.svg"), encoding="utf-8") as file:
            self.assertEqual(file.read(), drawn, "draw it again: bench/report/charts.py")

    def test_each_compared_work_has_both_lines_and_its_ratios(self):
        drawn, done = self.draw(json.dumps([SUFFIX, MEMORY, dict(SUFFIX, work="prefix", limit=5)]))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("suffix &lt;ignoring&gt; case", drawn)
        self.assertNotIn(">memory<", drawn)
        self.assertEqual(len(re.findall(r"<circle", drawn)), 8)
        self.assertEqual(drawn.count(">4.0x<"), 2)
        self.assertIn("target 3x, missed", drawn)
        self.assertIn("target 5x, met", drawn)

    def test_what_is_no_table_is_refused_with_a_sentence(self):
        for table in ("", "[]", "{", json.dumps([MEMORY])):
            drawn, done = self.draw(table)
            self.assertEqual((drawn, done.returncode), ("", 1))
            self.assertTrue(done.stderr.startswith("charts.py: "), done.stderr)
            self.assertNotIn("Traceback", done.stderr)


if __name__ == "__main__":
    unittest.main()
