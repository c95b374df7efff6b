"""Several machines that change one address book at the same time, each in its own copy, while they are kept in step.

What a machine changes is chosen so that what must come of it is known, whatever comes before or after what: it changes
a property that is its own, adds people of its own, and deletes some. So in the end a person is gone only if somebody
deleted it, and who is there has the last value that each machine was told to be saved. (Who was deleted on one machine
and changed on another comes back, but may have left its group.) One property of a few people all machines change; what
it ends as is one of those that were saved, and the same everywhere.
"""

import collections
import json
import random
import threading
import time
import uuid

PROPERTIES = ("nickname", "jobtitle", "department", "maidenname")  # of the machine of this number
SHARED = "note"
SHARED_PEOPLE = 5  # the first ones, whom nobody deletes
ACTIONS = {"change": 55, "change_shared": 5, "add": 15, "delete": 5, "sync": 20}  # and how often each is


def team(number):
    """The group of the person of this number."""
    return f"Team {number % 10}"


def card(uid, number):
    return (f"BEGIN:VCARD\r\nVERSION:3.0\r\nUID:{uid}\r\nN:Person {number};Number;;;\r\nFN:Number Person {number}\r\n"
            f"TEL;TYPE=CELL:+45 {10000000 + number}\r\nEMAIL;TYPE=INTERNET,WORK:person{number}@example.com\r\n"
            f"ADR;TYPE=HOME:;;Vej {number};Aarhus;;8000;Denmark\r\nCATEGORIES:{team(number)}\r\n"
            f"X-OTHER-PROGRAM;X-KEPT=\"a;b\":{number} stays\r\nEND:VCARD\r\n")


def new_uid(source):
    return str(uuid.UUID(int=source.getrandbits(128), version=4)).upper()


def people(count):
    """UIDs that are always the same."""
    source = random.Random(count)
    return [new_uid(source) for _ in range(count)]


class Worker(threading.Thread):
    """Changes things on one machine until [end], and brings it in step in between."""

    def __init__(self, number, machine, uids, end):
        super().__init__(daemon=True)
        self.number, self.machine, self.end = number, machine, end
        self.random = random.Random(number)
        self.uids = list(uids)
        self.saved = {}  # UID -> the last value of its property
        self.shared = collections.defaultdict(set)  # UID -> values of SHARED
        self.added = {}  # UID -> number
        self.deleted = set()
        self.counts = collections.Counter()
        self.problem = None

    def run(self):
        try:
            while time.monotonic() < self.end:
                action = self.random.choices(list(ACTIONS), ACTIONS.values())[0]
                getattr(self, action)()
                self.counts[action] += 1
        except Exception as error:  # pylint: disable=broad-except
            self.problem = f"machine {self.number}: {error}"

    def attempt(self, *arguments):
        """Whether it was done; not when another machine deleted the person."""
        done = self.machine.attempt(*arguments)
        gone = "has the id" in done.stderr or "was deleted by another program" in done.stderr
        if done.returncode != 0 and not gone:
            raise RuntimeError(f"{arguments} ends with {done.returncode}: {done.stderr}")
        return done.returncode == 0

    def value(self):
        return f"{self.number}-{sum(self.counts.values())}"

    def change(self):
        uid, value = self.random.choice(self.uids), self.value()
        if self.attempt("set", uid, f"{PROPERTIES[self.number]}={value}"):
            self.saved[uid] = value

    def change_shared(self):
        uid, value = self.random.choice(self.uids[:SHARED_PEOPLE]), self.value()
        if self.attempt("set", uid, f"{SHARED}={value}"):
            self.shared[uid].add(value)

    def add(self):
        uid, number = new_uid(self.random), 1000000 * (self.number + 1) + self.counts["add"]
        self.machine.add(card(uid, number))
        self.added[uid] = number
        self.uids.append(uid)

    def delete(self):
        uid = self.random.choice(self.uids[SHARED_PEOPLE:])
        if self.attempt("delete", uid):
            self.deleted.add(uid)

    def sync(self):
        self.machine.sync()


def run(machines, uids, seconds):
    """Lets the machines change things for a while; returns the workers, who know what they did."""
    end = time.monotonic() + seconds
    workers = [Worker(number, machine, uids, end) for number, machine in enumerate(machines)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    return workers


def numbers(workers, uids):
    """UID -> number of everybody that ever was."""
    result = {uid: number for number, uid in enumerate(uids)}
    for worker in workers:
        result |= worker.added
    return result


def missing(workers, uids, machine):
    """What was saved and is not in [machine]'s copy, a line for each."""
    fields = ",".join(("id", "groups", SHARED, *PROPERTIES))
    there = {record["id"].partition(":")[0]: record
             for record in json.loads(machine.run("list", "--json", "--fields", fields))}
    known = numbers(workers, uids)
    deleted = set().union(*(worker.deleted for worker in workers))
    lines = [f"{uid} is gone, and nobody deleted it" for uid in known.keys() - deleted - there.keys()]
    lines += [f"{uid} is there, and nobody added it" for uid in there.keys() - known.keys()]
    lines += [f"{uid} is in {record['groups']}, and not in {team(known[uid])}"
              for uid, record in there.items()
              if uid in known and uid not in deleted and record["groups"] != team(known[uid])]
    for worker in workers:
        name = PROPERTIES[worker.number]
        lines += [f"{uid}: {name} is {there[uid][name]}, and not {value}"
                  for uid, value in worker.saved.items() if uid in there and there[uid][name] != value]
        # What nobody else changed stays deleted.
        others = set().union(*(other.saved.keys() for other in workers if other is not worker))
        lines += [f"{uid} is there, and machine {worker.number} deleted it"
                  for uid in worker.deleted - others if uid in there]
    for uid in uids[:SHARED_PEOPLE]:
        values = set().union(*(worker.shared[uid] for worker in workers)) or {None}
        if uid in there and there[uid][SHARED] not in values:
            lines.append(f"{uid}: {SHARED} is {there[uid][SHARED]}, which nobody saved")
    return lines
