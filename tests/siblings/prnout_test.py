"""prnout and prnrm: files on their way to a printer, on a private scheduler and in the tool's own store."""
import contextlib
import ctypes
import os
import pty
import re
import resource
import select
import signal
import socket
import subprocess
import time
import tty
import unittest
from pathlib import Path

from cups import Scheduler
from fakeprinter import FakeLpd, FakePrinter, free_port
from spooltool import SpoolTool, until
from tooldir import ToolDir
import xdb

FIRMWARE = b"\x1b%-12345X@PJL ENTER LANGUAGE=XFLASH\r\n" + bytes(range(256)) * 200
TEXT = b"%!PS-Adobe-3.0\n" + b"% one page\n" * 300  # what a scheduler without further filters takes
PTRACE_TRACEME, PTRACE_CONT = 0, 7
TITLES = ".h1 20 Dept (A) \\ 100%\n.h3 12 \u00e4\n"

# File names that a shell, a protocol, PostScript or a terminal would read as more than a name.
HOSTILE_FILES = ["a b;touch hit", "$(touch hit)`touch hit`", "-oNoUi", "it's \"(\\) %s%n", "a\nQ other\nR", "\u00e4\u20ac", b"\xe4\xff",
                 "x" * 200]
HOSTILE_JOBS = ["", "../x", "/etc/passwd", "a/b", ".q", ".", "-x", "A1;touch hit", "a b", "A00001\n", "9" * 30, "-1", "dA00001"]

# What is wrong with prnout's line, and words of the answer.
REFUSED = [
    ([], "no file"), (["-d"], "-d needs a queue"), (["-dq"], "no file"), (["-dq", "F", "F"], "one file at a time"),
    (["-dq", "-x", "F"], "option"), (["-dq", "/tmp"], "no regular file"), (["-dq", "/dev/null"], "no regular file"),
    (["-dq", "FIFO"], "no regular file"), (["-dq", "/nosuch"], "can't open"), (["F"], "no default queue"),
    (["-dnosuch", "F"], 'queue "nosuch" does not exist'), (["-da/b", "F"], "name of a queue"), (["-d", "", "F"], "name of a queue"),
    (["-send", "/etc"], "no spool directory"), (["-send", "SPOOL/../etc"], "no spool directory"),
]


