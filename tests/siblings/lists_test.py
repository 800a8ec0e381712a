"""Lists of queues and jobs for people and for programs, with queues and jobs of both stores side by side."""
import json
import os
import pwd
import subprocess
import unittest

from cups import Scheduler
from tooldir import QueueTool, ToolDir, built


class Lists(QueueTool, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if Scheduler.missing():
            raise unittest.SkipTest(Scheduler.missing())

    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnqtool", "prnout", "prnrm"))
        self.cups = self.enterContext(Scheduler())
        self.tool.env = self.cups.env(PRNQ_SPOOL=self.tool.path + "/spool")
        self.tool.write("settings", "PageSize=Letter\nDuplex=None\n")
        self.tool.write("titles", '.h1 20 Say "hi" \\ \xe4\n')
        self.tool.write("text", "%!PS\n1\n")
        self.tool_run("own -ppd tv_b.ppd -pm psp -dn /dev/nosuchdev -d", PRNQ_STORE="file")
        self.tool_run("net -ppd tv_a.ppd -pm wp -lpd -hn 127.0.0.1:9 -fe -ui -fs settings -bps titles")
        self.cups.run("lpadmin", "-p", "other", "-v", "socket://127.0.0.1:9", "-E")

    def queues(self):
        return {queue["queue"]: queue for queue in json.loads(self.tool_run("--json").stdout)}

    def test_queues(self):
        queues = self.queues()
        self.assertEqual(queues["other"], {"queue": "other", "store": "cups", "default": False, "record": False, "jobs": 0})
        self.assertEqual(queues["own"], {
            "queue": "own", "store": "file", "default": True, "record": True, "jobs": 0, "model": "Tarvo B", "ppd": "tv_b.ppd",
            "type": "psp", "host": None, "device": "/dev/nosuchdev", "remote": "lp", "lpd": False, "features": False,
            "banner": False, "interface": False, "settings": {}, "titles": None})
        net = queues["net"]
        self.assertEqual((net["model"], net["host"], net["lpd"], net["interface"]), ("Tarvo A", "127.0.0.1:9", True, True))
        self.assertEqual(net["settings"], {"PageSize": "Letter", "Duplex": "None"})
        self.assertEqual(net["titles"], [{"size": 20, "text": 'Say "hi" \\ \xe4'}, None, None])
        lines = self.tool_run("--list").stdout.splitlines()
        self.assertEqual(lines[0].split(), ["Queue", "Model", "Type", "Printer", "Remote", "Options", "Store", "Jobs"])
        self.assertEqual({line.index(" file " if line.startswith("own") else " cups ") for line in lines[1:]},
                         {lines[0].index(" Store")})

    def jobs(self, *words):
        done = self.tool.run("prnout", "-l", "--json", *words)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return json.loads(done.stdout)

    def remove(self, queue, name, status=0):
        self.assertEqual(self.tool.run("prnrm", queue, name).returncode, status, (queue, name))

    def test_jobs_and_their_removal(self):
        for queue in ("own", "own", "net", "net", "other", "other"):
            done = self.tool.run("prnout", "-d", queue, self.tool.path + "/text")
            self.assertEqual((done.returncode, done.stderr), (0, ""))
        jobs = self.jobs()
        user = pwd.getpwuid(os.getuid()).pw_name
        self.assertEqual({(job["user"], job["title"]) for job in jobs if job["queue"] != "other"}, {(user, "text")})
        self.assertEqual([(job["queue"], job["store"]) for job in jobs],
                         [("net", "cups")] * 2 + [("other", "cups")] * 2 + [("own", "file")] * 2)
        self.assertEqual({name: queue["jobs"] for name, queue in self.queues().items()}, {"own": 2, "net": 2, "other": 2})
        self.assertEqual(self.tool.run("prnout", "-l", "-d", "nosuch").returncode, 1)
        rows = self.tool.run("prnout", "-l", "-d", "own").stdout.splitlines()
        self.assertEqual([row.split()[:4] for row in rows[1:]],
                         [["own", job["job"], user, "7"] for job in jobs if job["queue"] == "own"])
        # As the list has it, as ".q" has it, and as the scheduler has it.
        for queue, forms in (("own", ("%s", "c%s")), ("net", ("%s", "c%s")), ("other", ("%s", "other-{}"))):
            for job, form in zip(self.jobs("-d", queue), forms):
                self.remove("net" if queue == "other" else "other" if queue == "net" else "net",
                            form.replace("%s", job["job"]).format(job["job"].lstrip("0")), status=1)
                self.remove(queue, form.replace("%s", job["job"]).format(job["job"].lstrip("0")))
        self.assertEqual(self.jobs(), [])


class Words(unittest.TestCase):
    def test_help_and_version_of_each(self):
        for program in ("prnqtool", "prnout", "prnrm", "prnpnxxtty", "v5driver", "driver"):
            for word, start in (("--help", "usage: %s "), ("--version", "%s ")):
                done = subprocess.run([built(program), word], cwd="/", stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                      env={}, timeout=30)
                self.assertEqual((done.returncode, done.stderr), (0, ""), (program, word))
                self.assertTrue(done.stdout.startswith(start % program), done.stdout)


if __name__ == "__main__":
    unittest.main()
