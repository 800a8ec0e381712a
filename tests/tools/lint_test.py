#!/usr/bin/env python3
"""The tree keeps its house rules, and tools/lint.py tells each kind of breach."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]

HOUSE = {
    "CMakeLists.txt": "add_room(ground low)\nadd_room(upper high ground)\n",
    "CONTRIBUTING.md": "Floors of low/, lowest first:\n```\nBase\nMid Twin\nTop\n```\n"
                       "Upwards in low/:\n```\nMid -> Top # it asks back\n```\n",
    "low/Base.cpp": "// ORDER Rows\n",
    "low/Mid.cpp": '#include "low/Base.h"\n#include "low/Top.h"\n#include "low/Twin.h"\n// ORDER Rows\n',
    "high/Use.cpp": '#include "low/Top.h"\nvoid Use(int n) {\n    switch (n) {\n' +
                    "".join(f"    case {n}: Do({n}); break;\n" for n in range(80)) + "    }\n}\n",
    "tests/UseTest.cpp": '#include "high/Use.h"\n',
}

# what is written, and the complaint
BREACHES = {
    "a room above": ("low/Base.h", '#include "high/Use.h"\n', "low/Base.h:1: includes high/Use.h: low/ does not stand on high/"),
    "a floor above": ("low/Base.h", '\n#include "low/Mid.h"\n', "low/Base.h:2: includes Mid, which lies on a floor above Base"),
    "no floor": ("low/New.cpp", '#include "low/Base.h"\n', "low/New.cpp:1: New has no floor in CONTRIBUTING.md"),
    "the queue tool": ("siblings/Tool.cpp", '#include "high/Use.h"\n',
                       "siblings/Tool.cpp:1: includes high/Use.h: siblings/ does not stand on high/"),
    "windows of a sibling": ("siblings/prnpnxxtty/Tool.cpp", '#include "siblings/prnpnxxtty/window/Window.h"\n',
                             "siblings/prnpnxxtty/Tool.cpp:1: includes siblings/prnpnxxtty/window/Window.h: siblings/ does not stand on "
                             "siblings/prnpnxxtty/window/"),
    "a test": ("high/Use.h", '#include "tests/lib/Term.h"\n',
               "high/Use.h:1: includes tests/lib/Term.h of a folder that nothing stands on"),
    "a lone tag": ("low/Base.h", "int a; // ORDER Alone\n", "low/Base.h:1: ORDER Alone stands nowhere else"),
    "a broken tag": ("low/Base.h", "// ORDER\n// Rows\n", "low/Base.h:1: ORDER without its name on the same line"),
    "a long function": ("high/Long.cpp", "int Long() {\n" + "    Do();\n" * 60 + "}\n", "high/Long.cpp:1: a function of 62 lines"),
    "a bare set": ("high/Text.cpp", "    Show(NlsText(pDrvCoreDB, 22, TEXT_NAME));\n",
                   "high/Text.cpp:1: a set of the catalogue without its name"),
}


def lint(*words):
    run = subprocess.run([sys.executable, "-B", TOP / "tools/lint.py", *words], capture_output=True, text=True)
    return run.returncode, run.stdout


class LintTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.house = Path(scratch.name)
        for name, text in HOUSE.items():
            self.put(name, text)

    def put(self, name, text):
        (self.house / name).parent.mkdir(exist_ok=True, parents=True)
        (self.house / name).write_text(text)

    def test_the_tree(self):
        self.assertEqual(lint(), (0, "nothing found\n"))

    def test_layout(self):
        status, text = lint("--format")
        if status == 77:
            self.skipTest(text.strip().removeprefix("skipped: "))
        self.assertEqual((status, text), (0, "nothing found\n"))

    def test_breaches(self):
        self.assertEqual(lint(self.house), (0, "nothing found\n"))
        for what, (name, text, complaint) in BREACHES.items():
            with self.subTest(what):
                self.put(name, text)
                self.assertEqual(lint(self.house), (1, complaint + "\n"))
                (self.house / name).unlink()


if __name__ == "__main__":
    unittest.main()
