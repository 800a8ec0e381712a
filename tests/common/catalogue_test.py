"""The shipped texts have no fault, and the checker that says so catches each kind of fault on damaged copies."""
import os
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

BUILD = Path(os.environ["PRN_BUILD"])
ENGLISH, GERMAN = "catalogue/en_US/", "catalogue/de_DE/"

Damage = namedtuple("Damage", "name file old new key what")
DAMAGES = [
    Damage("text missing", GERMAN + "CoreString.msg", "38 Druckweg\n", "", "25_38", "missing in this language"),
    Damage("text without English", GERMAN + "CoreString.msg", "38 Druckweg\n", "38 Druckweg\n999 Mehr\n", "25_999", "no English text"),
    Damage("key twice", GERMAN + "CoreString.msg", "38 Druckweg\n", "38 Druckweg\n38 Weg\n", "25_38", "twice"),
    Damage("argument lost", GERMAN + "CoreString.msg", "34 %s-Warte", "34 Warte", "25_34", 'arguments "", not "s"'),
    Damage("arguments in another order", GERMAN + "CoreString.msg", "Zeichen %c\\n%c wurde erwartet nach \"%s\"",
           "Zeichen %c\\nnach \"%s\" wurde %c erwartet", "25_1010", 'arguments "csc", not "ccs"'),
    Damage("argument of another type", ENGLISH + "CoreString.msg", "between %Lg to %Lg", "between %Lg to %i", "25_1024", '"Li", not "LL"'),
    Damage("argument that writes", ENGLISH + "CoreString.msg", "25 Upgrade Firmware", "25 Upgrade %n", "20_25", 'arguments "?"'),
    Damage("width from the arguments", ENGLISH + "CoreString.msg", "exit %s", "exit %*s", "25_1018", 'arguments "?"'),
    Damage("percent sign in a plain text", GERMAN + "CoreString.msg", "38 Druckweg", "38 100%% Druckweg", "25_38", "percent sign"),
    Damage("umlaut", GERMAN + "CoreString.msg", "48 Bannerseite", "48 B\xe4nnerseite", "25_48", "not ASCII"),
    Damage("menu text of 128", GERMAN + "CoreString.msg", "38 Druckweg\n", "38 %s\n" % ("x" * 128), "25_38", "127 characters"),
    Damage("column title too wide", ENGLISH + "CoreString.msg", "12 Address", "12 Address of the host", "20_12", "15 characters"),
    Damage("choice lost", GERMAN + "CoreString.msg", "253 _TCP/IP,_lokales", "253 _TCP/IP lokales", "25_253", "other entries"),
    Damage("choice without its mark", GERMAN + "CoreString.msg", "261 _Nein,_Ja", "261 _Nein,Ja", "25_261", "other entries"),
    Damage("heading of two lines", GERMAN + "CoreString.msg", "33 Warteschlangen dieses", "33 Warteschlangen\\ndieses", "25_33", "one line feed"),
    Damage("heading without line feed", ENGLISH + "CoreString.msg", "34 %s queues of this host:\\n", "34 %s queues of this host:", "25_34", "one line feed"),
    Damage("question with its mark", GERMAN + "CoreString.msg", "1104 %s loeschen", "1104 %s loeschen?", "25_1104", "question mark"),
    Damage("lead-in without its blank", GERMAN + "CoreString.msg", '"Drucker: "', "Drucker:", "25_58", "blanks or line feeds"),
    Damage("one letter for two keys", GERMAN + "CoreString.msg", "202 a Abbrechen", "202 s Schluss", "25_202", "letter of 25_201"),
    Damage("label without its letter", GERMAN + "CoreString.msg", "151 ~i Inhalt", "151 Inhalt", "20_151", "letter that chooses"),
    Damage("rule without a text", ENGLISH + "CoreString.msg", "$ rule 1,2: list", "$ rule 1-3,7: list", "22_7", "no text"),
    Damage("unknown word in a rule", ENGLISH + "CoreString.msg", "$ rule 80-85: menu", "$ rule 80-85: menue", "-", "unknown word"),
    Damage("unknown directive", ENGLISH + "CoreString.msg", "$set 30", "$sett 30", "-", "unknown directive"),
    Damage("neither text nor directive", ENGLISH + "CoreString.msg", "33 Queues", "Queues", "-", "neither a text"),
    Damage("record that does not end", ENGLISH + "PrtHelp.msg", "$$TonerSaving.redirect\n$end\n", "$$TonerSaving.redirect\n", "EconoMode", "no $end"),
    Damage("redirect to nowhere", GERMAN + "PrtHelp.msg", "$$TonerSaving.", "$$Toner.", "EconoMode", "is no topic"),
    Damage("topic in one language", GERMAN + "PrtHelp.msg", "$record Duplex", "$record Simplex", "Duplex", "not in all languages"),
    Damage("item without its end", ENGLISH + "PrtString.msg", "PORT1\n.eppditem\n", "PORT1\n", "tv_x150", "LprQue has no end mark"),
    Damage("item without a line", ENGLISH + "PrtString.msg", "TRUE\n.eppditem\n.sppditem NoPrinterReset\n\n",
           "TRUE\n.eppditem\n.sppditem NoPrinterReset\n", "tv_x150", "no line between"),
    Damage("text outside the items", ENGLISH + "PrtString.msg", "PORT1\n.eppditem\n", "PORT1\n.eppditem\nPORT2\n", "tv_x150", "outside the items"),
    Damage("other table in the catalogue", "trans.conf", " de_CH", " de_CH de_LU", "999_1", "normal form"),
    Damage("language without a catalogue", "trans.conf", "Default en_US", "fr_FR = fr_FR\nDefault en_US", "fr_FR", "among the catalogues"),
]

