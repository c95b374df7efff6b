#!/usr/bin/env python3
"""Looks for SQL that is made of values.

    check_sql.py FOLDER    prints "file:line: what is given", a line each, and ends with 1 when there is something

What is given to SQLite as a statement is a literal, or put together of literals and of numbers that are constants here.
Where it is a variable, MADE says what it is made of. Values are bound.
"""

import os
import re
import sys

ROOMS = "frameworks", "host", "plugin", "tools"
CALL = re.compile(r"(?:[.>]|\b)(prepare|prepareText|execute|sqlite3_exec|sqlite3_prepare\w*)\(")
# What is no name of a value: constants, and how they become text.
HARMLESS = re.compile(r'R?"(?:\\.|[^"\\])*"|\bk[A-Z]\w*|std::(?:size|to_string)|static_cast<int>|\bsize\(\)|\bnullptr\b')

CHOICE = re.compile(r'^[\w .:=]+ \? "(?:\\.|[^"\\])*" : "(?:\\.|[^"\\])*"$')  # one of two literals
DECLARATION = re.compile(r"^const ")

MADE = {  # file and argument: what it is made of
    ("frameworks/AddressBook/store/check.cpp", "rule.sql"): "a row of kRules",
    ("frameworks/AddressBook/store/file/rescue.cpp", "sql"): "literals that scan() is given",
    ("frameworks/AddressBook/store/file/rescue.cpp", "insert"): "literals that copyRows() is given",
    ("frameworks/AddressBook/store/index.cpp", "sql"): "literals and question marks",
    ("frameworks/AddressBook/store/term_lookup.cpp", "text"): "literals, chosen by what is looked for",
    ("frameworks/AddressBook/store/save_sync.cpp", "sql"): "literals that remove() is given",
    ("frameworks/AddressBook/store/schema.cpp", "sql"): "literals that pragma() is given",
    ("frameworks/AddressBook/store/schema.cpp",
     '"PRAGMA application_id = " + std::to_string(kApplicationId) + "; PRAGMA user_version = " + std::to_string(current)'):
        "the number of versions",
    ("frameworks/AddressBook/store/sql/sql.cpp", "handle_, statements.c_str(), nullptr, nullptr, nullptr"): "what execute() is given",
    ("frameworks/AddressBook/store/sql/sql.cpp",
     "handle_, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement, nullptr"):
        "what prepare() and prepareText() are given",
    ("frameworks/AddressBook/store/sql/sql.cpp", 'connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr'): "a literal",
}


def argument(text, start):
    """What stands between the parenthesis at [start] and its partner, in one line."""
    depth, at = 1, start
    while depth > 0:
        if text[at] == '"':
            at = re.compile(r'"(?:\\.|[^"\\])*"').match(text, at).end()
            continue
        depth += {"(": 1, ")": -1}.get(text[at], 0)
        at += 1
    return re.sub(r"\s+", " ", re.sub(r'"\s+"', "", text[start:at - 1])).strip()


def statements(path):
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"//[^\n\"]*$", "", file.read(), flags=re.MULTILINE)
    for call in CALL.finditer(text):
        yield text.count("\n", 0, call.start()) + 1, argument(text, call.end())


def main(folder):
    problems, seen, used = [], 0, set()
    for room in ROOMS:
        for parent, _, names in os.walk(os.path.join(folder, room)):
            for name in names:
                if not name.endswith((".cpp", ".mm", ".m")):
                    continue
                path = os.path.relpath(os.path.join(parent, name), folder)
                for line, given in statements(os.path.join(folder, path)):
                    if not path.startswith("frameworks/AddressBook/store/") and "SELECT" not in given and "sqlite" not in given:
                        continue
                    if DECLARATION.match(given):
                        continue
                    seen += 1
                    if (path, given) in MADE:
                        used.add((path, given))
                    elif not CHOICE.match(given) and re.search(r"\w", HARMLESS.sub("", given)):
                        problems.append(f"{path}:{line}: SQL is made of more than literals: {given}")
    problems += [f"{path}: nothing there is given {given} any more" for path, given in set(MADE) - used]
    if seen < 50:
        problems.append(f"only {seen} statements found")
    print("\n".join(problems) if problems else f"{seen} statements, none made of values")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
