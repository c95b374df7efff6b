#!/usr/bin/env python3
"""Holds what other address books read in exported cards against what the address book has.

    compare.py ADDRESSBOOK READERS [SAMPLE...]

ADDRESSBOOK is the program, READERS the folder of the readers that are built. Each SAMPLE, a vCard file or a folder of
them, is imported into a book of its own and exported in each version; without one, those of tests/vcard/cards. Prints
a line for each value that a reader does not see, unless exceptions.json explains it, and fails when there is one.
Of the cards here each exception must be needed.
"""

import collections
import json
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).parent
OWN_CARDS = HERE.parent / "vcard/cards"
VERSIONS = ("3.0", "4.0")

# The TYPE words that readers must see for a label, of telephones and of other entries.
TYPES = {"Home": {"HOME"}, "Work": {"WORK"}, "Mobile": {"CELL"}, "HomeFAX": {"HOME", "FAX"},
         "WorkFAX": {"WORK", "FAX"}, "OtherFAX": {"FAX"}, "Pager": {"PAGER"}}
PLACES = {"Home": {"HOME"}, "Work": {"WORK"}}
SCHEMES = {"aim": "aim", "jabber": "xmpp", "msn": "msnim", "yahoo": "ymsgr", "icq": "icq"}


class Samples:
    """The files of the arguments, each with its name."""

    def __init__(self, arguments):
        self.files = [file for argument in map(pathlib.Path, arguments)
                      for file in (sorted(argument.rglob("*.vcf")) if argument.is_dir() else [argument])]


def run(*command):
    return subprocess.run([str(part) for part in command], capture_output=True, check=False)


def day(text):
    """A date in one form: 1980-03-22, or --03-22 without a year, for which version 3.0 has the year 1604."""
    found = re.match(r"(\d{4}|-)-?(\d\d)-?(\d\d)", text)
    return f"{found[1]}-{found[2]}-{found[3]}".replace("1604-", "--") if found else text


def address_of_book(fields):
    return [fields.get(key, "") for key in ("Street", "City", "State", "ZIP", "Country")]


def address_of_reader(parts):
    parts = (parts + [""] * 7)[:7]
    return ["\n".join(part for part in parts[:3] if part)] + parts[3:]


def related(record, label):
    return next((entry["value"] for entry in record.get("related", []) if entry["label"] == label), "")


def in_order(wanted, seen, value=lambda each: each):
    """What is seen in the order in which it is wanted; what is not wanted in the places that are left."""
    rest = list(seen)
    found = []
    for each in wanted:
        match = next((candidate for candidate in rest if value(candidate) == each), None)
        if match is not None:
            rest.remove(match)
        found.append(match)
    found = [match if match is not None or not rest else rest.pop(0) for match in found]
    return [match for match in found if match is not None] + rest


def book_facts(record):
    """What readers must see of a person: property -> list of texts. Types have a property of their own."""
    def values(name):
        return [entry["value"] for entry in record.get(name, [])]

    def text(name):
        return record.get(name) or ""

    messaging = [f"{scheme}:{user}" for name, scheme in SCHEMES.items() for user in values(name)]
    messaging += [user["InstantMessageUsername"] for user in values("messaging")]
    dates = [entry["value"] for entry in record.get("dates", []) if entry["label"] == "Anniversary"]
    facts = {
        "fullname": [record.get("fullname", record["name"])],
        "name": [text(part) for part in ("lastname", "firstname", "middlename", "title", "suffix")],
        "nickname": [text("nickname")],
        "org": [text("organization"), text("department")],
        "title": [text("jobtitle")],
        "note": [text("note").strip()],
        "birthday": [text("birthday")],
        "anniversary": dates[:1] or [""],
        "spouse": [related(record, "Spouse")],
        "manager": [related(record, "Manager")],
        "assistant": [related(record, "Assistant")],
        "phones": values("phones"),
        "emails": values("emails"),
        "addresses": [address_of_book(fields) for fields in values("addresses")],
        "urls": values("urls"),
        "messaging": messaging,
        "categories": sorted(set(record.get("groups", []))),
        "photo": ["picture" if "picture" in record else ""],
    }
    for name in ("phones", "emails", "addresses"):
        words = TYPES if name == "phones" else PLACES
        facts[name + " types"] = [sorted(words.get(entry["label"], set())) for entry in record.get(name, [])]
    return facts


def seen_facts(card, book):
    """What a reader sees, in the form of book_facts(); [book] are those, for what is only to be contained."""
    facts = {name: [card[name]] for name in ("fullname", "nickname", "title", "note", "spouse", "manager", "assistant")
             if name in card}
    units = [unit.strip() for unit in card["org"]] or [""]
    facts["note"] = [card["note"].strip()]
    facts["name"] = (card["name"] + [""] * 5)[:5]
    facts["org"] = [units[0], "; ".join(unit for unit in units[1:] if unit)]
    facts["birthday"] = [day(card["birthday"])]
    facts["anniversary"] = [day(card["anniversary"])]
    for name in ("phones", "emails", "addresses"):
        entries = [(address_of_reader(entry["value"]) if name == "addresses" else entry["value"], entry["types"])
                   for entry in card[name]]
        # Some readers put the preferred entry first, and some make an empty address of other lines.
        entries = in_order(book[name], [entry for entry in entries if any(entry[0])], lambda entry: entry[0])
        facts[name] = [value for value, types in entries]
        wanted = book[name + " types"]
        facts[name + " types"] = [sorted(set(types) & set(words)) for (value, types), words in zip(entries, wanted)]
        facts[name + " types"] += wanted[len(entries):]
    facts["urls"] = in_order(book["urls"], card["urls"])
    # A user at a service may be seen under several schemes; each must be seen under one at least.
    facts["messaging"] = [user for user in book["messaging"]
                          if any(uri == user or uri.endswith(":" + user.rpartition(":")[2])
                                 for uri in card["messaging"])]
    facts["categories"] = sorted(set(card["categories"]))
    facts["photo"] = ["picture" if card["photo"] else ""]
    return facts


