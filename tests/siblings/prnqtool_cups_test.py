"""The queue tool on a real scheduler: jobs arrive, refusals keep the old queue, faults of the scheduler change nothing."""
import os
import re
import shutil
import subprocess
import sys
import time
import unittest

from cups import Scheduler
from fakeprinter import FakePrinter, free_port
from term import Term
from tooldir import PPD, QueueTool, ToolDir

DOCUMENT = b"%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%Page: 1 1\n(prnqtool) pop showpage\n%%EOF\n"
PAGE = b"(prnqtool) pop showpage"  # what any PostScript filter leaves of it
# Passes PostScript on without any filter of the host: what is printed is what was sent. The scheduler can't print a
# banner on such a queue.
PLAIN_PPD = PPD.format(model="Tarvo Plain") + '*cupsFilter: "application/postscript 0 -"\n'


class OnScheduler(QueueTool, unittest.TestCase):
    ppd, target = "plain.ppd", "-pm psp -hn h1"
    host_filters = False

    def setUp(self):
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        self.cups = self.enterContext(Scheduler(self.host_filters))
        self.tool = self.enterContext(ToolDir("prnqtool"))
        self.tool.env = self.cups.env()
        self.tool.write("ppd/plain.ppd", PLAIN_PPD)
        self.tool.write("job.ps", DOCUMENT)

    def lp(self, queue, *words):
        done = self.cups.run("lp", "-s", "-d", queue, *words, self.tool.path + "/job.ps")
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def printer(self):
        return self.enterContext(FakePrinter(self.tool.path + "/got"))


class Neighbours(OnScheduler):
    """What others did at the scheduler, and what the tool leaves of it."""

    def admin(self, *words):
        done = self.cups.run("lpadmin", *words)
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_a_change_of_switches_keeps_what_was_set_at_the_host(self):
        self.tool.write(".settings", "PageSize=A4\n")
        self.add("q", self.target + " -fe", ppd="tv_b.ppd")
        self.admin("-p", "q", "-o", "PageSize=Letter")
        self.tool_run("q -mq -ui -fe -fs .settings")
        self.assertIn("*DefaultPageSize: Letter", self.cups.ppd("q"))
        self.tool.write(".settings", "PageSize=A4\nDuplex=None\n")
        self.tool_run("q -mq -ui -fe -fs .settings")
        self.assertIn("*DefaultPageSize: A4", self.cups.ppd("q"))

    def test_another_tools_default_stays(self):
        self.add("q", self.target + " -d")
        self.admin("-p", "foreign", "-E", "-v", "file:/dev/null")
        self.admin("-d", "foreign")
        self.tool_run("q -mq")
        self.assertEqual(self.cups.default(), "foreign")

    def test_names_that_would_split_the_list(self):
        for name in ("a,b", "a:b", "a"):
            self.admin("-p", name, "-E", "-v", "file:/dev/null")
        self.assertEqual(self.tool_run("-LQ").stdout, "a:\n")

    def test_jobs_go_with_the_printer_they_were_meant_for(self):
        self.add("q")
        self.add("other")
        for queue in ("q", "other"):
            self.lp(queue)
        self.add("q", "-pm psp -hn no$name", status=1)
        self.assertIn("q-1", self.cups.run("lpstat", "-o").stdout)
        self.add("q", "-pm psp -hn h2")
        waiting = self.cups.run("lpstat", "-o").stdout
        self.assertNotIn("q-1", waiting)
        self.assertIn("other-2", waiting)


