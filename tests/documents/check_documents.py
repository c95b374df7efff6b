#!/usr/bin/env python3
"""Checks what the documents say of the repository: that it is there.

    check_documents.py FOLDER    prints "file:line: what is wrong", a line each, and ends with 1 when there is one

Of every Markdown file: links lead to files and headings; files and folders that are named in backticks exist; in a
table whose first column is a source, the functions in the second stand in it; prose is no wider than .editorconfig
says. Of docs/architecture.dot: its rooms, arrows and libraries are those of tests/architecture/check_arrows.py.
"""

import fnmatch
import os
import re
import sys
from typing import NamedTuple

sys.dont_write_bytecode = True  # nothing is left beside the sources
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "architecture"))
import check_arrows  # noqa: E402

PICTURE = "docs/architecture.dot"
NOT_OURS = "build", ".git"
SOURCES = (".cpp", ".h", ".mm", ".m", ".py", ".md", ".txt", ".calc", ".cmake", ".map", ".fmscript", ".strings", ".dot",
           ".svg")
# Libraries that are rooms themselves, and those that every system has.
ROOM_LIBRARIES = {
    "AddressBook": "frameworks/AddressBook/include",
    "AppKit": "frameworks/AppKit/include",
    "CoreFoundation": "frameworks/CoreFoundation/include",
    "ScriptingBridge": "frameworks/ScriptingBridge/include",
}
OF_THE_SYSTEM = {"dl", "objc"}

LINK = re.compile(r"\]\(([^)\s]+)\)")  # its end, as its text may begin in the line before
PLACEHOLDER = re.compile(r"\b(?:NAME|FILE)\b")
CODE = re.compile(r"`([^`]+)`")
NODE = re.compile(r'^\s*"([^"]+)" \[label=<(.*)>\]')
ARROW = re.compile(r'^\s*"([^"]+)" -> "([^"]+)"(.*)')


class Problem(NamedTuple):
    file: str
    line: int
    text: str

    def __str__(self):
        return f"{self.file}:{self.line}: {self.text}"


class House:
    """The files of the repository, and where a name that a document uses may stand for one."""

    def __init__(self, root):
        self.root = root
        self.files, self.folders = set(), set()
        for folder, folders, files in os.walk(root):
            if folder == root:
                folders[:] = [name for name in folders if name not in NOT_OURS]
            place = os.path.relpath(folder, root)
            prefix = "" if place == "." else place + "/"
            self.files.update(prefix + name for name in files)
            self.folders.update(prefix + name for name in folders)
        self.tops = {path for path in self.folders if "/" not in path}

    def read(self, path):
        with open(os.path.join(self.root, path), encoding="utf-8") as file:
            return file.read()

    def names(self, text):
        """Whether a text in backticks is the name of a file or folder of ours, to judge by its looks."""
        if not re.fullmatch(r"[\w.*+/-]+", text) or text.startswith(("/", ".", "*.")) or PLACEHOLDER.search(text):
            return False
        return text.split("/")[0] in self.tops if "/" in text else text.endswith(SOURCES)

    def has(self, text, beside):
        """Whether it exists: from the top, beside the document, or, when only its end is named, anywhere."""
        name = text.rstrip("/")
        places = [name, os.path.normpath(os.path.join(os.path.dirname(beside), name))]
        if "*" in name:
            return any(fnmatch.fnmatch(path, place) for path in self.files | self.folders for place in places)
        if any(place in self.files or place in self.folders for place in places):
            return True
        return "/" not in name and any(path.endswith("/" + name) for path in self.files)


def outside_code(text):
    """The lines of a Markdown text with their numbers, but those of code blocks."""
    inside = False
    for number, line in enumerate(text.splitlines(), 1):
        if line.lstrip().startswith("```"):
            inside = not inside
        elif not inside:
            yield number, line


def anchors(text):
    """The anchors of a Markdown text's headings."""
    found = {}
    for _, line in outside_code(text):
        if match := re.match(r"#+ +(.*)", line):
            slug = re.sub(r"[^\w\- ]", "", LINK.sub("", match.group(1)).lower()).replace(" ", "-")
            found[slug] = found.get(slug, -1) + 1
    return {slug if number == 0 else f"{slug}-{number}" for slug, most in found.items() for number in range(most + 1)}


