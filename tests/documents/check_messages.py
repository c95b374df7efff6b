#!/usr/bin/env python3
"""Holds docs/troubleshooting.md against the sources.

    check_messages.py FOLDER    prints what is wrong, a line each, and ends with 1 when there is something

Every text of two words or more in the sources of the programs, the host, the framework and the plug-in counts as a message,
and must stand in the document, unless a row of NO_MESSAGES says what it is instead: so a new message is found whatever
function it goes through. The document has messages in code spans of its tables, with "…" where something is filled in.
What the sources do not say is found in the first column, too.
"""

import os
import re
import sys

ROOMS = "tools", "host", "frameworks", "plugin"
SOURCES = ".h", ".cpp", ".m", ".mm"
DOCUMENT = "docs/troubleshooting.md"

# What texts are when they are no message: a pattern of files, one of what encloses the text ("call(", ",{" in a table), or
# of the text itself.
ANY = ""
NO_MESSAGES = [
    # file, enclosed by, text, what it is
    (ANY, r"(add_option|add_option_function|add_flag|add_subcommand|footer|command|app|addJson|addLimit|addNarrowing|show|"
          r"set_version_flag)\(", ANY, "help"),
    (r"tools/addressbook/main\.cpp", ANY, r"Examples:|^Exit status|check --book|^\\n  VALUE", "help"),
    (r"host/console/main\.cpp", ANY, r"^How long|^\], and each", "help"),
    (r"host/console/(prompt_commands|line_editor)\.cpp", r"\b(Row|ColourRow|Key)\{", ANY, "help"),
    (r"host/console/prompt_commands\.cpp", ANY, r"^Type a calculation|\?NAME is", "help"),
    (r"host/console/prompt\.cpp", ANY, r"^Type a calculation|^Address book: ", "the greeting"),
    (r"tools/addressbook/commands\.cpp", ANY, r"look into it|what else can be done", "help"),
    (r"tools/command_line/", ANY, r"^Exit status|^\.\\\\", "the form of the manual"),
    (r"host/calc/functions/", r"(,|\{)\{", ANY, "descriptions of functions"),
    (r"host/calc/(constants|functions/text_formatting)\.cpp", ANY, ANY, "descriptions of constants; HTML"),
    (r"host/calc/functions/groups\.cpp", ANY, ANY, "categories of functions"),
    (r"host/script/(own_steps|steps/\w+)\.cpp", r"(,|\{)\{", ANY, "prototypes and descriptions of steps"),
    (r"host/editor/script_format\.cpp", r",\{", ANY, "names of steps"),
    (r"host/script/step_arguments\.cpp", ANY, r"^set variable$", "the name of a step"),
    (r"host/console/function_list\.cpp", ANY, r"^Script steps: $", "the heading of a category"),
    (r"host/editor/assistance\.cpp", r"find\(", ANY, "names of steps"),
    (ANY, ANY, r"^standard (input|output)$", "names of files"),
    (r"tools/addressbook/(explain|show)\.cpp", ANY, ANY, "results"),
    (r"tools/addressbook/sync/declare\.cpp", ANY, ANY, "help"),
    (r"tools/addressbook/sync/keyring\.cpp", ANY, r"^Address book of", "the name of an item"),
    (r"tools/addressbook/sync/sync_round\.cpp", r"add\(", ANY, "results"),
    (r"frameworks/AddressBook/carddav/", ANY, r"^(Content-Type|Accept|Accept-Encoding): |<\?xml|xmlns", "HTTP, XML"),
    (r"tools/addressbook/", r"counted\(", ANY, "nouns"),
    (ANY, r"static_assert\(", ANY, "for the compiler"),
    (ANY, r"(prepare|execute|pragma|scan|scanBothWays|copyRows|runForEach|strstr)\(", ANY, "SQL"),
    (ANY, ANY, r"^\s*(SELECT|INSERT|UPDATE|DELETE|CREATE|DROP|WITH|PRAGMA|BEGIN|ALTER|AND|WHERE|FROM|ORDER)\b", "SQL"),
    (r"frameworks/AddressBook/store/schema\.cpp", r"(namespace\{|;)", r"CREATE", "SQL"),
    (r"frameworks/AddressBook/(objc/localized_names\.m|csv/columns\.cpp)|plugin/vocabulary/|plugin/properties/new_entries",
     r"(,|\{|Single|Format)\{", ANY, "names of labels, columns and addresses"),
    (r"frameworks/AddressBook/objc/address_format\.mm", r"Format\{", ANY, "countries"),
    (r"frameworks/Foundation/NSMachPort\.m", ANY, r"^NSMachPort scheduled ports$", "a key"),
    (r"host/network/options\.cpp", ANY, r"^(Content-Type|Accept): ", "HTTP"),
    (r"host/loader/plugin_host\.cpp", r"logic_error\(", ANY, "never met outside of tests"),
]
TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|@?(?:u8|u|U|L)?R"(\w*)\(.*?\)\1"|@?(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*"'
                   r"|'(?:\\.|[^'\\\n])+'|\d[\w']*|\w+|\s+|.", re.DOTALL)