class Jobs(OnScheduler):

    def test_banner_page_and_firmware(self):
        printer = self.printer()
        target = "-pm psp -hn 127.0.0.1:%d -bp" % printer.port
        self.tool.write(".bsettings", ".h1 40 Dept (A) \"x\" \\ 100% {y} it's\n.h3 12 \u00d6l\n".encode())
        self.add("own", target + " -bps .bsettings", ppd="tv_a.ppd")
        self.add("all", target, ppd="tv_a.ppd")
        self.tool.write("sys", ".h2 20 Everybody\n".encode("latin-1"))
        self.tool_run("-dbps sys")
        for number, (queue, shown, hidden) in enumerate((
                ("own", b"(Dept \\(A\\) \"x\" \\\\ 100% {y} it's) 040", b"Everybody"),
                ("all", b"(Everybody) 020", b"Dept")), 1):
            self.lp(queue)
            page = printer.wait(number)[number - 1]
            self.assertIn(shown, page)
            self.assertNotIn(hidden, page)
            self.assertIn(PAGE, page)
        for number, (title, shown) in enumerate((("{x} y", b"{x} y"), ("True", b"True"), ("false y", b"false y")), 3):
            self.tool.write("sys", ".h2 20 %s\n" % title)
            self.tool_run("-dbps sys")
            self.cups.stop()  # what it reads back must be the same
            self.cups.start()
            self.lp("all")
            self.assertRegex(printer.wait(number)[number - 1], rb"\((\\302\\240)?" + re.escape(shown) + rb"\) 020")
        self.tool_run("-xdbps")
        self.lp("all")
        self.assertNotIn(b"false", printer.wait(6)[5])
        self.lp("own", "-o", "raw", "-o", "job-sheets=none,none")
        self.assertEqual(printer.wait(7)[6], DOCUMENT)
        self.tool_run("own -mq")
        self.lp("own")
        self.assertEqual(printer.wait(8)[7].count(b"showpage"), 1)
        self.assertNotIn("Syntax error", self.cups.log())

    def test_banner_page_that_has_to_wait_comes_with_a_later_change(self):
        printer = self.printer()
        self.cups.run("lpadmin", "-p", "other", "-v", "file:/dev/null")  # takes jobs, but prints none
        self.cups.run("cupsaccept", "other")
        self.lp("other")
        self.tool.write(".bsettings", ".h1 20 Late\n")
        for name in "late", "gone", "off":
            done = self.add(name, "-pm psp -hn 127.0.0.1:%d -bp -bps .bsettings" % printer.port, ppd="tv_a.ppd")
            self.assertIn("no banner page yet", done.stderr)
        self.tool_run("off -mq")
        self.assertNotIn("banner", self.tool_run("-x gone").stderr)  # still waiting, and said often enough
        self.cups.run("cancel", "-a", "other")
        self.tool_run("-xdbps")
        self.assertEqual(self.cups.options("off")["JobSheets"], "none none")
        self.lp("late")
        self.assertIn(b"(Late) 020", printer.wait(1)[0])
        self.assertFalse(os.path.exists(self.tool.path + "/db/.prnq_banner"))


