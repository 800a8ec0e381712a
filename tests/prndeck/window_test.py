"""The windows of the real program, by mouse and keys as a user has them, with and without a window manager. No run may print
a warning."""
import os
import shutil
import subprocess
import sys
import unittest

import xdb
from decktool import DeckTool, BUILD
from xvfb import Display, missing, wait_for

if missing():
    print("skipped: " + missing())
    sys.exit(77)

ROOT = os.geteuid() == 0
TITLE = "Tarvo Printer Administration"
SETUP, PRINTER, DISPLAY, HELP, EXIT = 1, 2, 3, 4, 6  # entries of the menu bar; an empty one comes first
MENUS = [(SETUP, "s", 3), (PRINTER, "p", 8), (HELP, "h", 2)]  # with their letters and numbers of entries


class Deck:
    """A run of the program in a tool directory of its own, until it ends or the test does."""

    def __init__(self, test, display, *words, title=TITLE, prefix=(), change=lambda tool: None, tool=None, **env):
        self.test, self.display, self.tool = test, display, tool or DeckTool()
        if not tool:  # none of an earlier run
            test.addCleanup(self.tool.close)
            for name in ("icon", "help"):
                shutil.copytree(BUILD / "stage" / name, self.tool.path / name)
            self.tool.path.chmod(0o755)
            change(self.tool)
        self.errors, output = open(self.tool.path / "errors", "w+b"), open(self.tool.path / "output", "wb")
        environment = {k: v for k, v in display.env().items() if k not in ("LANG", "LC_ALL")}
        self.program = subprocess.Popen([*prefix, self.tool.program, *words], cwd=self.tool.path, stdin=subprocess.DEVNULL,
                                        stdout=output, stderr=self.errors, env={**environment, **env})
        output.close()
        test.addCleanup(self.stop)
        self.window = self.wait_for(lambda: display.windows(title), "the window " + title)[0] if title else None

    def stop(self):
        self.program.kill()
        self.program.wait()
        self.errors.close()

    def said(self):
        self.errors.seek(0)
        return self.errors.read().decode("latin-1")

    def printed(self):
        return self.tool.read("output")

    def wait_for(self, condition, what):
        """As the display's, but a program that ends is not waited for."""
        def look():
            self.test.assertIsNone(self.program.poll(), "ended while the test waited for %s: %s" % (what, self.said()[-2000:]))
            return condition()
        return wait_for(look, what)

    def ends(self, status=0, said=""):
        self.test.assertEqual((self.program.wait(60), self.said()), (status, said))

    def bar(self):
        """The entries of the menu bar."""
        return sorted(self.display.parts(self.display.find_parts(self.window, 6)[1].id), key=lambda part: part.x)

    def press_exit(self):
        self.display.click(self.bar()[EXIT])
        self.ends()


