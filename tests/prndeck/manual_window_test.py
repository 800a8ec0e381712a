"""The manual in its window: alone and over the other windows, by mouse and keys. Every page of the test's own manual holds a link to
a file that is not there: what the program says of it tells which page, and which line of it, is shown."""
import shutil
import sys
import time
import unittest

from window_test import TITLE, Deck
from xvfb import Display, missing, wait_for

if missing():
    print("skipped: " + missing())
    sys.exit(77)

HELP, DISCOVERY = "prndeck Help", "Printer Discovery"
CLOSE, CONTENTS, BACK = range(3)
TEXT_X, TEXT_Y, WIDTH, HEIGHT = 9, 9, 7, 14  # where the text begins in its window, and one character

MANUAL = ('<html page="one"><head><title>Start</title></head><body><a href="#two">Two</a><br><a href="#deep">Deep</a><br>'
          '<a href="gone-one.html">Gone</a><br><a href="#nowhere">Nowhere</a><br><a href="other.html">Other</a><br></body></html>'
          '<html page="two"><body><a href="#deep">Deep</a><br><a href="gone-two.html">Gone</a><br>' + "line<br>" * 100 +
          '<a name="deep"></a><a href="gone-deep.html">Gone</a><br>' + "line<br>" * 60 + "</body></html>")
OTHER = '<html><body><a href="gone-other.html">Gone</a><br>' + "line<br>" * 60 + '<a href="help/QBguide-en_US.html">Back</a></body></html>'

DOUBLE_CLICK = 0.25  # seconds: what comes sooner is a second click of the one before
# Pages that no writer of a manual makes, and whether they are shown.
HOSTILE = [
    ("unclosed", "<html><head><title>T<body><table><tr><td><ol><li><a href=#x<b>text<table border><td>" * 40 +
     "<table border width=100000 cellpadding=9999><tr><td>" * 500, True),
    ("1 MB in a line", "<html><body>" + "word " * 200000 + "x" * 1000000 + "<br></body></html>", True),
    ("characters", "<html><body>&nosuch; &#0; &#27;[2J &#999999999999; &#; &; &" + "a" * 5000 + "".join(map(chr, range(1, 256))) +
     "<br></body></html>", True),
    ("20,000 links in a loop", '<html page="x"><body>' + '<a href="#x">x</a> ' * 20000 + "</body></html>", True),
    ("no page", "%s%n text", False),
    ("nothing", "", False),
]


