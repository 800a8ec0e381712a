"""The windows of the feature front end, by keys as a user has them: of a model's options, few and many, and of the queues whose
features are changed. Whatever a PPD file says, nothing but its choices is stored, and only when the user applies."""
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from prnpnxxtty_test import DEFAULTS, LONG_EDGE, OPTIONS
from tooldir import read_records
from xvfb import Display, missing, wait_for

if missing():
    print("skipped: " + missing())
    sys.exit(77)

STAGE = Path(os.environ["PRN_BUILD"]) / "stage"
MESSAGE = " " * 5  # title of a message box without one
MANUAL = "prndeck Help"
TITLES = {"C": "Features of ", "de_DE": "Druckerfunktionen von "}
TEXT = "a,b\\,c()<>{};*80~@%%s%%n\x1b[2J\x07\xe4\xff\xc3\xa9`$(touch hit)'\"" + "long " * 2000
HOSTILE = '*PPD-Adobe: "4.3"\n*ModelName: "%s"\n' % TEXT.replace('"', "").replace("%%", "%") + "".join(
    "*OpenGroup: G%d/%s\n*OpenUI *O%d/%s: PickOne\n*DefaultO%d: C1\n%s*CloseUI: *O%d\n*CloseGroup: G%d\n" % (
        n, TEXT[n:], n, TEXT[n:].replace("%%", "%"), n, "".join(
            '*O%d C%d/%s: ""\n' % (n, c, TEXT[c:].replace(":", "").replace("%%", "%")) for c in range(4 if n else 40)), n, n)
    for n in range(12))


def many(count, choices):
    """A model with so many options, each with as many choices as the function tells."""
    return '*PPD-Adobe: "4.3"\n*ModelName: "Many"\n' + "".join(
        "*OpenUI *O%d/Option %d: PickOne\n*DefaultO%d: C1\n" % (n, n, n) +
        "".join('*O%d C%d/Choice %d: ""\n' % (n, c, c) for c in range(choices(n))) + "*CloseUI: *O%d\n" % n for n in range(count))