class Refusals(OnScheduler):
    def setUp(self):
        super().setUp()
        self.fake = self.printer()
        self.tool.write(".settings", "Duplex=DuplexNoTumble\n")
        self.tool.write(".bsettings", ".h1 40 Old\n")
        self.add("q", "-pm psp -hn 127.0.0.1:%d -fe -bp -d -bps .bsettings" % self.fake.port, ppd="tv_a.ppd")
        os.unlink(self.tool.path + "/.settings")

    def state(self):
        with open(self.cups.root + "/etc/printers.conf") as conf:
            kept = [line for line in conf if not line.startswith(("#", "NextPrinterId", "StateTime", "ConfigTime"))]
        return self.tool.image(), kept, self.cups.ppd("q"), self.cups.run("lpstat", "-l", "-p", "q").stdout

    def assert_kept(self, before):
        self.assertEqual(self.state(), before)
        self.lp("q")
        page = self.fake.wait(1)[0]
        self.assertIn(b"(Old) 040", page)
        self.assertIn(PAGE, page)

    def test_refused_ppd_or_uri_on_replace(self):
        before = self.state()
        self.assertIn("Missing asterisk", self.add("q", "-pm psp -hn h2", ppd="broken.ppd", status=1).stderr)
        os.unlink(self.cups.root + "/bin/backend/lpd")
        self.assertIn("scheme", self.add("q", "-pm wps -lpd -hn h2 -psqn x", status=1).stderr)
        self.add("new", "-pm wps -lpd -hn h2 -psqn x", status=1)
        self.assertEqual(list(self.cups.queues()), ["q"])
        self.assert_kept(before)

    def admin_that(self, *cases):
        """A directory for PATH whose lpadmin fails or hangs at some words, and is the host's own otherwise."""
        self.tool.write("lpadmin", "#!/bin/sh\ncase \"$*\" in\n%s\nesac\nexec /usr/sbin/lpadmin \"$@\"\n" %
                        "\n".join(cases))
        os.chmod(self.tool.path + "/lpadmin", 0o755)
        return {"PATH": self.tool.path + ":" + os.environ["PATH"]}

    def test_refused_later_is_undone(self):
        before = self.state()
        sleeper = self.tool.path + "/sleeper"
        for case in ("'-d new'|'-d _prnq'*) echo no default >&2; exit 1;;",
                     "'-p new'*|'-p q '*) echo no room >&2; exit 1;;",
                     "'-p new'*|'-p q '*) sleep 100 & echo $! >%s; wait;;" % sleeper):
            env = self.admin_that(case)
            for line in ("new -ppd plain.ppd -pm psp -hn h1 -d", "new -cl q -pm psp -hn h2 -d",
                         "q -ppd tv_b.ppd -pm psp -hn h2", "q -mq"):
                with self.subTest(case, line=line):
                    self.assertIn("not ", self.tool_run(line, status=1, PRNQ_LIMIT="1", **env).stderr)
                    self.assertEqual((self.state(), self.cups.default(), list(self.cups.queues())),
                                     (before, "q", ["q"]))
        with open(sleeper) as pid:  # what a command that hangs has started ends with it
            self.assertTrue(Scheduler.ended(int(pid.read())))
        self.assert_kept(before)

    def test_replace_keeps_no_old_value(self):
        self.tool.write(".settings", "PageSize=Letter\n")
        self.add("q", "-pm wps -lpd -hn h2 -psqn x -fe", ppd="tv_b.ppd")
        self.assertEqual(self.cups.queues(), {"q": "lpd://h2/x?snmp=false"})
        self.assertIn("*DefaultDuplex: None", self.cups.ppd("q"))
        self.assertIn("*DefaultPageSize: Letter", self.cups.ppd("q"))
        self.assertEqual((self.cups.options("q")["JobSheets"], self.cups.default()), ("none none", None))
        self.assertEqual(self.cups.options("q")["Info"], "Tarvo B")

    def test_full_or_read_only_disk(self):
        database = self.tool.path + "/db"
        shutil.copytree(database, database + ".kept")
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "none", database], capture_output=True).returncode:
            self.skipTest("can't mount a small file system here")
        self.addCleanup(subprocess.run, ["umount", "-l", database])
        shutil.copytree(database + ".kept", database, dirs_exist_ok=True)
        self.tool.write(".settings", "x" * 20000)
        filler = open(database + "/filler", "wb", buffering=0)
        try:
            while filler.write(b"x" * 4096):
                pass
        except OSError:
            filler.close()
        lines = ["new -ppd plain.ppd -pm psp -hn h1 -fs .settings", "q -ppd plain.ppd -pm psp -hn h2",
                 "new -cl q -pm psp -hn h2", "q -mq -ui -fs .settings", "-dbps .bsettings"]
        before = self.state()
        # A deletion needs no room.
        for name, refused in (("full", lines), ("read-only", lines + ["q -x", "-x all", "-xdbps"])):
            for line in refused:
                self.assertIn("can't write db/", self.tool_run(line, status=1).stderr, (name, line))
                self.assertEqual(self.state(), before, (name, line))
            subprocess.run(["mount", "-o", "remount,ro", database], check=True)
        self.assert_kept(before)


