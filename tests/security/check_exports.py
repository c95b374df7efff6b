#!/usr/bin/env python3
"""Holds what libraries export against kept lists.

    check_exports.py FOLDER LIBRARY...    prints each difference, a line each, and ends with 1 when there is one
    check_exports.py --write FOLDER LIBRARY...    writes the lists; read what changed before you keep it

FOLDER has a file for each library, "<library>.txt", with a symbol in each line. Another program can call each of them, and
a library loaded later can put its own in their place: so there are as few as can be.
"""

import os
import subprocess
import sys


def exported(library):
    printed = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, text=True, check=True).stdout
    return sorted({line.split()[-1] for line in printed.splitlines()})


def main(folder, libraries, write):
    problems = []
    for library in libraries:
        name = os.path.basename(library)
        path = os.path.join(folder, name + ".txt")
        symbols = exported(library)
        if write:
            with open(path, "w", encoding="utf-8") as file:
                file.writelines(symbol + "\n" for symbol in symbols)
            continue
        with open(path, encoding="utf-8") as file:
            kept = file.read().split()
        problems += [f"{name} exports {symbol}, which {path} has not" for symbol in sorted(set(symbols) - set(kept))]
        problems += [f"{name} does not export {symbol}, which {path} has" for symbol in sorted(set(kept) - set(symbols))]
    print("\n".join(problems) if problems else f"{len(libraries)} libraries export what is listed")
    return 1 if problems else 0


if __name__ == "__main__":
    writes = sys.argv[1] == "--write"
    sys.exit(main(sys.argv[1 + writes], sys.argv[2 + writes:], writes))
