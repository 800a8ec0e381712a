"""Letters beyond ASCII at the real menus: a terminal of UTF-8 gets and sends that, all else Latin-1."""
import unittest

import xdb
from decktool import DeckTool
from term import Term

MENU = "Hilfe: "  # the end of every menu


class Letters(unittest.TestCase):
    def setUp(self):
        self.tool = DeckTool()
        self.addCleanup(self.tool.close)
        self.tool.queues("q")
        self.tool.que({"q": "tv_a.ppd h1 lp 0", "q bsettings": ".h1 20 B\u00fcro"})

    def shown(self, *lines, **env):
        """What the terminal got behind the last of the lines, as bytes."""
        with Term([self.tool.program, "-tty"], cwd=str(self.tool.path), env={**self.tool.env(), "TERM": "dumb", **env}) as term:
            term.wait(MENU)
            for line, wait in lines:
                output = term.line(line + b"\n", wait)
            return output.encode("latin-1")

    def refusal(self, typed, **env):
        return self.shown((b"1", MENU), (b"1 B" + typed + b"ro", "<Return>"), **env)

    def test_refused_letters_are_shown_whole(self):
        for locale in ({"LANG": "de_DE.UTF-8"}, {"LANG": "de_DE", "LC_ALL": "de_DE.utf8"}, {"LANG": "de", "LC_CTYPE": "C.UTF-8"}):
            for letter in ("\u00fc", "\u00ff", "\u20ac", "\U0001d11e"):
                self.assertIn("'%s'" % letter, self.refusal(letter.encode(), **locale).decode(), locale)
        self.assertIn(b"'\xfc'", self.refusal(b"\xfc", LANG="de_DE"))
        self.assertIn(b"'\xfc'", self.refusal(b"\xfc", LANG="de_DE.UTF-8", LC_ALL="C"))
        self.assertIn("'\u00fc'".encode(), self.refusal(b"\xfc", LANG="de_DE.UTF-8"))  # a terminal that says otherwise

    def test_pipes_keep_their_bytes(self):
        _, out, _ = self.tool.run("-tty", script=b"1\n1 B\xfcro\n\n16\n6\n", LANG="de_DE.UTF-8")
        self.assertIn("'\xfc'", out)


if __name__ == "__main__":
    unittest.main()
