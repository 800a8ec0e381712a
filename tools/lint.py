#!/usr/bin/env python3
"""The house rules that a program can see; each breach is a line "FILE:LINE: what is wrong", and the status is 1.

    lint.py [ROOT]            ROOT is the source tree (the one this file lies in)
    lint.py --format [ROOT]   the layout of the sources, by clang-format 14; status 77 where that isn't installed

Rooms (folders) include only rooms below them, as CMakeLists.txt links them. Inside a room that has a block "Floors of
ROOM/" in CONTRIBUTING.md, a file includes its own floor and those below; what may run upwards is listed in a block
"Upwards in ROOM/". A tag "ORDER Name" stands at two places at least. No function has more than 60 lines, one-line cases
not counted; tests hold their tables of cases and may. Sets of the catalogue have names.
"""
import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

FUNCTION_LINES = 60
SIBLING_ROOMS = ("help", "print")  # what the programs beside prndeck stand on
WINDOW_ROOM, WINDOW_BASE = "siblings/prnpnxxtty/window", "prndeck/gui"  # the one sibling that has windows, and what they stand on
LEAVES = ("tests", "bench", "fuzz", "tools")  # may include everything
CLANG_FORMAT = "clang-format-14"


def sources(root):
    for path in sorted(root.rglob("*")):
        name = path.relative_to(root)
        if path.suffix in (".cpp", ".h") and not name.parts[0].startswith(("build", ".")):
            yield name


def fenced(text, title):
    """The lines of the fenced block below a line that ends in the title; None without one."""
    match = re.search(re.escape(title) + r"[^\n]*\n```\w*\n(.*?)^```", text, re.M | re.S)
    return match and [line.split("#")[0].split() for line in match[1].splitlines() if line.strip()]


class Lint:
    def __init__(self, root):
        self.root = root
        self.faults = []
        self.guide = (root / "CONTRIBUTING.md").read_text()
        self.rooms = self.read_rooms()
        self.floors = {room: self.read_floors(room) for room in self.rooms}
        self.tags = defaultdict(list)

    def fault(self, path, number, text):
        self.faults.append(f"{path}:{number}: {text}")

    def read_rooms(self):
        """Folder of each room: the folders that it may include, itself among them."""
        rows = [match.split() for match in re.findall(r"^add_room\(([^)]*)\)", (self.root / "CMakeLists.txt").read_text(), re.M)]
        folder = {row[0]: row[1] for row in rows}
        below = {}
        for name, path, *links in rows:
            below[path] = {path}.union(*(below[folder[link]] for link in links if link in folder))
        below["siblings"] = {"siblings"}.union(*(below[room] for room in SIBLING_ROOMS if room in below))
        below[WINDOW_ROOM] = {WINDOW_ROOM} | below["siblings"] | below.get(WINDOW_BASE, set())
        return below

    def read_floors(self, room):
        """(floor of each file's stem, pairs that may run upwards), None for a room without floors."""
        lines = fenced(self.guide, f"Floors of {room}/")
        upwards = {(a, b) for a, _, b in fenced(self.guide, f"Upwards in {room}/") or []}
        return lines and ({stem: n for n, line in enumerate(lines) for stem in line}, upwards)

    def room_of(self, path):
        """A program's main file stands where its highest room does."""
        if path.name == "main.cpp" and (path.parent / "window").as_posix() in self.rooms:
            return (path.parent / "window").as_posix()
        return max((room for room in self.rooms if path.as_posix().startswith(room + "/")), key=len, default=None)

    def check_include(self, path, number, target):
        room, other = self.room_of(path), self.room_of(Path(target))
        if path.parts[0] in LEAVES:
            return
        if Path(target).parts[0] in LEAVES:
            self.fault(path, number, f"includes {target} of a folder that nothing stands on")
        elif other and room and other not in self.rooms[room]:
            self.fault(path, number, f"includes {target}: {room}/ does not stand on {other}/")
        elif other and other == room and self.floors[room]:
            self.check_floor(path, number, path.stem, Path(target).stem)

    def check_floor(self, path, number, stem, other):
        floors, upwards = self.floors[self.room_of(path)]
        for name in (stem, other):
            if name not in floors:
                return self.fault(path, number, f"{name} has no floor in CONTRIBUTING.md")
        if floors[other] > floors[stem] and (stem, other) not in upwards:
            self.fault(path, number, f"includes {other}, which lies on a floor above {stem}")

    def check_line(self, path, number, line):
        if match := re.match(r'#include "([^"]+)"', line):
            self.check_include(path, number, match[1])
        if match := re.search(r"\bORDER\b *(\w*)", line):
            if match[1]:
                self.tags[match[1]].append((path, number))
            else:
                self.fault(path, number, "ORDER without its name on the same line")
        if path.parts[0] not in LEAVES and re.search(r"\b(NLS_FETCH_\w+|p\w+DB|\w+Desc), *\d+\b", line):
            self.fault(path, number, "a set of the catalogue without its name")

    def check_functions(self, path, lines):
        if path.parts[0] == "tests":
            return
        start = None
        for number, line in enumerate(lines, 1):
            if re.match(r"[^\s#}/].*\) ?(const |noexcept )?\{$|    [^\s].*\) const \{$", line) and "= {" not in line:
                start = number
            elif line.startswith("}") and start:
                cases = sum(bool(re.match(r"\s*case .*: .*;( break;)?( //.*)?$", row)) for row in lines[start:number])
                if number - start + 1 - cases > FUNCTION_LINES:
                    self.fault(path, start, f"a function of {number - start + 1} lines")
                start = None

    def check(self):
        for path in sources(self.root):
            lines = (self.root / path).read_text(errors="replace").splitlines()
            for number, line in enumerate(lines, 1):
                self.check_line(path, number, line)
            self.check_functions(path, lines)
        for name, places in self.tags.items():
            if len(places) < 2:
                self.fault(*places[0], f"ORDER {name} stands nowhere else")
        return self.faults


def check_format(root):
    """Complaints of clang-format, or None without it."""
    try:
        run = subprocess.run([CLANG_FORMAT, "--dry-run", *(root / path for path in sources(root))],
                             capture_output=True, text=True)
    except FileNotFoundError:
        return None
    return [line for line in run.stderr.splitlines() if "warning:" in line]


def main(words):
    form = "--format" in words
    root = Path(next((word for word in words if word != "--format"), Path(__file__).parents[1])).resolve()
    faults = check_format(root) if form else Lint(root).check()
    if faults is None:
        print(f"skipped: no {CLANG_FORMAT} here")
        return 77
    print("\n".join(faults) or "nothing found")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
