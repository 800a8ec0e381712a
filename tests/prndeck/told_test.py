"""What the queue tool refuses reaches the person at the terminal, through the real programs: what is said, that a terminal
waits for a line behind it and a pipe does not, and what stands afterwards."""
import contextlib
import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from cups import Scheduler
from term import Term
from tooldir import read_records

STAGE = os.path.join(os.environ["PRN_BUILD"], "stage")
MENU = "Enter a selection or h for help: "
RETURN = "Press <Return> to continue"
GONE = "the scheduler isn't running"

# How a new queue is asked for, and what the tool says of it.
REFUSED = {
    "a device that is a directory": (["1 new", "4", "6 /tmp"], 'device "/tmp" is a file or directory, no device'),
    "a name like an option": (["1 -new", "5 localhost"], "option -new is unknown"),
    "a name that differs by case": (["1 KEPT", "5 localhost"], 'queue name "KEPT" differs from queue "kept" by upper and lower case only'),
}


def until(condition, seconds=10):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(0.01)
    return condition()


class Deck:
    """For a TestCase: a tool directory with all that is shipped, its menus at a terminal or with piped input."""

    def setUp(self):
        if os.geteuid() != 0:
            self.skipTest("the menus need root")
        self.tool = tempfile.mkdtemp(prefix="prntold.", dir="/tmp")
        self.addCleanup(shutil.rmtree, self.tool)
        os.chmod(self.tool, 0o755)
        self.path = os.path.join(self.tool, "deck")
        shutil.copytree(STAGE, self.path)
        self.env = dict(os.environ, PRNQ_SPOOL=self.tool + "/spool", LANG="C", TERM="dumb")

    def own_store(self):
        with open(self.path + "/.pn_cfg", "w") as marker:
            marker.write(",CUPS,StandAlone,\n")
        done = subprocess.run([self.path + "/prnqtool", "kept", "-ppd", "tv_c410.ppd", "-pm", "wp", "-hn", "localhost"],
                              env=self.env, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def pipe(self, *lines):
        """A run with piped input: what it showed. The last line leaves it."""
        run = subprocess.run([self.path + "/prndeck", "-tty"], cwd=self.path, env=self.env, input="\n".join(lines) + "\n",
                             capture_output=True, encoding="latin-1", timeout=120)
        self.assertEqual(run.returncode, 0, run.stdout[-500:])
        return run.stdout

    def start(self):
        term = self.enterContext(Term([self.path + "/prndeck", "-tty"], cwd=self.path, env=self.env))
        term.wait(MENU)
        return term


class Told(Deck, unittest.TestCase):
    def test_a_pipe_reads_it_and_goes_on(self):
        self.own_store()
        before = read_records(self.path + "/db/que.xdb")
        for what, (lines, said) in REFUSED.items():
            with self.subTest(what):
                shown = self.pipe("1", *lines, "15", "6")
                self.assertEqual(shown.count(said), 1, shown[-600:])
                self.assertNotIn(RETURN, shown)
                self.assertEqual(read_records(self.path + "/db/que.xdb"), before)

    def test_in_the_users_language(self):
        """English stands where the language has no catalogue that can be read."""
        self.own_store()
        lines, english = REFUSED["a name that differs by case"]
        german = 'der Name "KEPT" unterscheidet sich von der Warteschlange "kept" nur durch Gross- und Kleinschreibung'
        for language, said in (("de_DE.UTF-8", german), ("en_US", english), ("xx", english)):
            self.env["LANG"] = language
            self.assertIn(said, self.pipe("1", *lines, "15", "6"))
        done = subprocess.run([self.path + "/prnrm", "kept", "A7"], env=dict(self.env, LANG="de"), capture_output=True, text=True)
        self.assertEqual(done.stderr, 'prnrm: der Auftrag "A7" wartet nicht bei der Warteschlange "kept"\n'
                                      "prnrm: nicht alle Auftraege waren da, um entfernt zu werden\n")
        os.unlink(self.path + "/db/de_DE/CoreString.xdb")
        done = subprocess.run([self.path + "/prnqtool", "KEPT", "-cl", "kept", "-pm", "wp", "-hn", "h"],
                              env=dict(self.env, LANG="de"), capture_output=True, text=True)
        self.assertEqual(done.stderr, "prnqtool: " + english + "\n")

    def test_a_terminal_waits(self):
        self.own_store()
        lines, said = REFUSED["a device that is a directory"]
        term = self.start()
        for line in ["1", *lines]:
            term.line(line, MENU)
        term.line("15", RETURN)
        self.assertIn(said, term.output)
        term.line("", MENU)
        term.line("6")
        self.assertEqual(term.end(), 0)

    def test_nothing_is_said_where_nothing_is_refused(self):
        self.own_store()
        shown = self.pipe("1", "1 new", "5 localhost", "15", "2", "new", "6 2", "7", "4", "new", "y", "6")
        self.assertNotIn("prnqtool", shown)
        self.assertEqual(shown.count(RETURN), 0)
        self.assertNotIn(b"new", b"".join(key.encode() for key in read_records(self.path + "/db/que.xdb")))

    def test_a_scheduler_that_is_gone(self):
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        cups = self.enterContext(Scheduler())
        self.env = cups.env(PRNQ_SPOOL=self.tool + "/spool", LANG="C", TERM="dumb")
        self.pipe("1", "1 kept", "5 localhost", "15", "6")
        cups.stop()
        shown = self.pipe("2", "3", "4", "kept", "y", "1", "1 late", "5 localhost", "15", "6")
        first, *rest = shown.split(MENU)
        self.assertIn("\n" + GONE + "\n", first)  # below the title of the main menu
        self.assertNotIn("no queues created yet", shown)
        self.assertNotIn("is not an existing queue", shown)
        for answer in (rest[0], rest[1], shown):
            self.assertIn(GONE, answer)
        cups.start()
        self.assertEqual(set(cups.queues()), {"kept"})

    def test_work_files_that_cannot_be_written(self):
        """A change without them would take titles and settings for removed: the menu doesn't open, or Apply refuses."""
        self.own_store()
        for name, text in ((".settings", "PageSize=A4\n"), (".bsettings", ".h1 20 Room\n")):
            with open(self.path + "/" + name, "w") as out:
                out.write(text)
            tail = ["-fs", ".settings"] if name == ".settings" else ["-bp", "-bps", ".bsettings"]
            done = subprocess.run([self.path + "/prnqtool", name[1:], "-ppd", "tv_c410.ppd", "-pm", "wp", "-hn", "h", *tail], env=self.env)
            self.assertEqual(done.returncode, 0)
            os.unlink(self.path + "/" + name)
        if subprocess.run(["mount", "--bind", self.path, self.path], capture_output=True).returncode:
            self.skipTest("can't mount a directory read-only here")
        self.addCleanup(subprocess.run, ["umount", "-l", self.path])
        mount = lambda how: subprocess.run(["mount", "-o", "remount,bind," + how, self.path], check=True)
        before = read_records(self.path + "/db/que.xdb")
        mount("ro")
        for name in (".settings", ".bsettings"):
            shown = self.pipe("2", name[1:], "6")
            self.assertIn("The work file %s/%s can't be written.\n" % (self.path, name), shown)
            self.assertNotIn("Modify Queue\n", shown.split("to modify: ")[1])
        mount("rw")
        term = self.start()
        term.line("2", "to modify: ")
        for line in ("bsettings", "2", "5", "1 New"):
            term.line(line, MENU if line != "5" else "<Return> to exit: ") if line != "1 New" else term.line(line, "[New]")
        mount("ro")
        term.line("8", RETURN)
        term.line("", "<Return> to exit: ")
        term.line("10", MENU)
        term.line("7", RETURN)
        self.assertEqual(term.output.count("can't be written."), 2)
        mount("rw")
        self.assertEqual(read_records(self.path + "/db/que.xdb"), before)

    def test_a_killed_program_takes_the_feature_dialogue_along(self):
        """Else it would go on reading the terminal, beside the shell that both were started from."""
        self.own_store()
        term = self.enterContext(Term(["/bin/sh", "-c", "./prndeck -tty; echo back; read line; echo got $line"], cwd=self.path, env=self.env))
        term.wait(MENU)
        term.line("2", "to modify: ")
        for line in ("kept", "2"):  # and its features on
            term.line(line, MENU)
        dialogue = self.path + "/prnpnxxtty"
        os.rename(dialogue, dialogue + ".away")
        term.line("4", RETURN)
        self.assertIn(dialogue + ": No such file or directory", term.output)
        term.line("", MENU)
        os.rename(dialogue + ".away", dialogue)
        term.line("4")
        term.wait("Tarvo C410")
        programs = {os.path.basename(exe): pid for pid, exe in self.running()}
        self.assertEqual(set(programs), {"prndeck", "prnpnxxtty"})
        os.kill(programs["prndeck"], signal.SIGKILL)
        term.wait("back")
        self.assertTrue(until(lambda: not list(self.running())))
        term.line("text", "got text")

    def running(self):
        """Number and file of the processes of this test's tool directory."""
        for pid in filter(str.isdigit, os.listdir("/proc")):
            with contextlib.suppress(OSError):
                exe = os.readlink("/proc/%s/exe" % pid)
                if exe.startswith(self.path):
                    yield int(pid), exe


if __name__ == "__main__":
    unittest.main()
