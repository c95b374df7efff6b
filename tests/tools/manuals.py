#!/usr/bin/env python3
"""Checks the manual pages of programs against what they say with --help.

    manuals.py PROGRAM...    prints what is wrong, a line each, and ends with 1 when there is something

Each command has a page, which names each of its options and arguments. Where groff is installed, it must have nothing to
say about a page.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def section(help_text, heading):
    """The names in a section of --help: what stands at the beginning of its entries."""
    match = re.search(rf"^{heading}:\n((?:  .*\n?)+)", help_text, re.MULTILINE)
    return re.findall(r"^  (\S+)", match.group(1), re.MULTILINE) if match else []


def commands_of(program, *arguments):
    """The program itself, its commands, and theirs."""
    yield arguments
    for command in section(output(program, *arguments, "--help"), "Subcommands"):
        yield from commands_of(program, *arguments, command)


def problems(program, folder):
    name = os.path.basename(program)
    subprocess.run([program, "--manual", folder], check=True)
    commands = list(commands_of(program))
    if len(commands) == 1:
        yield f"{name}: --help lists no commands"
    for arguments in commands:
        page = "-".join([name, *arguments]) + ".1"
        path = os.path.join(folder, page)
        if not os.path.exists(path):
            yield f"{page} is missing"
            continue
        with open(path, encoding="utf-8") as file:
            plain = file.read().replace("\\-", "-")
        help_text = output(program, *arguments, "--help")
        for names in section(help_text, "Options") + section(help_text, "Positionals"):
            for word in names.split(","):
                if not re.search(rf"\\f[BI]{re.escape(word)}\\fP", plain):
                    yield f"{page}: nothing about {word}"
        if shutil.which("groff"):
            said = subprocess.run(["groff", "-k", "-man", "-Tutf8", "-z", "-ww", path], capture_output=True, text=True,
                                  check=False)
            yield from said.stderr.splitlines()


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    found = []
    for program in sys.argv[1:]:
        with tempfile.TemporaryDirectory() as folder:
            found += problems(program, folder)
    for line in found:
        print(line)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
