"""Each sentence by which the queue tool refuses or warns of a change, met by a person at the menus, with the real programs: it is
read there in the user's language, the menus go on behind it, and what stands is what stood before, or what the warning speaks of."""
import contextlib
import fcntl
import os
import re
import shutil
import stat
import subprocess
import unittest
from collections import namedtuple
from pathlib import Path

import xdb
from cups import Scheduler
from term import Term
from told_test import Deck

SENTENCES = Path(__file__).resolve().parents[2] / "data/catalogue/de_DE/CoreString.msg"
MENU, RETURN = "Auswahl eingeben oder h für Hilfe: ", "Weiter mit <Return>"
PROMPTS = (MENU, RETURN, "zum Beenden: ", "ändernden Warteschlange: ", "kopierenden Warteschlange: ", "für alle: ", "? [y/n] ")
FIRST, LAST = 1, 58  # the sentences about changes of queues

# What no menu can bring about, or nothing here.
NOT_MET = {
    "the menus ask for it, and let nothing else through": (1, 2, 3, 5, 6, 7, 8, 9, 10, 12, 13, 19, 24, 25, 26, 30, 31),
    "the menus take it from their lists": (21, 22, 23, 29),
    "no lock fails on a local disk, but by being held": (56,),
    "a host without the scheduler's commands has no scheduler": (51,),
}

# number: the sentence's; values: its own, None for the host's words, a pair for another sentence; lines: typed at the main menu;
# amiss: method that brings about what is, and that yields what is done in front of the last line; stands: it was a warning.
Case = namedtuple("Case", "number values lines amiss stands", defaults=(None, False))


def add(*answers, name="new"):
    return "1", "1 " + name, *answers, "15"


def titles(name="new"):
    return "1", "1 " + name, "5 localhost", "13", "1 Room", "8", "15"


ADD, ADD_LPD = add("5 localhost"), add("3", "7 localhost", "8 lp")
COPY = "3", "kept", "1 new", "7"
MODIFY = "2", "kept", "6 2", "7"
DELETE = "4", "kept", "y"

OWN_STORE = [
    Case(4, ["_prnq_x"], add("5 localhost", name="_prnq_x")),
    Case(32, ["KEPT", "kept"], add("5 localhost", name="KEPT")),
    Case(11, ["localhost:0"], add("5 localhost:0")),
    Case(14, ["lp0"], add("4", "6 lp0")),
    Case(15, ["/dev/a b"], add("4", "6 /dev/a b")),
    Case(16, ["/dev/../lp0"], add("4", "6 /dev/../lp0")),
    Case(17, ["/dev"], add("4", "6 /dev")),
    Case(18, ["DIRECTORY/disk"], add("4", "6 DIRECTORY/disk"), "a_disk"),
    Case(20, ["x" * 38 + ".ppd"], ADD, "a_model"),
    Case(52, ["ppd/away.ppd", None], ADD, "a_model"),
    Case(27, [".bsettings"], titles(), "work_file"),
    Case(28, [".bsettings"], titles(), "work_file"),
    Case(38, ["kept"], MODIFY, "queue_gone"),
    Case(39, ["kept"], COPY, "record"),
    Case(40, ["kept"], MODIFY, "record"),
    Case(41, ["kept"], MODIFY, "record"),
    Case(42, ["kept"], MODIFY, "record"),
    Case(35, ["port", (43, [])], ("2", "port", "2 2", "1 2", "7"), "printing"),
    Case(44, ["kept", (57, [None, None])], DELETE, "a_job_that_stays", True),
    Case(49, [], ADD, "change_under_way"),
    Case(53, ["db/hostq", None], MODIFY, "list_too_large"),
    Case(58, ["db/hostq"], MODIFY, "list_no_file"),
    Case(54, ["db/hostq_new", None], ADD, "no_new_list"),
    Case(55, ["db/hostq", None], ADD, "list_mounted"),
]

ON_SCHEDULER = [
    Case(46, [None], ADD, "no_banner", True),
    Case(33, ["kept", None], (*add("5 localhost", name="kept"), "y"), "host_refuses"),
    Case(34, ["new", (50, ["3"])], ADD, "host_fails"),
    Case(35, ["kept", None], MODIFY, "host_refuses"),
    Case(36, ["kept", (50, ["3"])], DELETE, "host_fails"),
    Case(37, [], DELETE, "host_refuses"),
    Case(45, ["new", None], ADD, "a_model", True),
    Case(47, [], MODIFY, "host_down"),
    Case(48, [], MODIFY, "host_frozen"),
]


def sentences():
    """Number -> text, in German."""
    text = SENTENCES.read_text("utf-8").split("\n$set 40\n")[1].split("\n$set ")[0]
    return {int(number): said for number, said in re.findall(r"^(\d+) (.*)$", text, re.M)}


