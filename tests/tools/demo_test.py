"""The demo: what it lists, and that nothing of it is left, also when it is killed."""
import os
import signal
import subprocess
import sys
import time
import unittest
from pathlib import Path

from cups import Scheduler

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
        with subprocess.Popen(DEMO, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as demo:
            if not demo.stdout.readline():
                self.skipTest(demo.stderr.read().strip())
            started = children(demo.pid)
            self.assertGreater(len(started), 0)
            os.kill(demo.pid, signal.SIGKILL)
            end = time.monotonic() + 10
            while not all(Scheduler.ended(pid) for pid in started):
                self.assertLess(time.monotonic(), end, started)
                time.sleep(0.01)


if __name__ == "__main__":
    unittest.main()