class Exceptions:
    """The table of what a reader cannot read: {"reader", "property", "why"}, and patterns that narrow it by
    "version", by the value in the "book" and by what is "seen"."""

    def __init__(self, path):
        self.rows = json.loads(path.read_text(encoding="utf-8"))
        self.used = collections.Counter()

    def explain(self, reader, version, name, book, seen):
        for number, row in enumerate(self.rows):
            if (re.fullmatch(row["reader"], reader) and re.fullmatch(row["property"], name)
                    and re.search(row.get("version", ""), version)
                    and re.search(row.get("book", ""), json.dumps(book, ensure_ascii=False))
                    and re.search(row.get("seen", ""), json.dumps(seen, ensure_ascii=False))):
                self.used[number] += 1
                return True
        return False


class Comparison:
    def __init__(self, program, readers):
        self.program = program
        self.readers = {"ebook-contacts": [readers / "ebook_contacts"], "kcontacts": [readers / "kcontacts"],
                        "python3-vobject": [HERE / "readers/python_vobject.py"],
                        "php-sabre-vobject": ["php", HERE / "readers/sabre_vobject.php"]}
        self.exceptions = Exceptions(HERE / "exceptions.json")
        self.values = self.cards = self.failures = 0

    def addressbook(self, book, *arguments):
        return run(self.program, "--book", book, *arguments).stdout.decode()

    def differ(self, where, reader, version, name, book, seen):
        if book == seen or self.exceptions.explain(reader, version, name, book, seen):
            return
        self.failures += 1
        print(f"{where}: {name}: the book has {json.dumps(book, ensure_ascii=False)}, {reader} sees "
              f"{json.dumps(seen, ensure_ascii=False)} in {version}")

    def compare(self, file):
        with tempfile.TemporaryDirectory() as folder:
            book = pathlib.Path(folder) / "book"
            book.mkdir()
            self.addressbook(book, "import", "--quiet", file)
            people, groups = (
                [json.loads(self.addressbook(book, "show", "--json", line.split("\t")[0]))
                 for line in self.addressbook(book, command).splitlines()] for command in ("list", "groups"))
            for version in VERSIONS:
                export = pathlib.Path(folder) / "export.vcf"
                self.addressbook(book, "export", "--version", version, export)
                pictures = {}
                for reader, command in self.readers.items():
                    answer = run(*command, export)
                    if answer.returncode != 0:
                        self.failures += 1
                        print(f"{file.name}: {reader} ends with {answer.returncode}: {answer.stderr.decode()}")
                        continue
                    cards = json.loads(answer.stdout)
                    self.differ(file.name, reader, version, "cards", len(people) + len(groups), len(cards))
                    self.people(file.name, reader, version, people, cards, pictures)
                    self.groups(file.name, reader, version, people, groups, cards)

    def people(self, file, reader, version, people, cards, pictures):
        for number, (record, card) in enumerate(zip(people, cards), 1):
            where = f"{file}, card {number}"
            self.cards += 1
            if "error" in card:
                self.differ(where, reader, version, "card", record["name"], card["error"])
                continue
            book = book_facts(record)
            for name, seen in seen_facts(card, book).items():
                self.values += len([value for value in book[name] if value])
                self.differ(where, reader, version, name, book[name], seen)
            if card["photo"]:  # all readers must see the same bytes
                self.differ(where, reader, version, "photo bytes", pictures.setdefault(number, card["photo"]),
                            card["photo"])

    def groups(self, file, reader, version, people, groups, cards):
        records = people + groups
        ids = {record["id"]: card.get("uid", "") for record, card in zip(records, cards)}
        for number, (record, card) in enumerate(zip(groups, cards[len(people):]), len(people) + 1):
            where = f"{file}, card {number}"
            self.cards += 1
            if "error" in card:
                self.differ(where, reader, version, "card", record["name"], card["error"])
                continue
            members = [ids[member["id"]] for member in record["members"] + record["subgroups"]]
            self.values += 1 + len(members)
            self.differ(where, reader, version, "fullname", [record["name"]], [card["fullname"]])
            plain = [re.sub("^urn:uuid:", "", uri) for uri in card["members"]]
            self.differ(where, reader, version, "members", [re.sub("^urn:uuid:", "", uid) for uid in members],
                        plain[:len(members)])

    def unused_exceptions(self):
        for number, row in enumerate(self.exceptions.rows):
            if not self.exceptions.used[number]:
                self.failures += 1
                print(f"exceptions.json: nothing needs {json.dumps(row, ensure_ascii=False)}")


def main(program, readers, *samples):
    comparison = Comparison(pathlib.Path(program), pathlib.Path(readers))
    for file in Samples(samples or [OWN_CARDS]).files:
        comparison.compare(file)
    if not samples:
        comparison.unused_exceptions()
    print(f"{comparison.cards} cards and {comparison.values} values seen by {len(comparison.readers)} readers: "
          f"{sum(comparison.exceptions.used.values())} explained, {comparison.failures} not")
    return 1 if comparison.failures or not comparison.cards else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
