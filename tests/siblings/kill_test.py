"""The queue tool, prnout, prnrm, the sender and the record layer, ended in front of any call that changes something: what is
kept is whole, the same line run again brings what was wanted, and nothing is left over.

A sample of the calls of each line, unless PRN_KILL=all is in the environment: then every one of them.
"""
import os
import shutil
import signal
import sys
import unittest
from collections import Counter

import killer
import xdb
from cups import Scheduler
from fakeprinter import FakeLpd, FakePrinter, free_port
from spooltool import SpoolTool, until
from tooldir import ToolDir, read_records

ALL = os.environ.get("PRN_KILL") == "all"
RECORDS = os.path.join(os.environ["PRN_BUILD"], "tests", "records")
TAIL = "-ppd tv_a.ppd -pm wp -hn h2 -psqn lp -bp -bps titles -fe -fs settings"


class Kills(SpoolTool):
    """What holds for every line: prepare() makes the state that it meets, then it is ended once a round."""

    counted = Counter()  # rounds by what was run

    def setUp(self):
        if killer.missing():
            self.skipTest(killer.missing())
        self.tool = self.enterContext(ToolDir("prnqtool", "prnout", "prnrm"))
        self.tool.env.update(PRNQ_STORE="file", PRNQ_SPOOL=self.tool.path + "/spool", PRNQ_RETRY="0.05")
        self.tool.write("titles", ".h1 20 Room\n")
        self.tool.write("settings", "PageSize=A4\n")

    @classmethod
    def tearDownClass(cls):
        for what, rounds in sorted(cls.counted.items()):
            print("%4d %s" % (rounds, what), file=sys.stderr)
        cls.counted.clear()

    def ready(self):
        """In front of each end, once the state that it meets is made."""

    def ended(self):
        """Behind it."""

    def keep(self):
        """Keeps the records and the spool as they are now."""
        for name in ("db", "spool"):
            os.makedirs(self.tool.path + "/" + name, exist_ok=True)
            shutil.copytree(self.tool.path + "/" + name, self.tool.path + "/kept/" + name)

    def back(self):
        for name in ("db", "spool"):
            for entry in os.scandir(self.tool.path + "/" + name):
                shutil.rmtree(entry) if entry.is_dir() else os.unlink(entry)
            shutil.copytree(self.tool.path + "/kept/" + name, self.tool.path + "/" + name, dirs_exist_ok=True)

    def rounds(self, argv, prepare, check, sample, stops=False):
        """check(calls, at) is run behind each end, and must bring the state back that prepare() starts from. What stops of itself at
        a signal, with a part of its work, is only killed."""
        prepare()
        calls = killer.run(argv, self.tool.env).calls
        self.assertGreater(len(calls), 5)
        step = 1 if ALL else max(1, len(calls) // sample)
        gentle = [] if stops else [signal.SIGTERM, signal.SIGHUP]
        numbers = [signal.SIGKILL] + (gentle if ALL else [])
        for at in range(1, len(calls) + 1, step):
            for number in numbers if ALL else [[signal.SIGKILL, *gentle][max(at // step % 6 - 3, 0) if gentle else 0]]:
                with self.subTest(" ".join(argv[1:4]), at=at, call=calls[at - 1], signal=number.name):
                    prepare()
                    self.ready()
                    done = killer.run(argv, self.tool.env, at, number)
                    self.ended()
                    # One call of a wait more or less, and the last of them aren't reached.
                    self.assertTrue(done.status == -number or number != signal.SIGKILL or len(done.calls) < at, done)
                    self.counted[self.id().split(".", 1)[1]] += 1
                    check(calls, at)


class Records(Kills, unittest.TestCase):
    """The calls of the record layer, each by itself."""

    LINES = ["put one B", "put new B", "delete one x", "prefix o x", "copy one new", "image-put one B", "image-delete two x",
             "image-prefix t x"]

    def test_record_layer(self):
        path = self.tool.path + "/db/que.xdb"
        old = {key: b"A" * 30000 for key in ("one", "two", "other")}
        for line in self.LINES:
            argv = [RECORDS, self.tool.path, *line.split()]
            prepare = lambda: xdb.write(path, [(key.encode(), data) for key, data in old.items()])
            prepare()
            self.assertEqual(killer.run(argv, self.tool.env).status, 0)
            new = read_records(path)

            def check(*_):
                state = read_records(path)
                self.assertIn(state, (old, new))
                if state == old:
                    self.assertEqual(killer.run(argv, self.tool.env).status, 0)
                self.assertEqual((read_records(path), os.listdir(self.tool.path + "/db")), (new, ["que.xdb"]))

            self.rounds(argv, prepare, check, 4)


class OwnStore(Kills, unittest.TestCase):
    LINES = ["new %s -d" % TAIL, "q " + TAIL, "q -mq -ui -d -bp -bps titles", "new -cl keep -pm wp -hn h3", "-xl q other", "-x all",
             "-dbps titles", "-xdbps", "--batch BATCH"]
    BATCH = ["new %s -d" % TAIL, "q " + TAIL, "other -mq -ui", "copy -cl keep -pm wp -hn h3", "-dbps titles"]

    def test_queue_tool(self):
        self.tool.write("batch", "\n".join(self.BATCH))
        self.add("keep", "-pm wp -hn h1 -d -bp -bps titles")
        port = free_port()
        for name in ("q", "other"):
            self.add(name, "-pm wp -hn 127.0.0.1:%d" % port)
        self.tool.write("job", "job")
        self.assertEqual(self.tool.run("prnout", "-dq", self.tool.path + "/job").returncode, 0)
        self.assertTrue(until(lambda: self.detached()))
        for pid in self.detached():
            os.kill(pid, signal.SIGKILL)
        self.keep()
        jobs = lambda: len(self.names("127.0.0.1:%d" % port))
        before = self.tool.image()
        for line in [line.replace("BATCH", self.tool.path + "/batch") for line in self.LINES]:
            argv = self.tool.command("prnqtool", *line.split())
            self.back()
            self.assertEqual(killer.run(argv, self.tool.env).status, 0)
            after, left = self.tool.image(), jobs()
            records = self.tool.records()

            def check(*_):
                image = self.tool.image()
                for old, now, new in zip(before, image, after):
                    self.assertIn(now, (old, new))
                if image == before:
                    self.assertEqual(jobs(), 1)
                self.tool_run("-LQ")
                if image[0] != after[0]:
                    self.tool_run(line)
                elif self.tool.run("prnqtool", *line.split()).returncode:
                    self.tool_run("q " + TAIL.replace("h2", "127.0.0.1:%d" % port))  # what a removal left goes with a new queue
                    self.assertEqual(jobs(), left)
                    self.tool_run("q -x")
                self.assertEqual((self.tool.records(), jobs()), (records, left))
                self.assertEqual([name for name in os.listdir(self.tool.path + "/db") if name.endswith("_new")], [])

            self.rounds(argv, self.back, check, 3, stops="--batch" in line)


class Jobs(Kills, unittest.TestCase):
    """Of the own store. One job waits as prnout is ended, two wait as the sender or prnrm is."""

    UNKNOWN = ("unlink", "shutdown", "write")  # calls in front of which nothing can tell that a job was printed

    def waiting(self, port, target):
        """A queue with two jobs that nobody sends."""
        self.add("q", target % port)
        self.here = "127.0.0.1:%d" % port
        for number in (1, 2):
            self.tool.write("job", "job")
            self.assertEqual(self.tool.run("prnout", "-dq", self.tool.path + "/job").returncode, 0)
        self.assertTrue(until(lambda: self.detached()))
        for pid in self.detached():
            os.kill(pid, signal.SIGKILL)
        self.assertEqual(self.names(self.here), ["A00001", "A00002"])
        self.keep()
        self.round = 0

    def prepare(self):
        """Jobs of their own for each round."""
        self.back()
        self.round += 1
        self.printer.count = 0
        self.contents = [b"%d of round %d\n" % (number, self.round) * 50 for number in (1, 2, 3)]
        for name, content in zip(("dA00001", "dA00002"), self.contents):
            if os.path.exists(self.spool(self.here) + "/" + name):
                self.tool.write(self.spool(self.here) + "/" + name, content)

    def age(self):
        """Leftovers count as such once they are a minute old."""
        for name in os.listdir(self.spool(self.here)):
            os.utime(self.spool(self.here) + "/" + name, (1, 1))

    def sent(self, *words):
        """Runs prnout; how often each job has come whole once the spool is empty."""
        self.age()
        self.assertEqual(self.tool.run("prnout", *words).returncode, 0)
        self.assertTrue(until(lambda: not self.detached()))
        with open(self.spool(self.here) + "/.q") as lines:
            self.assertEqual(lines.read(), "")
        left = set(os.listdir(self.spool(self.here))) - {".q", ".qlock", ".status", ".last", ".lastlock", ".sender"}
        self.assertEqual((self.status(self.here), left), ("idle\n", set()))
        got = self.printer.wait(self.printer.count)
        return [got.count(content) for content in self.contents]

    def listed_once(self):
        with open(self.spool(self.here) + "/.q") as lines:
            names = lines.read().split()
        self.assertEqual(len(names), len(set(names)))

    def test_prnout(self):
        port = free_port()
        self.waiting(port, "-pm wp -hn 127.0.0.1:%d")
        self.printer = self.enterContext(FakePrinter(self.tool.path + "/got", port))

        def prepare():
            self.prepare()
            self.tool.write("job", self.contents[2])

        def check(*_):
            self.listed_once()
            last = b"last of round %d\n" % self.round
            self.contents.append(last)
            self.tool.write("job2", last)
            first, second, ended, last = self.sent("-dq", self.tool.path + "/job2")
            self.assertEqual((first, second, last), (1, 1, 1))
            self.assertLessEqual(ended, 1)

        self.rounds(self.tool.command("prnout", "-dq", self.tool.path + "/job"), prepare, check, 6)

    def send(self, printer, target, sample):
        port = free_port()
        self.waiting(port, target)
        self.printer = self.enterContext(printer(self.tool.path + "/got", port))

        def check(calls, at):
            self.listed_once()
            sent = self.sent("-send", self.spool(self.here))
            # Twice only between the printer's last word and the removal of the control file: nobody can know then.
            twice = [number for number, times in enumerate(sent[:2]) if times == 2]
            self.assertEqual([times or 1 for times in sent[:2]], [2 if number in twice else 1 for number in (0, 1)], sent)
            self.assertIn(0 if not twice else calls[at - 1], (0, *self.UNKNOWN))
            self.twice += len(twice)

        self.twice = 0
        self.rounds(self.tool.command("prnout", "-send", self.spool(self.here)), self.prepare, check, sample)
        self.counted[self.id().split(".", 1)[1] + ": printed twice"] += self.twice

    def test_sender(self):
        self.send(FakePrinter, "-pm wp -hn 127.0.0.1:%d", 5)

    def test_sender_by_lpd(self):
        self.send(FakeLpd, "-pm wps -psqn rem -hn 127.0.0.1:%d", 4)

    def test_prnrm(self):
        port = free_port()
        self.waiting(port, "-pm wp -hn 127.0.0.1:%d")
        self.printer = self.enterContext(FakePrinter(self.tool.path + "/got", port))

        def check(*_):
            self.listed_once()
            self.tool.run("prnrm", "q", "A00001")  # may be gone
            self.assertEqual(self.names(self.here), ["A00002"])
            self.assertEqual(self.sent("-send", self.spool(self.here)), [0, 1, 0])

        self.rounds(self.tool.command("prnrm", "q", "A00001"), self.prepare, check, 4)


class OnScheduler(Kills, unittest.TestCase):
    LINES = ["new %s -d" % TAIL, "q " + TAIL, "q -mq -ui -d -bp -bps titles", "q -x", "-dbps titles", "--batch BATCH"]
    BATCH = ["new %s -d" % TAIL, "q " + TAIL, "keep -mq -ui -bp", "-dbps titles"]

    def test_queue_tool(self):
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        cups = self.enterContext(Scheduler())
        self.tool.env.pop("PRNQ_STORE")
        self.tool.env.update(cups.env())
        self.add("keep", "-pm wp -hn h1 -bp")
        first = "q -ppd tv_b.ppd -pm wp -hn h0"
        self.tool_run(first)
        self.keep()
        before, hosted = self.tool.image()[0], cups.queues()

        def prepare():
            self.back()
            for name in cups.queues():
                if name != "keep":
                    cups.run("lpadmin", "-x", name)
            self.tool_run(first)
            self.back()

        self.tool.write("batch", "\n".join(self.BATCH))
        for line in [line.replace("BATCH", self.tool.path + "/batch") for line in self.LINES]:
            argv = self.tool.command("prnqtool", *line.split())
            prepare()
            self.assertEqual(killer.run(argv, self.tool.env).status, 0)
            after, records, wanted = self.tool.image()[0], self.tool.records(), cups.queues()

            def check(*_):
                image, queues = self.tool.image()[0], cups.queues()
                self.assertIn(image, (before, after))
                for name in set(hosted) | set(wanted):
                    self.assertIn(queues.get(name), (hosted.get(name), wanted.get(name)))
                self.tool_run("-LQ")
                if image != after or "-x" not in line:
                    self.tool_run(line)
                self.assertEqual((self.tool.records(), cups.queues()), (records, wanted))
                self.assertEqual([name for name in os.listdir(self.tool.path + "/db") if name.endswith("_new") or name == ".prnq_batch"], [])

            self.rounds(argv, prepare, check, 2, stops="--batch" in line)


if __name__ == "__main__":
    unittest.main()
