#!/usr/bin/env python3
"""Runs what the README tells newcomers to type, and compares with what it says they will see.

    check_transcripts.py FOLDER PROGRAMS    FOLDER has the README, PROGRAMS fmhost and addressbook; prints what differs,
                                            and ends with 1 when something does

In blocks fenced as console a line that begins with "$ " is a command of the shell, and what follows is all that it prints,
errors first. All blocks are one session of a new user. The block that begins with "== " is what make demo prints after
building; where FOLDER is no repository but an installation's documents, it is not looked at. "..." alone in a line stands for any lines, inside a line for any text.
"""

import os
import re
import subprocess
import sys
import tempfile


def blocks(text):
    """The fenced blocks: language and lines."""
    return [(language, body.splitlines()) for language, body in re.findall(r"^```(\w*)\n(.*?)^```$", text, re.M | re.S)]


def agrees(expected, found):
    """Whether printed lines are what a block has, with its "..."."""
    pattern = "".join(r"(?:.*\n)*?" if line == "..." else ".*".join(map(re.escape, line.split("..."))) + r"\n"
                      for line in expected)
    return re.fullmatch(pattern, "".join(line + "\n" for line in found)) is not None


def commands(lines):
    """The commands of a block, with what each prints."""
    found = []
    for line in lines:
        if line.startswith("$ "):
            found.append((line[2:], []))
        elif found and found[-1][0].endswith("\\") and not found[-1][1]:
            found[-1] = (found[-1][0] + "\n" + line, [])
        else:
            found[-1][1].append(line)
    return found


def compare(what, expected, found):
    while found and not found[-1]:
        found.pop()
    if agrees(expected, found):
        return []
    return [f"README.md, {what}: expected", *expected, "found", *found]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    root, programs = map(os.path.abspath, sys.argv[1:])
    with open(os.path.join(root, "README.md"), encoding="utf-8") as file:
        fenced = blocks(file.read())
    wrong, tried = [], 0
    with tempfile.TemporaryDirectory() as home:
        environment = {"PATH": programs + ":/usr/bin:/bin", "HOME": home, "TZ": "UTC", "LC_ALL": "C.UTF-8"}
        for language, lines in fenced:
            if language != "console":
                continue
            for command, expected in commands(lines):
                here = command.replace("/usr/share/doc/velocard/", "").replace("~", home)
                done = subprocess.run(["bash", "-c", here], capture_output=True, text=True, env=environment, cwd=root,
                                      timeout=60, check=False)
                printed = (done.stderr + done.stdout).replace("examples/", "/usr/share/doc/velocard/examples/")
                wrong += compare(command, expected, printed.replace(home, "/home/you").splitlines())
                tried += 1
    demo = os.path.join(root, "scripts", "demo")
    for language, lines in fenced:
        if lines and lines[0].startswith("== ") and os.path.exists(demo):
            done = subprocess.run([demo, programs], stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True, timeout=120, check=False)
            printed = [re.sub(r".*\r", "", line) for line in done.stdout.strip().splitlines()]
            wrong += compare("make demo", lines, printed)
            tried += 1
    if tried < 2:
        wrong.append("README.md has no session or no demo")
    for line in wrong:
        print(line)
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
