#!/usr/bin/env python3
"""Checks who may know whom: the includes and the link lines of the whole repository.

    check_arrows.py FOLDER    prints "file:line: what stands there: the rule that it breaks", a line each, and ends
                              with 1 when there is one

A room is a folder; a file belongs to the deepest room that it lies in. ROOMS below is the house: for each room the
rooms and the libraries that it may use. An arrow that is not there is an error, and so is a room without a row.
"""

import os
import re
import sys
from typing import NamedTuple


class Room(NamedTuple):
    """What a room may use, besides itself, the C and C++ libraries and POSIX."""

    rooms: tuple = ()
    libraries: tuple = ()
    links: tuple = ()  # rooms that it may be linked with though it includes nothing of theirs
    why: str = ""


VALUES = "frameworks/AddressBook/values"
SQL = "frameworks/AddressBook/store/sql"
STORE = "frameworks/AddressBook/store"
MODEL = "frameworks/AddressBook/model"
VCARD = "frameworks/AddressBook/vcard"
CSV = "frameworks/AddressBook/csv"
CARDDAV = "frameworks/AddressBook/carddav"
SYNC = "frameworks/AddressBook/sync"
OBJC = "frameworks/AddressBook/objc"
APPLE = "frameworks/AddressBook/include", "frameworks/AppKit/include", "frameworks/ScriptingBridge/include"
COMMAND_LINE = "tools/command_line"
HOST = "host/values", "host/calc", "host/modules", "host/script", "host/check", "host/editor", "host/loader", "host/wrapper"