class Scenario(SpoolTool):
    """What holds for either store."""

    def setUp(self):
        self.stack = contextlib.ExitStack()
        self.addCleanup(self.stack.close)
        self.tool = self.stack.enter_context(ToolDir("prnqtool", "prnout", "prnrm"))
        self.tool.env = self.environment(PRNQ_SPOOL=self.tool.path + "/spool", PRNQ_RETRY="0.1", PRNQ_WATCH="0.1")
        self.addCleanup(self.end_jobs)
        self.tool.write("file.txt", TEXT)

    def queue(self, name, port, more=""):
        self.add(name, "-pm wp -hn 127.0.0.1:%d %s" % (port, more))

    def printer(self, **more):
        return self.stack.enter_context(FakePrinter(self.tool.path + "/got%d" % time.monotonic_ns(), **more))

    def out(self, *words, status=0, **env):
        done = self.tool.run("prnout", *words, **env)
        self.assertEqual((done.returncode, done.stdout), (status, ""), (words, done.stderr))
        self.assertEqual(done.stderr == "", status == 0, done.stderr)
        self.assertTrue(status == 0 or done.stderr.startswith("prnout: "), done.stderr)
        return done.stderr

    def remove(self, *words, status=0):
        done = self.tool.run("prnrm", *words)
        self.assertEqual((done.returncode, done.stdout, done.stderr == ""), (status, "", status == 0), (words, done.stderr))
        return done.stderr

    def test_banner_in_front_but_not_of_firmware(self):
        printer = self.printer()
        self.tool.write(".bsettings", TITLES)
        self.tool.write("fw", FIRMWARE)
        self.queue("q", printer.port, "-bp -bps .bsettings")
        self.out("-dq", self.tool.path + "/file.txt")
        page, = printer.wait(1)
        self.assertTrue(page.startswith(b"%!PS"), page[:80])
        self.assertTrue(page.endswith(TEXT), page[-80:])
        banner = page[:-len(TEXT)]
        for word in rb"(Dept \(A\) \\ 100%) ", rb"(\303\244)", b"root  q-", b"file.txt":
            self.assertIn(word, banner)
        self.out("-dq", "-DL", "-oNoUi", self.tool.path + "/fw")
        self.assertEqual(printer.wait(2)[1], FIRMWARE)

    def test_default_queue_and_relative_names(self):
        printer = self.printer()
        self.queue("q", printer.port, "-d")
        self.out("file.txt", PrnOutFileSourceDir=self.tool.path)
        line = "cd %s && PrnOutFileSourceDir=. ./prnout -dq  -oNoUi file.txt\n" % self.tool.path
        subprocess.run(line, shell=True, env=self.tool.env, check=True, stdin=subprocess.DEVNULL)
        self.assertEqual(printer.wait(2), [TEXT, TEXT])

    def test_removal_of_one_of_two_and_of_all(self):
        port = free_port()
        self.queue("q", port)
        self.queue("q2", port)  # shares the printer, so the jobs, too
        here = "127.0.0.1:%d" % port
        for queue in "q", "q2", "q":
            self.out("-d", queue, self.tool.path + "/file.txt")
        rows = self.listed(here)
        self.assertEqual([owner for owner, _, _ in rows], ["root"] * 3)
        self.assertTrue(all(size >= len(TEXT) for _, _, size in rows), rows)
        first, second, third = self.names(here)
        self.assertTrue(self.status(here))
        self.remove("q", second)
        self.assertEqual(self.names(here), [first, third])
        self.assertIn(second, self.remove("q", second, third, status=1))
        self.assertEqual(self.names(here), [first])
        self.remove("q2", "-")
        self.assertEqual(self.names(here), [])
        self.assertTrue(until(lambda: "idle" in self.status(here)), self.status(here))
        left = [name for name in os.listdir(self.spool(here)) if not name.startswith(".")]
        self.assertEqual(left, [])

    def test_another_queues_jobs_stay(self):
        ports = free_port(), free_port()
        places = ["127.0.0.1:%d" % port for port in ports]
        self.queue("a", ports[0])
        self.queue("b", ports[1])
        self.out("-da", self.tool.path + "/file.txt")
        self.out("-db", self.tool.path + "/file.txt")
        self.out("-db", self.tool.path + "/file.txt")
        before = [self.listed(place) for place in places]
        other = self.names(places[1])[1]
        self.assertIn(other, self.remove("a", other, status=1))
        for name in HOSTILE_JOBS:
            with self.subTest(name):
                self.remove("a", name, status=1)
        self.remove("nosuch", "-", status=1)
        self.remove("a", status=1)
        self.assertEqual([self.listed(place) for place in places], before)
        self.assertEqual(sorted(self.waiting()), sorted(self.names(places[0]) + self.names(places[1])))

    def test_hostile_file_names(self):
        printer = self.printer()
        self.queue("q", printer.port, "-bp")
        os.mkdir(self.tool.path + "/odd")
        for count, name in enumerate(HOSTILE_FILES, 1):
            with self.subTest(name):
                path = os.path.join(os.fsencode(self.tool.path), b"odd", os.fsencode(name))
                with open(path, "wb") as out:
                    out.write(TEXT + b"%d" % count)
                self.out("-dq", path)
                self.assertTrue(printer.wait(count)[-1].endswith(TEXT + b"%d" % count))
        self.assertFalse(os.path.exists("/hit") or os.path.exists(self.tool.path + "/hit"))

    def test_refused(self):
        os.mkfifo(self.tool.path + "/fifo")
        self.queue("q", free_port())
        for words, answer in REFUSED:
            with self.subTest(words):
                paths = {"F": self.tool.path + "/file.txt", "FIFO": self.tool.path + "/fifo"}
                words = [paths.get(word, word.replace("SPOOL", self.tool.path + "/spool")) for word in words]
                self.assertIn(answer, self.out(*words, status=1))
        self.assertEqual(self.waiting(), [])
        for program in "prnout", "prnrm":
            self.assertIn("usage: " + program, self.tool.run(program, "--help").stdout)


