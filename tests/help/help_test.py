"""The manual has no fault in any language, and the checker that says so catches faults on damaged copies."""
import os
import sys
import tempfile
import unittest
from collections import namedtuple
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
import checkhelp

HTMLTEXT = os.path.join(os.environ["PRN_BUILD"], "tools", "htmltext")
MANUALS = sorted((ROOT / "data" / "help").glob("QBguide-*.html"), key=lambda path: path.name != "QBguide-en_US.html")

SOUND = """<!-- for writers -->
<html page="contents"><head><title>Contents</title></head><body>
One text, &#38; <a href="#two">a link</a>&#32;behind it<br>
<a href="#here">An anchor</a><p>
<table border cellpadding=14><tr><td><a href="#two">Two</a></td><td>Cell</td></tr></table>
</body></html>
<html page="two"><head><title>Two</title></head><body>
<a name="here">Here</a><br><a href="#contents">Back</a></body></html>
"""

Damage = namedtuple("Damage", "name old new what")
DAMAGES = [
    Damage("umlaut", "One", "Gr\xfcn", "not printable ASCII"),
    Damage("unknown tag", "Cell", "<i>Cell</i>", "unknown tag i"),
    Damage("end of the file missing", "<br><a href=\"#contents\">Back</a></body></html>", "", "body is not closed"),
    Damage("line feed in a text", "One text", "One\ntext", "a line feed inside a text"),
    Damage("entity of other documents", "&#38;", "&amp;", "&amp; is no character"),
    Damage("dead link", "#two\">Two", "#tow\">Two", "nothing is called #tow"),
    Damage("link over two lines", ">Two</a>", ">Two<br>lines</a>", "a link goes on in a new line"),
    Damage("page that nothing leads to", "</body></html>\n<html page=\"two\"", "</body></html>\n<html page=\"alone\">"
           "<head></head><body>x</body></html>\n<html page=\"two\"", "no way leads here"),
    Damage("line of 80", "One text", "x" * 58, "80 columns"),
]
ONE_LANGUAGE = Damage("link in one language", "An anchor</a>", "An anchor</a>, <a href=\"#two\">more</a>", "links #two #here #two #two")


class Help(unittest.TestCase):
    def setUp(self):
        self.path = Path(self.enterContext(tempfile.TemporaryDirectory(prefix="prntest.")))

    def check(self, *texts):
        files = []
        for number, text in enumerate(texts):
            files.append(self.path / ("%d.html" % number))
            files[-1].write_bytes(text.encode("latin-1"))
        return [fault.what for fault in checkhelp.check(HTMLTEXT, files)]

    def damage(self, damage):
        damaged = SOUND.replace(damage.old, damage.new, 1)
        self.assertNotEqual(damaged, SOUND, "%s: the text to damage is gone" % damage.name)
        return damaged

    def test_manual(self):
        self.assertTrue(MANUALS and MANUALS[0].name == "QBguide-en_US.html")
        self.assertEqual(checkhelp.check(HTMLTEXT, MANUALS), [])

    def test_damages(self):
        self.assertEqual(self.check(SOUND, SOUND), [])
        for damage in DAMAGES:
            with self.subTest(damage.name):
                faults = self.check(self.damage(damage))
                self.assertTrue(any(damage.what in fault for fault in faults), faults)

    def test_translations(self):
        faults = self.check(SOUND, self.damage(ONE_LANGUAGE))
        self.assertTrue(any(ONE_LANGUAGE.what in fault for fault in faults), faults)


if __name__ == "__main__":
    unittest.main()
