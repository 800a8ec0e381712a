"""The setup wizard in the real program, by keys alone: queues of the tool's own store are added, replaced, copied, modified and
deleted in windows, and after each step the store, the queue tool and the terminal show the same. What is refused is said."""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from tooldir import read_records
from window_test import TITLE, Deck
from xvfb import Display, missing

if missing() or os.geteuid() != 0:
    print("skipped: " + (missing() or "queues are root's affair"))
    sys.exit(77)

STAGE = Path(os.environ["PRN_BUILD"]) / "stage"
MESSAGE = " " * 5  # title of a message box without one
MANUAL = "prndeck Help"
# Stands in for the front end: notes its words, and leaves what was chosen there.
FRONT_END = "#!/bin/sh\nprintf '<%s>' \"$@\" >>front\necho Duplex=DuplexTumble >.settings\n"
HOSTILE = '50% "off" $(touch x) \\'
# Letters of the menu entries, and titles, which a list shares with the window behind it.
WORDS = {
    "en": {"title": TITLE, "setup": "s", "queues": "q", "add": ("a", "Add Queue"), "copy": ("c", "Copy Queue"),
           "modify": ("m", "Modify Queue"), "delete": ("d", "Delete Queue"), "banner": "Configure Banner Page"},
    "de": {"title": "Tarvo-Druckerverwaltung", "setup": "e", "queues": "w", "add": ("h", "Warteschlange hinzuf\xfcgen"),
           "copy": ("k", "Warteschlange kopieren"), "modify": ("n", "Warteschlange \xe4ndern"),
           "delete": ("l", "Warteschlangen l\xf6schen"), "banner": "Bannerseite einstellen"}}


class Tool:
    """A copy of the staged tool directory with queues of its own."""

    def __init__(self, test):
        top = Path(tempfile.mkdtemp(prefix="prnwizard.", dir="/tmp"))
        test.addCleanup(shutil.rmtree, top)
        top.chmod(0o755)
        self.path = top / "deck"
        shutil.copytree(STAGE, self.path)
        (self.path / ".pn_cfg").write_text(",CUPS,StandAlone,\n")
        (self.path / "prnpnxxtty").unlink()
        (self.path / "prnpnxxtty").write_text(FRONT_END)
        (self.path / "prnpnxxtty").chmod(0o755)
        self.program = str(self.path / "prndeck")
        self.env = {"PRNQ_SPOOL": str(top / "spool"), "LANG": "C", "TERM": "dumb"}

    def run(self, program, *words, text=""):
        done = subprocess.run([str(self.path / program), *words], env={**os.environ, **self.env}, cwd=self.path, input=text,
                              capture_output=True, encoding="latin-1", timeout=120)
        assert (done.returncode, done.stderr) == (0, ""), done
        return done.stdout

    def add(self, *names):
        for name in names:
            self.run("prnqtool", name, "-ppd", "tv_c410.ppd", "-pm", "wp", "-hn", "localhost", "-fe")

    def record(self, key):
        return read_records(self.path / "db" / "que.xdb").get(key, b"").decode("latin-1")

    def stored(self):
        store = self.path / "db" / "hostq"
        return sorted(line.split(":")[0] for line in store.read_text().splitlines()) if store.exists() else []