class OnCups(Scenario, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if Scheduler.missing():
            raise unittest.SkipTest(Scheduler.missing())
        cls.cups = cls.enterClassContext(Scheduler())

    def environment(self, **more):
        return self.cups.env(**more)

    def waiting(self):
        return ["%05d" % int(line.split()[0].rpartition("-")[2]) for line in self.cups.run("lpstat", "-o").stdout.splitlines()]

    def tearDown(self):
        self.cups.run("cancel", "-a")
        for name in self.cups.queues():
            self.cups.run("lpadmin", "-x", name)

    def test_list_follows_the_scheduler_and_leaves_foreign_jobs(self):
        port = free_port()
        here = "127.0.0.1:%d" % port
        self.queue("q", port)
        os.makedirs(self.spool(here))
        for name in "cfA1host", "dfA1host":
            with open(self.spool(here) + "/" + name, "w") as out:
                out.write("H host\nP someone\n")
        with open(self.spool(here) + "/.q", "w") as out:
            out.write("cfA1host dfA1host\n")
        self.out("-dq", self.tool.path + "/file.txt")
        own = self.waiting()
        self.assertEqual(self.names(here), ["fA1host"] + own)
        os.utime(self.spool(here) + "/.refresh", (1, 1))
        self.cups.run("lp", "-d", "q", self.tool.path + "/file.txt")
        self.assertTrue(until(lambda: self.names(here) == ["fA1host"] + self.waiting()), self.names(here))
        self.assertGreater(os.path.getmtime(self.spool(here) + "/.refresh"), 1)  # the list is as old as this
        self.cups.run("cancel", *("q-" + job for job in self.waiting()))
        self.assertTrue(until(lambda: self.names(here) == ["fA1host"]), self.names(here))
        self.remove("q", "fA1host")
        self.assertEqual(self.names(here), [])

    def test_banner_where_the_scheduler_has_none(self):
        printer = self.printer()
        self.tool.write(".bsettings", TITLES)
        banner = self.cups.data + "/banners/prnq"
        if os.path.exists(banner):
            os.unlink(banner)
        self.tool.env["PRNQ_DATADIR"] = "/dev/null/none"
        self.queue("q", printer.port, "-bp -bps .bsettings")
        self.out("-dq", self.tool.path + "/file.txt")
        page, = printer.wait(1)
        self.assertRegex(page, re.compile(rb"\A%!PS.*Dept \\\(A\\\).*\004" + re.escape(TEXT) + rb"\Z", re.S))

    def test_scheduler_down(self):
        self.queue("q", free_port())
        self.cups.stop()
        try:
            self.assertIn("isn't running", self.out("-dq", self.tool.path + "/file.txt", status=1))
            self.assertIn("isn't running", self.remove("q", "-", status=1))
        finally:
            self.cups.start()


class OnFile(Scenario, unittest.TestCase):
    def environment(self, **more):
        return dict(os.environ, PRNQ_STORE="file", **more)

    def waiting(self):
        found = []
        for _, _, names in os.walk(self.tool.path + "/spool"):
            found += [name[1:] for name in names if name.startswith("c")]
        return found

    def idle(self, printer):
        self.assertTrue(until(lambda: self.status(printer) == "idle\n" and not self.detached()), self.status(printer))
        self.assertEqual((self.names(printer), self.waiting()), ([], []))

    def test_printer_off_then_on(self):
        port = free_port()
        here = "127.0.0.1:%d" % port
        self.queue("q", port)
        files = [b"%d\n" % number * 1000 for number in range(4)]
        for content in files:
            self.tool.write("file.txt", content)
            self.out("-dq", self.tool.path + "/file.txt")
        self.assertTrue(until(lambda: self.status(here) == "waiting: 127.0.0.1: Connection refused\n"), self.status(here))
        for name in os.listdir(self.spool(here)):
            if not name.startswith("."):
                self.assertEqual(os.stat(self.spool(here) + "/" + name).st_mode & 0o777, 0o600, name)
        self.remove("q", self.names(here)[1])
        printer = self.printer(port=port)
        self.assertEqual(printer.wait(3), [files[0], files[2], files[3]])
        self.idle(here)

    def test_killed_or_cut_in_mid_job_nothing_is_lost(self):
        content = os.urandom(20_000_000)
        self.tool.write("big", content)
        with socket.create_server(("127.0.0.1", 0)) as listener:
            port = listener.getsockname()[1]
            here = "127.0.0.1:%d" % port
            self.queue("q", port)
            self.out("-dq", self.tool.path + "/big")
            with listener.accept()[0] as first:
                first.recv(1000)
                self.assertIn("printing", self.status(here))
                for pid in self.detached():
                    os.kill(pid, signal.SIGKILL)
                self.assertTrue(until(lambda: not self.detached()))
            self.assertEqual(len(self.names(here)), 1)
            self.out("-send", self.spool(here) + "x", status=1)
            sender = subprocess.Popen(self.tool.command("prnout", "-send", self.spool(here)), env=self.tool.env)
            with listener.accept()[0] as second:  # closes with bytes unread, as a printer that is switched off
                second.recv(1000)
            got = b""
            with listener.accept()[0] as third:
                while chunk := third.recv(1 << 20):
                    got += chunk
            self.assertEqual(sender.wait(15), 0)
        self.assertTrue(got == content, len(got))
        self.idle(here)

    def test_printer_that_closes_before_it_has_read_the_job(self):
        with socket.create_server(("127.0.0.1", 0)) as listener:
            port = listener.getsockname()[1]
            self.queue("q", port)
            self.out("-dq", self.tool.path + "/file.txt")
            listener.settimeout(15)
            with listener.accept()[0] as first:
                self.assertEqual(len(first.recv(len(TEXT), socket.MSG_PEEK | socket.MSG_WAITALL)), len(TEXT))
            with listener.accept()[0] as second:
                self.assertEqual(b"".join(iter(lambda: second.recv(1 << 16), b"")), TEXT)
        self.idle("127.0.0.1:%d" % port)

    def test_copy_under_way_stays_and_a_killed_one_is_swept(self):
        printer = self.printer()
        here = "127.0.0.1:%d" % printer.port
        self.queue("q", printer.port)
        data = lambda: [name for name in os.listdir(self.spool(here)) if name.startswith("d")]
        ptrace = ctypes.CDLL(None).ptrace

        def stop_in_mid_copy():  # by a signal that comes with the thousandth byte
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
            ptrace(PTRACE_TRACEME, 0, 0, 0)

        copy = subprocess.Popen(self.tool.command("prnout", "-dq", self.tool.path + "/file.txt"), env=self.tool.env,
                                preexec_fn=stop_in_mid_copy)
        self.addCleanup(copy.kill)
        self.assertEqual(os.WSTOPSIG(os.waitpid(copy.pid, 0)[1]), signal.SIGTRAP)  # as it starts
        ptrace(PTRACE_CONT, copy.pid, 0, 0)
        self.assertEqual(os.WSTOPSIG(os.waitpid(copy.pid, 0)[1]), signal.SIGXFSZ)
        self.out("-dq", self.tool.path + "/file.txt")
        self.assertEqual(printer.wait(1), [TEXT])
        self.assertTrue(until(lambda: data() == ["dA00001"]), data())
        copy.kill()
        self.assertEqual(copy.wait(), -signal.SIGKILL)
        left = [self.spool(here) + "/" + name for name in (".q.a1b2C3", ".status.a1b2C3", ".last.a1b2C3", "c00062.a1b2C3")]
        kept = [self.spool(here) + "/" + name for name in (".q.later1", "notes.a1b2C3", "c00062")]
        for path in left + kept:
            with open(path, "w"):
                pass
            if path != kept[0]:  # somebody may just be writing it
                os.utime(path, (1, 1))
        self.out("-dq", self.tool.path + "/file.txt")
        self.assertEqual(printer.wait(2), [TEXT, TEXT])
        self.assertTrue(until(lambda: data() == []), data())
        self.assertEqual([path for path in left + kept if os.path.exists(path)], kept)

    def test_a_file_that_may_not_grow_is_told(self):
        self.queue("q", free_port())
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))
        before = self.tool.image()
        for line, said in (("prnout -dq file.txt", "prnout: can't write .*/dA00001: File too large\n"),
                           ("prnqtool q2 -ppd tv_a.ppd -pm psp -hn h2", "prnqtool: can't write .*: File too large\n")):
            done = subprocess.run(line.replace("prn", "./prn", 1), shell=True, cwd=self.tool.path, env=self.tool.env, stderr=subprocess.PIPE,
                                  text=True, preexec_fn=limit)
            self.assertEqual(done.returncode, 1)
            self.assertRegex(done.stderr, "\\A" + said + "\\Z")
        self.assertEqual((self.waiting(), self.tool.image()), ([], before))

    def test_job_that_nobody_takes_can_be_removed(self):
        self.tool.write("big", bytes(20_000_000))
        with socket.create_server(("127.0.0.1", 0)) as listener:
            port = listener.getsockname()[1]
            self.queue("q", port)
            self.out("-dq", self.tool.path + "/big")
            with listener.accept()[0]:
                self.remove("q", "-")
                self.idle("127.0.0.1:%d" % port)

    def test_line_printer_protocol(self):
        with FakeLpd(self.tool.path + "/lpd") as printer:
            self.add("q", "-pm wps -hn 127.0.0.1:%d -psqn rem -bp" % printer.port)
            self.out("-dq", "-DL", self.tool.path + "/file.txt")
            self.out("-dq", self.tool.path + "/file.txt")
            plain, page = printer.wait(2)
            self.assertEqual((plain, printer.queues, printer.problems), (TEXT, ["rem", "rem"], []))
            self.assertTrue(page.startswith(b"%!PS") and page.endswith(b"\4" + TEXT))
            self.idle("127.0.0.1:%d" % printer.port)

    def test_device(self):
        master, slave = pty.openpty()
        tty.setraw(slave)
        device = os.ttyname(slave)
        self.add("q", "-pm wp -dn %s" % device)
        self.out("-dq", self.tool.path + "/file.txt")
        got = b""
        while len(got) < len(TEXT):
            got += os.read(master, 4096)
        self.assertEqual(got, TEXT)
        self.idle(device.replace("/", "_"))
        os.close(master), os.close(slave)

    def test_many_at_once(self):
        port = free_port()
        self.queue("q", port)
        contents = [b"job %d\n" % number for number in range(12)]
        calls = []
        for number, content in enumerate(contents):
            self.tool.write("f%d" % number, content)
            calls.append(subprocess.Popen(self.tool.command("prnout", "-dq", self.tool.path + "/f%d" % number), env=self.tool.env))
        printer = self.printer(port=port)
        self.assertEqual([call.wait(60) for call in calls], [0] * 12)
        self.assertEqual(sorted(printer.wait(12)), sorted(contents))
        self.idle("127.0.0.1:%d" % port)
        self.assertEqual(printer.count, 12)

    def test_jobs_go_with_their_queue(self):
        """Two queues share a printer's directory; what waits for one goes when it is removed or replaced, not when that is refused."""
        port = free_port()
        here = "127.0.0.1:%d" % port
        for change, left in (("q -x", 1), ("q -ppd tv_b.ppd -pm psp -hn h2", 1), ("q -ppd none.ppd -pm psp -hn h2", 2)):
            with self.subTest(change):
                self.queue("q", port)
                self.queue("q2", port)
                for queue in ("q", "q2"):
                    self.out("-d" + queue, self.tool.path + "/file.txt")
                self.assertEqual(len(self.names(here)), 2)
                self.tool_run(change, status=1 if "none.ppd" in change else 0)
                self.assertEqual(len(self.names(here)), left)
                self.remove("q2", "-")

    def test_jobs_follow_their_queue_to_another_directory(self):
        """The user interface of a queue on a device decides about its spool directory."""
        device = self.tool.path + "/port"  # comes with the printer
        flat, deep = device.replace("/", "_"), device[1:]
        self.add("q", "-pm wp -dn " + device)
        self.add("q2", "-pm wp -dn " + device)
        for queue in "q", "q2", "q":
            self.out("-d" + queue, self.tool.path + "/file.txt")
        self.assertTrue(until(lambda: self.status(flat).startswith("waiting: " + device)))
        self.tool_run("q -mq -ui")
        self.assertEqual((self.names(flat), self.names(deep)), (["A00002"], ["A00001", "A00002"]))
        self.assertTrue(until(lambda: (self.status(deep) or "").startswith("waiting: " + device)), self.status(deep))
        sender, = [pid for pid in self.detached() if self.spool(deep) in Path("/proc/%d/cmdline" % pid).read_text().split("\0")]
        os.kill(sender, signal.SIGSTOP)
        with open(self.spool(deep) + "/.status", "w") as status:
            status.write("printing A00001 on " + device)
        self.assertIn("is being printed", self.tool_run("q -mq", status=1).stderr)
        os.kill(sender, signal.SIGCONT)
        self.assertEqual(self.names(deep), ["A00001", "A00002"])
        master, slave = pty.openpty()
        tty.setraw(slave)
        self.addCleanup(lambda: (os.close(master), os.close(slave)))
        self.remove("q2", "-")
        os.symlink(os.ttyname(slave), device)
        got = b""
        while len(got) < 2 * len(TEXT):
            got += os.read(master, 4096)
        self.assertEqual(got, 2 * TEXT)
        self.idle(deep)

    def test_a_changed_record_sends_nothing_elsewhere(self):
        """The database is open to everybody, "hostq" is not: what they disagree on isn't printed, nor made good by a change."""
        master, slave = pty.openpty()
        tty.setraw(slave)
        self.addCleanup(lambda: (os.close(master), os.close(slave)))
        port = free_port()
        self.queue("q", port)
        self.out("-dq", self.tool.path + "/file.txt")
        database = self.tool.path + "/db/que.xdb"
        records = self.tool.records()
        records["q"] = records["q"].replace(b"127.0.0.1:%d" % port, os.ttyname(slave).encode()).replace(b"tv_a.ppd 0", b"tv_a.ppd 2")
        xdb.write(database, [(key.encode(), data) for key, data in records.items()])
        here = "127.0.0.1:%d" % port
        self.assertTrue(until(lambda: self.status(here).startswith("held: A00001: the record of queue \"q\" was changed")), self.status(here))
        self.assertIn("was changed", self.out("-dq", self.tool.path + "/file.txt", status=1))
        self.assertIn("was changed", self.tool_run("q -mq -ui", status=1).stderr)
        self.assertFalse(select.select([master], [], [], 0.3)[0])
        self.tool_run("q -x")
        self.assertEqual(self.waiting(), [])

    def test_no_way_out_of_the_spool(self):
        port = free_port()
        here = "127.0.0.1:%d" % port
        self.queue("q", port)
        outside = self.tool.path + "/outside"
        os.mkdir(outside)
        os.makedirs(os.path.dirname(self.spool(here)))
        os.symlink(outside, self.spool(here))
        self.out("-dq", self.tool.path + "/file.txt", status=1)
        self.remove("q", "A00001", status=1)
        os.unlink(self.spool(here))
        os.mkdir(self.spool(here))
        os.chmod(self.spool(here), 0o777)
        self.assertIn("written by others", self.out("-dq", self.tool.path + "/file.txt", status=1))
        self.assertEqual((os.listdir(outside), os.listdir(self.spool(here))), ([], []))


if __name__ == "__main__":
    unittest.main()
