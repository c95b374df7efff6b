#!/usr/bin/env python3
"""Shows check_documents.py one small repository for each rule, in which the rule is broken once, and a sound one."""

import os
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # nothing is left beside the sources
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from check_documents import problems  # noqa: E402
from check_arrows import Room  # noqa: E402

ROOMS = {
    "host": Room(("host/calc", "host/values"), ("ICU", "dl")),
    "host/calc": Room(("host/values",)),
    "host/values": Room(),
}
SETTINGS = "[*.md]\nmax_line_length = 60\n"
PICTURE = """digraph rooms {
    "host" [label=<<b>host</b><br/><i>ICU</i>>]
    "host/calc" [label=<<b>calc</b>>]
    "host/values" [label=<<b>values</b>>]
    "host" -> "host/calc"
    "host/calc" -> "host/values"
}
"""


class CheckDocumentsTest(unittest.TestCase):
    def expect(self, text, *lines, picture=PICTURE):
        """Expects exactly these problems of a document, docs/a.md, and a picture."""
        files = {"docs/a.md": text, "docs/architecture.dot": picture, ".editorconfig": SETTINGS,
                 "docs/b.md": "# One `two`, three\n## Again\n## Again\n", "host/calc/lexer.cpp": "int next();\n",
                 "host/values/text.h": ""}
        with tempfile.TemporaryDirectory() as root:
            for path, content in files.items():
                os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(content)
            self.assertEqual([str(problem) for problem in problems(root, ROOMS, ())], list(lines))

    def test_sound(self):
        self.expect("[one](b.md#one-two-three) [two](b.md#again-1) [here](#head)\n[out](https://example.com)\n# Head\n"
                    "`host/calc/lexer.cpp` `lexer.cpp` `host/*/text.h`\n`host/calc/` `2/3` `x.y` `NAME.txt` `build/a.h`\n"
                    "```\n`nothing.cpp` " + "x " * 60 + "\n```\n| `host/calc/lexer.cpp` | `next` | what |\n")

    def test_width(self):
        self.expect("x " * 31, "docs/a.md:1: 62 characters; prose has at most 60")
        self.expect("| " + "x " * 31 + "|")
        self.expect("x" * 70)

    def test_links(self):
        self.expect("\n[a](c.md)", "docs/a.md:2: the link c.md leads to no file")
        self.expect("[a](b.md#again-2)", "docs/a.md:1: the link b.md#again-2 leads to no heading")

    def test_names(self):
        self.expect("`host/calc/parser.cpp`", "docs/a.md:1: there is no host/calc/parser.cpp")
        self.expect("`parser.cpp`", "docs/a.md:1: there is no parser.cpp")
        self.expect("`host/*.cc`", "docs/a.md:1: there is no host/*.cc")
        self.expect("`host/script/`", "docs/a.md:1: there is no host/script/")

    def test_functions(self):
        self.expect("| `host/calc/lexer.cpp` | `next`, `Lexer::nex` | what |",
                    "docs/a.md:1: there is no Lexer in host/calc/lexer.cpp",
                    "docs/a.md:1: there is no nex in host/calc/lexer.cpp")

    def expect_picture(self, old, new, *lines):
        """Expects these problems of the picture when one of its texts is another."""
        self.assertIn(old, PICTURE)
        self.expect("", *(f"docs/architecture.dot:{line}" for line in lines), picture=PICTURE.replace(old, new))

    def test_picture(self):
        self.expect_picture("<i>ICU</i>", "", "2: host uses the libraries ICU")
        self.expect_picture('"host" -> "host/calc"', '"host" -> "host/calc" [style=invis]',
                            "2: no arrow leads from host to host/calc", "2: no arrow leads from host to host/values")
        self.expect_picture('"host/calc" -> "host/values"', '"host/values" -> "host/calc"',
                            "6: host/values may not use host/calc", "2: no arrow leads from host to host/values",
                            "3: no arrow leads from host/calc to host/values")
        self.expect_picture('"host" -> "host/calc"', '"host" -> "host/calc"\n"host/calc" -> "host" [style=dotted]',
                            "6: host/calc loads nothing")
        self.expect_picture('    "host/calc" [label=<<b>calc</b>>]\n', "", "1: the room host/calc is missing")
        self.expect_picture('"host/calc" [', '"tools" [label=<x>]\n"host/calc" [', "3: tools is no room of the table")

    def test_folders(self):
        rooms = {**ROOMS, "host/script": Room()}
        with tempfile.TemporaryDirectory() as root:
            with open(os.path.join(root, ".editorconfig"), "w", encoding="utf-8") as file:
                file.write(SETTINGS)
            told = [str(problem) for problem in problems(root, rooms, ())]
        self.assertIn("docs/architecture.dot:1: there is no folder host/script", told)


if __name__ == "__main__":
    unittest.main()
