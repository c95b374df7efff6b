#!/usr/bin/env python3
"""A working day of hosts: a listener and four writers on one address book, backups, a restore, a disk that fills up.

    hosts.py FMHOST ADDRESSBOOK PLUGIN LISTENING-PLUGIN TROUBLESHOOTING

Every save that was answered with 0 must be there at the end, whatever happened after it; the memory of each host must
stay as it was after the first quarter; and each message must be one that the document TROUBLESHOOTING explains.

VELOCARD_MINUTES says how long it takes (0.2). With 10 minutes and more the address book is on a small disk of its own
(tmpfs, which needs root) that is filled up and emptied again.
"""

import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

WRITERS = 4
RECORDS = 300  # of a writer; beyond them it deletes as many as it adds
DISK = 192  # MB
PATIENCE = 60  # seconds for an answer
ALLOWANCE = 16  # MB that a host may grow by after the first quarter

LISTENER = """\
Set Variable [ $answer ; Value: KORU_RegisterUpdateScript ( "" ; "Changed" ) ]
Show Custom Dialog [ "registered: " & $answer ]
Loop
    Pause/Resume Script [ Duration (seconds): 1 ]
End Loop
"""
WHY = 'KORU_GetLastError ( "TEXT" )'
# What the tool tells when all is well.
RESULTS = re.compile(r"(backed up|restored|groups)$|is kept as .*\.db$")
CHANGED = "Show Custom Dialog [ Get ( ScriptParameter ) ]\n"


class Failure(Exception):
    """What the test is about has not come true."""


def memory_of(process):
    """Resident memory in MB; 0 when the process has ended."""
    try:
        with open(f"/proc/{process.pid}/status", encoding="utf-8") as file:
            return int(re.search(r"VmRSS:\s+(\d+)", file.read()).group(1)) / 1024
    except (OSError, AttributeError):
        return 0


class Messages:
    """What programs said, and whether the document explains it."""

    def __init__(self, document):
        spans = re.findall(r"`([^`]+)`", pathlib.Path(document).read_text(encoding="utf-8"))
        # At least a few words, or what is filled in would explain everything.
        self.known = [re.compile(".*?".join(map(re.escape, span.split("…"))), re.DOTALL) for span in spans
                      if len(re.sub(r"…|\W", "", span)) >= 12]
        self.seen = set()
        self.lock = threading.Lock()

    def add(self, text):
        for line in text.strip().splitlines():
            if not RESULTS.search(line):
                with self.lock:
                    self.seen.add(re.sub(r"\d{2,}", "0", line))

    def unexplained(self):
        return sorted(line for line in self.seen if not any(pattern.search(line) for pattern in self.known))


class Host:
    """An fmhost that evaluates a calculation at a time."""

    def __init__(self, command, environment, log):
        self.process = subprocess.Popen(command, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=log, text=True, bufsize=1)

    def ask(self, calculation):
        alarm = threading.Timer(PATIENCE, self.process.kill)
        alarm.start()
        try:
            self.process.stdin.write(calculation + "\n")
            self.process.stdin.flush()
            answer = self.process.stdout.readline()
        finally:
            alarm.cancel()
        if not answer:
            raise Failure(f"a host ended, or took more than {PATIENCE} s, at {calculation}")
        return answer.rstrip("\n")

    def end(self):
        self.process.stdin.close()
        if self.process.wait(PATIENCE) != 0:
            raise Failure(f"a host ended with {self.process.returncode}")


