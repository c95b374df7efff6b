#!/usr/bin/env python3
"""Address books in step with DAViCal, through the program itself; and with another client there.

    davical_test.py ADDRESSBOOK FOLDER

ADDRESSBOOK is the program; in FOLDER the server and everything else is kept. Of the environment PEOPLE says how many are
in the book that several machines change at once, and SECONDS for how long they do.
"""

import base64
import json
import os
import pathlib
import re
import shutil
import sys
import time
import unittest

import storm
from davical import Davical
from machine import Failed, Machine, Vdirsyncer

PEOPLE = int(os.environ.get("PEOPLE", "10000"))
SECONDS = int(os.environ.get("SECONDS", "60"))
PASSWORD = 'correct, "horse" & battery'
BOOK = "Friends"

IDA = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0001"
OLE = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0002"
EVA = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0003"
GROUP = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0009"

# A picture: a GIF of one dot, and a rest that nobody looks at.
PHOTO = base64.b64encode(base64.b64decode("R0lGODdhAQABAIAAAP///wAAACwAAAAAAQABAAACAkQBADs=") +
                         bytes(range(256)) * 40).decode()
# What no address book here knows. (DAViCal itself changes parameters in which a semicolon is quoted.)
STRANGE = ["X-OTHER;X-LIST=a,b;X-QUOTED=\"c:d\":J\u00f8rgen \\, <&> \\n x", "CALADRURI:mailto:a@b.c"]


def person(uid, first, last, *lines):
    return "\r\n".join(["BEGIN:VCARD", "VERSION:3.0", f"UID:{uid}", f"N:{last};{first};;;", f"FN:{first} {last}",
                        *lines, "END:VCARD", ""])


def group(uid, name, *members):
    """As Apple writes them."""
    return "\r\n".join(["BEGIN:VCARD", "VERSION:3.0", f"UID:{uid}", f"N:{name};;;;", f"FN:{name}",
                        "X-ADDRESSBOOKSERVER-KIND:group",
                        *(f"X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:{member}" for member in members), "END:VCARD", ""])


def unfolded(card):
    return re.sub(r"\r?\n[ \t]", "", card).splitlines()


def differences(one, other):
    """What two machines do not both have: UIDs, and lines of cards."""
    return [(uid, sorted(set(one.get(uid, [])) ^ set(other.get(uid, []))))
            for uid in one.keys() | other.keys() if one.get(uid) != other.get(uid)]


class ServerTest(unittest.TestCase):
    """With a user of its own for each test."""

    server = None  # that all tests share
    program = folder = None

    def setUp(self):
        self.user = self.id().rpartition(".")[2].lower()
        self.server.add_user(self.user, PASSWORD)

    def machine(self, name, *options, url=None):
        """A machine that is in step with the book BOOK."""
        machine = Machine(self.program, self.folder / self.user / name)
        machine.join(url or self.server.url, self.user, PASSWORD, *(options or ("--book", BOOK)))
        return machine

    def two_machines(self):
        return self.machine("one", "--create", BOOK), self.machine("two")

    def in_step(self, *machines):
        """Syncs until nothing is left, and wants all to be alike."""
        for _ in range(2):
            for machine in machines:
                machine.sync()
        first, *others = (machine.everybody() for machine in machines)
        for other in others:
            self.assertEqual(differences(first, other), [])
        return first


