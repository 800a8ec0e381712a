"""The shipped texts have no fault, and the checker that says so catches faults on damaged copies."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from collections import namedtuple
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
import checkcat

ENGLISH, GERMAN = "catalogue/en_US/", "catalogue/de_DE/"

Damage = namedtuple("Damage", "name file old new key what")
DAMAGES = [
    Damage("text missing", GERMAN + "CoreString.msg", "38 Druckweg\n", "", "25_38", "missing in this language"),
    Damage("arguments in another order", GERMAN + "CoreString.msg", "Zeichen %c\\n%c wurde erwartet nach \"%s\"",
           "Zeichen %c\\nnach \"%s\" wurde %c erwartet", "25_1010", 'arguments "csc", not "ccs"'),
    Damage("argument that writes", ENGLISH + "CoreString.msg", "25 Upgrade Firmware", "25 Upgrade %n", "20_25", 'arguments "?"'),
    Damage("redirect to nowhere", GERMAN + "PrtHelp.msg", "$$TonerSaving.", "$$Toner.", "EconoMode", "is no topic"),
]

Wrong = namedtuple("Wrong", "name source key what")
WRONG = [
    Wrong("text that is nowhere", "void F() { NlsTtyMenuCvt(&t, 7777); }", "25_7777", "stands in no catalogue"),
    Wrong("sentence with another's number", 'inline constexpr Sentence Say = {36, "the host is empty"};', "40_36",
          "the menu's row has \"the host is empty\""),
    Wrong("row with another's number", 'TextMenuItem T[] = {{.text = "Apply", .nlsText = 51}, {}};', "25_51", "the menu's row has \"Apply\""),
    Wrong("row with a number that is nowhere", 'TextMenuItem T[] = {{.text = "Apply", .nlsText = 7777}};', "25_7777", "stands in no catalogue"),
    Wrong("row with another's choices", 'char Two[] = "_No,_Yes"; TextMenuItem T[] = {{.choices = Two, .nlsChoices = 258}};', "25_258", '"_No,_Yes" beside'),
    Wrong("arguments of another type", 'void F() { Use(NlsFmt(NlsText(h, 25, 1003).c_str(), "ss", a, b)); }', "25_1003", '"ss"'),
]


class CatalogueTest(unittest.TestCase):
    def setUp(self):
        self.root = Path(tempfile.mkdtemp(prefix="catalogue"))
        self.addCleanup(shutil.rmtree, self.root)
        shutil.copytree(ROOT / "data", self.root / "data")

    def put_source(self, text):
        (self.root / "common").mkdir(exist_ok=True)
        (self.root / "common" / "Some.h").write_text("enum { NLS_TTY_SET = 25 };\n")
        (self.root / "common" / "Some.cpp").write_text(text)

    def expect(self, case, faults):
        shown = "".join("\n  %s:%d: %s: %s" % fault for fault in faults)
        found = any(fault.key == case.key and case.what in fault.what for fault in faults)
        self.assertTrue(found, "wanted %s: ...%s..., got:%s" % (case.key, case.what, shown or " nothing"))

    def test_shipped_texts(self):
        shown = subprocess.run([sys.executable, "-B", ROOT / "tools" / "checkcat.py", "--unused"], capture_output=True, text=True)
        self.assertEqual((shown.returncode, shown.stdout), (0, ""))

    def test_damaged_texts(self):
        for case in DAMAGES:
            with self.subTest(case.name):
                path = self.root / "data" / case.file
                whole = path.read_text("latin-1")
                self.assertEqual(whole.count(case.old), 1, "the damage does not fit the file any more")
                path.write_text(whole.replace(case.old, case.new), "latin-1")
                self.expect(case, checkcat.check(self.root))
                path.write_text(whole, "latin-1")

    def test_wrong_sources(self):
        for case in WRONG:
            with self.subTest(case.name):
                self.put_source(case.source)
                self.expect(case, checkcat.check(self.root))


if __name__ == "__main__":
    unittest.main()