class FrontWindow(unittest.TestCase):
    def setUp(self):
        self.display = Display(screen="1024x768x24", manager=True)
        self.addCleanup(self.display.close)
        self.key = self.display.key
        self.top = Path(tempfile.mkdtemp(prefix="prnfront.", dir="/tmp"))
        self.addCleanup(shutil.rmtree, self.top)
        self.top.chmod(0o755)
        self.tool = self.top / "tool"
        shutil.copytree(STAGE, self.tool)
        (self.tool / ".pn_cfg").write_text(",CUPS,StandAlone,\n")
        self.env = {"LANG": "C", "PRNQ_SPOOL": str(self.top / "spool")}
        self.ppd("full.ppd", OPTIONS)

    def ppd(self, name, text):
        (self.tool / "ppd" / name).write_bytes(text.encode("latin-1"))

    def settings(self):
        file = self.tool / ".settings"
        return file.read_text() if file.is_file() else None

    def start(self, *words, title="Features of Tarvo 99%s, \\n~", prefix=(), program="prnpnxxtty", **env):
        """A run from another directory than its own, and its window, which fits the screen with its frame."""
        where = self.tool if program == "prndeck" else "/"
        with open(self.top / "output", "w") as output, open(self.top / "errors", "w") as errors:
            self.program = subprocess.Popen([*prefix, self.tool / program, *words], cwd=where, stdin=subprocess.DEVNULL,
                                            stdout=output, stderr=errors, env=self.display.env(**{**self.env, **env}))
        self.addCleanup(self.program.wait)
        self.addCleanup(self.program.kill)
        self.focused(title)
        geometry = self.display.read("xwininfo", "-frame", "-id", self.display.window(title))
        width, height = (int(line.split(":")[1]) for line in geometry.splitlines() if line.strip().startswith(("Width", "Height")))
        self.assertTrue(width <= 1024 and height <= 768, geometry)
        return self.display.window(title)

    def ends(self, stored=None, said=""):
        self.assertEqual((self.program.wait(60), (self.top / "errors").read_text("latin-1")), (0, said))
        self.assertEqual(self.settings(), stored)
        return (self.top / "output").read_text()

    def focused(self, title):
        def look():
            self.assertIsNone(self.program.poll(), "ended while the test waited for " + title)
            return self.display.read("xdotool", "getwindowfocus").strip() in self.display.windows(title)
        wait_for(look, title + " to have the keys")

    def message(self, picture):
        """Waits for a message, and measures how wide it is."""
        self.focused(MESSAGE)
        window = self.display.window(MESSAGE)
        self.display.keep("front-" + picture, window)
        return self.width(window)

    def width(self, window):
        return int(re.search(r"Width: (\d+)", self.display.read("xwininfo", "-id", window))[1])

    def answer(self, key):
        self.key(key)
        self.display.gone(MESSAGE)

    def choose(self, tabs, *moves):
        """Moves the focus and takes another choice of the menu there."""
        self.key(*["Tab"] * tabs, "space", *moves, "Return")

    def test_apply(self):
        for language, title in TITLES.items():
            window = self.start("-GSfull.ppd", LANG=language, title=title + "Tarvo 99%s, \\n~")
            self.choose(1, "Down")
            self.key("Return")  # beside the menu it must not apply
            self.display.keep("front-features-" + language, window)
            self.key(*["Tab"] * 4, "Return")
            self.assertIn("5 settings of full.ppd kept in %s/.settings\n" % self.tool, self.ends(LONG_EDGE))
            self.start("-GSfull.ppd", LANG=language, title=title + "Tarvo 99%s, \\n~")  # goes on from there
            self.key(*["Tab"] * 5, "space")
            self.ends(LONG_EDGE)
            (self.tool / ".settings").unlink()

    def test_leaving_without_apply(self):
        for stored in (None, "Staple=True\nof this flow\n"):
            if stored:
                (self.tool / ".settings").write_text(stored)
            for leave in (["Escape"], ["alt+F4"], [*["Tab"] * 5, "Return"]):
                self.start("-GSfull.ppd")
                self.choose(1, "Down")
                self.key(*leave)
                self.assertEqual(self.ends(stored), "")

    def test_what_does_not_go_together(self):
        self.start("-dnew", "-SBP", "-GSfull.ppd")
        self.choose(1, "Down")
        self.choose(1, "Up")
        self.key(*["Tab"] * 4, "Return")
        self.message("broken")
        self.answer("Escape")
        self.assertIsNone(self.settings())
        self.focused("Features of Tarvo 99%s, \\n~")
        self.key("Return")
        self.focused(MESSAGE)
        self.answer("Return")
        self.ends(LONG_EDGE.replace("Staple=False", "Staple=True"))

    def test_many_options(self):
        self.ppd("many.ppd", many(80, lambda n: 200 if n == 1 else 2 + n % 19))
        window = self.start("-GSmany.ppd", title="Features of Many")
        self.key("Tab", *["Down"] * 3)  # a list
        self.display.keep("front-list", window)
        self.choose(1, "Down")
        self.key(*["Tab"] * 77)  # the last one comes into sight
        self.display.keep("front-many", window)
        self.choose(0, "Up")
        self.key("Tab", "Return")
        chosen = {1: 4, 2: 2, 79: 0}
        self.ends("".join("O%d=C%d\n" % (n, chosen.get(n, 1)) for n in range(80)))

    def test_a_list_is_as_wide_as_its_choices(self):
        widths = []
        for text in ("/Choice 3:", "/" + "wide " * 8 + ":"):
            self.ppd("list.ppd", many(1, lambda n: 300).replace("/Choice 3:", text))
            window = self.start("-GSlist.ppd", title="Features of Many")
            self.display.keep("front-wide", window)
            widths.append(self.width(window))
            self.key("End", "Escape")
            self.ends()
        self.assertGreater(widths[1], widths[0] + 100)

    def test_more_than_a_window_holds(self):
        group = r"*OpenGroup: G\1/Group \1\n\g<0>"
        for count, choices, fits, before in ((600, 2, True, ""), (150, 20, True, ""), (560, 20, False, ""), (9999, 2, False, ""),
                                             (590, 2, False, group)):
            self.ppd("huge.ppd", re.sub(r"\*OpenUI \*O(\d+)", before or r"\g<0>", many(count, lambda n: choices)))
            window = self.start("-GShuge.ppd", title="Features of Many")
            self.display.keep("front-%d" % count, window)
            self.key(*["shift+Tab"] * 3 * fits, "Return")  # Apply, or what is left of the buttons
            self.ends("".join("O%d=C1\n" % n for n in range(count)) if fits else None)
            (self.tool / ".settings").unlink(missing_ok=True)

    def test_texts_that_are_no_description(self):
        self.ppd("hostile.ppd", HOSTILE)
        window = self.start("-GShostile.ppd", title="")
        self.display.keep("front-hostile", window)
        self.key("Tab", "space", "Down", "Return", *["Tab"] * 11, "Return")
        self.ends("".join("O%d=C%d\n" % (n, 1 + (n == 1)) for n in range(12)))
        self.assertFalse((self.tool / "hit").exists())

    def test_no_options_and_nowhere_to_write(self):
        self.ppd("none.ppd", '*PPD-Adobe: "4.3"\n*ModelName: "None"\n')
        window = self.start("-GSnone.ppd", title="Features of None")
        self.display.keep("front-none", window)
        self.key("Return")
        self.ends()
        (self.tool / ".settings").mkdir()
        self.start("-GSfull.ppd")
        self.key(*["Tab"] * 5, "Return")
        self.message("unwritten")
        self.answer("Return")
        self.focused("Features of Tarvo 99%s, \\n~")
        self.key("Escape")
        self.ends()

    def test_help(self):
        self.start("-GSfull.ppd")
        for keys in (["F1"], [*["Tab"] * 7, "Return"]):
            self.key(*keys)
            self.focused(MANUAL)
            self.display.keep("front-help", self.display.window(MANUAL))
            self.key("Escape")
            self.display.gone(MANUAL)
            self.focused("Features of Tarvo 99%s, \\n~")
        self.key("Escape")
        self.ends()

    # ---- The queues

    def run_tool(self, *words):
        done = subprocess.run([self.tool / "prnqtool", *words], env={**os.environ, **self.env}, cwd="/", capture_output=True,
                              text=True, timeout=120)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def records(self):
        return read_records(self.tool / "db" / "que.xdb")

    @unittest.skipIf(os.geteuid(), "queues are root's affair")
    def test_features_of_a_queue(self):
        (self.tool / ".bsettings").write_text(".h1 20 Own title\n")
        for name, words in (("kept", ["-ui", "-fe", "-bp", "-d", "-bps", ".bsettings"]), ("plain", [])):
            self.run_tool(name, "-ppd", "full.ppd", "-pm", "wp", "-hn", "localhost", *words)
        others = {".settings": "PageSize=Letter\n", ".bsettings": ".h1 8 Of another queue\n"}
        for name, text in others.items():
            (self.tool / name).write_text(text)
        before = self.records()
        window = self.start("-FP", title="Features of queues")
        self.display.keep("front-queues", window)
        for name, place, keys, tabs in (("kept", [], ["Tab", "Return"], 5), ("plain", ["Down"], ["Return"], 4)):
            self.focused("Features of queues")
            self.key(*place, *keys)
            title = name + ": Features of Tarvo 99%s, \\n~"
            self.focused(title)
            self.choose(1, "Down")
            self.key(*["Tab"] * tabs, "Return")
            self.message("stored-" + name)
            self.answer("Return")
        self.focused("Features of queues")
        self.key("Tab", "Return")
        self.focused("plain: Features of Tarvo 99%s, \\n~")
        self.key("Escape")
        self.focused("Features of queues")
        (self.tool / "ppd" / "full.ppd").rename(self.tool / "ppd" / "gone.ppd")
        self.key("Return")
        self.message("no-model")  # what that run of the program told
        self.answer("Return")
        self.focused("Features of queues")
        self.key("Escape")
        self.ends(others[".settings"], "prnpnxxtty: can't open %s/ppd/full.ppd: No such file or directory\n" % self.tool)
        self.assertEqual((self.tool / ".bsettings").read_text(), others[".bsettings"])
        after = self.records()
        settings = {key: after.pop(key) for key in ("kept **", "plain **")}
        for key in settings:
            before.pop(key, None)
        self.assertEqual(after, before)
        self.assertEqual({value.decode().rstrip("\0") for value in settings.values()}, {LONG_EDGE})

    @unittest.skipIf(os.geteuid(), "queues are root's affair")
    def test_programs_that_refuse_or_die(self):
        """Nothing is said to be stored that is not, and no window of features outlives the one that waits for it."""
        title = "kept: Features of Tarvo 99%s, \\n~"
        self.run_tool("kept", "-ppd", "full.ppd", "-pm", "wp", "-hn", "localhost", "-fe")
        kept = (self.tool / "prnqtool").rename(self.tool / "kept")
        widths, before = {}, self.records()
        self.start("-FP", title="Features of queues")
        for name, act in (("stored", lambda: kept.rename(self.tool / "prnqtool")),
                          ("refused", lambda: (self.tool / "prnqtool").write_text("#!/bin/sh\nexit 1\n")),
                          ("missing-tool", (self.tool / "prnqtool").unlink)):
            act()
            self.key("Return")
            self.focused(title)
            self.key(*["shift+Tab"] * 3, "Return")
            widths[name] = self.message(name)
            self.answer("Return")
            self.focused("Features of queues")
        self.key("Return")
        self.focused(title)
        os.kill(int(self.display.read("pgrep", "-P", str(self.program.pid))), signal.SIGKILL)
        widths["killed"] = self.message("killed")
        self.answer("Return")
        self.assertEqual(widths["refused"], widths["killed"])
        self.assertLess(widths["stored"], widths["refused"])
        self.assertLess(widths["refused"], widths["missing-tool"])
        self.assertEqual({**before, "kept **": None}, {**self.records(), "kept **": None})
        self.focused("Features of queues")
        self.key("Return")
        self.focused(title)
        self.program.kill()
        self.display.gone(title)

    @unittest.skipIf(os.geteuid(), "queues are root's affair")
    def test_from_the_windows(self):
        """The wizard's button and the entry of the main window."""
        title = "Tarvo Printer Administration"
        window = self.start("-nd", program="prndeck", title=title)
        self.display.alt("s")
        self.display.menu(window)
        self.key("q")
        self.display.menu(window, 2)
        self.key("a")
        self.focused("Add Queue")
        (self.tool / "prnpnxxtty").rename(self.tool / "away")
        self.key(*["Tab"] * 9, "Return")
        self.message("missing")
        self.answer("Return")
        self.focused("Add Queue")
        (self.tool / "away").rename(self.tool / "prnpnxxtty")
        self.key("Return")
        self.focused("Features of Tarvo Generic")
        self.key(*["shift+Tab"] * 3, "Return")
        self.focused("Add Queue")
        self.assertIn("PageSize=A4\n", self.settings())
        self.key("Escape")
        self.focused(title)
        self.display.alt("p")
        self.display.menu(window)
        self.key("f")
        self.message("none-yet")
        self.answer("Return")
        self.focused("Features of queues")
        self.key("Escape")
        self.display.gone("Features of queues")

    @unittest.skipIf(os.geteuid(), "runs as somebody else")
    def test_what_the_list_of_queues_says(self):
        (self.tool / "db" / "que.xdb").unlink(missing_ok=True)
        self.start("-FP", title=MESSAGE, prefix=["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"])
        for picture in ("no-queues", "no-right"):
            self.message(picture)
            self.key("Return")
        self.display.gone(MESSAGE)
        self.focused("Features of queues")
        self.key("alt+F4")
        self.ends()


if __name__ == "__main__":
    unittest.main()
