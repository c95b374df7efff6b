#!/usr/bin/env python3
"""Shows check_arrows.py one small house for each rule, in which the rule is broken once, and one that is sound."""

import os
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # nothing is left beside the sources
CHECKER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "check_arrows.py")
sys.path.insert(0, os.path.dirname(CHECKER))
from check_arrows import problems  # noqa: E402

BOOK = "frameworks/AddressBook"


class CheckArrowsTest(unittest.TestCase):
    def build(self, files):
        """A new folder with these files, and nothing else; it goes with the test."""
        house = tempfile.TemporaryDirectory()
        self.addCleanup(house.cleanup)
        for path, text in files.items():
            os.makedirs(os.path.dirname(os.path.join(house.name, path)), exist_ok=True)
            with open(os.path.join(house.name, path), "w", encoding="utf-8") as file:
                file.write(text)
        return house.name

    def expect(self, files, *lines):
        """Expects exactly these lines, of each its beginning and a word of the rule."""
        told = [str(problem) for problem in problems(self.build(files))]
        self.assertEqual(len(told), len(lines), told)
        for line, (beginning, rule) in zip(told, lines):
            self.assertTrue(line.startswith(beginning), line)
            self.assertIn(rule, line)

    def expect_refused(self, user, header, rule):
        """Expects that a file may not include the header of another room, and is told with its line."""
        self.expect({user: f'#pragma once\n\n#include "{header}"\n', header: ""},
                    (f'{user}:3: #include "{header}": ', rule))

    def test_program(self):
        sound, broken = {"host/calc/a.cpp": ""}, {"host/calc/a.cpp": '#include "b.h"\n'}
        for files, code, output in (sound, 0, ""), (broken, 1, "host/calc/a.cpp:1: "):
            done = subprocess.run([sys.executable, CHECKER, self.build(files)], capture_output=True, text=True,
                                  check=False)
            self.assertEqual((done.returncode, done.stderr), (code, ""))
            self.assertTrue(done.stdout.startswith(output), done.stdout)

    def test_sound_house(self):
        self.expect({
            f"{BOOK}/values/text.h": "#include <string>\n#include <unicode/utf16.h>\n",
            f"{BOOK}/store/sql/sql.cpp": f'#include "{BOOK}/store/sql/sql.h"\n#include <sqlite3.h>\n',
            f"{BOOK}/store/sql/sql.h": "",
            f"{BOOK}/store/store.h": f'#include "{BOOK}/values/text.h"\n#include <sys/stat.h>\n',
            f"{BOOK}/store/store.cpp": f'#include "{BOOK}/store/store.h"\n#include "{BOOK}/store/sql/sql.h"\n',
            "plugin/shell/entry.mm": '#import <AddressBook/AddressBook.h>\n#include "FMWrapper/FMXExtern.h"\n',
            "sdk/FMWrapper/FMXExtern.h": '#include "FMXText.h"\n',
            "sdk/FMWrapper/FMXText.h": "",
            "tests/support/scratch.h": f'#include "{BOOK}/store/store.h"\n',
            "tests/store/save_test.cpp": '#include "tests/support/scratch.h"\n#include <gtest/gtest.h>\n',
            f"{BOOK}/store/CMakeLists.txt": "add_library(the_store store.cpp)\n"
                                            "target_link_libraries(the_store PUBLIC the_values SQLite::SQLite3)\n",
            f"{BOOK}/values/CMakeLists.txt": "add_library(the_values text.cpp)\n",
        })

    def test_arrows_inside_the_address_book(self):
        rooms = ["values", "store", "model", "objc"]
        for low, room in enumerate(rooms):
            for above in rooms[low + 1:]:
                with self.subTest(room=room, above=above):
                    self.expect_refused(f"{BOOK}/{room}/a.h", f"{BOOK}/{above}/b.h",
                                        f"may not use {BOOK}/{above}")
        self.expect_refused(f"{BOOK}/vcard/a.h", f"{BOOK}/store/b.h", "vCards know values alone")
        self.expect_refused(f"{BOOK}/store/file/a.h", f"{BOOK}/vcard/b.h", "the store knows values and SQLite")
        self.expect_refused(f"{BOOK}/store/sql/a.h", f"{BOOK}/store/b.h", "this room knows SQLite alone")
        self.expect_refused(f"{BOOK}/store/sql/a.h", f"{BOOK}/values/b.h", "this room knows SQLite alone")

    def test_arrows_between_the_top_rooms(self):
        self.expect_refused("plugin/shell/a.mm", "host/values/b.h", "the plug-in knows the sdk")
        self.expect_refused("plugin/shell/a.mm", f"{BOOK}/store/b.h", "the plug-in knows the sdk")
        self.expect_refused("host/calc/a.cpp", "plugin/shell/b.h", "calculations know the host's values, and the codec")
        self.expect_refused("host/console/a.cpp", f"{BOOK}/values/b.h", "the host's top room")
        self.expect_refused("host/values/a.h", "host/calc/b.h", "lowest room")
        self.expect_refused("host/script/a.h", "host/loader/b.h", "scripts know calculations")
        self.expect_refused("host/loader/a.h", "host/console/b.h", "not the console")
        self.expect_refused(f"{BOOK}/values/a.h", "host/values/b.h", "values know nothing else")
        self.expect_refused(f"{BOOK}/objc/a.h", "plugin/shell/b.h", "may not use plugin")
        self.expect_refused("tools/addressbook/a.h", f"{BOOK}/objc/b.h", "the frameworks' C++ rooms")

    def test_interface(self):
        files = {"sdk/FMWrapper/FMXText.h": ""}
        line = '#include "FMWrapper/FMXText.h"\n'
        self.expect({**files, "host/script/a.cpp": line}, ("host/script/a.cpp:1: ", "may not use sdk"))
        self.expect({**files, f"{BOOK}/values/a.h": line}, (f"{BOOK}/values/a.h:1: ", "may not use sdk"))

    def test_libraries(self):
        self.expect({"host/calc/a.cpp": "#import <Foundation/Foundation.h>\n"},
                    ("host/calc/a.cpp:1: #import <Foundation/Foundation.h>", "may not use Foundation"))
        self.expect({"tools/addressbook/a.cpp": "int one;\n#include <sqlite3.h>\n"},
                    ("tools/addressbook/a.cpp:2: ", "may not use SQLite"))
        self.expect({"host/calc/a.cpp": "#include <unheard/of.h>\n"}, ("host/calc/a.cpp:1: ", "no library of the table"))

    def test_nobody_ships_tests(self):
        self.expect_refused(f"{BOOK}/store/a.cpp", "tests/support/b.h", "no test and no benchmark")
        self.expect_refused("host/calc/a.cpp", "bench/generate/b.h", "no test and no benchmark")
        self.expect_refused("tests/support/a.h", "tests/store/b.h", "what tests share knows no test")

    def test_includes_are_rooted(self):
        self.expect({"host/calc/a.cpp": '#include "lexer.h"\n', "host/calc/lexer.h": ""},
                    ('host/calc/a.cpp:1: #include "lexer.h"', "from the top of the repository"))

    def test_every_folder_is_a_room(self):
        self.expect({"frameworks/Contacts/a.h": ""}, ("frameworks/Contacts/a.h:1: ", "give its folder a row"))

    def test_links(self):
        self.expect({
            "host/calc/CMakeLists.txt": "add_library(calc a.cpp)  # add_library(not_this one)\n\n"
                                        "target_link_libraries(calc PUBLIC\n  the_store ICU::uc)\n",
            f"{BOOK}/store/CMakeLists.txt": "add_library(the_store STATIC store.cpp)\n"
                                            "target_link_libraries(the_store PRIVATE GraphicsMagick "
                                            "PkgConfig::GRAPHICSMAGICK)\n",
        }, (f"{BOOK}/store/CMakeLists.txt:2: links PkgConfig::GRAPHICSMAGICK", "may not use GraphicsMagick"),
            ("host/calc/CMakeLists.txt:3: links the_store", f"may not use {BOOK}/store"))

    def test_circles(self):
        self.expect({
            f"{BOOK}/store/file/a.h": "", f"{BOOK}/store/file/b.h": "", f"{BOOK}/store/file/c.h": "",
            f"{BOOK}/store/file/a.cpp": f'#include "{BOOK}/store/file/a.h"\n#include "{BOOK}/store/file/b.h"\n',
            f"{BOOK}/store/file/b.cpp": f'#include "{BOOK}/store/file/c.h"\n',
            f"{BOOK}/store/file/c.cpp": f'#include "{BOOK}/store/file/a.h"\n',
        }, (f"{BOOK}/store/file/a.cpp:2: ", "a circle: "))


if __name__ == "__main__":
    unittest.main()
