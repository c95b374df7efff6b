#!/usr/bin/env python3
"""Holds that each function and each name in Get ( ) stands in a calculation of these tests.

usage: check_coverage.py FMHOST
"""

import json
import re
import subprocess
import sys
from pathlib import Path


def calculations(folder):
    """All calculations below a folder, without their expected results."""
    return "\n".join(line for file in folder.rglob("*.calc")
                     for line in file.read_text(encoding="utf-8").splitlines()
                     if not line.startswith(("#", "=", "~", "!")))


def use_of(row):
    """The pattern of a use: in Get ( ), with its parenthesis when it takes arguments, else as a word."""
    name = re.escape(row["name"])
    if row["kind"] == "get":
        return rf"\bGet \( {name} \)"
    return rf"(?<![$\w]){name}" + (r"\s*\(" if "(" in row["prototype"] else r"\b")


def main():
    listed = subprocess.run([sys.argv[1], "--no-plugin", "functions", "--all", "--json"],
                            check=True, capture_output=True, text=True).stdout
    rows = [row for row in json.loads(listed) if row["kind"] != "step"]
    tested = calculations(Path(__file__).parent)
    missing = [row for row in rows if not re.search(use_of(row), tested, re.IGNORECASE)]
    for row in missing:
        print(f"no calculation in tests/language has {row['prototype']} ({row['category']})")
    if len(rows) < 300:
        print(f"only {len(rows)} functions and names are listed")
        return 1
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
