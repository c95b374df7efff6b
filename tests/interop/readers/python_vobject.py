#!/usr/bin/python3
"""Prints as JSON what python3-vobject sees in the cards of a file. The form is described in ../README.md."""

import base64
import hashlib
import json
import sys

import vobject


def texts(value):
    """A value or a list of values as a list of texts."""
    return [str(each) for each in value] if isinstance(value, list) else [str(value)]


def joined(value):
    return ",".join(texts(value))


def types(line):
    return sorted(word.upper() for word in line.params.get("TYPE", []))


def labelled(lines):
    return [{"value": line.value, "types": types(line)} for line in lines]


def address(value):
    return ["\n".join(texts(part)) for part in (value.box, value.extended, value.street, value.city, value.region,
                                                value.code, value.country)]


def picture(value):
    """The bytes of a picture, also of a data: address, which the library leaves to who uses it."""
    if isinstance(value, bytes):
        return value
    return base64.b64decode(value.partition(",")[2]) if value.startswith("data:") else b""


def seen(card):
    lines = card.contents

    def first(name):
        return lines[name][0].value if name in lines else ""

    name = first("n")
    return {
        "uid": first("uid"),
        "fullname": first("fn"),
        "name": [joined(part) for part in (name.family, name.given, name.additional, name.prefix, name.suffix)]
                if name else [],
        "nickname": first("nickname"),
        "org": texts(first("org")) if "org" in lines else [],
        "title": first("title"),
        "note": first("note"),
        "birthday": first("bday"),
        "anniversary": first("anniversary") or first("x-anniversary"),
        "phones": labelled(lines.get("tel", [])),
        "emails": labelled(lines.get("email", [])),
        "addresses": [{"value": address(line.value), "types": types(line)} for line in lines.get("adr", [])],
        "urls": [line.value for line in lines.get("url", [])],
        "messaging": [line.value for line in lines.get("impp", [])],
        "categories": [name for line in lines.get("categories", []) for name in texts(line.value)],
        "members": [line.value for name in ("member", "x-addressbookserver-member") for line in lines.get(name, [])],
        "photo": hashlib.sha256(picture(first("photo"))).hexdigest() if picture(first("photo")) else "",
    }


def cards(path):
    with open(path, encoding="utf-8", newline="") as file:
        text = file.read()
    end = "\r\nEND:VCARD\r\n"
    for card in text.split(end)[:-1]:
        try:
            yield seen(vobject.readOne(card + end))
        except Exception as error:  # whatever the library raises is what it says of the card
            yield {"error": f"{type(error).__name__}: {error}"}


json.dump(list(cards(sys.argv[1])), sys.stdout, ensure_ascii=False, indent=1)
