"""Colours text by a TextMate grammar, as far as the grammars of tools/vscode use that language: matches, begin and end,
captures, includes. Their expressions mean the same to Python as to an editor."""

import json
import os
import re


class Grammars:
    """The grammars of a folder, by the name of their scope."""

    def __init__(self, folder):
        self.files = {}
        for name in sorted(os.listdir(folder)):
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                grammar = json.load(file)
            self.files[grammar["scopeName"]] = grammar

    def expand(self, patterns, scope):
        """The patterns without includes, each with the grammar that it stands in."""
        for pattern in patterns:
            if "include" in pattern:
                place, _, entry = pattern["include"].partition("#")
                grammar = place or scope
                included = self.files[grammar]
                yield from self.expand([included["repository"][entry]] if entry else included["patterns"], grammar)
            elif "match" in pattern or "begin" in pattern:
                yield pattern, scope
            else:
                yield from self.expand(pattern["patterns"], scope)

    def colour(self, text, scope):
        """The innermost scope of each character that has one, None for others; line by line."""
        stack = [({"patterns": self.files[scope]["patterns"]}, scope)]
        return [self.colour_line(line, stack) for line in text.splitlines(keepends=True)]

    def colour_line(self, line, stack):
        scopes = [None] * len(line)

        def paint(begin, end, name):
            if name:
                scopes[begin:end] = [name] * (end - begin)

        def paint_match(match, rule, captures):
            paint(match.start(), match.end(), rule.get("name"))
            for number, capture in rule.get(captures, {}).items():
                paint(*match.span(int(number)), capture["name"])

        at = 0
        tried = set()  # where rules of no width were entered or left, which must not go on for ever
        while at <= len(line):
            rule, grammar = stack[-1]
            found = [(re.compile(rule["end"]).search(line, at), None, None)] if "end" in rule else []
            for pattern, place in self.expand(rule.get("patterns", []), grammar):
                found.append((re.compile(pattern.get("match") or pattern["begin"]).search(line, at), pattern, place))
            found = [one for one in found if one[0]]
            if not found:
                paint(at, len(line), rule.get("name"))
                break
            match, pattern, place = min(found, key=lambda one: one[0].start())
            paint(at, match.start(), rule.get("name"))
            state = (match.end(), len(stack), id(pattern))
            if state in tried:
                break
            tried.add(state)
            if pattern is None:
                paint_match(match, rule, "endCaptures")
                stack.pop()
            elif "match" in pattern:
                paint_match(match, pattern, "captures")
            else:
                paint_match(match, pattern, "beginCaptures")
                stack.append((pattern, place))
            at = match.end()
        return scopes
