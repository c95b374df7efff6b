#!/usr/bin/env python3
"""Tries the completions in a real shell.

    shell_completions.py SHELL COMPLETIONS PROGRAMS...    SHELL is bash, zsh or fish, COMPLETIONS the folder with its
                                                          files, PROGRAMS the folders of addressbook and fmhost

Types each line below and a Tab in a terminal of its own, and lets the shell itself say which words the line then has.
Prints what is wrong and ends with 1.
"""

import os
import pty
import re
import select
import shutil
import sys
import tempfile
import time

ID = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0001:ABPerson"
CONTACTS = f"""BEGIN:VCARD
VERSION:3.0
UID:{ID}
N:Smith;Anna;;;
FN:Anna Smith
CATEGORIES:Book club,Harbour
END:VCARD
"""

# What is typed, and the words after it.
CASES = [
    ("addressbook gro", ["addressbook", "groups"]),
    ("addressbook list --fie", ["addressbook", "list", "--fields"]),
    ("addressbook list --fields lastname,orga", ["addressbook", "list", "--fields", "lastname,organization"]),
    ("addressbook list --group Har", ["addressbook", "list", "--group", "Harbour"]),
    ("addressbook list --group Boo", ["addressbook", "list", "--group", "Book club"]),
    ("addressbook list --group 'Boo", ["addressbook", "list", "--group", "Book club"]),
    ("addressbook list --group=Har", ["addressbook", "list", "--group=Harbour"]),
    ("addressbook export --format=v", ["addressbook", "export", "--format=vcard"]),
    ("addressbook --book other list --group Oth", ["addressbook", "--book", "other", "list", "--group", "Others"]),
    ("addressbook show 0B1F6A52", ["addressbook", "show", ID]),
    ("addressbook show " + ID[:-5], ["addressbook", "show", ID]),
    ("addressbook set " + ID + " jobt", ["addressbook", "set", ID, "jobtitle="]),
    ("addressbook import cont", ["addressbook", "import", "contacts.vcf"]),
    ("addressbook import mor", ["addressbook", "import", "more contacts.vcf"]),
    ("addressbook list --book oth", ["addressbook", "list", "--book", "other"]),
    ("fmhost functions KORU_GetLastE", ["fmhost", "functions", "KORU_GetLastError"]),
    ("fmhost functions --no-plugin Upp", ["fmhost", "functions", "--no-plugin", "Upper"]),
    ("fmhost --locale de_A", ["fmhost", "--locale", "de_AT"]),
    ("fmhost run --folder scripts greet", ["fmhost", "run", "--folder", "scripts", "greeting"]),
    ("fmhost check --format sar", ["fmhost", "check", "--format", "sarif"]),
]

SHELLS = {
    "bash": (["bash", "--norc", "--noprofile", "-i"], "PS1='READY> '; bind 'set enable-bracketed-paste off'; {sources}"),
    "zsh": (["zsh", "-f", "-i"], "PS1='READY> '; unsetopt zle_bracketed_paste; fpath=({folder} $fpath); autoload -U compinit; "
            "compinit -u -d dump"),
    "fish": (["fish", "--no-config", "-i"], "function fish_prompt; echo -n 'READY> '; end; set fish_autosuggestion_enabled 0; "
             "{sources}"),
}


class Terminal:
    """A shell in a terminal of its own."""

    def __init__(self, shell, folder, environment):
        arguments, start = SHELLS[shell]
        process, self.file = pty.fork()
        if process == 0:
            os.execvpe(arguments[0], arguments, environment)
        sources = "; ".join(f"source {os.path.join(folder, name)}" for name in sorted(os.listdir(folder)))
        self.send(start.format(folder=folder, sources=sources) + "\n")
        self.send("printf '%s%s\\n' STAR TED\n")
        self.wait("STARTED")

    def send(self, text):
        os.write(self.file, text.encode())

    def wait(self, pattern, seconds=20):
        """Reads until the output has a text; returns its match."""
        output, end = "", time.monotonic() + seconds
        while time.monotonic() < end:
            if not select.select([self.file], [], [], 0.1)[0]:
                continue
            output += os.read(self.file, 65536).decode(errors="replace")
            if found := re.search(pattern, output, re.DOTALL):
                return found
        raise TimeoutError(f"waited for {pattern!r}, read {output!r}")

    def words_after_tab(self, line):
        """Types a line and a Tab, and asks for the words that the line has then."""
        self.send(line)
        time.sleep(0.2)
        self.send("\t")
        time.sleep(0.4)
        # To the beginning of the line, so that the shell prints the words instead of running the program.
        self.send("\x01printf '<%s>' BEG''IN \x05 END''ED\n")
        text = self.wait(r"<BEGIN>(.*)<ENDED>").group(1)
        return [word.removesuffix("/") for word in re.findall(r"<(.*?)>", text)]  # zsh takes it back at a blank


def prepare(folder, programs):
    """An address book, files and scripts; returns the environment of the shell."""
    os.chdir(folder)
    for name in ("book", "other", "scripts", "home"):
        os.mkdir(name)
    for name, text in (("contacts.vcf", CONTACTS), ("more contacts.vcf", CONTACTS),
                       ("others.vcf", CONTACTS.replace("Book club", "Others")), ("scripts/greeting.fmscript", "")):
        with open(name, "w", encoding="utf-8") as file:
            file.write(text)
    environment = {"PATH": os.pathsep.join([*programs, "/usr/bin", "/bin"]), "TERM": "dumb", "LC_ALL": "C.UTF-8",
                   "HOME": os.path.join(folder, "home"), "ADDRESSBOOK_HOME": os.path.join(folder, "book"),
                   **{name: os.environ[name] for name in ("FMHOST_PLUGIN",) if name in os.environ}}
    os.environ.update(environment)
    for command in ("import contacts.vcf", "--book other import others.vcf"):
        if os.system(f"addressbook {command} 2>imported"):
            sys.exit("the contacts could not be imported: " + open("imported", encoding="utf-8").read())
    return environment


def main():
    if len(sys.argv) < 4 or sys.argv[1] not in SHELLS:
        sys.exit(__doc__)
    shell, folder, *programs = sys.argv[1:]
    work = tempfile.mkdtemp()
    failed = 0
    try:
        terminal = Terminal(shell, os.path.abspath(folder), prepare(work, [os.path.abspath(p) for p in programs]))
        for line, expected in CASES:
            found = terminal.words_after_tab(line)
            if found != expected:
                print(f"{shell}: {line}<Tab>: expected {expected}, found {found}")
                failed += 1
    finally:
        os.chdir("/")
        shutil.rmtree(work)
    print(f"{shell}: {len(CASES) - failed} of {len(CASES)} lines are completed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