Asked = namedtuple("Asked", "name source keys")
ASKED = [
    Asked("literals", "void F() { NlsTtyMenuCvt(&t, 35); Nlsfprintf(stdout, h, 25, 1001); }", "25_35 25_1001"),
    Asked("a key of its own", 'char *F() { return NlsFetchString(h, nullptr, 0, NLS_FETCH_KEY, "25_1001"); }', "25_1001"),
    Asked("enumerators", "enum { A = 36, B };\nint F() { return Use(NlsText(h, NLS_TTY_SET, B)); }", "25_37"),
    Asked("one of two", "int F(int n) { int t = n > 1 ? 42 : 44; return Use(NlsText(h, 30, t)); }", "30_42 30_44"),
    Asked("consecutive items", "enum { ROWS = 2 };\nvoid F() { NlsTtyMenuItemCvt(items, 36, ROWS + 1); }", "25_36 25_37 25_38"),
    Asked("counter of a loop", "void F() { for (int i = 0; i < 3; i++) Use(NlsText(h, 20, 150 + i)); }", "20_150 20_151 20_152"),
    Asked("wrapper", "static int F(int n) { return Use(NlsText(h, 25, n)); }\nint G(int a) { return F(a ? 53 : 67); }", "25_53 25_67"),
    Asked("table of rows", "struct Run { int *items; int number; int count; };\nstatic const Run Runs[] = {{a, 80, 2}, {b, 50, 1}};\n"
          "void F() { for (const Run &run : Runs) NlsTtyMenuItemCvt(run.items, run.number, run.count); }", "25_80 25_81 25_50"),
    Asked("table with named fields", "struct Row { char c; int text; };\nstatic const Row Rows[] = {{.c = 'A', .text = 1020}, {.text = 1011}};\n"
          "void F(const Row *row) { Use(NlsText(h, 25, row->text)); }", "25_1020 25_1011"),
    Asked("comments and declarations", "// NlsText(h, 25, 1)\nstd::string NlsText(H *h, int set, int number);\nstatic const char *T = \"NlsText(h, 25, 2)\";", ""),
]