class Writer(threading.Thread):
    """A host that adds, changes and deletes people of its own and knows which of them must be there."""

    def __init__(self, name, day):
        super().__init__(name=name)
        self.day = day
        self.random = random.Random(name)
        self.host = day.host(name)
        self.people = {}  # id -> first name, as saved
        self.number = self.saves = 0
        self.error = None

    def run(self):
        try:
            while not self.day.over():
                with self.day.gate:  # closed while the address book is restored
                    self.step()
                time.sleep(0.02)
        except Exception as error:  # pylint: disable=broad-exception-caught
            self.error = error
            self.day.stop.set()

    def step(self):
        """One change, repeated until it is saved: a save that fails keeps its changes."""
        self.number += 1
        first = f"{self.name} {self.number}"
        if len(self.people) >= RECORDS or (self.people and self.random.random() < 0.2):
            person = self.random.choice(list(self.people))
            self.until_saved(f'KORU_Delete ( "{person}" )')
            del self.people[person]
        elif self.people and self.random.random() < 0.5:
            person = self.random.choice(list(self.people))
            self.expect("00", f'KORU_Open ( "{person}" ) & KORU_SetValueForProperty ( "firstname" ; "{first}" ; "person" )')
            self.until_saved("KORU_Save")
            self.people[person] = first
        else:
            person = self.host.ask('KORU_New ( "person" )')
            self.expect("0", f'KORU_SetValueForProperty ( "firstname" ; "{first}" ; "person" )')
            self.until_saved("KORU_Save")
            self.people[person] = first
        self.saves += 1

    def expect(self, answer, calculation):
        got = self.host.ask(calculation)
        if got != answer:
            raise Failure(f"{calculation}: {got}: {self.host.ask(WHY)}")

    def until_saved(self, calculation):
        until = time.monotonic() + PATIENCE
        while (answer := self.host.ask(calculation)) != "0":
            message = self.host.ask(WHY)
            self.day.messages.add(message)
            if not self.day.is_full.is_set() and time.monotonic() > until:
                raise Failure(f"{calculation}: {answer}: {message}")
            calculation = "KORU_Save"  # a deletion is unsaved, too
            time.sleep(0.2)

    def start_again(self):
        self.host.end()
        self.host = self.day.host(self.name)


class Day:
    """The address book, who uses it, and what happens to it."""

    def __init__(self, programs, folder, minutes, own_disk):
        self.fmhost, self.addressbook, self.plugin, self.listening, document = programs
        self.folder, self.seconds, self.own_disk = folder, minutes * 60, own_disk
        self.book = folder / "book"
        self.begin = time.monotonic()
        self.stop, self.is_full = threading.Event(), threading.Event()
        self.gate = Gate()
        self.messages = Messages(document)
        home = folder / "home"
        home.mkdir()
        self.environment = dict(os.environ, HOME=str(home), ADDRESSBOOK_HOME=str(self.book),
                                XDG_DATA_HOME=str(home), XDG_STATE_HOME=str(home), XDG_CONFIG_HOME=str(home),
                                TZ="UTC", LC_ALL="C.UTF-8")
        self.environment.pop("FMHOST_PLUGIN", None)
        self.log = open(folder / "messages", "w+", encoding="utf-8")  # pylint: disable=consider-using-with

    def over(self):
        return self.stop.is_set() or time.monotonic() - self.begin > self.seconds

    def part(self):
        return (time.monotonic() - self.begin) / self.seconds

    def host(self, _name):
        return Host([self.fmhost, "--plugin", self.plugin], self.environment, self.log)

    def listener(self):
        scripts = self.folder / "scripts"
        scripts.mkdir()
        (scripts / "Watch.fmscript").write_text(LISTENER, encoding="utf-8")
        (scripts / "Changed.fmscript").write_text(CHANGED, encoding="utf-8")
        # To a file: a pipe that nobody reads would stop it.
        with open(self.folder / "heard", "w", encoding="utf-8") as heard:
            return subprocess.Popen([self.fmhost, "run", "--plugin", self.listening, "Watch.fmscript"], cwd=scripts,
                                    env=self.environment, stdout=heard, stderr=self.log)

    def heard(self):
        return (self.folder / "heard").read_text(encoding="utf-8").splitlines()

    def tool(self, *arguments, may_fail=False):
        result = subprocess.run([self.addressbook, *map(str, arguments)], env=self.environment, text=True,
                                capture_output=True, timeout=600, check=False)
        self.messages.add(result.stderr)
        if result.returncode != 0 and not may_fail:
            raise Failure(f"addressbook {' '.join(map(str, arguments))}: {result.stderr}")
        return result

    def backup(self):
        self.tool("backup", "--force", self.book / "day.backup", may_fail=self.is_full.is_set())

    def restore(self, writers):
        """While nobody saves: with what was saved until then. Hosts that have the old file open are started again."""
        with self.gate.closed():
            self.tool("backup", "--force", self.book / "restore.backup")
            self.tool("restore", self.book / "restore.backup")
            for writer in writers:
                writer.start_again()
            for kept in self.book.glob("AddressBook*20*"):  # of the restore; the disk is small
                kept.unlink()

    def fill(self):
        """Fills the disk, lets everybody meet that for a while, and empties it."""
        self.is_full.set()
        filler = self.book / "filler"
        with open(filler, "wb", buffering=0) as file:
            try:
                while file.write(b"\0" * 65536):
                    pass
            except OSError:
                pass
        self.backup()
        time.sleep(5)
        filler.unlink()
        self.is_full.clear()


