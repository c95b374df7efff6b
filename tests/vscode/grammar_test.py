#!/usr/bin/env python3
"""Holds the grammars of the VS Code extension to fmhost.

    grammar_test.py FMHOST EXTENSION FILE...

Each file is coloured by the grammar for its ending, and by `fmhost lsp` (semantic tokens), which reads it as the host
does: comments, texts, numbers, variables, words for operators, steps and names in Get ( ) must be where the other one
has them. A grammar knows no list of functions: a name before "(" is one. The manifest is held to the files.
"""

import json
import os
import re
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, os.path.dirname(__file__))
from textmate import Grammars  # pylint: disable=wrong-import-position

# What a scope begins with, and the type of token that it is.
KINDS = {
    "comment": "comment",
    "string": "string",
    "constant.character.escape": "string",
    "constant.numeric": "number",
    "variable.other.property": "property",
    "variable.other": "variable",
    "support.function": "function",
    "keyword": "keyword",
}


def kind_of(scope):
    return next((kind for start, kind in KINDS.items() if scope and scope.startswith(start)), None)


class Server:
    """fmhost lsp, and what it says of documents."""

    def __init__(self, program):
        self.process = subprocess.Popen([program, "--no-plugin", "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.count = 0
        capabilities = self.ask("initialize", {"capabilities": {}})["capabilities"]
        self.types = capabilities["semanticTokensProvider"]["legend"]["tokenTypes"]

    def send(self, message):
        body = json.dumps({"jsonrpc": "2.0", **message}).encode()
        self.process.stdin.write(b"Content-Length: %d\r\n\r\n" % len(body) + body)
        self.process.stdin.flush()

    def receive(self):
        length = 0
        while (line := self.process.stdout.readline()) not in (b"\r\n", b""):
            length = int(line.split(b":")[1])
        return json.loads(self.process.stdout.read(length))

    def ask(self, method, parameters):
        self.count += 1
        self.send({"id": self.count, "method": method, "params": parameters})
        while (answer := self.receive()).get("id") != self.count:
            pass
        return answer["result"]

    def tokens(self, path, text):
        """The type of each character, line by line; None for others."""
        uri = path.resolve().as_uri()
        self.send({"method": "textDocument/didOpen",
                   "params": {"textDocument": {"uri": uri, "languageId": "x", "version": 1, "text": text}}})
        data = self.ask("textDocument/semanticTokens/full", {"textDocument": {"uri": uri}})["data"]
        lines = text.splitlines(keepends=True)
        units = [[None] * (len(line.encode("utf-16-le")) // 2) for line in lines]
        line = column = 0
        for i in range(0, len(data), 5):
            line, column = line + data[i], data[i + 1] + (column if data[i] == 0 else 0)
            units[line][column:column + data[i + 2]] = [self.types[data[i + 3]]] * data[i + 2]
        return [[of_line[len(text_line[:i].encode("utf-16-le")) // 2] for i in range(len(text_line))]
                for of_line, text_line in zip(units, lines)]


# Functions that fmhost does not know without the plug-in; any other name before a bracket is no function.
UNKNOWN = re.compile("KORU_|Unknown_")
NAME = re.compile(r"[\w~@#.]*")


def name_at(line, column):
    """The name around a column."""
    while column > 0 and NAME.fullmatch(line[column - 1]):
        column -= 1
    return NAME.match(line, column).group()


def is_call(line, column):
    """Whether the name at a column stands before a bracket."""
    return line[NAME.match(line, column).end():].lstrip(" \t").startswith("(")


def agrees(ours, theirs, line, column):
    """Whether the grammar's kind of a character is right, given the server's."""
    if theirs == "function":
        return ours == ("function" if is_call(line, column) else None)
    if ours == "function":
        return theirs is None and is_call(line, column) and UNKNOWN.match(name_at(line, column))
    if ours == "property":
        return theirs in ("property", None)  # Get knows no such name
    return ours == (None if theirs == "enumMember" else theirs)


def problems(path, text, scopes, tokens):
    for number, line in enumerate(text.splitlines(keepends=True)):
        for column, character in enumerate(line):
            ours, theirs = kind_of(scopes[number][column]), tokens[number][column]
            if not character.isspace() and not agrees(ours, theirs, line, column):
                yield (f"{path}:{number + 1}:{column + 1}: the grammar says {ours or 'nothing'}, fmhost "
                       f"{theirs or 'nothing'}: {line.strip()}")
                break


def manifest_problems(extension, manifest, grammars):
    for language in manifest["contributes"]["languages"]:
        if not (extension / language["configuration"]).is_file():
            yield f"package.json: there is no {language['configuration']}"
    for row in manifest["contributes"]["grammars"]:
        if json.loads((extension / row["path"]).read_text("utf-8"))["scopeName"] != row["scopeName"]:
            yield f"package.json: {row['path']} is not the grammar of {row['scopeName']}"
        if row["scopeName"] not in grammars.files:
            yield f"package.json: there is no grammar of {row['scopeName']}"
    if not (extension / manifest["main"]).is_file():
        yield f"package.json: there is no {manifest['main']}"


def main():
    program, extension, *files = sys.argv[1:]
    extension = Path(extension)
    manifest = json.loads((extension / "package.json").read_text("utf-8"))
    grammars = Grammars(extension / "syntaxes")
    found = list(manifest_problems(extension, manifest, grammars))
    scope_of_language = {row["language"]: row["scopeName"] for row in manifest["contributes"]["grammars"]}
    scope_of_ending = {ending: scope_of_language[language["id"]]
                       for language in manifest["contributes"]["languages"] for ending in language["extensions"]}
    server = Server(program)
    seen = set()
    for path in map(Path, files):
        text = path.read_text("utf-8")
        tokens = server.tokens(path, text)
        found += problems(path, text, grammars.colour(text, scope_of_ending[path.suffix]), tokens)
        seen.update((path.suffix, kind) for line in tokens for kind in line)
    server.process.stdin.close()
    for ending in scope_of_ending:
        missing = set(KINDS.values()) - {kind for of, kind in seen if of == ending}
        if missing:
            found.append(f"no {', '.join(sorted(missing))} in any file {ending}: nothing was compared")
    print("\n".join(found) or f"{len(files)} files: grammar and host agree")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