class Window(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = Display()
        cls.addClassCleanup(cls.display.close)

    def run_deck(self, *words, **more):
        return Deck(self, self.display, "-nd", *words, **more)

    def test_menus_by_mouse(self):
        deck = self.run_deck()
        self.display.keep("main", deck.window)
        for entry, _, count in MENUS:
            self.display.click(deck.bar()[entry])
            menu = self.display.menu(deck.window)
            self.assertEqual(len(menu), count)
            if entry == SETUP:  # its first entry opens a menu beside it
                self.display.click(menu[0])
                self.assertEqual(len(self.display.menu(deck.window, 2)), 4)
            self.display.keep("menu-%i" % entry)
            self.display.do("mousemove", 5, 1000, "click", 1)
            wait_for(lambda: not self.display.menus(deck.window), "the menu to go")
        deck.press_exit()

    def test_clicks_faster_than_menus(self):
        deck = self.run_deck()
        setup = deck.bar()[SETUP]
        for _ in range(3):
            self.display.do("mousemove", setup.x + 5, setup.y + 5, *["click", "1", "click", "3", "click", "2"] * 7)
        self.display.do("mousemove", 5, 1000, "click", 1)
        wait_for(lambda: not self.display.menus(deck.window), "the menu to go")
        deck.press_exit()

    def test_menus_by_their_letters(self):
        deck = self.run_deck()
        self.display.point(deck.window)
        for _, letter, count in MENUS:
            self.display.alt(letter)
            self.assertEqual(len(self.display.menu(deck.window)), count)
            self.display.alt(letter)  # once more closes it
            wait_for(lambda: not self.display.menus(deck.window), "the menu to go")
        self.display.alt("h")
        self.display.menu(deck.window)
        self.display.key("a")
        self.push(self.display.window("About prndeck"), 1)
        self.display.gone("About prndeck")
        self.display.point(deck.window)
        self.display.alt("e")
        deck.ends()

    def push(self, window, button):
        """Presses a button of a dialog's last row; its logo comes first."""
        row = self.display.find_parts(window, 2)[-1]
        self.display.click(sorted(self.display.parts(row.id), key=lambda part: part.x)[button])

    def test_about_and_display(self):
        deck = self.run_deck()
        self.display.click(deck.bar()[HELP])
        self.display.click(self.display.menu(deck.window)[1])
        about = self.display.window("About prndeck")
        self.display.keep("about", about)
        self.push(about, 1)
        self.display.gone("About prndeck")
        for button in (1, 2):  # OK, Cancel
            self.display.click(deck.bar()[DISPLAY])
            setup = self.display.window("Display")
            self.display.keep("display", setup)
            self.push(setup, 3)  # Apply leaves it open
            self.push(setup, button)
            self.display.gone("Display")
        deck.press_exit()

    def test_german(self):
        deck = self.run_deck(title="Tarvo-Druckerverwaltung", LANG="de_DE.UTF-8")
        self.display.keep("main-de", deck.window)
        self.display.click(deck.bar()[HELP])
        self.display.click(self.display.menu(deck.window)[1])
        self.display.keep("about-de", self.display.window("\xdcber prndeck"))

    @unittest.skipUnless(ROOT and shutil.which("setpriv"), "needs root and setpriv")
    def test_not_root(self):
        nobody = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")
        if subprocess.run([*nobody, BUILD / "prndeck", "-v"], capture_output=True).returncode != 0:
            self.skipTest("another user can't reach the build")
        deck = self.run_deck(prefix=nobody)
        self.display.keep("main-not-root", deck.window)
        self.display.click(deck.bar()[EXIT])
        deck.ends(said="ERROR: Can't write to IPDisc")  # the subnets that a first start finds

    def test_what_is_missing(self):
        def no_icons(tool):
            shutil.rmtree(tool.path / "icon")

        def no_fonts(tool):
            xdb.write(tool.path / "db" / "en_US" / "PrtString.xdb",
                      [(b"PrdGuiFontDef%i" % i, b"no-such-font\0") for i in range(1, 6)], header=True)

        def no_language(tool):
            shutil.rmtree(tool.path / "db")

        for name, change, title in (("icons", no_icons, TITLE), ("fonts", no_fonts, TITLE), ("texts", no_language, "1_1")):
            with self.subTest(name):
                deck = self.run_deck(change=change, title=title)
                self.display.keep("without-" + name, deck.window)
                self.display.click(deck.bar()[EXIT])
                self.assertEqual(deck.program.wait(60), 0)
                lines = deck.said().splitlines()
                self.assertTrue(len(lines) == (6 if name == "texts" else 0) and
                                all(line.startswith("ERROR:  Could not open English database") for line in lines), lines)


class OtherDisplays(unittest.TestCase):
    def test_by_keys_alone(self):
        with Display(manager=True) as display:
            deck = Deck(self, display, "-nd")
            display.do("mousemove", 1270, 1000)
            display.focused(TITLE)
            display.key("F10", "Right", "Right", "Right", "Down", "Down", "Return")
            display.focused("About prndeck")
            display.key("Escape")
            display.focused(TITLE)
            display.alt("s")
            display.menu(deck.window)
            display.key("Return")
            display.menu(deck.window, 2)
            display.key("Escape", "Escape")
            wait_for(lambda: not display.menus(deck.window), "the menus to go")
            display.alt("d")
            display.focused("Display")
            display.pick(deck.window, "Down")  # the other first column
            display.key("Return")
            display.focused(TITLE)
            display.alt("p")
            display.menu(deck.window)
            display.key("b")
            display.focused("Web Browser")
            display.key("ctrl+a", "ctrl+x", "ctrl+b", "ctrl+v")  # cut and pasted, and a letter with no meaning
            display.do("type", " -x ")
            display.key("ctrl+a", "ctrl+c", "ctrl+v", "ctrl+v", "Return")
            display.focused(TITLE)
            self.assertEqual(dict(xdb.read(deck.tool.path / "db" / "IPDisc.xdb"))[b"FavBrowser"], b"netscape -x netscape -x \0")
            display.alt("e")
            deck.ends()

    def test_closed_by_the_window_manager(self):
        with Display(manager=True) as display:
            deck = Deck(self, display, "-nd")
            display.do("windowfocus", "--sync", deck.window)
            display.do("keydown", "Alt_L", "key", "F4", "keyup", "Alt_L")
            deck.ends()

    def test_taller_and_smaller(self):
        with Display(manager=True) as display:
            deck = Deck(self, display, "-nd")
            rows = lambda: display.find_parts(deck.window, 6)  # from the banner to the buttons
            form = lambda: display.parts(deck.window)[0]

            def below():  # from the end of the list to the panel of the printer
                body = display.find_parts(rows()[2].id, 2)[-1]
                return rows()[3].y - body.y - body.height

            before, size, gap = rows(), form(), below()
            display.do("windowsize", "--sync", deck.window, size.width + 100, size.height + 200)
            wait_for(lambda: form().height == size.height + 200, "the taller window")
            grown = {part.id: part.height for part in rows()}
            display.keep("main-taller", deck.window)
            self.assertEqual(below(), gap, "the list fills its row")
            for place, part in enumerate(before):
                self.assertEqual(grown[part.id] - part.height, 200 if place == 2 else 0, place)
            display.do("windowsize", deck.window, 100, 100)
            wait_for(lambda: form()[3:] == size[3:], "the least size")

    def test_eight_planes(self):
        with Display(screen="1024x768x8") as display:
            deck = Deck(self, display, "-nd")
            display.keep("main-8-planes", deck.window)
            deck.press_exit()


if __name__ == "__main__":
    unittest.main()
