"""Machines, each with an address book and a home of its own, and another program's copy of a book on the server."""

import json
import os
import pathlib
import subprocess


class Failed(Exception):
    """A program ended with another status than it should."""


class Machine:
    def __init__(self, program, folder):
        self.program = str(program)
        self.folder = pathlib.Path(folder)
        (self.folder / "book").mkdir(parents=True)
        (self.folder / "home").mkdir()
        home = str(self.folder / "home")
        # Nothing of whoever runs this: no settings, no session bus with a keyring, no proxy.
        self.environment = {"PATH": os.environ["PATH"], "HOME": home, "XDG_DATA_HOME": home, "XDG_CONFIG_HOME": home,
                            "XDG_STATE_HOME": home, "ADDRESSBOOK_HOME": str(self.folder / "book"), "TZ": "UTC",
                            "LC_ALL": "C.UTF-8", "no_proxy": "*", "DBUS_SESSION_BUS_ADDRESS": f"unix:path={home}/none"}

    def command(self, *arguments):
        return [self.program, *map(str, arguments)]

    def attempt(self, *arguments, text=""):
        """Runs addressbook; what became of it is the caller's affair."""
        return subprocess.run(self.command(*arguments), input=text, capture_output=True, text=True,
                              env=self.environment, check=False)

    def run(self, *arguments, text="", status=0):
        """Returns what addressbook prints; it must end with this status."""
        done = self.attempt(*arguments, text=text)
        if done.returncode != status:
            raise Failed(f"{self.folder.name}: addressbook {' '.join(map(str, arguments))} ends with "
                         f"{done.returncode}:\n{done.stdout}{done.stderr}")
        return done.stdout

    def join(self, url, user, password, *options):
        """Adds an account, to which new people belong."""
        secret = self.folder / "password"
        secret.write_text(password + "\n")
        secret.chmod(0o600)
        return self.run("account", "add", url, "--user", user, "--password-file", secret, "--default", *options)

    def sync(self, *options, status=0):
        return self.run("sync", *options, status=status)

    def add(self, *cards):
        """Imports vCards, texts."""
        return self.run("import", "--quiet", "-", text="".join(cards))

    def show(self, uid):
        """A record with all that it has; None when there is none."""
        done = self.attempt("show", "--json", uid)
        return json.loads(done.stdout) if done.returncode == 0 else None

    def everybody(self):
        """All that users see: the cards without what each machine notes for itself, by UID."""
        cards = {}
        for card in self.run("export", "--version", "3.0").split("BEGIN:VCARD\n")[1:]:
            lines = card.replace("\n ", "").splitlines()
            uid = next(line for line in lines if line.startswith("UID:"))
            cards[uid] = sorted(line for line in lines if not line.startswith(("REV:", "PRODID:", "X-ABUID:")))
        return cards


class Vdirsyncer:
    """The program vdirsyncer: one file for each card in the folder [cards]."""

    SETTINGS = """
[general]
status_path = "{folder}/status"
[pair cards]
a = "server"
b = "files"
collections = null
conflict_resolution = "{winner} wins"
[storage server]
type = "carddav"
url = "{url}"
username = "{user}"
password = {password}
[storage files]
type = "filesystem"
path = "{folder}/cards"
fileext = ".vcf"
"""

    def __init__(self, folder, url, user, password, winner="a"):
        self.folder = pathlib.Path(folder)
        self.cards = self.folder / "cards"
        self.cards.mkdir(parents=True)
        self.settings = self.folder / "config"
        self.settings.write_text(self.SETTINGS.format(folder=self.folder, url=url, user=user, password=json.dumps(password),
                                                      winner=winner))
        self.run("discover")

    def run(self, *arguments):
        done = subprocess.run(["vdirsyncer", "--config", str(self.settings), *arguments], input="y\n" * 4,
                              capture_output=True, text=True, check=False,
                              env={"PATH": os.environ["PATH"], "HOME": str(self.folder), "LC_ALL": "C.UTF-8",
                                   "no_proxy": "*"})
        if done.returncode != 0:
            raise Failed(f"vdirsyncer {' '.join(arguments)} ends with {done.returncode}:\n{done.stdout}{done.stderr}")

    def sync(self):
        self.run("sync")

    def card(self, uid):
        """The file and the text of the card of this UID; None when there is none."""
        for file in self.cards.iterdir():
            text = file.read_bytes().decode()
            if f"UID:{uid}\r\n" in text or f"UID:{uid}\n" in text:
                return file, text
        return None, None