class Gate:
    """Many may be inside at once; closed() waits until nobody is, and lets nobody in."""

    def __init__(self):
        self.condition = threading.Condition()
        self.inside, self.shut = 0, False

    def __enter__(self):
        with self.condition:
            self.condition.wait_for(lambda: not self.shut)
            self.inside += 1

    def __exit__(self, *_):
        with self.condition:
            self.inside -= 1
            self.condition.notify_all()

    def closed(self):
        return Closed(self)


class Closed:
    def __init__(self, gate):
        self.gate = gate

    def __enter__(self):
        with self.gate.condition:
            self.gate.shut = True
            self.gate.condition.wait_for(lambda: self.gate.inside == 0)

    def __exit__(self, *_):
        with self.gate.condition:
            self.gate.shut = False
            self.gate.condition.notify_all()


def check_memory(early, late):
    for name, before in early.items():
        after = late.get(name, before)
        print(f"{name}: {before:.0f} MB after a quarter, {after:.0f} MB at the end")
        if before and after > before + ALLOWANCE:
            raise Failure(f"{name} grew by more than {ALLOWANCE} MB")


def check_people(day, writers):
    """Compares the address book with what each writer saved."""
    lines = day.tool("list", "--fields", "First").stdout.splitlines()
    there = dict(line.split("\t", 1) for line in lines)
    saved = {person: name for writer in writers for person, name in writer.people.items()}
    for person in saved.keys() | there.keys():
        if saved.get(person) != there.get(person):
            raise Failure(f"{person}: saved as {saved.get(person)}, in the address book as {there.get(person)}")
    day.tool("check")
    print(f"{sum(writer.saves for writer in writers)} saves, {len(saved)} people, all as saved")


def events_of(day, writers):
    """What happens, and when, in parts of the day."""
    events = [((minute + 1) * 60 / day.seconds, day.backup) for minute in range(int(day.seconds // 60))]
    events.append((0.4, day.backup))
    events.append((0.6, lambda: day.restore(writers)))
    if day.own_disk:
        events += [(part, day.fill) for part in (0.3, 0.5, 0.8)]
    return sorted(events, key=lambda event: event[0])


def live(day):
    day.tool("list", may_fail=True)
    listener = day.listener()
    writers = [Writer(f"writer {number}", day) for number in range(1, WRITERS + 1)]
    hosts = lambda: {"listener": memory_of(listener)} | {writer.name: memory_of(writer.host.process) for writer in writers}
    try:
        for writer in writers:
            writer.start()
        events, early = events_of(day, writers), None
        while not day.over():
            if early is None and day.part() > 0.25:
                early = hosts()
            if events and day.part() >= events[0][0]:
                events.pop(0)[1]()
            time.sleep(0.05)
        for writer in writers:
            writer.join()
        for writer in writers:
            if writer.error:
                raise writer.error
        check_memory(early, hosts())
        last = writers[0].host.ask('KORU_New ( "person" )')
        writers[0].until_saved("KORU_Save")
        writers[0].people[last] = ""
        until = time.monotonic() + PATIENCE
        while not any(last in line for line in day.heard()):
            if listener.poll() is not None or time.monotonic() > until:
                raise Failure("the listener does not hear of saves any more")
            time.sleep(0.2)
        print(f"the listener heard of {len(day.heard()) - 1} saves")
        for writer in writers:
            writer.host.end()
        check_people(day, writers)
    finally:
        day.stop.set()
        for process in [listener] + [writer.host.process for writer in writers]:
            process.terminate()
            process.wait()
    day.log.seek(0)
    day.messages.add(day.log.read())
    for message in sorted(day.messages.seen):
        print(f"said: {message}")
    if unexplained := day.messages.unexplained():
        raise Failure("no document explains: " + "\n".join(unexplained))


def main(programs):
    minutes = float(os.environ.get("VELOCARD_MINUTES") or 0.2)
    folder = pathlib.Path(tempfile.mkdtemp(prefix="velocard-long-"))
    (folder / "book").mkdir()
    own_disk = minutes >= 10 and subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={DISK}m,mode=700", "velocard",
                                                 folder / "book"], check=False).returncode == 0
    if minutes >= 10 and not own_disk:
        print("without root no disk can be filled; all else is tried")
    try:
        live(Day(programs, folder, minutes, own_disk))
    except Failure as failure:
        sys.exit(f"hosts.py: {failure}")
    finally:
        if own_disk:
            subprocess.run(["umount", folder / "book"], check=True)
        shutil.rmtree(folder)


if __name__ == "__main__":
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    main([os.path.abspath(argument) for argument in sys.argv[1:]])
