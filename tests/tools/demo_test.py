"""The demo: what it lists, its windows, and that nothing of it is left, also when it is killed."""
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from cups import Scheduler
from xvfb import Display, missing, wait_for

DEMO = [sys.executable, "-B", str(Path(__file__).resolve().parent.parent.parent / "tools/demo.py")]
LINES = ("10.71.1.11      lobby.example.com         yes      Tarvo P340 PostScript",
         "10.71.1.6       10.71.1.6                 no       Switch, 24 ports",
         "10.71.2.22      10.71.2.22                yes      Tarvo X150")


def children(pid):
    return [int(word) for word in subprocess.run(["pgrep", "-P", str(pid)], capture_output=True, text=True).stdout.split()]


class Demo(unittest.TestCase):
    def test_lists_the_house(self):
        done = subprocess.run([*DEMO, "sh", "-c", "exit 3"], capture_output=True, text=True, timeout=120)
        if done.stderr.startswith("The demo needs a network"):
            self.skipTest(done.stderr.strip())
        self.assertEqual((done.returncode, done.stderr), (3, ""))
        for line in LINES:
            self.assertIn(line, done.stdout.splitlines())
        self.assertRegex(done.stdout, r"\n\d+ printers, 4 other hosts, 1 that answered once and never again.\n$")

    def test_leaves_nothing_when_it_is_killed(self):
        env = {**os.environ, "DISPLAY": ""}
        with subprocess.Popen(DEMO, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=env) as demo:
            if not demo.stdout.readline():
                self.skipTest(demo.stderr.read().strip())
            started = children(demo.pid)
            self.assertGreater(len(started), 0)
            os.kill(demo.pid, signal.SIGKILL)
            end = time.monotonic() + 10
            while not all(Scheduler.ended(pid) for pid in started):
                self.assertLess(time.monotonic(), end, started)
                time.sleep(0.01)

    def test_another_host_s_display(self):
        done = subprocess.run(DEMO, capture_output=True, text=True, timeout=120, env={**os.environ, "DISPLAY": "localhost:10.0"})
        if done.stderr.startswith("The demo needs a network"):
            self.skipTest(done.stderr.strip())
        self.assertIn("localhost:10.0 is another host's", done.stdout)
        self.assertEqual(done.returncode, 0)

    @unittest.skipIf(missing(), missing())
    def test_windows(self):
        with Display() as display, tempfile.TemporaryDirectory() as scratch:
            env = display.env(TMPDIR=scratch, LANG="C")
            with subprocess.Popen(DEMO, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=env) as demo:
                if not demo.stdout.readline():
                    self.skipTest(demo.stderr.read().strip())
                wait_for(lambda: display.windows("Tarvo Printer Administration"), "the window", 180)
                deck = next(Path(scratch).glob("prndeck-demo.*")) / "deck"
                self.assertEqual(sorted(line.split(":")[0] for line in (deck / "db/hostq").read_text().splitlines()),
                                 ["graphics", "lobby", "night-run"])
                demo.terminate()
                self.assertEqual(demo.wait(30), 128 + signal.SIGTERM)
            wait_for(lambda: not display.windows("Tarvo Printer Administration"), "the window to go")
            self.assertEqual(os.listdir(scratch), [])
        self.assertFalse(Path("/var/spool/Tarvo/deck").exists())


if __name__ == "__main__":
    unittest.main()