Wrong = namedtuple("Wrong", "name source key what")
WRONG = [
    Wrong("text that is nowhere", "void F() { NlsTtyMenuCvt(&t, 7777); }", "25_7777", "stands in no catalogue"),
    Wrong("number that can't be read", "void F() { Use(NlsText(h, 25, Number())); }", "NlsText", "can't be read"),
    Wrong("arguments of another type", 'void F() { Use(NlsFmt(NlsText(h, 25, 1003).c_str(), "ss", a, b)); }', "25_1003", '"ss"'),
    Wrong("argument left out of a call", "void F() { Nlssprintf(b, 9, h, 30, 22); }", "30_22", 'gets the arguments ""'),
    Wrong("arguments through a variable", 'void F() { std::string q = NlsText(h, 25, 1104); Use(NlsFmt(q.c_str(), "i", 1)); }', "25_1104", '"i"'),
    Wrong("item that no record holds", 'void F() { GetPpdKeyValue(file, "LprQueue", b, 9); }', "LprQueue", "stands in no record"),
    Wrong("list that is not there", 'void F() { FetchEngPrtStrDBValue("NoBanner", b, 9); }', "NoBanner", "stands in no record"),
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
        faults = checkcat.check(ROOT, False)
        self.assertEqual(faults, [])

    def test_every_text_is_used(self):
        if not (ROOT / "prndeck" / "Prd.cpp").exists():
            self.skipTest("the program that asks for the texts is not part of this tree")
        self.assertEqual(checkcat.check(ROOT, True), [])

    def test_damaged_texts(self):
        for case in DAMAGES:
            with self.subTest(case.name):
                path = self.root / "data" / case.file
                whole = path.read_text("latin-1")
                self.assertEqual(whole.count(case.old), 1, "the damage does not fit the file any more")
                path.write_text(whole.replace(case.old, case.new), "latin-1")
                self.expect(case, checkcat.check(self.root))
                path.write_text(whole, "latin-1")

    def test_missing_catalogue(self):
        (self.root / "data" / GERMAN / "PrtString.msg").unlink()
        self.assertIn("no such catalogue", checkcat.check(self.root)[0].what)

    def test_unused_text(self):
        self.put_source("void F() { NlsTtyMenuItemCvt(items, 80, 5); }")
        keys = [fault.key for fault in checkcat.check(self.root, True)]
        self.assertIn("25_85", keys)
        self.assertEqual([key for key in keys if key in ("25_80", "25_84", "25_64", "999_1")], [])

    def test_what_sources_ask_for(self):
        for case in ASKED:
            with self.subTest(case.name):
                self.put_source(case.source)
                faults = []
                uses = checkcat.Sources(self.root, lambda *fault: faults.append(fault)).uses()
                self.assertEqual(({use.key for use in uses}, faults), (set(case.keys.split()), []))

    def test_wrong_sources(self):
        for case in WRONG:
            with self.subTest(case.name):
                self.put_source(case.source)
                self.expect(case, checkcat.check(self.root))

    def test_command(self):
        command = [sys.executable, "-B", str(ROOT / "tools" / "checkcat.py"), str(self.root)]
        whole = subprocess.run(command, capture_output=True, text=True)
        self.assertEqual((whole.returncode, whole.stdout), (0, ""))
        path = self.root / "data" / GERMAN / "CoreString.msg"
        path.write_text(path.read_text("latin-1").replace("38 Druckweg\n", ""))
        damaged = subprocess.run(command, capture_output=True, text=True)
        self.assertEqual((damaged.returncode, damaged.stdout),
                         (1, "data/catalogue/de_DE/CoreString.msg:0: 25_38: is missing in this language\n"))

    def test_compiled_texts(self):
        """The databases that are shipped hold what the checker has read."""
        sources = sorted((ROOT / "data" / "catalogue").glob("*/*.msg"))
        self.assertGreaterEqual(len(sources), 6)
        for path in sources:
            database = BUILD / "stage" / "db" / path.parent.name / (path.stem + ".xdb")
            dump = self.root / "dump.msg"
            dump.write_bytes(subprocess.run([BUILD / "tools" / "mkcat", "-d", database], check=True, capture_output=True).stdout)
            compiled, source = (checkcat.Catalogue(p).texts for p in (dump, path))
            self.assertEqual({key: text.value for key, text in compiled.items()},
                             {key: text.value for key, text in source.items()}, database)


if __name__ == "__main__":
    unittest.main()