def pattern(said, number, values):
    """A pattern for the sentence with its values."""
    parts = said[number].split("%s")
    words = ["[^\n]+" if value is None else pattern(said, *value) if isinstance(value, tuple) else re.escape(value) for value in values]
    return "".join(re.escape(part) + word for part, word in zip(parts, [*words, ""]))


def content(path):
    if not os.path.lexists(path) or not stat.S_ISREG(os.lstat(path).st_mode):
        return None
    return Path(path).read_bytes()


def put(path, data):
    Path(path).write_bytes(data)


class Walk(Deck):
    cases = ()

    def queue(self, name, *target):
        done = subprocess.run([self.path + "/prnqtool", name, "-ppd", "tv_c410.ppd", "-pm", "wp", *target], env=self.env, capture_output=True,
                              text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def names(self):
        """What the host has, or None where nobody can tell."""
        done = subprocess.run([self.path + "/prnqtool", "-LQ"], env=self.env, capture_output=True, text=True)
        return None if done.returncode else set(done.stdout.replace(":", "").split())

    def state(self):
        return [content("%s/db/%s" % (self.path, name)) for name in ("que.xdb", "hostq")]

    def ask(self, term, line):
        """Types a line; the prompt that comes."""
        term.send(line + "\n")
        while True:
            found = [(term.output.find(prompt, term.seen), prompt) for prompt in PROMPTS if prompt in term.output[term.seen:]]
            if found:
                term.seen = min(found)[0] + len(min(found)[1])
                return min(found)[1]
            self.assertTrue(term.read(60), term.output[-600:])

    def meet(self, case, said):
        lines = [line.replace("DIRECTORY", self.tool) for line in case.lines]
        with getattr(self, case.amiss or "nothing")(case) as meanwhile:
            term = self.enterContext(Term([self.path + "/prndeck", "-tty"], cwd=self.path, env=self.env))
            term.wait(MENU)
            for line in lines[:-1]:
                self.assertNotEqual(self.ask(term, line), RETURN, term.output[-600:])
            if meanwhile:
                meanwhile()
            before, start = self.state(), term.seen
            self.assertEqual(self.ask(term, lines[-1]), RETURN)
            self.assertRegex(term.output[start:], "(^|\n|: )%s\n" % pattern(said, case.number, case.values).replace("DIRECTORY", self.tool))
            self.assertEqual(self.state() == before, not case.stands)
            self.assertEqual(self.ask(term, ""), MENU)
            shown, names = term.output[:term.seen].rsplit("Warteschlangen dieses Rechners:\n", 1), self.names()
            if names is not None:
                self.assertEqual(set(shown[1].split("\n\n")[0].split()), names)
            term.line("6")
            self.assertEqual(term.end(), 0)

    def walk(self):
        said = sentences()
        kept = self.state()
        for case in self.cases:
            with self.subTest(case.number, values=case.values):
                self.meet(case, said)
            self.again(kept)

    def again(self, kept):
        for name, data in zip(("que.xdb", "hostq"), kept):
            if data is not None:
                put("%s/db/%s" % (self.path, name), data)

    @contextlib.contextmanager
    def nothing(self, _):
        yield

    @contextlib.contextmanager
    def a_model(self, case):
        """The only one, in a file whose name or content is refused, or that goes."""
        name = case.values[0].rpartition("/")[2] if case.number != 45 else "odd.ppd"
        models = self.path + "/ppd"
        os.rename(models, models + ".kept")
        os.mkdir(models)
        put("%s/%s" % (models, name), b'*PPD-Adobe: "4.3"\n*NickName: "Tarvo Z"\n*ModelName: "Tarvo Z"\nno line of such a file\n')
        yield (lambda: os.unlink("%s/%s" % (models, name))) if case.number == 52 else None
        shutil.rmtree(models)
        os.rename(models + ".kept", models)


class OwnStore(Walk, unittest.TestCase):
    cases = OWN_STORE

    def test_walk(self):
        self.env.update(PRNQ_LIMIT="1", PRNQ_STORE="file")
        self.own_store()
        self.queue("port", "-dn", "/dev/null")
        self.env["LANG"] = "de_DE"
        self.walk()

    @contextlib.contextmanager
    def a_disk(self, _):
        try:
            os.mknod(self.tool + "/disk", stat.S_IFBLK | 0o600, os.makedev(7, 0))
        except PermissionError as error:
            self.skipTest("a disk's node: %s" % error)
        yield

    @contextlib.contextmanager
    def work_file(self, case):
        yield lambda: put(self.path + "/.bsettings", b"no title\n" if case.number == 27 else b".h1 20 a\0b\n")

    @contextlib.contextmanager
    def queue_gone(self, _):
        yield lambda: subprocess.run([self.path + "/prnqtool", "kept", "-x"], env=self.env, check=True)

    @contextlib.contextmanager
    def record(self, case):
        host = {41: b"a;b", 42: b"elsewhere"}.get(case.number)
        records = [(b"kept", b"kept %s lp tv_c410.ppd 0 0 0 0 0 1 \0" % host)] if host else []
        yield lambda: xdb.write(self.path + "/db/que.xdb", records)

    def spool_of(self, name):
        line, = [line for line in Path(self.path, "db/hostq").read_text().splitlines() if line.startswith(name + ":")]
        os.makedirs(line.split()[2], exist_ok=True)
        return line.split()[2]

    @contextlib.contextmanager
    def printing(self, _):
        spool = self.spool_of("port")
        put(spool + "/.status", b"printing A00001 on /dev/null\n")
        with open(spool + "/.sender", "w") as sender:
            fcntl.flock(sender, fcntl.LOCK_EX)
            yield

    @contextlib.contextmanager
    def a_job_that_stays(self, _):
        """Its data is a directory."""
        spool = self.spool_of("kept")
        os.makedirs(spool + "/dA00001/x")
        put(spool + "/cA00001", b"H host\nP root\nJ title\nfdA00001\nQ kept\n")
        put(spool + "/.q", b"cA00001 dA00001\n")
        yield

    @contextlib.contextmanager
    def change_under_way(self, _):
        with open(self.path + "/db/.prnq_lock") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            yield

    @contextlib.contextmanager
    def list_too_large(self, _):
        yield lambda: os.truncate(self.path + "/db/hostq", 5 << 20)

    @contextlib.contextmanager
    def list_no_file(self, _):
        queues = self.path + "/db/hostq"
        yield lambda: (os.unlink(queues), os.mkfifo(queues))
        os.unlink(queues)

    @contextlib.contextmanager
    def no_new_list(self, _):
        os.makedirs(self.path + "/db/hostq_new/x")
        yield
        shutil.rmtree(self.path + "/db/hostq_new")

    @contextlib.contextmanager
    def list_mounted(self, _):
        queues = self.path + "/db/hostq"
        if subprocess.run(["mount", "--bind", queues, queues], capture_output=True).returncode:
            self.skipTest("can't mount a file here")
        yield
        subprocess.run(["umount", queues], check=True)


class OnScheduler(Walk, unittest.TestCase):
    cases = ON_SCHEDULER

    def test_walk(self):
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        self.cups = self.enterContext(Scheduler())
        os.mkdir(self.tool + "/bin")
        self.fails = self.tool + "/fails"
        put(self.tool + "/bin/lpadmin", ('#!/bin/sh\n[ -e %s ] && { cat %s >&2; exit 3; }\nexec /usr/sbin/lpadmin "$@"\n' %
                                         (self.fails, self.fails)).encode())
        os.chmod(self.tool + "/bin/lpadmin", 0o755)
        self.env = self.cups.env(PRNQ_SPOOL=self.tool + "/spool", LANG="de_DE", TERM="dumb", PRNQ_LIMIT="1",
                                 PATH=self.tool + "/bin:" + os.environ["PATH"])
        self.queue("kept", "-hn", "localhost")
        self.walk()

    def again(self, kept):
        super().again(kept)
        for name in set(self.cups.queues()) - {"kept"}:
            self.cups.run("lpadmin", "-x", name)

    @contextlib.contextmanager
    def host_refuses(self, _, words=b"lpadmin: no room\n"):
        yield lambda: put(self.fails, words)
        os.unlink(self.fails)

    def host_fails(self, case):
        return self.host_refuses(case, b"")

    @contextlib.contextmanager
    def no_banner(self, _):
        os.makedirs(self.cups.data + "/.prnq_new/x")
        yield
        shutil.rmtree(self.cups.data + "/.prnq_new")

    @contextlib.contextmanager
    def host_down(self, _):
        yield self.cups.stop
        self.cups.start()

    @contextlib.contextmanager
    def host_frozen(self, _):
        yield self.cups.freeze
        self.cups.thaw()


class Whole(unittest.TestCase):
    def test_every_sentence_is_met(self):
        met = {number for case in OWN_STORE + ON_SCHEDULER
               for number in (case.number, *(value[0] for value in case.values if isinstance(value, tuple)))}
        left = [number for numbers in NOT_MET.values() for number in numbers]
        self.assertEqual(sorted([*met, *left]), list(range(FIRST, LAST + 1)))


if __name__ == "__main__":
    unittest.main()
