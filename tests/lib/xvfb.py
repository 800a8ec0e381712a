"""A display of a test's own, with the hands and the eyes of a user: mouse and keys by xdotool, what stands on the screen,
and pictures of it. Waits are for a window or a condition, never for a time.

    with Display() as display:
        ...start a program with display.env()...
        window = display.window("Title")
"""
import os
import re
import shutil
import subprocess
import time
from collections import namedtuple
from pathlib import Path

NEEDS = ("Xvfb", "xdotool", "xwininfo", "import")
LIMIT = 60
CLIENT = ~0x1FFFFF  # the bits of a window's id that tell the program
# The leak checker ends a program with what Motif keeps for its life, unless it is told.
LSAN = "suppressions=%s:print_suppressions=0" % (Path(__file__).resolve().parent / "motif.supp")

Box = namedtuple("Box", "id x y width height")


def missing():
    """What a display needs and this host lacks, as a reason to skip; empty if all is there."""
    lacks = [name for name in NEEDS if not shutil.which(name)]
    return "there is no " + ", ".join(lacks) if lacks else ""


def wait_for(condition, what, limit=LIMIT):
    """The first value of the condition that counts as true."""
    end = time.monotonic() + limit
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError("waited %i s for %s" % (limit, what))
        time.sleep(0.02)


class Display:
    def __init__(self, screen="1280x1024x24", manager=False, dpi=96):
        ready, told = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(told), "-screen", "0", screen, "-dpi", str(dpi), "-nolisten", "tcp", "-noreset"],
            pass_fds=[told], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(told)
        with os.fdopen(ready) as number:
            self.name = ":" + number.readline().strip()
        self.manager = None
        if self.name == ":":
            self.close()
            raise AssertionError("Xvfb doesn't start with the screen " + screen)
        if manager:
            self.start_manager()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        for process in (self.server, self.manager):
            if process:
                process.kill()
                process.wait()

    def start_manager(self):
        self.manager = subprocess.Popen(["mwm"], env=self.env(), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        wait_for(lambda: " = " in self.read("xprop", "-root", "_MOTIF_WM_INFO"), "the window manager")

    def env(self, **changes):
        return {**os.environ, "DISPLAY": self.name, "LSAN_OPTIONS": LSAN, **changes}

    def read(self, *words, limit=LIMIT):
        done = subprocess.run(words, env=self.env(), capture_output=True, text=True, timeout=limit, errors="replace")
        return done.stdout

    # ---- What stands on the screen

    def windows(self, title=""):
        """Ids of the windows that are shown with exactly this title; of all with an empty one."""
        name = "^%s$" % re.escape(title) if title else "."
        return self.read("xdotool", "search", "--onlyvisible", "--name", name).split()

    def window(self, title):
        return wait_for(lambda: self.windows(title), "the window " + title)[0]

    def gone(self, title):
        wait_for(lambda: not self.windows(title), "the window %s to go" % title)

    def focused(self, title):
        """Waits until the window manager has given the keys to the window of this title."""
        wait_for(lambda: self.read("xdotool", "getwindowfocus", "getwindowname").strip() == title, title + " to have the keys")

    def popups(self, window):
        """Menus that the program of this window shows: its windows outside a manager's reach, the newest first."""
        lines = self.read("xwininfo", "-root", "-children").splitlines()
        ids = [line.split()[0] for line in lines if re.match(r"\s+0x", line)]
        ours = [found for found in ids if int(found, 16) & CLIENT == int(window, 0) & CLIENT]
        facts = {found: self.read("xwininfo", "-id", found) for found in ours}
        return [found for found in ours if "IsViewable" in facts[found] and "Override Redirect State: yes" in facts[found]]

    def shown(self, window):
        return "IsViewable" in self.read("xwininfo", "-id", window)

    def menus(self, window):
        """The entries of each menu that the program shows, a submenu behind the one it belongs to."""
        shells = self.popups(window)[::-1]
        bodies = [part for shell in shells for part in self.parts(shell) if self.shown(part.id)]
        return [self.parts(body.id) for body in bodies]

    def menu(self, window, depth=1):
        """The entries of the menu that comes up, with depth 2 those of one beside it."""
        return wait_for(lambda: self.menus(window)[depth - 1:], "a menu")[0]

    def pick(self, window, *moves):
        """Another entry of the option menu that has the keys. What is typed before a menu stands goes past it."""
        self.key("space")
        self.menu(window)
        self.key(*moves, "Return")
        wait_for(lambda: not self.menus(window), "the choices to go")

    def parts(self, window):
        """The direct parts of a window, from left to right and from top to bottom; places are those of the screen."""
        found = []
        for line in self.read("xwininfo", "-id", window, "-children").splitlines():
            part = re.match(r"\s+(0x\S+).* (\d+)x(\d+)[+-].*  \+(-?\d+)\+(-?\d+)$", line)
            if part:
                found.append(Box(part[1], int(part[4]), int(part[5]), int(part[2]), int(part[3])))
        return sorted(found, key=lambda box: (box.y, box.x))

    def find_parts(self, window, count):
        """The parts of the first window below this one that has at least so many."""
        parts = self.parts(window)
        if len(parts) >= count:
            return parts
        return next((found for part in parts for found in [self.find_parts(part.id, count)] if found), [])

    def picture(self, path, window="root"):
        Path(path).parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["import", "-silent", "-window", window, str(path)], env=self.env(), check=True, timeout=LIMIT)

    def pixels(self, window):
        return subprocess.run(["import", "-silent", "-window", window, "-depth", "8", "rgb:-"], env=self.env(), check=True,
                              capture_output=True, timeout=LIMIT).stdout

    def keep(self, name, window="root"):
        """With PRN_PICTURES, which ./check --pictures sets, a picture of the window stays there."""
        if os.environ.get("PRN_PICTURES"):
            self.picture(Path(os.environ["PRN_PICTURES"]) / (name + ".png"), window)

    # ---- The user

    def do(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.env(), check=True, timeout=LIMIT, stdout=subprocess.DEVNULL)

    def click(self, box, button=1):
        self.do("mousemove", box.x + box.width // 2, box.y + box.height // 2, "click", button)

    def point(self, window):
        """The pointer on the window: without a manager keys go where it is."""
        self.do("mousemove", "--window", window, 5, 5)

    def key(self, *keys):
        self.do("key", *keys)

    def alt(self, letter):
        """A mnemonic. Alt goes down first, as it does on a keyboard."""
        self.do("keydown", "Alt_L")
        self.do("key", letter)
        self.do("keyup", "Alt_L")