ROOMS = {
    "sdk": Room(why="the interface knows nobody"),
    "plugin": Room(("sdk",), ("Foundation", "AddressBook", "AppKit", "ScriptingBridge", "CoreFoundation", "dl"),
                   (OBJC, "frameworks/AppKit/objc", "frameworks/ScriptingBridge", "host/wrapper"),
                   "the plug-in knows the sdk and the headers that Apple has, too"),
    "host/values": Room((), ("ICU", "Boost"), (), "the host's values are its lowest room"),
    "host/wrapper": Room(("host/values", "sdk"), ("ICU",), (), "the wrapper knows the host's values and the sdk"),
    "host/modules": Room((), ("dl",), (), "who loads libraries knows nothing of what is in them"),
    "host/network": Room(("host/values",), ("curl",), (), "the network knows the host's values alone"),
    "host/calc": Room(("host/values", "host/modules", "frameworks/AppKit/codec"), ("ICU", "json", "GnuTLS", "nettle"), (),
                      "calculations know the host's values, and the codec of pictures, which they load"),
    "host/script": Room(("host/calc", "host/values", "host/modules", "host/network"), (), (),
                        "scripts know calculations, and the network, which they load"),
    "host/check": Room(("host/script", "host/calc", "host/values"), (), (), "checking knows scripts and calculations"),
    "host/editor": Room(("host/check", "host/script", "host/calc", "host/values"), ("json",), (),
                        "editors are told of scripts and calculations, not of who runs them"),
    "host/loader": Room(("host/calc", "host/script", "host/values", "host/wrapper", "sdk"), ("dl", "libxml2"), (),
                        "the loader knows calculations, scripts and the interface, not the console"),
    "host/console": Room((*HOST, COMMAND_LINE), ("CLI11", "dl", "json", "libedit", "libxml2", "ICU"), (), "the console is the host's top room"),
    VALUES: Room((), ("ICU",), (), "values know nothing else"),
    SQL: Room((), ("SQLite",), (), "this room knows SQLite alone"),
    STORE: Room((VALUES, SQL), ("SQLite", "ICU", "zlib"), (), "the store knows values and SQLite"),
    MODEL: Room((STORE, VALUES), ("Boost",), (), "the model knows the store and values"),
    VCARD: Room((VALUES,), ("ICU", "Boost"), (), "vCards know values alone"),
    CSV: Room((VALUES,), ("ICU", "libcsv"), (), "CSV knows values alone"),
    CARDDAV: Room((VALUES,), ("curl", "libxml2"), (), "CardDAV knows values alone, and no store"),
    SYNC: Room((CARDDAV, STORE, VCARD, VALUES), (), (), "keeping in step knows the store, vCards and the server"),
    OBJC: Room((MODEL, STORE, VCARD, VALUES, "frameworks/AddressBook/include", "frameworks/Foundation"),
               ("Foundation", "AddressBook", "Boost", "objc"), ("frameworks/CoreFoundation",),
               "the classes know what is below them and Foundation"),
    "frameworks/AddressBook/include": Room((), ("Foundation", "AddressBook", "CoreFoundation"), (),
                                           "public headers know Apple's alone"),
    "frameworks/AddressBook/c": Room(("frameworks/CoreFoundation",), ("Foundation", "AddressBook", "CoreFoundation"), (),
                                     "the C interface knows the classes by their public headers"),
    "frameworks/CoreFoundation/include": Room((), ("CoreFoundation",), (), "public headers know Apple's alone"),
    "frameworks/CoreFoundation": Room(("frameworks/CoreFoundation/include",), ("Foundation", "CoreFoundation", "objc"),
                                      (), "the functions stand on Foundation"),
    "frameworks/Foundation": Room((), ("Foundation", "objc"), (), "additions to Foundation know Foundation alone"),
    "frameworks/AppKit/include": Room((), ("Foundation", "AppKit"), (), "public headers know Apple's alone"),
    "frameworks/AppKit/codec": Room((), ("GraphicsMagick",), (), "the codec knows the picture library alone"),
    "frameworks/AppKit/objc": Room(("frameworks/AppKit/codec", "frameworks/AppKit/include"),
                                   ("Foundation", "AppKit", "dl"), (), "AppKit loads its codec"),
    "frameworks/ScriptingBridge/include": Room((), ("Foundation", "ScriptingBridge"), (),
                                               "public headers know Apple's alone"),
    "frameworks/ScriptingBridge": Room(("frameworks/ScriptingBridge/include",),
                                       ("Foundation", "ScriptingBridge", "systemd", "objc"), (),
                                       "the bridge knows the session bus"),
    COMMAND_LINE: Room((), ("CLI11",), (), "pages and completions know the command line alone"),
    "tools": Room((MODEL, STORE, VCARD, CSV, CARDDAV, SYNC, VALUES, COMMAND_LINE), ("CLI11", "json", "libsecret", "dl"), (), "tools know the frameworks' C++ rooms"),
}
# Who measures and tests may know everybody; nobody knows them. What tests share knows no test.
OPEN_ROOMS = "bench", "fuzz", "tests"
SUPPORT = "tests/support"

# Files that are one unit, and may know one another: what they share stands in one header, the work in several sources.
ONE_UNIT = (
    ("frameworks/AddressBook/store/store", "frameworks/AddressBook/store/impl", "frameworks/AddressBook/store/backlog"),
    ("frameworks/AddressBook/objc/bridge", "frameworks/AddressBook/objc/multi_value",
     "frameworks/AddressBook/objc/list_entries"),
    ("frameworks/AddressBook/objc/property_types", "frameworks/AddressBook/objc/date_components"),
    ("frameworks/AppKit/codec/codec", "frameworks/AppKit/codec/decode", "frameworks/AppKit/codec/encode",
     "frameworks/AppKit/codec/library"),
    ("host/calc/builtins", "host/calc/function_groups"),
    ("host/calc/evaluator", "host/calc/session"),
    ("host/loader/plugin_host", "host/loader/plugin_library", "host/loader/plugin"),
    ("host/script/script_runner", "host/script/step_context"),
    ("host/values/decimal", "host/values/number"),
)

