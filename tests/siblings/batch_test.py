"""Wanted states and batches: --ensure, --dry-run and --batch, on a private scheduler and on the tool's own store."""
import os
import subprocess
import sys
import threading
import time
import unittest
from pathlib import Path

from cups import Scheduler
from tooldir import QueueTool, ToolDir

CHANGED = 2
TARGETS = ["-pm wp -lpd -hn h%d -psqn lp -fe -ui -fs settings", "-pm wps -hn h%d:1515 -psqn rem.%d", "-pm wp -dn /dev/nosuch%d -fe",
           "-pm wp -hn h%d -bps titles", "-pm psp -lpd -hn fe80::%d", "-pm psp -dn /dev/ttyS9%d", "-pm wp -hn 10.1.1.%d:9101"]
# Another line for a queue that "q -ppd tv_a.ppd -pm wp -hn h1 -fe -fs settings -bps titles -d" has made, and whether its jobs stay.
DIFFERENT = [("-ppd tv_b.ppd -pm wp -hn h1 -fe -fs settings -bps titles -d", False),
             ("-ppd tv_a.ppd -pm wp -hn h2 -fe -fs settings -bps titles -d", False),
             ("-ppd tv_a.ppd -pm wp -hn h1 -lpd -fe -fs settings -bps titles -d", False),
             ("-ppd tv_a.ppd -pm wp -hn h1 -fe -fs settings2 -bps titles -d", True),
             ("-ppd tv_a.ppd -pm wp -hn h1 -fe -fs settings -d", True),
             ("-ppd tv_a.ppd -pm wp -hn h1 -fe -fs settings -bps titles", True),
             ("-ppd tv_a.ppd -pm wp -hn h1 -ui -fs settings -bps titles -d", True)]


