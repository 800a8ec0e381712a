"""The manual at the terminal: opened from the main menu, walked through by its links, and left again."""
import os
import sys
import unittest

from decktool import DeckTool
from term import Term

MENU = "Enter a selection or h for help: "
HELP = "Enter a selection: "
TITLE = "                           Tarvo Administration Help\n\n"
KEYS = "\n e) Exit Help             c) Contents              b) Back                 \n" + HELP

MANUAL = ('<html page="one"><head><title>Start</title></head><body>See <a href="#many">Many</a> <br>'
          '<a href="gone.html">Gone</a><a href="#two"></a><br></body></html>'
          '<html page="two"><body><a name="two">own name</a>Nothing to follow here.</body></html>'
          '<html page="many"><body>' + "".join(f'<a href="#two">L{n}</a><br>' for n in range(1, 62)) + "</body></html>")

ONE = ("                                     Start\n\nSee <Many>\n<Gone><>\n \n 1) Many \n 2) Gone \n 3)  \n")
TWO = "own nameNothing to follow here.\n \n"
MANY = ("".join(f"<L{n}>\n" for n in range(1, 62)) + " \n" + "".join(f"{n:2}) L{n} \n" for n in range(1, 62)))


class Help(unittest.TestCase):
    def setUp(self):
        self.tool = DeckTool()
        self.addCleanup(self.tool.close)
        self.tool.queues()
        (self.tool.path / "help").mkdir()

    def start(self):
        term = Term([self.tool.program, "-tty"], cwd=self.tool.path, env={"LANG": "C"})
        self.addCleanup(term.close)
        term.wait(MENU)
        return term

    def test_pages_links_and_the_way_back(self):
        self.tool.write("help/QBguide-en_US.html", MANUAL)
        term = self.start()
        for twice in range(2):
            for key, page in (("h", ONE), ("b", ONE), ("c", ONE), ("h", ONE), ("s", ONE), ("4", ONE), ("1", MANY),
                              ("61", TWO), ("1", TWO), ("b", MANY), ("b", ONE), ("3", TWO), ("c", ONE), ("b", ONE)):
                shown = term.line(key, HELP)
                self.assertEqual(shown[shown.find(TITLE):], TITLE + page + KEYS, (twice, key))
            self.assertIn("Error in reading file gone.html\n", term.line("2", HELP))
            self.assertIn("6) Exit", term.line("e", MENU))
        term.line("6")
        self.assertEqual(term.end(), 0)

    def test_no_manual(self):
        term = self.start()
        self.assertIn("Error in reading HTML file " + str(self.tool.path / "help/QBguide-en_US.html"),
                      term.line("h", MENU))

    def test_end_of_input(self):
        self.tool.write("help/QBguide-en_US.html", MANUAL)
        term = self.start()
        term.line("h", HELP)
        term.eof()
        self.assertEqual(term.end(), 1)


if __name__ == "__main__":
    if os.geteuid() != 0:
        print("skipped: the terminal menus need root")
        sys.exit(77)
    unittest.main()