SENTENCE = re.compile(r"[A-Za-z]{2,}[^A-Za-z]* [a-z]{2,}")


def is_text(token):
    return token.endswith('"') and len(token) > 1


def enclosing(tokens, at):
    """What a token stands in: "call(", "name{", or ";" for a statement of its own."""
    depth = 0
    for position in range(at - 1, 0, -1):
        token = tokens[position]
        if token in ")]}":
            depth += 1
        elif token in "([{":
            if depth == 0:
                return tokens[position - 1] + token
            depth -= 1
        elif token == ";" and depth == 0:
            return ";"
    return ""


def unescaped(text):
    text = re.sub(r"\\u([0-9A-F]{4})", lambda match: chr(int(match.group(1), 16)), text)
    return re.sub(r"\\(.)", lambda match: {"n": " ", "t": " "}.get(match.group(1), match.group(1)), text)


def plain(text):
    """A text without what its neighbours decide: blanks and signs at its ends, kinds of blanks."""
    return re.sub(r"\s+", " ", text).strip(" :;,.()\"'?[]=/+")


def texts(path, source):
    """The texts of a file that are sentences: line, what encloses it, text."""
    tokens, lines, line = [], [], 1
    for match in TOKEN.finditer(source):
        token = match.group(0)
        if not token.isspace() and not token.startswith(("//", "/*")):
            tokens.append(token)
            lines.append(line)
        line += token.count("\n")
    at = 0
    while at < len(tokens):
        start, text = at, ""
        while at < len(tokens) and is_text(tokens[at]):
            text += tokens[at][tokens[at].index('"') + 1:-1]
            at += 1
        if at == start:
            at += 1
        elif SENTENCE.search(text) and tokens[start - 1] not in ("include", "import"):
            yield lines[start], enclosing(tokens, start), text


def is_message(path, enclosed, text):
    return not any(re.match(file, path) and re.fullmatch(around or ".*", enclosed, re.DOTALL) and re.search(said, text)
                   for file, around, said, _ in NO_MESSAGES)


def documented(document):
    """The code spans of the document's tables: line, whether in the first column, text."""
    for number, line in enumerate(document.splitlines(), 1):
        if line.startswith("| `"):
            for column, cell in enumerate(line.split(" | ")):
                for span in re.findall(r"`([^`]+)`", cell):
                    yield number, column == 0, span


def problems(root):
    with open(os.path.join(root, DOCUMENT), encoding="utf-8") as file:
        document = file.read()
    known = list(documented(document))
    all_known = "\n".join(plain(span) for _, _, span in known)
    said = set()
    for room in ROOMS:
        for folder, folders, files in os.walk(os.path.join(root, room)):
            folders.sort()
            for name in sorted(files):
                path = os.path.relpath(os.path.join(folder, name), root)
                if not name.endswith(SOURCES):
                    continue
                with open(os.path.join(root, path), encoding="utf-8") as file:
                    source = file.read()
                for line, enclosed, text in texts(path, source):
                    if not is_message(path, enclosed, text):
                        continue
                    pieces = [plain(piece) for piece in re.split(r"%(?:l?[uds@]|\w)", unescaped(text))]
                    pieces = [piece for piece in pieces if SENTENCE.search(piece)]
                    said.update(pieces)
                    yield from (f'{path}:{line}: the message "{piece}" is not in {DOCUMENT}'
                                for piece in pieces if piece not in all_known)
    for number, is_first, span in known:
        rest = span if is_first else ""
        for text in sorted(said, key=len, reverse=True):
            rest = rest.replace(text, "…")
        for piece in rest.split("…"):
            if SENTENCE.search(piece):
                yield f'{DOCUMENT}:{number}: no source says "{plain(piece)}"'


def main():
    if len(sys.argv) != 2 or not os.path.isdir(sys.argv[1]):
        sys.exit(__doc__)
    found = list(problems(sys.argv[1]))
    for line in found:
        print(line)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