class AccountTest(ServerTest):
    def test_digest(self):
        one = self.machine("one", "--create", BOOK, url=self.server.digest_url)
        one.add(person(IDA, "Ida", "Holm"))
        one.sync()
        two = self.machine("two")
        two.sync()
        self.assertEqual(two.show(IDA)["name"], "Ida Holm")

    def test_two_books(self):
        one = self.machine("one", "--create", "First")
        self.machine("two", "--create", "Second")
        one.add(person(IDA, "Ida", "Holm"))
        one.sync()
        three = self.machine("three", "--book", "Second")
        three.sync()
        self.assertIsNone(three.show(IDA))
        four = self.machine("four", "--book", "First")
        four.sync()
        self.assertIsNotNone(four.show(IDA))

    def test_wrong_password(self):
        self.server.add_user("somebody", PASSWORD)
        machine = Machine(self.program, self.folder / self.user / "one")
        with self.assertRaises(Failed) as raised:
            machine.join(self.server.url, "somebody", "mistaken", "--create", BOOK)
        self.assertIn("does not accept this user name and password", str(raised.exception))
        self.assertNotIn("mistaken", str(raised.exception))


class CycleTest(ServerTest):
    def test_changes_of_both_sides(self):
        one, two = self.two_machines()
        one.add(person(IDA, "Ida", "Holm", "TEL;TYPE=CELL:1", f"PHOTO;ENCODING=b;TYPE=GIF:{PHOTO}", *STRANGE),
                person(OLE, "Ole", "Berg"), group(GROUP, "Choir", IDA, OLE))
        one.sync()
        two.sync()
        self.assertEqual(one.everybody(), two.everybody())
        self.assertEqual(two.show(IDA)["groups"], ["Choir"])

        one.run("set", IDA, "nickname=Idi", "phones/mobile=2")
        two.run("set", IDA, "jobtitle=Baker", "emails/work=ida@example.com")
        two.run("delete", OLE)
        two.add(person(EVA, "Eva", "Lund", "CATEGORIES:Choir"))
        people = self.in_step(one, two)
        self.assertNotIn(f"UID:{OLE}", people)
        ida = one.show(IDA)
        self.assertEqual((ida["nickname"], ida["jobtitle"]), ("Idi", "Baker"))
        self.assertEqual(one.show(EVA)["groups"], ["Choir"])
        card = people[f"UID:{IDA}"]
        for line in STRANGE:
            self.assertIn(line, card)
        self.assertTrue(any(PHOTO in line for line in card), "the picture is another one")

    def test_conflict(self):
        one, two = self.two_machines()
        one.add(person(IDA, "Ida", "Holm"))
        self.in_step(one, two)
        one.run("set", IDA, "nickname=One")
        two.run("set", IDA, "nickname=Two")
        self.in_step(one, two)
        kept = one.show(IDA)["nickname"]
        self.assertIn(kept, ("One", "Two"))
        lost = {"One": "Two", "Two": "One"}[kept]
        self.assertIn(lost, one.run("conflicts") + two.run("conflicts"))

    def test_deleted_here_and_changed_there(self):
        one, two = self.two_machines()
        one.add(person(IDA, "Ida", "Holm"))
        self.in_step(one, two)
        one.run("set", IDA, "nickname=Changed")
        two.run("delete", IDA)
        self.in_step(one, two)
        self.assertEqual(two.show(IDA)["nickname"], "Changed")


