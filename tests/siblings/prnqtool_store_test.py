"""The queue tool's commands on both stores: the same scenario on a private scheduler and on the tool's own file."""
import os
import struct
import unittest

from cups import Scheduler
from tooldir import QueueTool, ToolDir

# Queue, words of the add line, main record behind the name, URI in CUPS (less its last part) and in the file.
ADDED = [
    ("printer", "-pm wp -lpd -hn h1 -psqn lp -fe -bp -ui", "h1 lp tv_a.ppd 0 1 1 1 0 1 ", "lpd://h1/lp"),
    ("server", "-pm wps -lpd -hn s1 -psqn rem-1 -ui", "s1 rem-1 tv_a.ppd 1 0 1 0 0 1 ", "lpd://s1/rem-1"),
    ("device", "-pm wp -lpd -dn /dev/lp7 -fe", "/dev/lp7 lp tv_a.ppd 2 0 0 1 0 1 ", "parallel:/dev/lp7"),
    ("serial", "-pm wp -dn /dev/ttyS9 -psqn lp", "/dev/ttyS9 lp tv_a.ppd 2 0 0 0 0 0 ", "serial:/dev/ttyS9?baud=9600"),
    ("psphost", "-pm psp -lpd -hn 10.1.2.3", "10.1.2.3 lp tv_a.ppd 3 0 0 0 0 1 ", "socket://10.1.2.3:9100"),
    ("ip6", "-pm psp -lpd -hn fe80::1", "fe80::1 lp tv_a.ppd 3 0 0 0 0 1 ", "socket://[fe80::1]:9100"),
]


class Scenario(QueueTool):
    """What holds for either store; self.uris() tells the host's queues."""

    def listed(self):
        return sorted(line.split(":")[0] for line in self.tool_run("-LQ").stdout.splitlines())

    def text(self, key):
        return self.tool.records().get(key, b"").decode()

    def count(self, printer):
        record = self.tool.records().get(printer + " count")
        return (struct.unpack("=i", record[:4])[0], record[4:].decode()) if record else None

    def setUp(self):
        self.tool_run("-x all")
        self.tool.write(".settings", "")
        self.assertEqual((self.listed(), self.tool.records()), ([], {}))

    def test_add_of_every_type(self):
        for name, tail, record, uri in ADDED:
            printer, remote = record.split()[:2]
            with self.subTest(name):
                self.add(name, tail)
                self.assertEqual(self.text(name), name + " " + record + "\0")
                self.assertEqual(self.count(printer), (1, "%s %s\0" % (printer, remote)))
                self.assertEqual(self.uris()[name], self.in_store(uri))
        self.assertEqual(self.listed(), sorted(row[0] for row in ADDED))
        self.assertEqual({key for key in self.tool.records() if "**" in key or key[0] == " "}, set())

    def test_copy(self):
        self.tool.write(".settings", "PageSize=Letter\n")
        self.tool.write(".bsettings", ".h1 20 Own\n")
        self.add("src", "-pm wp -lpd -hn h1 -psqn lp -fe -bp -ui -d -bps .bsettings")
        self.tool_run("new -log LOG -cl src -pm wps -hn s9 -psqn rem")
        self.assertEqual(self.text("new"), "new s9 rem tv_a.ppd 1 1 1 1 0 1 \0")
        self.assertEqual((self.text("new **"), self.text("new **banner")), ("PageSize=Letter\n", ".h1 20 Own\n\0"))
        self.assertEqual(self.text(" default"), "src\0")
        self.assertEqual(self.uris()["new"], self.in_store("lpd://s9/rem"))
        before = self.tool.image()
        self.tool_run("new2 -log LOG -cl nosuch -pm wp -hn h1 -psqn lp", status=1)
        self.assertEqual(self.tool.image(), before)

    def test_modify(self):
        self.tool.write(".settings", "PageSize=Letter\n")
        self.tool.write(".bsettings", ".h1 20 Own\n")
        self.add("q", "-pm psp -lpd -hn h1")
        self.tool_run("q -mq -log LOG -ui -fe -bp -d -fs .settings -bps .bsettings")
        self.assertEqual(self.text("q"), "q h1 lp tv_a.ppd 3 1 1 1 1 1 \0")
        self.assertEqual((self.text("q **"), self.text("q **banner")), ("PageSize=Letter\n", ".h1 20 Own\n\0"))
        self.assertEqual(self.text(" default"), "q\0")
        self.tool_run("q -mq -log LOG")
        self.assertEqual(self.text("q"), "q h1 lp tv_a.ppd 3 0 0 0 0 1 \0")
        self.assertEqual((self.text("q **"), self.text("q **banner"), self.text(" default")),
                         ("PageSize=Letter\n", "", ""))
        self.assertEqual(self.uris(), {"q": self.in_store("socket://h1:9100")})

    def test_delete_one_several_all(self):
        for name in "abcdef":
            self.add(name)
        self.tool_run("a -x -log LOG")
        self.tool_run("-x b")
        self.assertEqual((self.listed(), self.count("h1")[0]), (["c", "d", "e", "f"], 4))
        done = self.tool_run("-log LOG -xl c nosuch d", status=1)
        self.assertIn('queue "nosuch" does not exist', done.stderr)
        self.assertEqual(self.listed(), ["e", "f"])
        self.tool_run("-log LOG -x all")
        self.assertEqual((self.listed(), self.tool.records()), ([], {}))
        self.tool_run("e -x", status=1)

    def test_names_that_differ_by_case_or_are_unknown(self):
        self.add("Lp1")
        before = self.tool.image()
        self.assertIn("upper and lower case", self.add("lP1", status=1).stderr)
        self.tool_run("LP1 -cl Lp1 -pm psp -hn h2", status=1)
        self.tool_run("LP1 -mq -bp", status=1)
        self.tool_run("LP1 -x", status=1)
        self.tool_run("ghost -mq -ui -bp -d", status=1)
        self.assertEqual((self.tool.image(), self.listed()), (before, ["Lp1"]))


class OnCups(Scenario, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if Scheduler.missing():
            raise unittest.SkipTest(Scheduler.missing())
        cls.cups = cls.enterClassContext(Scheduler())
        cls.tool = cls.enterClassContext(ToolDir("prnqtool"))
        cls.tool.env = cls.cups.env()

    def uris(self):
        return self.cups.queues()

    @staticmethod
    def in_store(value):
        snmp = {"l": "?snmp=false", "s": "/?snmp=false"}
        return value + snmp[value[0]] if "://" in value else value


class OnFile(Scenario, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tool = cls.enterClassContext(ToolDir("prnqtool"))
        cls.tool.env.update(PRNQ_STORE="file", PRNQ_SPOOL=cls.tool.path + "/spool")

    def uris(self):
        with open(self.tool.path + "/db/hostq") as lines:
            return {line.split(": ")[0]: line.split()[1] for line in lines}

    @staticmethod
    def in_store(value):
        return value

    def test_spool_directory(self):
        self.add("q", "-pm wp -dn /dev/lp7")
        for change, directory in ("", "_dev_lp7"), ("q -mq -ui", "dev/lp7"):
            if change:
                self.tool_run(change)
            with open(self.tool.path + "/db/hostq") as lines:
                self.assertEqual(lines.read(), "q: parallel:/dev/lp7 %s/spool/%s/%s\n" %
                                 (self.tool.path, os.path.basename(self.tool.path), directory))


if __name__ == "__main__":
    unittest.main()
