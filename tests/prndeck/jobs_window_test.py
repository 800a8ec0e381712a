"""The windows of waiting jobs over real stores, the tool's own and a scheduler's: jobs that prnout and lp sent to a printer that is
off are counted and shown, one is removed, then all. No entry of the menu is seen yet, so PrdJobsTest presses it in this tool directory."""
import os
import re
import subprocess
import unittest
from pathlib import Path

from cups import Scheduler
from wizard_window_test import Tool
from xvfb import wait_for

PROGRAM = Path(os.environ["PRN_BUILD"]) / "tests" / "prndeck.PrdJobsTest"
OFF = {"office": "127.0.0.1:9", "hall": "127.0.0.2:9"}  # nothing listens there


class Jobs(unittest.TestCase):
    def prepare(self, **env):
        self.tool = Tool(self)
        self.spool = self.tool.path.parent / "spool"
        self.spool.mkdir()
        self.tool.env = {**env, "LANG": "C", "PRNQ_SPOOL": str(self.spool / "Tarvo"), "PRN_ROAD_SPOOL": str(self.spool), "PRNQ_WATCH": "0.1"}
        self.page = self.tool.path / "TestPage.ps"

    def add(self):
        self.addCleanup(self.tool.run, "prnqtool", "-x", "all")
        for name, host in OFF.items():
            self.tool.run("prnqtool", name, "-ppd", "tv_p340.ppd", "-pm", "wp", "-hn", host)

    def listed(self):
        return "".join(path.read_text() for path in self.spool.rglob(".q")).splitlines()

    def road(self):
        """What is shown at first, and behind the first removal: names of jobs."""
        done = subprocess.run([PROGRAM, "--gtest_also_run_disabled_tests", "--gtest_filter=DISABLED_JobsRoad.*"], cwd=self.tool.path,
                              env={**os.environ, **self.tool.env}, capture_output=True, encoding="latin-1", timeout=200)
        self.assertEqual(done.returncode, 0, done.stdout[-3000:] + done.stderr[-3000:])
        rows = {word: re.findall(r"(\S+) +(\S+) +(\d+)\|", row) for word, row in re.findall(r"^(shown|left) (.*)$", done.stdout, re.M)}
        self.assertEqual(rows["left"], rows["shown"][1:])
        return rows["shown"]

    def test_own_store(self):
        self.prepare()
        (self.tool.path / ".pn_cfg").write_text(",CUPS,StandAlone,\n")
        self.add()
        for _ in range(3):
            self.tool.run("prnout", "-doffice", str(self.page))
        shown = self.road()
        self.assertEqual([name for _, name, _ in shown], ["A00001", "A00002", "A00003"])
        self.assertTrue(all(int(size) > self.page.stat().st_size for _, _, size in shown), shown)
        self.assertEqual(self.listed(), [])

    def test_scheduler(self):
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        cups = self.enterContext(Scheduler())
        self.prepare(**{name: value for name, value in cups.env().items() if name.startswith(("CUPS_", "PRNQ_"))})
        (self.tool.path / ".pn_cfg").write_text(",CUPS,\n")
        self.add()
        self.assertEqual(set(cups.queues()), {"office", "hall"})
        for _ in range(2):
            self.tool.run("prnout", "-doffice", str(self.page))
        cups.run("lp", "-d", "office", str(self.page))
        wait_for(lambda: len(self.listed()) == 3, "the job that lp sent")
        self.assertEqual([int(name) for _, name, _ in self.road()], [1, 2, 3])
        self.assertEqual(cups.run("lpstat", "-o").stdout, "")


if __name__ == "__main__":
    unittest.main()