class OtherClientTest(ServerTest):
    """vdirsyncer, which has one file for each card, on the same book."""

    def setUp(self):
        super().setUp()
        self.ours = self.machine("one", "--create", BOOK)
        url = json.loads(self.ours.run("account", "list", "--json"))[0]["books"][0]["url"]
        self.theirs = Vdirsyncer(self.folder / self.user / "vdirsyncer", url, self.user, PASSWORD)

    def meet(self):
        self.ours.sync()
        self.theirs.sync()
        self.ours.sync()

    def test_what_we_write_it_reads(self):
        self.ours.add(person(IDA, "Ida", "Holm", f"PHOTO;ENCODING=b;TYPE=GIF:{PHOTO}", "TEL;TYPE=CELL:1", *STRANGE),
                      group(GROUP, "Choir", IDA))
        self.meet()
        _, card = self.theirs.card(IDA)
        lines = unfolded(card)
        for line in STRANGE + ["N:Holm;Ida;;;", "FN:Ida Holm"]:
            self.assertIn(line, lines)
        self.assertTrue(any(PHOTO in line for line in lines), "the picture is another one")
        _, card = self.theirs.card(GROUP)
        self.assertIn(f"X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:{IDA}", unfolded(card))

    def test_what_it_writes_we_read(self):
        own = person(IDA, "Ida", "Holm", f"PHOTO;ENCODING=b;TYPE=GIF:{PHOTO}", "TEL;TYPE=CELL:1", *STRANGE)
        (self.theirs.cards / "ida.vcf").write_bytes(own.encode())
        # Of vCard 4.0, which has another kind of groups.
        (self.theirs.cards / "group.vcf").write_bytes(
            (f"BEGIN:VCARD\r\nVERSION:4.0\r\nUID:{GROUP}\r\nKIND:group\r\nFN:Choir\r\n"
             f"MEMBER:urn:uuid:{IDA}\r\nEND:VCARD\r\n").encode())
        self.theirs.sync()
        self.ours.sync()
        ida = self.ours.show(IDA)
        self.assertEqual(ida["name"], "Ida Holm")
        self.assertEqual(ida["groups"], ["Choir"])
        self.assertIn("picture", ida)

        # And what we do not know comes back as it was, around what is changed here.
        self.ours.run("set", IDA, "nickname=Idi")
        self.meet()
        _, card = self.theirs.card(IDA)
        lines = unfolded(card)
        self.assertIn("NICKNAME:Idi", lines)
        for line in unfolded(own):
            self.assertIn(line, lines)

    def test_both_change_and_delete(self):
        self.ours.add(*(person(uid, name, "Holm") for uid, name in ((IDA, "Ida"), (OLE, "Ole"), (EVA, "Eva"))))
        self.meet()
        file, card = self.theirs.card(IDA)
        file.write_bytes(card.replace("END:VCARD", "TITLE:Baker\r\nEND:VCARD").encode())
        self.theirs.card(OLE)[0].unlink()
        self.theirs.sync()
        self.ours.run("set", IDA, "nickname=Idi")
        self.ours.run("delete", EVA)
        self.meet()
        lines = unfolded(self.theirs.card(IDA)[1])
        self.assertIn("TITLE:Baker", lines)
        self.assertIn("NICKNAME:Idi", lines)
        self.assertEqual(self.ours.show(IDA)["jobtitle"], "Baker")
        self.assertIsNone(self.ours.show(OLE))
        self.assertEqual(self.theirs.card(EVA), (None, None))


class StormTest(ServerTest):
    """Four machines that change things while they sync."""

    def test_nothing_is_lost(self):
        uids = storm.people(PEOPLE)
        first = self.machine("0", "--create", BOOK)
        first.add(*(storm.card(uid, number) for number, uid in enumerate(uids)))
        began = time.monotonic()
        first.sync()
        print(f"{PEOPLE} people sent in {time.monotonic() - began:.1f} s", flush=True)
        machines = [first, *(self.machine(str(number)) for number in range(1, len(storm.PROPERTIES)))]
        began = time.monotonic()
        for machine in machines[1:]:
            machine.sync()
        print(f"and fetched by {len(machines) - 1} machines in {time.monotonic() - began:.1f} s", flush=True)

        workers = storm.run(machines, uids, SECONDS)
        for worker in workers:
            print(f"machine {worker.number}: {dict(worker.counts)}", flush=True)
            self.assertIsNone(worker.problem)
        self.in_step(*machines, self.machine("late"))
        for machine in machines:
            self.assertEqual(storm.missing(workers, uids, machine), [])


def main():
    ServerTest.program, folder = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    ServerTest.folder = folder / "machines"
    shutil.rmtree(ServerTest.folder, ignore_errors=True)
    with Davical(folder / "davical") as ServerTest.server:
        print(", ".join(ServerTest.server.versions()), flush=True)
        unittest.main(argv=[sys.argv[0], "--verbose", *sys.argv[3:]])


if __name__ == "__main__":
    main()