def link_problem(house, document, target):
    """What is wrong with a link; None for nothing, and for those that lead out of the repository."""
    if re.match(r"[a-z]+:", target):
        return None
    path, _, anchor = target.partition("#")
    place = os.path.normpath(os.path.join(os.path.dirname(document), path)) if path else document
    if place not in house.files and place not in house.folders:
        return f"the link {target} leads to no file"
    if anchor and place.endswith(".md") and anchor not in anchors(house.read(place)):
        return f"the link {target} leads to no heading"
    return None


def row_problems(house, line):
    """The functions of a table's row that are not in the source that it names."""
    cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
    source = re.fullmatch(r"`([^`]+)`", cells[0])
    if len(cells) < 3 or not source or source.group(1) not in house.files:
        return
    text = house.read(source.group(1))
    for code in CODE.findall(cells[1]):
        for word in re.findall(r"\w+", code):
            if not re.search(rf"\b{word}\b", text):
                yield f"there is no {word} in {source.group(1)}"


def document_problems(house, document, width):
    """What is wrong with one Markdown file."""
    for number, line in outside_code(house.read(document)):
        is_table = line.startswith("|")
        longest = max(map(len, line.split()), default=0)
        if len(line) > width and not is_table and longest < width - 20:
            yield Problem(document, number, f"{len(line)} characters; prose has at most {width}")
        for target in LINK.findall(line):
            if problem := link_problem(house, document, target):
                yield Problem(document, number, problem)
        for code in CODE.findall(line):
            if house.names(code) and not house.has(code, document):
                yield Problem(document, number, f"there is no {code}")
        if is_table:
            for problem in row_problems(house, line):
                yield Problem(document, number, problem)


def reach(arrows, room):
    """All rooms that arrows lead to from one."""
    open_, found = [room], set()
    while open_:
        for following in arrows.get(open_.pop(), ()):
            if following not in found:
                found.add(following)
                open_.append(following)
    return found


def picture_problems(text, rooms, open_rooms):
    """Where the picture's source differs from the table of rooms."""
    nodes, arrows = {}, {}
    for number, line in enumerate(text.splitlines(), 1):
        if match := NODE.match(line):
            libraries = re.search(r"<i>(.*)</i>", match.group(2))
            nodes[match.group(1)] = number, set(libraries.group(1).split(", ")) if libraries else set()
        elif (match := ARROW.match(line)) and "style=invis" not in match.group(3):
            user, used, style = match.groups()
            row = rooms.get(user)
            if row is None or used not in rooms:
                yield Problem(PICTURE, number, f"{user} -> {used}: no rooms of the table")
            elif "style=dotted" in style:
                if "dl" not in row.libraries:
                    yield Problem(PICTURE, number, f"{user} loads nothing")
            elif used not in row.rooms and used not in map(ROOM_LIBRARIES.get, row.libraries):
                yield Problem(PICTURE, number, f"{user} may not use {used}")
            else:
                arrows.setdefault(user, set()).add(used)
    for room in sorted({*rooms, *open_rooms} - set(nodes)):
        yield Problem(PICTURE, 1, f"the room {room} is missing")
    for room, (number, libraries) in nodes.items():
        if room in open_rooms:
            continue
        if room not in rooms:
            yield Problem(PICTURE, number, f"{room} is no room of the table")
            continue
        used = set(rooms[room].libraries) - OF_THE_SYSTEM
        own = {library for library in used if ROOM_LIBRARIES.get(library) == room}
        shown = used - set(ROOM_LIBRARIES)
        if shown != libraries:
            yield Problem(PICTURE, number, f"{room} uses the libraries {', '.join(sorted(shown)) or 'none'}")
        known = set(rooms[room].rooms) | {ROOM_LIBRARIES[each] for each in used - own if each in ROOM_LIBRARIES}
        for missing in sorted(known - reach(arrows, room)):
            yield Problem(PICTURE, number, f"no arrow leads from {room} to {missing}")


def problems(root, rooms=None, open_rooms=check_arrows.OPEN_ROOMS):
    """All that is wrong below a folder."""
    house = House(root)
    width = int(re.search(r"\[\*\.md\]\s+max_line_length *= *(\d+)", house.read(".editorconfig")).group(1))
    found = []
    for document in sorted(path for path in house.files if path.endswith(".md")):
        found += document_problems(house, document, width)
    if PICTURE in house.files:
        found += picture_problems(house.read(PICTURE), rooms or check_arrows.ROOMS, open_rooms)
    for room in rooms or check_arrows.ROOMS:
        if room not in house.folders:
            found.append(Problem(PICTURE, 1, f"there is no folder {room}"))
    return found


if __name__ == "__main__":
    check_arrows.main(problems, __doc__)
