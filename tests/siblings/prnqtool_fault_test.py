"""Bad words, hostile values and faults around the queue tool's own files, on a host without a print system."""
import fcntl
import os
import subprocess
import tempfile
import unittest

import xdb
from tooldir import QueueTool, ToolDir

ADD = "-ppd tv_a.ppd -pm wp -hn h1 -psqn lp"
HOSTILE = ["", " ", "a b", "a;touch hit", "$(touch hit)", "`touch hit`", "a'b", 'a"b', "a\\b", "a\nb", "%s%n", "../x",
           "/", "-x", "a/b", "\xe4\xf6", "a|b", "x" * 4000, "\x01", "q:"]

# What is wrong with a line, and words of the answer.
REFUSED = [
    ("q -mq -x", "don't go together"),
    ("q -mq -hn h", "-hn doesn't belong"),
    ("q -ppd tv_a.ppd", "either -hn or -dn"),
    ("q -ppd tv_a.ppd -hn 0.0.0.0", "no printer's address"),
    ("q -ppd tv_a.ppd -dn /etc/passwd", "is a file or directory"),
    ("q -ppd tv_a.ppd -dn /dev/../etc/nosuch", 'leads through ".."'),
    ("q -ppd tv_a.ppd -hn h -psqn fifteen-letters", "more than 14"),
    ("fifteen-letters " + ADD, "more than 14"),
    ("_prnq_probe " + ADD, "kept for the tool"),
    ("q -bps /dev/zero " + ADD, "no regular file"),
    ("q -fs pipe " + ADD, "no regular file"),
    ("q -fs big " + ADD, "can't read big"),
    ("q -log ../x " + ADD, "must be a plain name"),
]


class Faults(QueueTool, unittest.TestCase):
    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnqtool"))
        self.tool.env["PRNQ_STORE"] = "file"
        self.add("keep", "-d")

    def run_words(self, *words, **more):
        return self.tool_run(list(words), **more)

    def add(self, name, *more, **kwargs):
        return self.run_words(name, *ADD.split(), *more, **kwargs)

    def test_refused_lines(self):
        os.mkfifo(self.tool.path + "/pipe")
        self.tool.write("big", "x" * 70000)
        before = self.tool.image()
        for line, answer in REFUSED:
            with self.subTest(line):
                self.assertIn(answer, self.run_words(*line.split(), status=1).stderr)
                self.assertEqual(self.tool.image(), before)

    def test_hostile_values(self):
        options = ("-hn", "-dn", "-psqn", "-ppd", "-pm", "-log", "-fs", "-bps", "-cl", "name", "-x", "-dbps")
        before = self.tool.image()
        for option in options:
            for value in HOSTILE:
                words = ADD.split()
                if option in words:
                    words[words.index(option) + 1] = value
                elif option == "-dn":
                    words = ["-ppd", "tv_a.ppd", "-dn", value]
                else:
                    words += [option, value]
                words = [value] + words if option == "name" else ["q"] + words
                words = [option, value] if option in ("-x", "-dbps") else words
                if option == "-fs" and value and value[0] != "-":
                    continue  # a settings file that isn't there is none
                with self.subTest(option, value=value[:20]):
                    done = self.tool.run("prnqtool", *words)
                    self.assertEqual(done.returncode, 1)
                    self.assertRegex(done.stderr, r"\A(prnqtool: [^\x00-\x1f\x7f]{1,300}\n){1,2}\Z")
        self.assertEqual(self.tool.image(), before)
        self.assertFalse(os.path.exists(self.tool.path + "/hit"))

    def test_records_of_others_are_not_trusted(self):
        with open(self.tool.path + "/db/que.xdb", "rb") as database:
            good = database.read()
        for name, image in (("header", b"TXDBAA0\0" + bytes(8)), ("cut", good[:-3]), ("tail", good + b"\xff\xff12"),
                            ("junk", bytes(range(256)))):
            self.tool.write("db/que.xdb", image)
            for words in (["q"] + ADD.split(), ["keep", "-mq"], ["keep", "-x"], ["-x", "all"], ["-xdbps"]):
                with self.subTest(name, words=words):
                    self.run_words(*words, status=1)
                    with open(self.tool.path + "/db/que.xdb", "rb") as database:
                        self.assertEqual(database.read(), image)

    def test_changes_at_once_lose_nothing(self):
        children = [subprocess.Popen(self.tool.command("prnqtool", "q%d" % number, *ADD.split()), env=self.tool.env)
                    for number in range(12)]
        self.assertEqual([child.wait() for child in children], [0] * 12)
        self.assertEqual({key for key in self.tool.records() if " " not in key},
                         {"keep"} | {"q%d" % number for number in range(12)})
        self.assertEqual(len(self.run_words("-LQ").stdout.split()), 13)

    def test_other_writers_of_the_database_are_waited_for(self):
        path = self.tool.path + "/db/que.xdb"
        with open(path, "rb") as database:
            fcntl.flock(database, fcntl.LOCK_EX)  # as anybody may
            before = self.tool.image()
            done = self.add("q", status=1, PRNQ_LIMIT="1")
            self.assertIn("db/que.xdb is locked by process %d\n" % os.getpid(), done.stderr)
            self.assertEqual(self.tool.image(), before)
            child = subprocess.Popen(self.tool.command("prnqtool", "q", *ADD.split()), env=self.tool.env)
            with self.assertRaises(subprocess.TimeoutExpired):
                child.wait(0.3)
            xdb.write(path + "_other", [*xdb.parse(database.read()), (b"theirs", b"theirs h2 lp tv_a.ppd 0 0 0 0 0 1 \0")])
            os.rename(path + "_other", path)
        self.assertEqual(child.wait(20), 0)
        self.assertLessEqual({"keep", "theirs", "q"}, set(self.tool.records()))

    def test_links_in_open_directories_are_not_followed(self):
        victim = self.tool.path + "/victim"
        for name in ("db/que.xdb_new", "db/hostq_new"):
            with self.subTest(name):
                self.tool.write("victim", "untouched")
                os.symlink(victim, os.path.join(self.tool.path, name))
                self.add("q")
        os.unlink(self.tool.path + "/db/.prnq_lock")
        os.symlink(victim, self.tool.path + "/db/.prnq_lock")
        self.add("q", status=1)
        os.unlink(self.tool.path + "/db/.prnq_lock")
        log = tempfile.mktemp(prefix="prntest.", suffix=".log", dir="/tmp")
        os.symlink(victim, log)
        self.addCleanup(os.unlink, log)
        self.add("q", "-log", os.path.basename(log)[:-4])
        with open(victim) as kept:
            self.assertEqual(kept.read(), "untouched")

    def test_marker_file_chooses_the_store(self):
        self.tool.env.pop("PRNQ_STORE")
        self.tool.env.update(CUPS_SERVER=self.tool.path + "/nosuch.sock", PATH="/nonexistent")
        for marker, status in ((",CUPS", 1), (",Direct", 0), ("\nStandAlone\nBSD\n", 0), (",V5", 1)):
            with self.subTest(marker):
                self.tool.write(".pn_cfg", marker)
                self.run_words("x" + str(len(marker)), *ADD.split(), status=status)


if __name__ == "__main__":
    unittest.main()
