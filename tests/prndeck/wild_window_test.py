"""A user without sense: random keys and clicks in all windows of the real program, with a window manager, on texts of printers and
queues that mean harm. It may do nothing, ask or refuse; it may not end but by Exit, nor print a warning.

PRN_WILD_EVENTS tells how many events there are, PRN_WILD_SEED which ones.
"""
import os
import random
import re
import unittest

import discovery_window_test as discovery
import netns
from prnsim import INCLUDE
from xvfb import CLIENT

HARM = r'%s%n%d $(touch harm) `touch harm`;"\'\\ @icon/TLogo.xpm ~a {}()<>,*5 \x1b[2J\x07\xff\xfe'
SENT = "".join("\\x%02X" % byte for byte in HARM.encode("latin-1"))  # as the fleet's description has it
discovery.FLEET = INCLUDE + f"""
subnet 10.71.1.0/24
subnet 10.71.2.0/24
printer 10.71.1.11 like tarvo-p340
  sysLocation.0 text "{SENT}" rw keep
  sysContact.0 text "{SENT * 4}" rw keep
  sysName.0 text "{SENT}"
printer 10.71.2.21 like tarvo-w760
"""
EVENTS, SEED = int(os.environ.get("PRN_WILD_EVENTS", 500)), int(os.environ.get("PRN_WILD_SEED", 1))
FRAME, TITLE = 12, 34  # more than a frame takes, beside and above its window
ROUND = 20  # events before the windows are looked at again
KEYS = ["Tab", "shift+Tab", "Return", "KP_Enter", "Escape", "space", "Up", "Down", "Left", "Right", "Home", "End", "Prior", "Next",
        "BackSpace", "Delete", "F1", "F10", "a", "1", "9", "period", "percent", "backslash", "parenright", "comma", "adiaeresis",
        "ctrl+a", "ctrl+slash", "ctrl+space"]
MENUS = "spdh"  # letters of the bar, without that of Exit
QUEUE = {"q1": HARM.replace(" ", "") + " tv_generic.ppd 0 0 1 1 0 1 \0", "q2": "\0", "a" * 200: "x" * 900 + "\0"}


class Wild(discovery.Discovery):
    test_what_is_found_changed_and_kept = None  # the base's own

    def prepare(self, tool):
        tool.que(QUEUE)
        tool.queues(*QUEUE)
        tool.write("help.html", "<h1>" * 100)

    def boxes(self):
        """Where windows stand within their frames, and menus: the manager's own places could make it wait for a user with sense."""
        self.titles.update(self.display.read("xdotool", "search", "--onlyvisible", "--name", ".", "getwindowname", "%@").splitlines())
        shown = self.display.read("xdotool", "search", "--onlyvisible", "--maxdepth", "1", "--name", ".*", "getwindowgeometry", "--shell", "%@")
        found = []
        for window in shown.split("WINDOW")[1:]:
            number, x, y, width, height = (int(value) for value in re.findall(r"=(-?\d+)", window)[:5])
            if number & CLIENT != int(self.deck.window) & CLIENT:
                x, y, width, height = x + FRAME, y + TITLE, width - 2 * FRAME, height - FRAME - TITLE
            if x >= 0 and 0 < width < 1024 and height > 0:
                found.append((x, y, width, height))
        return found

    def words(self, boxes):
        """One event, as words for xdotool; the newest window gets half of them."""
        kind = self.random.random()
        if kind < 0.35:
            return ["key", self.random.choice(KEYS)]
        if kind < 0.45:
            return ["keydown", "Alt_L", "key", self.random.choice(MENUS), "keyup", "Alt_L"]
        x, y, width, height = boxes[-1] if self.random.random() < 0.5 else self.random.choice(boxes)
        place = ["mousemove", str(x + self.random.randrange(width)), str(y + self.random.randrange(height))]
        button = self.random.choice("11111123")
        click, drag = ["mousedown", button, "mouseup", button], ["mousedown", "1", "mousemove_relative", "30", "20", "mouseup", "1"]
        return place + self.random.choice([click, click, click, click * 2, drag])

    def restart(self):
        self.deck.program.wait(60)
        self.assertEqual(self.deck.program.returncode, 0, self.deck.said()[-4000:])
        self.check_said()
        self.start("10.71.2.21", tool=self.deck.tool)

    def check_said(self):
        for word in ("Sanitizer", "runtime error", "Warning", "Error:", "FATAL"):
            self.assertNotIn(word, self.deck.said()[-4000:])
        self.assertFalse((self.deck.tool.path / "harm").exists())

    def test_keys_and_clicks(self):
        self.random, self.titles, done, starts = random.Random(SEED), set(), 0, 1
        self.start("10.71.2.21", change=self.prepare)
        while done < EVENTS:
            if self.deck.program.poll() is not None:
                starts += 1
                self.restart()
            boxes = self.boxes()
            words = [word for _ in range(ROUND) for word in self.words(boxes)] if boxes else ["key", "Escape"]
            self.display.do(*words)
            done += ROUND
        print("%i events, seed %i, %i starts, %s" % (done, SEED, starts, ", ".join(sorted(self.titles))))
        self.assertGreater(len(self.titles), 2, "more windows than the first")
        self.check_said()


if __name__ == "__main__":
    discovery.net = netns.Network()
    unittest.main()
