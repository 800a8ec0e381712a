"""A host that is switched off: what was answered as done has reached the disk, and an end at any moment leaves records and jobs
whole. A sample of the moments, unless PRN_KILL=all is in the environment."""
import os
import signal
import subprocess
import unittest

import kill_test
from disk import Disk
from fakeprinter import free_port
from spooltool import until
from tooldir import read_records


class Cut:
    """For a case of kill_test: where a program is ended, the host is switched off as well."""

    def setUp(self):
        super().setUp()
        if Disk.missing():
            self.skipTest(Disk.missing())
        for name in ("db", "spool"):
            os.makedirs(self.tool.path + "/" + name, exist_ok=True)
        os.mkdir(self.tool.path + "/kept")
        self.disk = self.enterContext(Disk(self.tool.path + "/kept/image", self.tool.path + "/db", self.tool.path + "/spool"))

    def end_detached(self):
        for pid in self.detached():
            os.kill(pid, signal.SIGKILL)
        self.assertTrue(until(lambda: not self.detached()))

    def ready(self):
        self.disk.sync()

    def ended(self):
        self.disk.cut(self.end_detached)


class Records(Cut, kill_test.Records):
    pass


class OwnStore(Cut, kill_test.OwnStore):
    pass


class Jobs(Cut, kill_test.Jobs):
    UNKNOWN = (*kill_test.Jobs.UNKNOWN, "fsync")  # the removal isn't on the disk yet


class Answers(Cut, kill_test.Kills, unittest.TestCase):
    def test_what_was_done_stays_done(self):
        port = free_port()
        here = "127.0.0.1:%d" % port
        self.tool.write("job", "a job\n" * 1000)
        state = lambda: (self.tool.image(), self.names(here))
        for line in ("prnqtool keep -ppd tv_a.ppd -pm wp -hn %s -d" % here, "prnqtool q " + kill_test.TAIL, "prnqtool keep -mq -ui -d",
                     "prnqtool copy -cl q -pm wp -hn h5", "prnqtool -dbps titles", "prnqtool -xl q copy", "prnqtool -xdbps",
                     "prnout -dkeep job", "prnout -dkeep -DL job", "prnout -dkeep job", "prnrm keep A00002", "prnqtool keep -x"):
            program, *words = line.split()
            with self.subTest(line):
                done = self.tool.run(program, *words, PrnOutFileSourceDir=self.tool.path)
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                before = state()
                self.ended()
                self.assertEqual(state(), before)
                for name in before[1]:
                    self.assertEqual(os.path.getsize("%s/d%s" % (self.spool(here), name)), 6000)
        self.assertEqual(self.names(here), [])

    def test_record_layer(self):
        path = self.tool.path + "/db/que.xdb"
        for line in ("put one B", "image-put two C", "copy one three", "delete one x", "image-prefix t x"):
            with self.subTest(line):
                subprocess.run([kill_test.RECORDS, self.tool.path, *line.split()], check=True)
                before = read_records(path)
                self.ended()
                self.assertEqual(read_records(path), before)


if __name__ == "__main__":
    unittest.main()