class Wizard(unittest.TestCase):
    def setUp(self):
        self.display = Display(screen="1024x768x24", manager=True)
        self.addCleanup(self.display.close)
        self.key = self.display.key
        self.tool = Tool(self)

    def start(self, language="en", **more):
        self.language, self.words = language, WORDS[language]
        self.deck = Deck(self, self.display, "-nd", title=self.words["title"], tool=self.tool, **{**self.tool.env, **more})
        self.focused(self.words["title"])

    def press(self, entry):
        self.display.alt(self.words["setup"])
        self.display.menu(self.deck.window)
        self.key(self.words["queues"])
        self.display.menu(self.deck.window, 2)
        self.key(self.words[entry][0])

    def open(self, entry):
        self.press(entry)
        self.shown(entry, self.words[entry][1])

    def focused(self, title):
        """Waits for a window of this title that has the keys."""
        def look():
            focus = self.display.read("xdotool", "getwindowfocus").strip()
            return focus if focus in self.display.windows(title) else ""
        return self.deck.wait_for(look, title + " to have the keys")

    def shown(self, name, title):
        """Waits for a window that has the keys: a picture of it, and whether it fits the screen with its frame."""
        window = self.focused(title)
        self.display.keep("wizard-%s-%s" % (name, self.language), window)
        geometry = self.display.read("xwininfo", "-frame", "-id", window)
        width, height = (int(line.split(":")[1]) for line in geometry.splitlines() if line.strip().startswith(("Width", "Height")))
        self.assertTrue(width <= 1024 and height <= 768, geometry)

    def choose(self, entry, *keys):
        """Chooses a queue of the list; the window behind it has the same title."""
        self.open(entry)
        title = self.words[entry][1]
        listed = self.display.window(title)
        self.key(*keys, "Return")
        self.deck.wait_for(lambda: self.display.windows(title) not in ([], [listed]), "the queue's window")
        self.shown(entry + "-queue", title)

    def type(self, text):
        self.display.do("type", "--", text)

    def tabs(self, count, *keys):
        self.key(*["Tab"] * count, *keys)

    def pick(self, *moves):
        self.display.pick(self.deck.window, *moves)

    def message(self, name):
        """Waits for a message box that has the keys."""
        self.display.keep("wizard-%s-%s" % (name, self.language), self.focused(MESSAGE))

    def answer(self, *keys):
        self.key(*keys)
        self.display.gone(MESSAGE)

    def agree(self, *names):
        """The store, the queue tool and the terminal know these queues."""
        self.deck.wait_for(lambda: self.tool.stored() == sorted(names), "the queues %s" % (names,))
        self.focused(self.words["title"])
        listed = re.findall(r"^([\w-]+):", self.tool.run("prnqtool", "-LQ"), re.M)
        shown = self.tool.run("prndeck", "-tty", text="6\n").rsplit("Queues of this host:\n", 1)[1].split("\n\n", 1)[0]
        self.assertEqual((sorted(listed), sorted(re.findall(r"[\w-]+", shown))), (sorted(names), sorted(names)))

    def test_road(self):
        self.start()
        self.add_first()
        self.agree("first")
        self.replace_first()
        self.agree("first")
        self.choose("copy", "space")
        self.type("second")
        self.tabs(4, "Return")  # Apply, behind the choices and the host, which are the first one's
        self.agree("first", "second")
        self.choose("modify", "Down", "space")
        self.tabs(3)
        self.pick("Down")
        self.key("Return")  # the default printer; Apply is the default button
        self.deck.wait_for(lambda: self.tool.record(" default"), "the default queue")
        self.assertEqual(self.tool.record(" default").rstrip("\0"), "second")
        self.agree("first", "second")
        self.tool.add("elsewhere", "outside")
        self.open("delete")
        self.key("space", "Down", "Down", "space")
        self.display.keep("wizard-delete-chosen-en")
        self.tabs(1, "Return")
        self.agree("first", "second")
        self.display.alt("e")
        self.deck.ends()

    def add_first(self):
        """With features and titles. Return in a field goes on and applies nothing."""
        self.open("add")
        self.type("first")
        self.key("Return")
        self.pick("Up", "Up")  # the generic model's neighbour
        self.tabs(3)
        self.type("localhost")
        self.key("Return")
        self.tabs(4, "Return")
        front = self.tool.path / "front"
        self.deck.wait_for(front.exists, "the front end")
        self.tabs(1, "Return")
        self.shown("banner", self.words["banner"])
        self.type(HOSTILE)
        self.tabs(1)
        self.pick("Down")
        self.tabs(6, "Return")
        self.display.gone(self.words["banner"])
        self.focused(self.words["add"][1])
        self.assertEqual(self.tool.stored(), [])
        self.tabs(1, "Return")
        self.agree_first()
        self.assertEqual(front.read_text(), "<-dfirst><-SBP><-GS%s/ppd/tv_c410.ppd>" % self.tool.path)

    def agree_first(self):
        self.agree("first")
        self.assertEqual(self.tool.record("first **banner").rstrip("\0"), ".h1 22 %s\n" % HOSTILE)
        self.assertIn("Duplex=DuplexTumble\n", self.tool.record("first **"))
        self.assertFalse((self.tool.path / "x").exists())

    def replace_first(self):
        """The question before a queue is replaced: Help comes back to it behind the manual, Cancel to the window, OK replaces."""
        before = self.tool.record("first")
        self.open("add")
        self.type("first")
        self.tabs(4)
        self.type("127.0.0.1")
        self.tabs(7, "Return")
        self.message("replace")
        self.key("Right", "Right", "Return")
        self.focused(MANUAL)
        self.key("Escape")
        self.display.gone(MANUAL)
        self.message("replace-again")
        self.answer("Escape")
        self.focused(self.words["add"][1])
        self.assertEqual(self.tool.record("first"), before)
        self.key("Return")
        self.message("replace")
        self.answer("Return")
        self.display.gone(self.words["add"][1])
        self.assertIn("127.0.0.1", self.tool.record("first"))
        self.assertEqual(self.tool.record("first **"), "")

    def test_german(self):
        """Each window by its letter, and away by Escape."""
        self.tool.add("kept")
        self.start("de", LANG="de_DE.UTF-8")
        self.open("add")
        self.tabs(10, "Return")
        self.shown("banner", self.words["banner"])
        self.leave(self.words["banner"])
        self.focused(self.words["add"][1])
        self.leave(self.words["add"][1])
        for entry in ("copy", "modify"):
            self.choose(entry, "space")
            self.leave(self.words[entry][1])
        self.open("delete")
        self.leave(self.words["delete"][1])
        self.agree("kept")
        self.assertEqual(self.deck.said(), "")

    def leave(self, title):
        self.key("Escape")
        self.display.gone(title)

    def test_what_is_refused_is_said(self):
        """By the window, which stays as it is, by prnqtool, and of prnqtool when it is missing, when lists are read as well."""
        self.tool.add("kept")
        self.start()
        self.open("add")
        self.type("-late")
        self.tabs(3)
        self.pick("Down")  # a local device
        self.tabs(1)
        self.type("/tmp")
        self.tabs(7, "Return")
        self.said("name", self.words["add"][1])
        self.display.keep("wizard-device-window-en", self.focused(self.words["add"][1]))
        self.key(*["shift+Tab"] * 11, "Home", "Delete")
        self.tabs(11, "Return")
        self.said("device", TITLE)
        self.agree("kept")
        self.tool.path.joinpath("prnqtool").rename(self.tool.path / "away")
        self.choose("modify", "space")
        self.key("Return")
        self.said("missing", TITLE)
        self.open("delete")
        self.key("space")
        self.tabs(1, "Return")
        self.said("missing-delete", TITLE)
        self.press("delete")
        self.said("missing-list", self.words["delete"][1])
        self.tool.path.joinpath("away").rename(self.tool.path / "prnqtool")
        self.leave(self.words["delete"][1])
        self.choose("modify", "space")
        self.leave(self.words["modify"][1])
        self.agree("kept")

    def said(self, name, title):
        """A message comes, and behind it the keys go to the window."""
        self.message(name)
        self.answer("Return")
        self.focused(title)


if __name__ == "__main__":
    unittest.main()
