#!/usr/bin/env python3
"""Holds the pages of the manual against what its reader understands, and its languages against each other.

    checkhelp.py HTMLTEXT FILE...

HTMLTEXT is the program of that name, which lays the pages out with the reader itself; the first FILE is the reference.
Each fault is a line "FILE: WHERE: what is wrong"; the status is 1 if there was one.

The reader reports nothing and forgives all: it passes tags that it does not know, drops blanks between tags, wraps no
line, and runs to the end of the file where an end tag is missing. So the source is read here with less patience.
"""
import re
import subprocess
import sys
from html.entities import name2codepoint
from collections import namedtuple
from pathlib import Path

WIDTH = 79  # columns of a line; the terminal has 80
HEIGHT = 16  # lines and links of a page: with title, blank lines and the letters of the menu 24
FIRST_PAGE = "contents"
DOCUMENT_TAGS = {"html", "head", "title", "body"}
SINGLE_TAGS = {"br", "p", "img"}

Fault = namedtuple("Fault", "file where what")
Page = namedtuple("Page", "name lines links anchors")
Link = namedtuple("Link", "target text")


class Manual:
    """One file: its source, and its pages as the reader lays them out."""

    def __init__(self, htmltext, path):
        self.path, self.faults = Path(path), []
        self.source = self.path.read_bytes().decode("latin-1")
        done = subprocess.run([htmltext, self.path], capture_output=True, check=False)
        self.pages = self.read_pages(done.stdout.decode("latin-1").split("\n"))
        if done.returncode != 0:
            self.fault("", done.stderr.decode().strip())

    def fault(self, where, what):
        self.faults.append(Fault(self.path, where, what))

    @staticmethod
    def read_pages(rest):
        pages = []
        while rest and rest[0].startswith("=== "):
            name, count = rest[0][4:].rsplit(" ", 1)
            page = Page(name, rest[1:int(count) + 1], [], [])
            rest = rest[int(count) + 1:]
            while rest[0].startswith(("--> ", "--# ")):
                if rest[0].startswith("--# "):
                    page.anchors.append(rest[0][4:])
                else:
                    page.links.append(Link(*rest[0][4:].split(" ", 1)))
                rest = rest[1:]
            pages.append(page)
        return pages


# ---- The source

def check_source(manual, known):
    for number, line in enumerate(manual.source.split("\n"), 1):
        if re.search(r"[^ -~]", line):
            manual.fault("line %d" % number, "not printable ASCII")
    text = re.sub(r"\A<!--[^>]*>", lambda match: "\n" * match[0].count("\n"), manual.source)
    check_tags(manual, text, known)
    for match in re.finditer(r">([^<>]*)<", text):
        check_run(manual, line_of(text, match.start(1)), match[1])
    for match in re.finditer(r"</(?:a|b|font)>[ \n]+(?:[^<\s]|<(?:a|b|font)\b)", text):
        manual.fault(line_of(text, match.start()), "the blank behind a tag is lost")


def line_of(text, at):
    return "line %d" % (text.count("\n", 0, at) + 1)


def check_tags(manual, text, known):
    """Only tags that the reader knows, and each that opens something closed in turn."""
    open_tags = []
    for match in re.finditer(r"<\s*(/?)([^\s>]*)[^>]*(>|\Z)", text):
        where, end, tag = line_of(text, match.start()), match[1], match[2].lower()
        if end + tag not in known and tag not in DOCUMENT_TAGS:
            manual.fault(where, "unknown tag %s%s" % (end, tag))
        elif tag in SINGLE_TAGS:
            if tag != "img" and open_tags[-1:] == ["a"]:
                manual.fault(where, "a link goes on in a new line")
        elif not end:
            open_tags.append(tag)
        elif not open_tags or open_tags.pop() != tag:
            manual.fault(where, "/%s closes nothing" % tag)
            open_tags.clear()
    if open_tags:
        manual.fault("the end", "%s is not closed" % open_tags[-1])