# Headers and link names that belong to a library; all others with a "/" or a name of their own are refused.
LIBRARIES = {
    "SQLite": (r"sqlite3\.h|SQLite::SQLite3",),
    "zlib": (r"zlib\.h|ZLIB::ZLIB",),
    "ICU": (r"unicode/.*|ICU::\w+",),
    "curl": (r"curl/.*|PkgConfig::CURL",),
    "libcsv": (r"csv\.h|libcsv",),
    "Boost": (r"boost/.*|Boost::\w+",),
    "GnuTLS": (r"gnutls/.*|PkgConfig::GNUTLS",),
    "nettle": (r"nettle/.*|PkgConfig::NETTLE",),
    "json": (r"nlohmann/.*|nlohmann_json::nlohmann_json",),
    "CLI11": (r"CLI/.*|CLI11::CLI11",),
    "libsecret": (r"libsecret/.*",),
    "libxml2": (r"libxml/.*|LibXml2::LibXml2",),
    "libedit": (r"histedit\.h|PkgConfig::LIBEDIT|PkgConfig::EDIT",),
    "systemd": (r"systemd/.*|PkgConfig::SYSTEMD",),
    "GraphicsMagick": (r"magick/.*|PkgConfig::GRAPHICSMAGICK",),
    "dl": (r"dlfcn\.h|link\.h|\$\{CMAKE_DL_LIBS\}",),
    "objc": (r"objc/.*|objc",),
    "Foundation": (r"Foundation/.*|velocard_foundation|gnustep-base",),
    "AddressBook": (r"AddressBook/.*",),
    "AppKit": (r"AppKit/.*",),
    "ScriptingBridge": (r"ScriptingBridge/.*",),
    "CoreFoundation": (r"CoreFoundation/.*",),
}
POSIX = re.compile(r"[a-z_0-9]+|[a-z_]+\.h|sys/[a-z_]+\.h")
HEADERS = ".h", ".hpp"
SOURCES = HEADERS + (".c", ".cpp", ".m", ".mm")
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^>"]+)[>"]')
TEST_LIBRARIES = re.compile(r"GTest::.*|benchmark::.*")


class Problem(NamedTuple):
    file: str
    line: int
    text: str
    rule: str

    def __str__(self):
        return f"{self.file}:{self.line}: {self.text}: {self.rule}"


def room_of(path):
    """The deepest room that a file lies in; None for a place that has no row."""
    rooms = [*ROOMS, *OPEN_ROOMS, SUPPORT]
    return max((room for room in rooms if path.startswith(room + "/")), key=len, default=None)


def library_of(name):
    """The library that a header or link name belongs to; None for the language's and the system's own."""
    return next((library for library, (pattern,) in LIBRARIES.items() if re.fullmatch(pattern, name)), None)


def refusal(user, used, library=None, linked=False):
    """The rule that forbids [user] to use a room or a library; None when it may."""
    if user in OPEN_ROOMS:
        return None
    if user == SUPPORT:
        return "what tests share knows no test" if used == "tests" else None
    if used in OPEN_ROOMS or used == SUPPORT:
        return "what is shipped knows no test and no benchmark"
    row = ROOMS[user]
    if library is not None:
        allowed = library in row.libraries
    else:
        allowed = used == user or used in row.rooms or (linked and used in row.links)
    return None if allowed else f"{row.why}; {user} may not use {library or used}"


