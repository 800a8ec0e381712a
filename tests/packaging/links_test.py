"""The tool directory of prndeck's siblings: the directory of the name they are called by, whatever that links to."""
import os
import shutil
import tempfile
import time
import unittest
from pathlib import Path

from fakeprinter import FakePrinter
from tooldir import PPD, ToolDir

SIBLINGS = ("prnqtool", "prnout", "prnrm", "prnpnxxtty")
TARGET = "-log LOG -ppd tv_a.ppd -pm wp -hn 127.0.0.1:%d"


class Links(unittest.TestCase):
    """A directory of links to programs that lie elsewhere, without models there."""

    def setUp(self):
        self.tool = ToolDir(*SIBLINGS)
        self.addCleanup(self.tool.__exit__)
        self.programs = Path(tempfile.mkdtemp(prefix="prnprog.", dir="/tmp"))
        self.addCleanup(shutil.rmtree, self.programs)
        for name in SIBLINGS:
            shutil.move(self.tool.path + "/" + name, self.programs)
            os.symlink(self.programs / name, self.tool.path + "/" + name)
        self.tool.env.update(PRNQ_STORE="file", PRNQ_SPOOL=self.tool.path + "/spool", PRNQ_RETRY="0.1")
        self.printer = FakePrinter(self.tool.path + "/got").__enter__()
        self.addCleanup(self.printer.__exit__, None, None, None)

    def add(self, name, command=None, **env):
        words = [self.tool.log if word == "LOG" else word for word in (TARGET % self.printer.port).split()]
        if command:
            self.tool.command = lambda program, *words: [command, *words]
        done = self.tool.run("prnqtool", name, *words, **env)
        self.tool.__dict__.pop("command", None)
        return done

    def test_all_happens_where_the_links_lie(self):
        done = self.add("q1")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("q1", self.tool.records())
        self.tool.write("file.txt", "one page\n")
        self.assertEqual(self.tool.run("prnout", "-dq1", self.tool.path + "/file.txt").stderr, "")
        self.assertEqual(self.printer.wait(1), [b"one page\n"])  # by the sender, which stays behind the call
        spool = Path(self.tool.path, "spool", os.path.basename(self.tool.path), "127.0.0.1:%d" % self.printer.port)
        end = time.monotonic() + 15
        while (spool / ".status").read_text() != "idle\n" and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual((spool / ".status").read_text(), "idle\n")
        self.assertEqual(self.tool.run("prnrm", "q1", "-").stderr, "")
        self.tool.run("prnpnxxtty", "-ppd", "tv_a.ppd")
        self.assertEqual(sorted(os.listdir(self.programs)), sorted(SIBLINGS))

    def test_bare_name_counts_for_where_path_has_it(self):
        path = "/nosuch:%s:%s" % (self.tool.path, os.environ["PATH"])
        os.environ["PATH"], before = path, os.environ["PATH"]  # which is where subprocess looks
        self.addCleanup(os.environ.__setitem__, "PATH", before)
        self.assertEqual(self.add("q2", "prnqtool", PATH=path).stderr, "")
        self.assertIn("q2", self.tool.records())

    def test_program_elsewhere_says_so_or_asks_the_environment(self):
        direct = str(self.programs / "prnqtool")
        for named in ("", "relative", "/nosuch", str(self.programs)):
            done = self.add("q3", direct, PRNDECK_DIR=named)
            self.assertEqual(done.returncode, 1)
            self.assertEqual(done.stderr, "prnqtool: %s is no tool directory: start the program by its path there, "
                             "or name it in PRNDECK_DIR\n" % self.programs)
        self.assertEqual(sorted(os.listdir(self.programs)), sorted(SIBLINGS))
        self.assertEqual(self.add("q3", direct, PRNDECK_DIR=self.tool.path + "//").stderr, "")
        self.assertIn("q3", self.tool.records())
        # A name that leads to a tool directory counts for more than the environment.
        other = Path(self.tool.path, "other")
        (other / "ppd").mkdir(parents=True)
        (other / "ppd/tv_a.ppd").write_text(PPD.format(model="A"))
        self.assertEqual(self.add("q4", PRNDECK_DIR=str(other)).stderr, "")
        self.assertIn("q4", self.tool.records())
        self.assertEqual(os.listdir(other), ["ppd"])


if __name__ == "__main__":
    unittest.main()
