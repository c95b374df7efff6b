#!/usr/bin/env python3
"""Looks at programs and libraries for what cmake/Settings.cmake hardens them with.

    check_hardening.py FILE...    prints what a file lacks, a line each, and ends with 1 when there is something
"""

import re
import subprocess
import sys

ENDBR64 = b"\xf3\x0f\x1e\xfa"


def printed(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def offset(segments, address):
    """The place in the file of an address."""
    for kind, at, start, size in segments:
        if kind == "LOAD" and start <= address < start + size:
            return at + address - start
    return None


def lacking(path):
    """What the file lacks, and its functions with checks of length."""
    header, dynamic = printed("readelf", "-hW", path), printed("readelf", "-dW", path)
    listed = printed("readelf", "-lW", path)
    rows = re.findall(r"^  (\S+) +(0x\w+) (0x\w+) 0x\w+ (0x\w+) 0x\w+ ([RWE ]{3})", listed, re.MULTILINE)
    flags = {kind: rights for kind, _, _, _, rights in rows}
    segments = [(kind, int(at, 16), int(start, 16), int(size, 16)) for kind, at, start, size, _ in rows]
    symbols = printed("nm", "-D", path)
    missing = []
    if "DYN" not in header:
        missing.append("it is not position-independent")
    if "interpreter" in listed and not re.search(r"FLAGS_1.*\bPIE\b", dynamic):
        missing.append("it is no position-independent program")
    if "GNU_RELRO" not in flags:
        missing.append("what the loader has filled in stays writable (no RELRO)")
    if not re.search(r"FLAGS.*\b(BIND_NOW|NOW)\b", dynamic):
        missing.append("functions are bound when they are first called (no BIND_NOW)")
    if "E" in flags.get("GNU_STACK", "E"):
        missing.append("its stack may be executed")
    if any("W" in rights and "E" in rights for *_, rights in rows):
        missing.append("a segment may be written and executed")
    if "TEXTREL" in dynamic:
        missing.append("its code is written to when it is loaded")
    # Where nothing stands between colons, CMake keeps room for the path that an installation has.
    if any(part and not part.startswith("$ORIGIN") for found in re.findall(r"R(?:UN)?PATH.*\[(.*)\]", dynamic)
           for part in found.split(":")):
        missing.append("it looks for libraries in fixed folders")
    if "__stack_chk_fail" not in symbols:
        missing.append("it has no stack protector")
    if "X86-64" in header:
        # The C library's start-up code has no note of it, so that the linker leaves it out: the code itself says.
        with open(path, "rb") as file:
            code = file.read()
        for address, name in re.findall(r"^(\w+) T (\S+)$", symbols, re.MULTILINE):
            at = offset(segments, int(address, 16))
            if name not in ("_init", "_fini") and at is not None and code[at:at + 4] != ENDBR64:
                missing.append(f"{name} is no marked target of a jump (no CET)")
        if printed("objdump", "-d", "--no-show-raw-insn", path).count("endbr64") < 10:
            missing.append("its functions are no marked targets of jumps (no CET)")
    return missing, set(re.findall(r"U (__\w+_chk)\b", symbols)) - {"__stack_chk_fail"}


def main(paths):
    problems, checked = [], set()
    for path in paths:
        missing, functions = lacking(path)
        problems += [f"{path}: {what}" for what in missing]
        checked |= functions
    if len(checked) < 3:
        problems.append(f"only {sorted(checked)} check lengths: _FORTIFY_SOURCE is off")
    print("\n".join(problems) if problems else f"{len(paths)} files are hardened; lengths are checked by "
          + ", ".join(sorted(checked)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
