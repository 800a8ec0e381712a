"""The recipes of the manual do what it says: taken from its pages as they are shown, and run by the shell."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from tooldir import read_records

BUILD = Path(os.environ["PRN_BUILD"])
HOSTS = r"\b(lab-prn|lab2-prn|srv)\b"  # of the manual; none of them is known here


def page(language, name):
    """The indented blocks of a page, without what explains a line at its right."""
    manual = BUILD / "stage" / "help" / ("QBguide-%s.html" % language)
    done = subprocess.run([BUILD / "tools" / "htmltext", manual, name], capture_output=True, encoding="latin-1",
                          check=True)
    blocks = re.findall(r"^  \S.*\n(?:  +\S.*\n)*", done.stdout, re.M)
    return [re.sub(r"(?<=\S) {3,}.*", "", re.sub(HOSTS, "localhost", block)) for block in blocks]


class Recipes(unittest.TestCase):
    def setUp(self):
        if os.geteuid() != 0:
            self.skipTest("the menus need root")
        scratch = tempfile.mkdtemp(prefix="prnrecipe.", dir="/tmp")
        self.addCleanup(shutil.rmtree, scratch)
        os.chmod(scratch, 0o755)
        self.path = Path(scratch, "deck")
        shutil.copytree(BUILD / "stage", self.path)
        self.env = {**os.environ, "PRNQ_STORE": "file", "PRNQ_SPOOL": scratch + "/spool", "PATH": "%s:%s" % (self.path, os.environ["PATH"])}
        (self.path / "printers.txt").write_text("m1 localhost\nm2 127.0.0.1\n")

    def shell(self, line):
        done = subprocess.run(["/bin/sh", "-c", line], cwd=self.path, env=self.env, stdin=subprocess.DEVNULL,
                              capture_output=True, encoding="latin-1", timeout=120)
        self.assertEqual((done.returncode, done.stderr), (0, ""), line)
        return done.stdout

    def expect(self, *names):
        self.assertEqual(sorted(self.shell("prnqtool -LQ").split()), sorted(name + ":" for name in names))

    def records(self):
        return read_records(str(self.path / "db" / "que.xdb"))

    def scenarios(self, language):
        add = page(language, "scadd")[0]
        self.shell(add)
        self.expect("lab")
        for recipe in page(language, "scdev"):
            self.shell(recipe)
        self.expect("lab", "far", "desk")
        default, copy = page(language, "scmod")
        self.shell(default)
        self.assertEqual(self.records()[" default"], b"lab\0")
        self.shell(copy)
        self.expect("lab", "far", "desk", "lab2")
        self.shell(page(language, "scmany")[0])
        self.expect("lab", "far", "desk", "lab2", "m1", "m2")
        both, missing = page(language, "scdel")
        self.shell(both)
        self.expect("far", "desk", "m1", "m2")
        self.shell(add)
        self.shell(missing.replace("...", "TERM=dumb prndeck -tty"))
        self.expect("far", "desk", "m1", "m2")

    def test_scenarios(self):
        for language in ("en_US", "de_DE"):
            with self.subTest(language):
                self.env["LANG"] = language
                self.scenarios(language)
                self.shell("prnqtool -x all")

    def test_first_queue(self):
        lines = page("en_US", "quick")[0].split("\n")
        typed = [line.strip() for line in lines[1:] if line.strip()] + ["6"]
        self.shell("printf '%%s\\n' '%s' | TERM=dumb %s" % ("' '".join(typed), lines[0]))
        self.expect("lab")

    def test_queue_tool(self):
        *lines, last = page("en_US", "toolhand")[0].strip().split("\n")
        for line in lines:
            self.shell(line.strip())
        self.expect("lab", "lab2")
        self.assertEqual(self.records()[" default"], b"lab\0")
        self.shell(last.strip())
        self.expect()


if __name__ == "__main__":
    unittest.main()
