"""Disks without room, descriptors, memory and other means that run out: what is answered as done is done, what is refused leaves
all as it was and says why."""
import contextlib
import os
import resource
import shutil
import subprocess
import unittest

from disk import mount, private_mounts
from fakeprinter import free_port
from kill_test import RECORDS, TAIL
from spooltool import SpoolTool
from tooldir import ToolDir, read_records

RELEASE = os.path.join(os.environ["PRN_BUILD"], "..", "release")
ROOM = "No space left on device"


class Limits(SpoolTool, unittest.TestCase):
    LINES = ["prnqtool new " + TAIL, "prnqtool keep -mq -ui -bp -bps titles", "prnqtool q -x", "prnqtool -dbps titles",
             "prnout -dq FILE", "prnrm q JOB"]

    jobs = ("", "")

    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnqtool", "prnout", "prnrm"))
        # The leak checker has needs of its own.
        self.tool.env.update(PRNQ_STORE="file", ASAN_OPTIONS="detect_leaks=0", PRNQ_SPOOL=self.tool.path + "/spool", PRNQ_RETRY="0.05", PRNQ_LIMIT="2")
        self.tool.write("titles", ".h1 20 Room\n")
        self.tool.write("settings", "PageSize=A4\n")
        self.tool.write("job", "a job\n" * 1500)

    def begin(self):
        """Two queues and two jobs that wait; again brings them back."""
        if not hasattr(self, "here"):
            self.here = "127.0.0.1:%d" % free_port()
            self.addCleanup(self.end_jobs)
        self.tool.run("prnqtool", "-xl", "new", "q")
        for name in ("keep", "q"):
            self.add(name, "-pm wp -hn " + self.here)
        self.tool.run("prnqtool", "-xdbps")
        for _ in range(2):
            self.assertEqual(self.tool.run("prnout", "-dq", self.tool.path + "/job").returncode, 0)
        self.jobs = self.names(self.here)
        self.assertEqual(len(self.jobs), 2)

    def state(self):
        files = {name for name in os.listdir(self.spool(self.here)) if not name.startswith(".")}
        return self.tool.records(), self.tool.image()[1], self.names(self.here), files

    def run_line(self, line, **more):
        program, *words = line.replace("FILE", self.tool.path + "/job").replace("JOB", self.jobs[1]).split()
        return subprocess.run(self.tool.command(program, *words), env=self.tool.env, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, **more)

    def try_all(self, what, reasons, short=contextlib.nullcontext, lines=LINES, **more):
        """Runs each line while means are short; how many were refused. One that was done must have changed something."""
        refused = 0
        for line in lines:
            with self.subTest(line, left=what):
                before = self.state()
                with short():
                    done = self.run_line(line, **more)
                after = self.state()
                self.assertIn(done.returncode, (0, 1), done.stderr)
                self.assertEqual(after == before, done.returncode == 1, done.stderr)
                self.assertEqual([name for name in os.listdir(self.tool.path + "/db") if name.endswith("_new")], [])
                for name in after[2]:
                    self.assertEqual(os.path.getsize("%s/d%s" % (self.spool(self.here), name)), 9000)
                if done.returncode == 0:
                    self.begin()
                    continue
                refused += 1
                self.assertRegex(done.stderr, "\\A((prn[a-z]+|ERROR): [^\n]{1,300}\n+)+\\Z")
                self.assertRegex(done.stderr, reasons)
        return refused

    def fill(self, options, take):
        """Takes all but a few pages or inodes of the file systems of the records and of the spool."""
        if reason := private_mounts():
            self.skipTest(reason)
        paths = [self.tool.path + "/" + name for name in ("db", "spool")]
        for path in paths:
            os.makedirs(path, exist_ok=True)
            self.assertIsNone(mount("-t", "tmpfs", "-o", "mode=755," + options, "none", path))
            self.addCleanup(subprocess.run, ["umount", "-l", path])
        self.begin()

        @contextlib.contextmanager
        def short():
            for path in paths:
                take(path, left)
            yield
            for path in paths:
                shutil.rmtree(path + "/filler")

        refused = 0
        for left in range(6):
            refused += self.try_all(left, ROOM, short)
        self.assertGreater(refused, 5)

    def test_no_room(self):
        def take(path, pages):
            os.mkdir(path + "/filler")
            room = os.statvfs(path)
            with open(path + "/filler/all", "wb") as file:
                file.write(bytes(max(room.f_bfree - pages, 0) * room.f_bsize))

        self.fill("size=256k", take)

    def test_no_inodes(self):
        def take(path, inodes):
            os.mkdir(path + "/filler")
            for number in range(max(os.statvfs(path).f_ffree - inodes, 0)):
                open("%s/filler/%d" % (path, number), "w").close()

        self.fill("nr_inodes=40", take)

    def limit(self, kind, values, reasons, least):
        self.begin()
        refused = 0
        for value in values:
            refused += self.try_all(value, reasons, preexec_fn=lambda: resource.setrlimit(kind, (value, value)))
        self.assertGreaterEqual(refused, least)

    def test_no_descriptors(self):
        self.limit(resource.RLIMIT_NOFILE, range(4, 12), "Too many open files", 10)

    def test_files_that_may_not_grow(self):
        self.limit(resource.RLIMIT_FSIZE, (0, 100, 5000), "File too large", 10)

    def test_no_memory(self):
        """By the release, if it is there: the sanitizers' memory knows no limit."""
        programs = [os.path.join(RELEASE, "siblings", name) for name in ("prnqtool", "prnout", "prnrm")]
        if not all(map(os.path.exists, programs)):
            self.skipTest("there is no release build beside this one")
        for program in programs:
            shutil.copy(program, self.tool.path)
        least = 4 << 20  # what a program needs to start
        starts = lambda name: self.run_line(name + " --version", preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (least, least)))
        while any(starts(name).returncode for name in ("prnqtool", "prnout", "prnrm")):
            least += 128 << 10
        self.begin()
        queues = self.tool.path + "/db/hostq"
        with open(queues, "a") as lines:
            lines.writelines("x%d: socket://h:9100/ /%s\n" % (number, "x" * 60) for number in range(15000))
        self.limit(resource.RLIMIT_AS, range(least, least + (4 << 20), 1 << 19), "memory", 5)
        with open(queues) as lines:
            kept = [line for line in lines if not line.startswith("x")]
        with open(queues, "w") as lines:
            lines.writelines(kept)

    def test_twenty_writers(self):
        self.begin()
        words = [self.tool.command("prnqtool", "w%d" % number, *"-ppd tv_a.ppd -pm wp -hn h1".split()) for number in range(8)]
        words += [[RECORDS, self.tool.path, verb, "key%d" % number, "A"] for number in range(6) for verb in ("put", "image-put")]
        writers = [subprocess.Popen(each, env=self.tool.env) for each in words]
        self.assertEqual([writer.wait(60) for writer in writers], [0] * 20)
        wanted = {"keep", "q"} | {"w%d" % number for number in range(8)} | {"key%d" % number for number in range(6)}
        self.assertEqual({key for key in read_records(self.tool.path + "/db/que.xdb") if " " not in key}, wanted)
        self.assertEqual(len(self.tool_run("-LQ").stdout.split()), 10)


if __name__ == "__main__":
    unittest.main()