def wanted(count):
    """A line for each queue, of every type."""
    lines = []
    for number in range(count):
        target = TARGETS[number % len(TARGETS)]
        lines.append("q%d -ppd tv_%s.ppd %s" % (number, "ab"[number % 2], target % ((number,) * target.count("%d"))))
    lines[count // 2] += " -d"
    return lines


class Batches(QueueTool):
    """What holds for either store; self.uris() tells the host's queues."""

    def setUp(self):
        self.tool_run("-x all")
        self.tool.write("settings", "Duplex=DuplexNoTumble\n")
        self.tool.write("settings2", "PageSize=Letter\n")
        self.tool.write("titles", ".h1 20 Own\n")
        self.tool.write("text", "%!PS\n1\n")

    def run_batch(self, lines, status, *manner, **env):
        """Runs them from a file; the last line of what was told, and all that was complained of."""
        self.tool.write("batch", "\n".join(lines) + "\n")
        done = self.tool.run("prnqtool", *manner, "--batch", self.tool.path + "/batch", **env)
        self.assertEqual(done.returncode, status, (done.stdout, done.stderr))
        return (done.stdout.splitlines() or [""])[-1], done.stderr

    def state(self):
        return self.tool.records(), self.uris()

    def test_playbook_twice(self):
        lines = wanted(self.COUNT)
        told = "%d added, 0 changed, 0 removed, 0 unchanged, 0 refused" % self.COUNT
        nothing = self.state()
        self.assertEqual(self.run_batch(lines, CHANGED, "--dry-run"), (told, ""))
        self.assertEqual(self.state(), nothing)
        self.assertEqual(self.run_batch(lines, CHANGED, "--ensure"), (told, ""))
        image = self.tool.image()
        self.assertEqual(len(self.uris()), self.COUNT)
        told = "0 added, 0 changed, 0 removed, %d unchanged, 0 refused" % self.COUNT
        self.assertEqual(self.run_batch(lines, 0, "--ensure"), (told, ""))
        self.assertEqual(self.tool.image(), image)
        # Each line by itself leaves the same queues.
        batch = self.state()
        self.tool_run("-x all")
        for line in lines[:len(TARGETS)]:
            self.tool_run(line)
        alone = self.state()
        for name in alone[1]:
            self.assertEqual((alone[1][name], alone[0][name]), (batch[1][name], batch[0][name]))

    def test_what_differs(self):
        line = "q -ppd tv_a.ppd -pm wp -hn h1 -fe -fs settings -bps titles -d"
        for different, stays in DIFFERENT:
            with self.subTest(different):
                self.tool_run("-x all")
                self.assertEqual(self.tool.run("prnqtool", "--ensure", *line.split()).returncode, CHANGED)
                self.hold("q")
                self.assertEqual(self.tool.run("prnout", "-dq", self.tool.path + "/text").returncode, 0)
                words = ["q", *different.split()]
                before = self.state()
                for manner, status in (("--dry-run", CHANGED), ("--ensure", CHANGED), ("--ensure", 0)):
                    done = self.tool.run("prnqtool", manner, *words)
                    self.assertEqual((done.returncode, done.stderr), (status, ""))
                    if manner == "--dry-run":
                        self.assertEqual(self.state(), before)
                self.assertEqual(done.stdout, 'queue "q": unchanged\n')
                self.assertEqual(self.tool.run("prnout", "-l").stdout.count("text"), stays)
                ensured = self.state()
                self.tool_run("-x all")
                self.tool_run(words)
                self.assertEqual(self.state(), ensured)

    def test_lines_of_a_batch(self):
        self.tool_run("old -ppd tv_a.ppd -pm psp -hn h1 -d")
        told, complaints = self.run_batch([
            "# all kinds of lines", "", "  a -ppd tv_a.ppd -pm psp -hn h1  # behind words", "'b' \"-ppd\" tv_b.ppd -hn \"h2\"",
            "c -ppd nosuch.ppd -hn h3", "A -ppd tv_a.ppd -hn h3", "d -cl a -pm psp -hn h4", "b -mq -ui -d", "e -ppd tv_a.ppd",
            "old -x", "-dbps titles", "'open", "--batch x", "-LQ", "--dry-run f -ppd tv_a.ppd -hn h", "f -log x -ppd tv_a.ppd -hn h",
            "-x nosuch", "-x a"], 1, "--ensure")
        self.assertEqual(told, "3 added, 2 changed, 2 removed, 0 unchanged, 9 refused")
        self.assertEqual([line.split(": ")[1] for line in complaints.splitlines() if ": line " in line],
                         ["line %d" % number for number in (5, 6, 9, 12, 13, 14, 15, 16, 17)])
        self.assertEqual(sorted(self.uris()), ["b", "d"])
        records = self.tool.records()
        self.assertEqual((records[" default"], records[" banner"]), (b"b\0", b".h1 20 Own\n\0"))
        self.assertEqual({key for key in records if key.endswith("count")}, {"h2 count", "h4 count"})
        self.assertEqual(self.tool.run("prnqtool", "--batch", "/dev/null").returncode, 0)
        done = subprocess.run(self.tool.command("prnqtool", "--batch", "-"), env=self.tool.env, input=b"d -x\n", timeout=60)
        self.assertEqual((done.returncode, list(self.uris())), (0, ["b"]))

    def test_two_at_once(self):
        done = []

        def run(name):
            lines = ["%s%d -ppd tv_a.ppd -hn h%d" % (name, number, number) for number in range(30)]
            self.tool.write(name, "\n".join(lines))
            done.append(self.tool.run("prnqtool", "--batch", self.tool.path + "/" + name).returncode)

        threads = [threading.Thread(target=run, args=name) for name in "ab"]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual((done, len(self.uris())), ([0, 0], 60))
        self.assertEqual({key for key in self.tool.records() if " " not in key}, set(self.uris()))

    def test_export_and_import(self):
        self.run_batch([*wanted(14), "-dbps titles", "q3 -mq -bp -fs settings2"], 0)
        before, path = self.state(), self.tool.path + "/export"
        self.assertEqual(self.tool.run("prnqtool", "--export", path).returncode, 0)
        text = Path(path).read_text()
        self.assertEqual(self.tool_run("--export -").stdout, text)
        told = self.tool.run("prnqtool", "--import", path)
        self.assertEqual((told.returncode, told.stdout.splitlines()[-1]),
                         (0, "0 added, 0 changed, 0 removed, 15 unchanged, 0 refused"))
        # What is no whole file changes nothing.
        self.tool_run("q1 -x")
        self.tool_run("-xdbps")
        changed = self.state()
        middle, end = len(text) // 2, text.rindex("end ")
        for damaged in ("", text[:middle], text[:end], text[:-2], text[:middle] + "X" + text[middle + 1:], text + "more\n",
                        text.replace("wp", "psp").replace("h1", "h2")):
            Path(path).write_text(damaged)
            self.assertIn("no whole export", self.tool_run(["--import", path], status=1).stderr)
            self.assertEqual(self.state(), changed)
        Path(path).write_text(text)
        self.assertEqual(self.tool.run("prnqtool", "--dry-run", "--import", path).returncode, CHANGED)
        self.assertEqual(self.state(), changed)
        told = self.tool.run("prnqtool", "--import", path)
        self.assertEqual((told.returncode, told.stdout.splitlines()[-1]),
                         (CHANGED, "1 added, 1 changed, 0 removed, 13 unchanged, 0 refused"))
        self.assertEqual(self.state(), before)
        # A host that lacks a model's file gets the other queues.
        self.tool_run("-x all")
        os.unlink(self.tool.path + "/ppd/tv_b.ppd")
        told = self.tool.run("prnqtool", "--import", path)
        self.assertEqual((told.returncode, len(self.uris())), (1, 7))
        self.assertIn("prnqtool: q1: can't open ppd/tv_b.ppd", told.stderr)


class OnFile(Batches, unittest.TestCase):
    COUNT = 400

    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnqtool", "prnout"))
        self.tool.env.update(PRNQ_STORE="file", PRNQ_SPOOL=self.tool.path + "/spool")
        super().setUp()

    def uris(self):
        text = self.tool.image()[1] or b""
        return {line.split(":")[0]: line for line in text.decode().splitlines()}

    def hold(self, queue):
        pass  # nothing answers there

    def test_thousands_go_in_one(self):
        took = {750: [], 3000: []}
        for count in [750, 3000] * 3:
            self.run_batch(["q%d -ppd tv_a.ppd -hn h%d" % (number, number // 2) for number in range(count)], 0)
            start = time.monotonic()
            self.tool_run("-x all")
            took[count].append(time.monotonic() - start)
            self.assertEqual(self.state(), ({}, {}))
        self.assertLess(min(took[3000]), 8 * min(took[750]))  # four times the work; sixteen times the time if each looked at all


@unittest.skipIf(Scheduler.missing(), Scheduler.missing())
class OnScheduler(Batches, unittest.TestCase):
    COUNT = 28

    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnqtool", "prnout"))
        self.cups = self.enterContext(Scheduler())
        self.tool.env = self.cups.env(PRNQ_SPOOL=self.tool.path + "/spool")
        super().setUp()

    def uris(self):
        return self.cups.queues()

    def hold(self, queue):
        self.assertEqual(self.cups.run("cupsdisable", queue).returncode, 0)

    def test_what_others_changed_comes_back(self):
        line = "q -ppd tv_a.ppd -pm psp -hn h1 -d"
        self.tool_run(line)
        self.tool_run("r -ppd tv_a.ppd -pm psp -hn h1")
        wanted_state = self.state(), self.cups.default()
        for words in (("-p", "q", "-v", "socket://h9"), ("-d", "r"), ("-x", "q")):
            self.assertEqual(self.cups.run("lpadmin", *words).returncode, 0)
            for status in (CHANGED, 0):
                self.assertEqual(self.tool.run("prnqtool", "--ensure", *line.split()).returncode, status, words)
            self.assertEqual((self.state(), self.cups.default()), wanted_state)

    def admin_that(self, case):
        """A directory for PATH whose lpadmin does something first at some words."""
        self.tool.write("lpadmin", "#!/bin/sh\ncase \"$*\" in\n%s\nesac\nexec /usr/sbin/lpadmin \"$@\"\n" % case)
        os.chmod(self.tool.path + "/lpadmin", 0o755)
        return {"PATH": self.tool.path + ":" + os.environ["PATH"]}

    LINES = ["new1 -ppd tv_a.ppd -hn n1", "old1 -ppd tv_b.ppd -hn n2", "old2 -mq -ui", "new2 -ppd tv_a.ppd -hn n3 -d", "old3 -x",
             "last -ppd tv_a.ppd -hn n4", "new3 -ppd tv_a.ppd -hn n5"]

    def begin(self):
        for name in ("old1", "old2", "old3"):
            self.tool_run(name + " -ppd tv_a.ppd -pm wp -hn h1" + " -d" * (name == "old1"))
        self.cups.run("lpadmin", "-p", "other", "-v", "socket://h9", "-E")
        return self.state(), self.cups.default()

    def test_killed_in_the_middle(self):
        (records, uris), default = self.begin()
        env = self.admin_that("'-p last '*) kill -9 $PPID; exit 1;;")
        self.run_batch(self.LINES, -9, **env)
        self.assertEqual(self.tool.records(), records)
        self.assertNotEqual(self.uris(), uris)
        # The next change takes back what was half done; a queue that is gone from the host is gone.
        self.assertIn("taken back", self.tool_run("-xdbps").stderr)
        del uris["old3"], records["old3"]
        self.assertEqual((self.uris(), self.cups.default()), (uris, default))
        self.assertEqual({key for key in self.tool.records() if " " not in key}, {key for key in records if " " not in key})
        self.assertEqual(self.tool_run("-xdbps").stderr, "")
        self.run_batch([line for line in self.LINES if "old3" not in line], 0)

    @unittest.skipIf(os.geteuid() != 0, "files of other users need root")
    def test_notes_of_others_tell_nothing(self):
        """Where anybody may write beside the records, a made-up note would cost queues and jobs."""
        self.begin()
        note = self.tool.path + "/db/.prnq_batch"
        for owner, mode in ((65534, 0o644), (0, 0o666)):
            self.tool.write("db/.prnq_batch", "new other\n")
            os.chown(note, owner, owner)
            os.chmod(note, mode)
            self.assertEqual(self.tool_run("-xdbps").stderr, "")
            self.assertIn("other", self.uris())
            self.assertFalse(os.path.exists(note))
        self.tool.write("db/.prnq_batch", "new other\n")
        os.chmod(note, 0o600)
        self.tool_run("-xdbps")
        self.assertNotIn("other", self.uris())  # ours are taken at their word

    def test_records_refused_at_the_end(self):
        state, default = self.begin()
        lines = [line for line in self.LINES if "old3" not in line]
        env = self.admin_that("'-p last '*) prlimit --pid $PPID --fsize=64;;")
        _, complaints = self.run_batch(lines, 1, **env)
        self.assertIn("nothing of the batch was kept", complaints)
        self.assertEqual(self.tool.records(), state[0])
        self.tool_run("-xdbps")
        self.assertEqual((self.state(), self.cups.default()), (state, default))

    def test_scheduler_stops_to_answer(self):
        (_, uris), _ = self.begin()
        env = self.admin_that("'-p new2 '*) kill -STOP %d;;" % self.cups.pid())
        start = time.monotonic()
        _, complaints = self.run_batch(self.LINES, 1, PRNQ_LIMIT="1", **env)
        self.assertIn("stopped in front of line 5: the scheduler doesn't answer", complaints)
        self.assertLess(time.monotonic() - start, 15)
        self.cups.thaw()
        # Whatever the scheduler still makes of the line that was given up, the next change settles it.
        self.tool_run("-xdbps")
        uris.update(new1="socket://n1:9100/?snmp=false", old1="socket://n2:9100/?snmp=false")
        self.assertEqual((self.uris(), self.cups.default()), (uris, None))
        self.assertEqual({key for key in self.tool.records() if " " not in key}, set(uris) - {"other"})

    def test_stopped_by_a_signal(self):
        self.begin()
        env = self.admin_that("'-p new2 '*) kill -TERM $PPID;;")
        self.assertIn("stopped in front of line 5: ended by a signal", self.run_batch(self.LINES, 1, **env)[1])
        self.assertEqual(sorted(self.uris()), ["new1", "new2", "old1", "old2", "old3", "other"])
        self.assertEqual({key for key in self.tool.records() if " " not in key}, set(self.uris()) - {"other"})
        self.assertEqual((self.tool_run("-xdbps").stderr, self.cups.default()), ("", "new2"))


if __name__ == "__main__":
    if Scheduler.missing():
        print("not on a scheduler: " + Scheduler.missing(), file=sys.stderr)
    unittest.main()