def include_problems(root, path, paths):
    """What is wrong with the includes of one file."""
    user = room_of(path)
    if user is None:
        yield Problem(path, 1, "this file is in no room", "give its folder a row in the table of rooms")
        return
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        for number, line in enumerate(file, 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            text, (quote, name) = line.strip(), match.groups()
            if name.startswith("FMWrapper/"):
                rule = refusal(user, "sdk")
            elif quote == '"' and name in paths:
                rule = refusal(user, room_of(name))
            elif quote == '"' and user == "sdk" and f"sdk/FMWrapper/{name}" in paths:
                rule = None  # the interface's own headers name one another as its maker's do
            elif quote == '"':
                rule = "quoted includes name a file from the top of the repository"
            elif library := library_of(name):
                rule = refusal(user, None, library)
            elif POSIX.fullmatch(name) or user in OPEN_ROOMS or user == SUPPORT:
                rule = None
            else:
                rule = "this header belongs to no library of the table"
            if rule:
                yield Problem(path, number, text, rule)


def calls(text, name):
    """The calls of a CMake command: the line of each and its words."""
    plain = re.sub(r"#[^\n]*", "", text)
    for match in re.finditer(name + r"\s*\(([^()]*)\)", plain):
        yield plain.count("\n", 0, match.start()) + 1, re.findall(r'"[^"]*"|\S+', match.group(1))


def link_problems(root, lists):
    """What is wrong with the link lines of all CMake files."""
    texts = {}
    rooms = {}  # of targets
    for path in lists:
        with open(os.path.join(root, path), encoding="utf-8") as file:
            texts[path] = file.read()
        for _, words in calls(texts[path], r"\b(?:add_library|add_executable|velocard_test)"):
            rooms[words[0]] = room_of(path)
    for path, text in texts.items():
        for line, words in calls(text, r"\b(?:target_link_libraries|velocard_test)"):
            user = room_of(path)
            if user is None:
                continue  # the build's own settings
            for word in words[1:]:
                if word in ("PUBLIC", "PRIVATE", "INTERFACE", "velocard_settings") or TEST_LIBRARIES.fullmatch(word):
                    continue
                library = library_of(word)
                used = rooms.get(word)
                rule = refusal(user, used, library, linked=True) if library or used else None
                if rule:
                    yield Problem(path, line, f"links {word}", rule)


def circles(root, paths):
    """Units (a header and its source) that know one another in a circle, through their sources, too."""
    shared = {name: names[0] for names in ONE_UNIT for name in names}

    def unit_of(path):
        stem = os.path.splitext(path)[0]
        return shared.get(stem, stem)

    graph, places = {}, {}
    for path in paths:
        if not path.endswith(SOURCES) or room_of(path) in (None, *OPEN_ROOMS, SUPPORT):
            continue
        with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
            for number, line in enumerate(file, 1):
                match = INCLUDE.match(line)
                if match and match.group(2) in paths and unit_of(match.group(2)) != unit_of(path):
                    edge = unit_of(path), unit_of(match.group(2))
                    graph.setdefault(edge[0], set()).add(edge[1])
                    places.setdefault(edge, (path, number, line.strip()))

    def way(start, goal):
        """The shortest way from one unit to another."""
        open_, before = [start], {start: None}
        for unit in open_:
            if unit == goal:
                names = []
                while unit is not None:
                    names.append(unit)
                    unit = before[unit]
                return names[::-1]
            for following in sorted(graph.get(unit, ())):
                if following not in before:
                    before[following] = unit
                    open_.append(following)
        return None

    told = set()
    for (user, used), (path, number, text) in sorted(places.items()):
        back = way(used, user)
        if back is None or frozenset(back) in told:
            continue
        told.add(frozenset(back))
        yield Problem(path, number, text, "a circle: " + " -> ".join([user, *back]))


def problems(root):
    """All that is wrong below a folder, in the order of files."""
    paths = set()
    for folder, folders, files in os.walk(root):
        if folder == root:
            folders[:] = [name for name in folders if name not in ("build", "docs", "examples", "scripts", ".git")]
        paths.update(os.path.relpath(os.path.join(folder, name), root) for name in files)
    found = []
    for path in sorted(paths):
        if path.endswith(SOURCES):
            found += include_problems(root, path, paths)
    found += link_problems(root, sorted(path for path in paths if path.endswith(("CMakeLists.txt", ".cmake"))))
    found += circles(root, sorted(paths))
    return found


def main(problems, usage):
    """Prints what `problems` finds in the folder that the command line names; the exit status tells."""
    if len(sys.argv) != 2 or not os.path.isdir(sys.argv[1]):
        sys.exit(usage)
    found = problems(sys.argv[1])
    for problem in found:
        print(problem)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main(problems, __doc__)
