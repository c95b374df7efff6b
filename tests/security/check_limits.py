#!/usr/bin/env python3
"""Holds the table of limits in docs/security.md against the sources.

    check_limits.py FOLDER    prints what is wrong, a line each, and ends with 1 when there is something

A row of the table names a limit's value, its constant and the test that goes beyond it. A constant of the sources that is
called a most, a largest or a longest stands in the table, unless OTHERS says what it is instead.
"""

import os
import re
import sys

DOCUMENT = "docs/security.md"
ROOMS = "frameworks", "host", "plugin"
ROW = re.compile(r"^\| (?P<what>[^|]+) \| (?P<value>[\d,]+)(?: (?P<unit>[KMG]B))?[^|]* \| `(?P<file>[^`]+)`: `(?P<name>k\w+)` \| "
                 r"[^|]+ \| (?:`(?P<test>[^`]+)`|no: [^|]+) \|$")
CONSTANT = re.compile(r"constexpr[^;=()]*?\b(?P<first>k(?:Max|Most|Largest|Longest)\w*) = (?P<rest>[^;]+);")
UNITS = {None: 1, "KB": 1 << 10, "MB": 1 << 20, "GB": 1 << 30}

OTHERS = {  # what the constants of a file, or one of them, limit where that is not what somebody sends us
    "frameworks/AddressBook/vcard/content_line.cpp kMost": "what a message shows",
    "frameworks/ScriptingBridge/SBApplication.mm": "a time",
    "host/values/number_power.cpp": "how a power is found",
    "frameworks/AddressBook/carddav/discovery.cpp": "servers that are asked",
    "frameworks/AddressBook/carddav/fetch.cpp": "requests after failures",
    "frameworks/AddressBook/carddav/names.h": "a name",
    "frameworks/AddressBook/carddav/server_collection.cpp": "the name of a new card",
    "frameworks/AddressBook/model/book.cpp": "records that are read ahead",
    "frameworks/AddressBook/store/access_path.cpp": "which index is taken",
    "frameworks/AddressBook/store/float_dates.cpp": "the change log",
    "frameworks/AddressBook/store/save.cpp": "the change log and the backlog",
    "frameworks/AddressBook/vcard/line_values.cpp": "which schemes name pictures",
    "host/calc/functions/number.cpp": "digits",
    "host/console/line_editor.cpp": "names that are shown",
    "host/loader/step_definition.cpp": "the interface's own limit",
    "host/script/data_files.h": "FileMaker's own limit",
    "host/script/steps/control.cpp": "a pause",
    "host/values/container_file.cpp": "the range of a type",
    "host/values/date_time.h": "the range of a time",
    "host/values/number.cpp": "the range of a type",
    "host/values/number.h": "digits",
    "plugin/shell/version.mm": "a word that is looked for",
    "plugin/support/host_text.mm": "texts whose strings are kept",
    "plugin/vocabulary/property_names.mm": "spellings that are kept",
}


def number(expression):
    plain = re.sub(r"(?:std::)?size_t\{(\d+)\}", r"\1", expression).replace("'", "")
    plain = re.sub(r"(\d)U?L*\b", r"\1", plain, flags=re.IGNORECASE)
    return eval(plain, {"__builtins__": {}}) if re.fullmatch(r"[\d\s*<>+()-]+", plain) else None  # pylint: disable=eval-used


def constants(folder):
    """Name and value of each limit, by file."""
    found = {}
    for room in ROOMS:
        for parent, _, names in os.walk(os.path.join(folder, room)):
            for name in names:
                if not name.endswith((".h", ".cpp", ".m", ".mm")):
                    continue
                path = os.path.join(parent, name)
                with open(path, encoding="utf-8") as file:
                    for match in CONSTANT.finditer(file.read()):
                        for each in re.finditer(r"(k\w+) = ([^,;]+)", match["first"] + " = " + match["rest"]):
                            found[os.path.relpath(path, folder), each[1]] = number(each[2])
    return found


def main(folder):
    problems, told = [], set()
    known = constants(folder)
    with open(os.path.join(folder, DOCUMENT), encoding="utf-8") as file:
        lines = file.read().splitlines()
    for at, line in enumerate(lines, 1):
        row = ROW.match(line)
        if not row:
            if re.search(r"`k[A-Z]\w+` \|", line):
                problems.append(f"{DOCUMENT}:{at}: the row cannot be read")
            continue
        key = row["file"], row["name"]
        value = int(row["value"].replace(",", "")) * UNITS[row["unit"]]
        told.add(key)
        if key not in known:
            problems.append(f"{DOCUMENT}:{at}: {key[0]} has no {key[1]}")
        elif known[key] != value:
            problems.append(f"{DOCUMENT}:{at}: {key[1]} is {known[key]} in {key[0]}, not {value}")
        if row["test"] and not os.path.exists(os.path.join(folder, row["test"])):
            problems.append(f"{DOCUMENT}:{at}: there is no {row['test']}")
    problems += [f"{path}: {name} is in no row of {DOCUMENT}" for path, name in sorted(set(known) - told)
                 if path not in OTHERS and f"{path} {name}" not in OTHERS]
    there = {path for path, _ in known} | {f"{path} {name}" for path, name in known}
    problems += [f"{other} limits nothing any more" for other in sorted(set(OTHERS) - there)]
    print("\n".join(problems) if problems else f"{len(told)} limits are what {DOCUMENT} says")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