class Faults(OnScheduler):
    LINES = ("new -ppd plain.ppd -pm psp -hn h1", "q -ppd plain.ppd -pm psp -hn h2", "new -cl q -pm psp -hn h2",
             "q -mq -ui -d", "q -x", "-xl q r", "-x all", "-dbps .bsettings")

    def all_refused(self, text, **env):
        before = self.tool.image()
        for line in self.LINES:
            started = time.monotonic()
            self.assertIn(text, self.tool_run(line, status=1, **env).stderr, line)
            self.assertLess(time.monotonic() - started, 8, line)
        self.assertIn(text, self.tool_run("-LQ", status=1, **env).stderr)
        self.assertEqual(self.tool.image(), before)

    def test_scheduler_down_or_frozen(self):
        self.tool.write(".bsettings", ".h1 40 All\n")
        self.add("q", "-pm psp -hn h1 -bp -d")
        self.add("r")
        queues = self.cups.queues()
        self.cups.freeze()
        self.all_refused("doesn't answer", PRNQ_LIMIT="2")
        self.cups.thaw()
        self.assertEqual((self.cups.queues(), self.cups.default()), (queues, "q"))
        self.cups.stop()
        self.all_refused("isn't running")
        self.cups.start()
        self.assertEqual((self.cups.queues(), self.cups.default()), (queues, "q"))
        self.tool_run("-x all")
        self.assertEqual((self.cups.queues(), self.tool.records()), ({}, {}))

    def test_language_and_printer_of_the_caller(self):
        env = dict(LANGUAGE="de", LANG="de_DE.UTF-8", LPDEST="nosuch", PRINTER="nosuch")
        env.update(LC_ALL="", LC_MESSAGES="de_DE.UTF-8")
        self.assertEqual(self.tool_run("-LQ", **env).stdout, "")
        self.add("q", "-pm psp -hn h1 -d", **env)
        self.assertEqual(self.tool_run("-LQ", **env).stdout, "q:\n")
        self.assertEqual(self.cups.default(), "q")
        self.tool_run("q -mq", **env)
        self.assertEqual(self.cups.default(), None)
        self.cups.stop()
        self.assertIn("the scheduler isn't running", self.tool_run("q -x", status=1, **env).stderr)

    def test_killed_at_any_moment(self):
        self.add("q")
        start = time.monotonic()
        self.add("q")
        whole = time.monotonic() - start
        for turn in range(24):
            child = subprocess.Popen(self.tool.command("prnqtool", "q", "-ppd", "plain.ppd", "-pm", "psp", "-hn",
                                                       "host%d" % turn, "-d"), env=self.tool.env,
                                     stderr=subprocess.DEVNULL)
            time.sleep(whole * turn / 20)
            child.kill()
            child.wait()
            record = self.tool.records()["q"].split()  # raises if the database isn't whole
            self.assertIn(record[1].decode() + " count", self.tool.records())
            self.assertIn("q", self.cups.queues())
        self.add("q", "-pm psp -hn last")
        self.assertEqual(self.cups.queues(), {"q": "socket://last:9100/?snmp=false"})


class Filtered(OnScheduler):
    """With whatever filters the host has: they may change every byte, but every page arrives."""
    host_filters = True

    def test_banner_and_job_arrive(self):
        printer = self.printer()
        self.tool.write(".bsettings", ".h1 40 Dept\n")
        self.add("q", "-pm psp -hn 127.0.0.1:%d -bp -bps .bsettings" % printer.port, ppd="tv_a.ppd")
        self.lp("q")
        got, = printer.wait(1)
        self.assertLess(got.index(b"(Dept) 040"), got.index(PAGE))


class Locked(OnScheduler):
    def test_never_asks_on_the_terminal(self):
        self.cups.stop()
        # By the network: at its socket the scheduler would know root without a password.
        server = "127.0.0.1:%d" % free_port()
        with open(self.cups.root + "/etc/cupsd.conf", "a") as conf:
            conf.write("Listen %s\n<Policy default>\n<Limit CUPS-Add-Modify-Printer>\nAuthType Basic\nRequire user @SYSTEM\n</Limit>\n"
                       "<Limit All>\nOrder deny,allow\n</Limit>\n</Policy>\n" % server)
        self.cups.start()
        argv = self.tool.command("prnqtool", "q", "-ppd", "plain.ppd", "-pm", "psp", "-hn", "h1")
        term = self.enterContext(Term(argv, env=dict(self.tool.env, CUPS_SERVER=server)))
        self.assertEqual(term.end(), 1)
        self.assertIn("Unauthorized", term.output)
        self.assertNotIn("assword", term.output)
        self.assertEqual((self.cups.queues(), self.tool.records()), ({}, {}))


if __name__ == "__main__":
    if Scheduler.missing():
        print("skipped: " + Scheduler.missing())
        sys.exit(77)
    unittest.main()
