#!/usr/bin/env python3
"""Measures how long it takes to bring an address book in step with a server, beside vdirsyncer on the same server.

    compare.py ADDRESSBOOK BOOK_SERVER FOLDER

ADDRESSBOOK and BOOK_SERVER are the programs, FOLDER is where everything is kept. PEOPLE are in the book (10000), and
LARGE in the one of which only our own part is measured (100000). Prints a table; times are of the whole program.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/servers"))

import storm  # noqa: E402
from davical import Davical  # noqa: E402
from machine import Machine, Vdirsyncer  # noqa: E402

PEOPLE = int(os.environ.get("PEOPLE", "10000"))
LARGE = int(os.environ.get("LARGE", "100000"))
PASSWORD = "s3cret"
CHANGES = 10  # on each side


def seconds(action):
    began = time.monotonic()
    action()
    return time.monotonic() - began


class Ours:
    """addressbook with a book of its own on the server, and a second machine."""

    def __init__(self, program, folder, url, user):
        self.program, self.folder, self.url, self.user = program, folder, url, user
        self.first = Machine(program, folder / "first")
        self.second = Machine(program, folder / "second")

    def fill(self, cards):
        self.first.join(self.url, self.user, PASSWORD, "--create", "Ours")
        self.first.add(*cards.values())

    def join(self):
        self.second.join(self.url, self.user, PASSWORD, "--book", "Ours")

    def upload(self):
        self.first.sync()

    def download(self):
        self.second.sync()

    def change_there(self, uids):
        for uid in uids:
            self.first.run("set", uid, "nickname=there")
        self.first.sync()

    def change_here(self, uids):
        for uid in uids:
            self.second.run("set", uid, "nickname=here")


class Theirs:
    """vdirsyncer, in the same way."""

    def __init__(self, folder, url, user):
        self.first = Vdirsyncer(folder / "first", url, user, PASSWORD)
        self.second = Vdirsyncer(folder / "second", url, user, PASSWORD)

    def fill(self, cards):
        for uid, card in cards.items():
            (self.first.cards / f"{uid}.vcf").write_text(card, encoding="utf-8", newline="")

    def join(self):
        pass

    def upload(self):
        self.first.sync()

    def download(self):
        self.second.sync()

    @staticmethod
    def nickname(client, uids, name):
        for uid in uids:
            file, card = client.card(uid)
            file.write_text(card.replace("END:VCARD", f"NICKNAME:{name}\r\nEND:VCARD"), encoding="utf-8", newline="")

    def change_there(self, uids):
        self.nickname(self.first, uids, "there")
        self.first.sync()

    def change_here(self, uids):
        self.nickname(self.second, uids, "here")


def measure(client, cards):
    """The seconds of each work, by its name."""
    uids = list(cards)
    client.fill(cards)
    times = {"first upload": seconds(client.upload)}
    client.join()
    times["first fetch"] = seconds(client.download)
    times["nothing new"] = min(seconds(client.download) for _ in range(3))
    client.change_there(uids[:CHANGES])
    client.change_here(uids[-CHANGES:])
    times[f"{CHANGES} changes on each side"] = seconds(client.download)
    return times


def make_book(server, user, path):
    """Of vdirsyncer, which makes none at a given address."""
    body = ('<?xml version="1.0"?><D:mkcol xmlns:D="DAV:" xmlns:C="urn:ietf:params:xml:ns:carddav"><D:set><D:prop>'
            '<D:resourcetype><D:collection/><C:addressbook/></D:resourcetype></D:prop></D:set></D:mkcol>')
    url = f"{server.url}caldav.php/{user}/{path}/"
    subprocess.run(["curl", "--silent", "--fail", "--user", f"{user}:{PASSWORD}", "--request", "MKCOL", "--header",
                    "Content-Type: application/xml", "--data", body, url], check=True, stdout=subprocess.DEVNULL)
    return url


def compare(program, folder):
    cards = {uid: storm.card(uid, number) for number, uid in enumerate(storm.people(PEOPLE))}
    with Davical(folder / "davical") as server:
        server.add_user("ours", PASSWORD)
        server.add_user("theirs", PASSWORD)
        ours = measure(Ours(program, folder / "ours", server.url, "ours"), cards)
        theirs = measure(Theirs(folder / "theirs", make_book(server, "theirs", "book"), "theirs"), cards)
        print(", ".join(server.versions()))
    print(f"\n| {PEOPLE:,} people | addressbook | vdirsyncer | |\n|---|---|---|---|")
    for work, time_of_ours in ours.items():
        print(f"| {work} | {time_of_ours:.2f} s | {theirs[work]:.2f} s | {theirs[work] / time_of_ours:.1f}x |")


def alone(program, book_server, folder):
    """What we take of ourselves when the server takes nothing."""
    with subprocess.Popen([book_server, str(LARGE)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as server:
        url = server.stdout.readline().strip()
        machine = Machine(program, folder / "large")
        machine.join(url, "ida", "s3cret", "--book", "friends")

        def requests():
            print(file=server.stdin, flush=True)
            return int(server.stdout.readline())

        def usage():
            process = subprocess.Popen(machine.command("sync"), env=machine.environment, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.PIPE)
            errors = process.stderr.read()
            _, status, used = os.wait4(process.pid, 0)
            if status != 0:
                raise SystemExit(errors.decode())
            return used

        print(f"\n| {LARGE:,} people | processor time | memory | requests |\n|---|---|---|---|")
        requests()
        for work, times in (("first fetch", 1), ("nothing new", 5)):
            runs = [(usage(), requests()) for _ in range(times)]
            used, count = min(runs, key=lambda run: run[0].ru_utime + run[0].ru_stime)
            print(f"| {work} | {(used.ru_utime + used.ru_stime) * 1000:.0f} ms | {used.ru_maxrss // 1024} MB | {count} |")
        server.stdin.close()


def main():
    program, book_server, folder = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    for name in ("ours", "theirs", "large"):
        shutil.rmtree(folder / name, ignore_errors=True)
    print("load:", " ".join(f"{load:.1f}" for load in os.getloadavg()))
    if LARGE:
        alone(program, book_server, folder)
    if PEOPLE:
        compare(program, folder)


if __name__ == "__main__":
    main()