def check_run(manual, where, run):
    if "\n" in run.strip() or (run.strip() and re.search(r"\n\s*\Z", run)):
        manual.fault(where, "a line feed inside a text")
    for entity in re.findall(r"&[^;\s]*;?", run):
        code = re.fullmatch(r"&#(\d+);", entity)
        letter = 0xA0 < name2codepoint.get(entity[1:-1], 0) < 0x100
        if entity != "&quot;" and not letter and not (code and 32 <= int(code[1]) <= 126):
            manual.fault(where, "%s is no character of Latin-1" % entity)


# ---- The pages

def check_pages(manual):
    names = [page.name for page in manual.pages]
    if names[:1] != [FIRST_PAGE]:
        manual.fault("", "the first page is not %s" % FIRST_PAGE)
    for name in sorted({name for name in names if names.count(name) > 1}):
        manual.fault(name, "there is more than one page of this name")
    home = {anchor: page.name for page in manual.pages for anchor in page.anchors}
    home.update((name, name) for name in names)
    for page in manual.pages:
        check_layout(manual, page)
        for link in page.links:
            check_link(manual, page, link, home)
    for name in sorted(set(names) - reached(manual, home)):
        manual.fault(name, "no way leads here from %s" % FIRST_PAGE)


def check_layout(manual, page):
    for line in page.lines:
        if len(line.rstrip()) > WIDTH:
            manual.fault(page.name, "%d columns: %s" % (len(line.rstrip()), line.strip()))
    if len(page.lines) + len(page.links) > HEIGHT:
        manual.fault(page.name, "%d lines and %d links do not fit a terminal" % (len(page.lines), len(page.links)))
    frame = None
    for line in page.lines:
        if re.fullmatch(r" *,-[-+]*,", line):
            frame = [at for at, char in enumerate(line) if char in ",+"]
        elif frame and any(line[at:at + 1] not in ("|", "'", "+") for at in frame):
            manual.fault(page.name, "text across the frame of a table: %s" % line.strip())
        if line.strip().startswith("'-"):
            frame = None


def check_link(manual, page, link, home):
    if not link.target.startswith("#"):
        manual.fault(page.name, "the link to %s leads out of the file" % link.target)
    elif link.target[1:] not in home:
        manual.fault(page.name, "nothing is called %s" % link.target)
    if not link.text.strip():
        manual.fault(page.name, "the link to %s shows no text" % link.target)


def reached(manual, home):
    pages = {page.name: page for page in manual.pages}
    found, rest = set(), [FIRST_PAGE]
    while rest:
        name = rest.pop()
        if name in pages and name not in found:
            found.add(name)
            rest += [home.get(link.target[1:]) for link in pages[name].links]
    return found


def check_language(manual, reference):
    """The same pages in the same order, with the same links in the same order."""
    ours, theirs = [[page.name for page in each.pages] for each in (manual, reference)]
    for name in sorted(set(ours) ^ set(theirs)):
        manual.fault(name, "this page is in one language only")
    if sorted(ours) == sorted(theirs) and ours != theirs:
        manual.fault("", "the pages stand in another order than in %s" % reference.path.name)
    wanted = {page.name: [link.target for link in page.links] for page in reference.pages}
    for page in manual.pages:
        got = [link.target for link in page.links]
        if got != wanted.get(page.name, got):
            manual.fault(page.name, "links %s, not %s" % (" ".join(got), " ".join(wanted[page.name])))


def check(htmltext, paths):
    known = set(subprocess.run([htmltext, "-tags"], capture_output=True, text=True, check=True).stdout.split())
    manuals = [Manual(htmltext, path) for path in paths]
    for manual in manuals:
        check_source(manual, known)
        check_pages(manual)
        if manual is not manuals[0]:
            check_language(manual, manuals[0])
    return [fault for manual in manuals for fault in manual.faults]


def main(words):
    if len(words) < 2:
        print(__doc__)
        return 1
    faults = check(words[0], words[1:])
    for fault in faults:
        print("%s: %s: %s" % (fault.file, fault.where or "pages", fault.what))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
