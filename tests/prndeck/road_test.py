"""The whole road: the real program on a terminal, its queue tool, and a real scheduler."""
import os
import re
import shutil
import tempfile
import unittest

from cups import Scheduler
from fakeprinter import FakeLpd
from term import Term
from tooldir import read_records

STAGE = os.path.join(os.environ["PRN_BUILD"], "stage")
MENU = "Enter a selection or h for help: "
ADDRESS = "127.%d.%d.1" % (os.getpid() >> 8 & 255, os.getpid() & 255)  # beside others that run now
PAGE = b"(prndeck) pop showpage"
DOCUMENT = b"%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%Page: 1 1\n" + PAGE + b"\n%%EOF\n"


class Road(unittest.TestCase):
    def setUp(self):
        if os.geteuid() != 0:
            self.skipTest("the menus need root")
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        self.tool = tempfile.mkdtemp(prefix="prnroad.", dir="/tmp")
        self.addCleanup(shutil.rmtree, self.tool)
        os.chmod(self.tool, 0o755)
        self.path = os.path.join(self.tool, "deck")
        shutil.copytree(STAGE, self.path)
        self.cups = self.enterContext(Scheduler())
        self.env = self.cups.env(PRNQ_SPOOL=self.tool + "/spool", LANG="C")
        with open(self.tool + "/job.ps", "wb") as job:
            job.write(DOCUMENT)

    def records(self):
        return read_records(self.path + "/db/que.xdb")

    def start(self):
        self.term = self.enterContext(Term([self.path + "/prndeck", "-tty"], cwd=self.path, env=self.env))
        self.term.wait(MENU)

    def do(self, *lines):
        """Answers prompts one after the other, then the main menu; the queues that it shows."""
        for line, prompt in lines:
            self.term.line(line, prompt)
            menu = self.term.output[:self.term.seen].rsplit("\f", 1)[1]
            self.assertLess(menu.count("\n"), 24, "it runs off the top of the screen: " + menu)
        shown = self.term.output[:self.term.seen].rsplit("Queues of this host:\n", 1)[1]
        return set(re.findall(r"[\w-]+", shown.split("\n\n", 1)[0]))

    def agree(self, shown, *names):
        self.assertEqual((shown, set(self.cups.queues())), (set(names), set(names)))

    def add(self, name, *lines):
        return self.do(("1", MENU), ("1 " + name, MENU), ("5 " + ADDRESS, MENU), ("11 1", MENU), *lines, ("15", MENU))

    def test_road(self):
        """Adds, changes, copies and deletes; the host knows the same queues after each step."""
        self.printer = self.enterContext(FakeLpd(self.tool + "/got", 515, ADDRESS))
        self.start()
        self.agree(self.add("first"), "first")
        self.printed("first")
        self.agree(self.do(("2", "modify: "), ("first", MENU), ("6 2", MENU), ("7", MENU)), "first")
        self.assertEqual(self.cups.default(), "first")
        copied = self.do(("3", "copy: "), ("first", MENU), ("1 second", MENU), ("7", MENU))
        self.agree(copied, "first", "second")
        self.printed("second")
        self.agree(self.add("third", ("14 2", MENU)), "first", "second", "third")
        self.assertEqual(self.cups.default(), "third")
        gone = self.do(("4", "all queues: "), ("first third", "[y/n] "), ("y", MENU))
        self.agree(gone, "second")
        self.assertIsNone(self.cups.default())
        self.agree(self.do(("4", "all queues: "), ("-", "[y/n] "), ("y", MENU)))
        self.term.line("6")
        self.assertEqual(self.term.end(), 0)
        self.assertNotIn("ERROR", self.term.output)

    def printed(self, queue):
        done = self.cups.run("lp", "-s", "-d", queue, self.tool + "/job.ps")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        jobs = self.printer.wait(self.printer.count + 1)
        self.assertIn(PAGE, jobs[-1] if jobs else self.cups.log()[-2000:].encode())
        self.assertEqual(self.printer.problems, [])

    def duplex(self):
        return re.findall(r"\*DefaultDuplex: (\w+)", self.cups.ppd("first"))

    def test_features(self):
        """Features chosen in the dialogue are the queue's, on the host and in the next dialogue."""
        self.start()
        self.agree(self.add("first", ("12", MENU), ("6 2", MENU), ("11", MENU)), "first")
        self.assertEqual(self.duplex(), ["DuplexNoTumble"])
        self.do(("2", "modify: "), ("first", MENU), ("4", MENU), ("6 3", MENU), ("11", MENU), ("7", MENU))
        self.assertEqual(self.term.output.count("[2. Long Edge]"), 2)
        self.assertEqual(self.duplex(), ["DuplexTumble"])
        self.assertIn(b"Duplex=DuplexTumble\n", self.records()["first **"])
        self.term.line("6")
        self.assertEqual(self.term.end(), 0)

    def test_a_scheduler_that_is_gone_changes_nothing(self):
        self.start()
        self.add("kept")
        self.cups.stop()
        self.term.line("6")
        self.term.end()
        self.start()
        before = self.records()
        for line in ("1", "1 late", "5 " + ADDRESS):
            self.term.line(line, MENU)
        self.term.line("15", "Press <Return> to continue")
        self.assertEqual(self.do(("", MENU)), set())
        self.cups.start()
        self.assertEqual((self.records(), set(self.cups.queues())), (before, {"kept"}))


if __name__ == "__main__":
    unittest.main()
