"""Bad words, hostile values and faults around the queue tool's own files, on a host without a print system."""
import fcntl
import os
import subprocess
import tempfile
import time
import unittest

import xdb
from tooldir import QueueTool, ToolDir

ADD = "-ppd tv_a.ppd -pm wp -hn h1 -psqn lp"
HOSTILE = ["", " ", "a b", "a;touch hit", "$(touch hit)", "`touch hit`", "a'b", 'a"b', "a\\b", "a\nb", "%s%n", "../x",
           "/", "-x", "a/b", "\xe4\xf6", "a|b", "x" * 4000, "\x01", "q:"]

# What is wrong with a line, and words of the answer.
REFUSED = [
    ("", "nothing to do"),
    ("-nosuch", "option -nosuch is unknown"),
    ("q word " + ADD, 'word "word" has no option in front'),
    ("q -mq -x", "don't go together"),
    ("q -LQ", "takes no queue"),
    ("-mq", "name must come first"),
    ("q -mq -hn h", "-hn doesn't belong"),
    ("q -hn h -ppd", "-ppd needs a value"),
    ("q -ppd tv_a.ppd", "either -hn or -dn"),
    ("q -pm wp -hn h", "-ppd is needed"),
    ("q -ppd tv_a.ppd -pm wps -hn h", "-psqn is needed"),
    ("q -ppd tv_a.ppd -pm wps -dn /dev/lp0 -psqn x", "told by -hn"),
    ("q -ppd tv_a.ppd -pm other -hn h", "printing model"),
    ("q -ppd nosuch.ppd -hn h", "can't open ppd/nosuch.ppd"),
    ("q -ppd tv_a.ppd -hn 0.0.0.0", "no printer's address"),
    ("q -ppd tv_a.ppd -hn h:70000", "no port"),
    ("q -ppd tv_a.ppd -hn [::1", "can't be read"),
    ("q -ppd tv_a.ppd -dn /etc/passwd", "is a file or directory"),
    ("q -ppd tv_a.ppd -dn /dev/../etc/nosuch", 'leads through ".."'),
    ("q -ppd tv_a.ppd -hn h -psqn fifteen-letters", "more than 14"),
    ("fifteen-letters " + ADD, "more than 14"),
    ("_prnq_probe " + ADD, "kept for the tool"),
    ("q -bps nosuch " + ADD, "can't open nosuch"),
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

    def test_a_damaged_queue_record(self):
        xdb.write(self.tool.path + "/db/que.xdb", [(b"keep", b"keep /etc/../x lp ../../x 9 1 1 1 1 1 \0")])
        self.run_words("keep", "-mq", "-bp", status=1)
        self.run_words("new", "-cl", "keep", "-hn", "h", status=1)
        self.run_words("keep", "-x")
        self.assertEqual(self.tool.records(), {})

    def test_changes_at_once_lose_nothing(self):
        children = [subprocess.Popen(self.tool.command("prnqtool", "q%d" % number, *ADD.split()), env=self.tool.env)
                    for number in range(12)]
        self.assertEqual([child.wait() for child in children], [0] * 12)
        self.assertEqual({key for key in self.tool.records() if " " not in key},
                         {"keep"} | {"q%d" % number for number in range(12)})
        self.assertEqual(len(self.run_words("-LQ").stdout.split()), 13)

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

    def test_waits_for_another_change_but_not_for_ever(self):
        with open(self.tool.path + "/db/.prnq_lock") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            child = subprocess.Popen(self.tool.command("prnqtool", "q", *ADD.split()), env=self.tool.env)
            time.sleep(0.3)
            self.assertIsNone(child.poll())
            self.assertEqual(self.run_words("-LQ").stdout, "keep:\n")  # a list needs no lock
        self.assertEqual(child.wait(20), 0)

    def test_started_by_a_link_and_from_elsewhere(self):
        link = self.tool.path + "/ppd/link"
        os.symlink("../prnqtool", link)
        done = subprocess.run([link, "-LQ"], cwd="/", env=self.tool.env, capture_output=True, text=True)
        self.assertEqual((done.stdout, done.stderr), ("keep:\n", ""))

    def test_marker_file_chooses_the_store(self):
        self.tool.env.pop("PRNQ_STORE")
        self.tool.env.update(CUPS_SERVER=self.tool.path + "/nosuch.sock", PATH="/nonexistent")
        for marker, status in ((",CUPS", 1), (",Direct", 0), ("\nStandAlone\nBSD\n", 0), (",V5", 1)):
            with self.subTest(marker):
                self.tool.write(".pn_cfg", marker)
                self.run_words("x" + str(len(marker)), *ADD.split(), status=status)

    def test_help_and_version(self):
        self.assertIn("-xdbps", self.run_words("--help").stdout)
        self.assertRegex(self.run_words("--version").stdout, r"^prnqtool \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    unittest.main()