class Manual(unittest.TestCase):
    def setUp(self):
        self.display = Display(screen="1024x768x24", manager=True)
        self.addCleanup(self.display.close)

    def start(self, *words, manual=None, change=lambda tool: None, **more):
        def write(tool):
            change(tool)
            if manual is not None:
                tool.write("help/QBguide-en_US.html", manual)
                tool.write("other.html", OTHER)
        self.said = 0
        self.deck = Deck(self, self.display, *words, change=write, **more)

    def find_window(self):
        self.display.focused(HELP)
        self.window = self.display.window(HELP)
        bar, text = self.display.find_parts(self.window, 2)
        self.buttons = sorted(self.display.parts(bar.id), key=lambda part: part.x)
        self.text = max(self.display.parts(text.id), key=lambda part: part.width)

    def click(self, line, column=2, button=1):
        time.sleep(DOUBLE_CLICK)
        self.display.do("mousemove", self.text.x + TEXT_X + column * WIDTH + 3, self.text.y + TEXT_Y + line * HEIGHT + 7,
                        "click", button)

    def press(self, button):
        self.display.click(self.buttons[button])

    def says(self, name):
        """The next thing that the program says of a missing file."""
        self.said += 1
        lines = lambda: self.deck.printed().splitlines()
        self.deck.wait_for(lambda: len(lines()) >= self.said, "a message about " + name)
        self.assertEqual(lines()[self.said - 1:], ["Error in reading file gone-%s.html" % name])

    def seen(self, line, name):
        self.click(line)
        self.says(name)

    def test_links_by_mouse(self):
        self.start("-help", title=HELP, manual=MANUAL)
        self.find_window()
        for _ in range(3):  # Back leaves the cursor on the link: the next click does not move it
            self.click(2)
            self.seen(1, "two")
            self.press(BACK)
        self.click(2)
        self.click(0)
        self.seen(0, "deep")
        self.press(BACK)
        self.click(0)
        self.press(CONTENTS)
        for quiet in (lambda: self.press(BACK), lambda: self.click(5), lambda: self.click(20), lambda: self.click(2, 50),
                      lambda: self.click(2, button=2), lambda: self.click(2, button=3)):
            quiet()
            self.seen(4, "one")
        self.click(6)
        self.seen(0, "other")
        self.press(BACK)  # nothing was noted: as Contents
        self.seen(0, "other")
        self.press(CLOSE)
        self.deck.ends()

    def test_links_by_keys(self):
        self.start("-help", title=HELP, manual=MANUAL)
        self.find_window()
        self.display.do("mousemove", 1000, 700)
        self.display.key("Down", "Down", "Right", "Right", "Down", "Down")  # over the links, and on the third
        self.display.key("Return")
        self.says("one")
        self.display.key("Tab", "Tab", "Tab", "Return", "Tab", "Return")  # around the end, to the second page
        self.says("two")
        self.display.key("Next", "Next", "Prior", "BackSpace", "Next", "Prior", "ctrl+Home")  # follow nothing that they come to
        self.display.key("Tab", "Tab", "Return", "Return")
        self.says("deep")
        self.display.key("F1", "shift+Tab", "shift+Tab", "shift+Tab", "space")
        self.says("one")
        self.display.key("Escape")
        self.deck.ends()

    def test_the_window(self):
        self.start("-help", title=HELP)
        self.find_window()
        shown = self.display.read("xprop", "-id", self.window, "WM_NAME", "WM_ICON_NAME")
        self.assertEqual(shown.count('"prndeck Help"'), 2, shown)
        self.assertEqual((self.text.width - 2 * TEXT_X, self.text.height - 2 * TEXT_Y), (80 * WIDTH, 30 * HEIGHT))
        before = self.text
        self.display.do("windowsize", self.window, 800, 600)
        wait_for(lambda: self.find_window() or self.text.width > before.width and self.text.height > before.height, "more room")
        self.display.do("keydown", "Alt_L", "key", "F4", "keyup", "Alt_L")
        self.deck.ends()

    def test_pages_of_the_real_manual(self):
        for language, close in (("en_US", "c"), ("de_DE", "s")):
            self.start("-help", title=HELP, LANG=language)
            self.find_window()
            for page, keys in (("contents", ["Home"]), ("about", ["Tab", "Return"]), ("models", ["Tab", "Tab", "Return"])):
                self.display.key(*keys)
                self.display.keep("manual-%s-%s" % (page, language), self.window)
            self.display.alt(close)
            self.deck.ends()

    def comes_and_goes(self, behind, *keys):
        self.display.key(*keys) if keys else None
        self.find_window()
        self.click(2)
        self.seen(1, "two")
        self.display.key("Escape")
        self.display.gone(HELP)
        self.display.focused(behind)

    def test_from_every_window(self):
        self.start("-nd", manual=MANUAL)
        self.display.focused(TITLE)
        self.display.click(self.display.find_parts(self.deck.window, 6)[-5:][0])
        self.comes_and_goes(TITLE)
        self.display.alt("h")
        self.display.menu(self.deck.window)
        self.comes_and_goes(TITLE, "Return")
        self.comes_and_goes(TITLE, "F1")
        self.display.alt("d")
        self.display.focused("Display")
        self.comes_and_goes("Display", "F1")
        self.display.key("Escape")
        self.display.focused(TITLE)
        self.display.alt("s")
        self.display.menu(self.deck.window)
        self.display.key("p")
        self.display.focused(DISCOVERY)
        self.display.key("Tab")
        self.display.do("type", "10.1.2.3")
        self.display.key("Return")
        message = "Invalid subnet mask"
        self.display.focused(message)
        self.comes_and_goes(message, "F1")
        self.display.key("Right", "Right")
        self.comes_and_goes(message, "space")
        self.display.key("Escape")
        self.display.focused(DISCOVERY)
        row = self.display.parts(self.display.find_parts(self.display.window(DISCOVERY), 2)[-1].id)
        self.display.click(row[-1])
        self.comes_and_goes(DISCOVERY)
        self.assertEqual(self.deck.said(), "")

    def test_no_manual(self):
        self.start("-nd", change=lambda tool: shutil.rmtree(tool.path / "help"))
        self.display.focused(TITLE)
        self.display.key("F1")
        self.display.focused(HELP)  # a message of that title
        self.display.keep("manual-missing", self.display.window(HELP))
        self.display.key("F1", "Return")
        self.display.focused(TITLE)
        self.assertEqual(self.deck.printed(), ("Error in reading HTML file %s/help/QBguide-en_US.html\n" % self.deck.tool.path) * 2)

    def test_what_cannot_be_shown(self):
        for name, text, shown in HOSTILE:
            with self.subTest(name):
                self.start("-help", title=HELP if shown else None, manual=text)
                if not shown:
                    self.deck.ends()
                    self.assertEqual(self.deck.printed(), "Error in reading HTML file %s/help/QBguide-en_US.html\n" % self.deck.tool.path)
                    continue
                self.find_window()
                for line in range(6):
                    self.click(line)
                self.display.key("Tab", "Return", "Next", "Prior", "ctrl+End", "BackSpace", "F1", "Escape")
                self.deck.ends()


if __name__ == "__main__":
    unittest.main()
