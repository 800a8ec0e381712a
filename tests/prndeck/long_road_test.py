"""The administrator's whole way in one run of the real program, by mouse and keys, in a network of simulated printers: what is found is
selected and looked at, gets a queue by the wizard, prints its test page and what a shell sends, the queue is copied, changed and
deleted with its copy, and the manual is read. Once on the tool's own store, once on a private scheduler."""
import tempfile
import unittest
from pathlib import Path

import discovery_window_test as discovery
import netns
import wizard_window_test as wizard
from cups import Scheduler
from prnsim import INCLUDE
from window_test import PRINTER

ADDRESS, OTHER = "10.71.1.11", "10.71.2.21"
TEST_PAGE = 0  # in the printer's menu
TITLE_LINE = b"(Whole way)"
PLAIN = b"%!PS-Adobe-3.0\n(plain) pop showpage\n"


class LongRoad(discovery.Discovery, wizard.Wizard):
    test_what_is_found_changed_and_kept = test_road = test_german = test_what_is_refused_is_said = None  # the bases' own

    def setUp(self):
        self.got = Path(self.enterContext(tempfile.TemporaryDirectory()))
        discovery.FLEET = INCLUDE + '''
subnet 10.71.1.0/24
subnet 10.71.2.0/24
printer %s like tarvo-p340
  lpd "%s"
printer 10.71.1.5 like workstation
printer %s like tarvo-w760
''' % (ADDRESS, self.got, OTHER)
        super().setUp()
        self.key, self.tool = self.display.key, wizard.Tool(self)
        self.language, self.words = "en", wizard.WORDS["en"]

    def start_deck(self):
        path = "%s:/usr/sbin:/usr/bin:/sbin:/bin" % self.tool.path  # where prnout is looked for
        discovery.Discovery.start(self, OTHER, tool=self.tool, **{**self.tool.env, "PATH": path})
        self.assertEqual(self.rows(2), [ADDRESS, OTHER])
        self.focused(self.words["title"])

    def look_at_sheet(self):
        title = "Printer Properties - Tarvo P340 PostScript"
        self.display.click(self.parts(self.deck.window, 6)[-1])
        self.display.keep("road-sheet", self.display.window(title))
        self.focused(title)
        self.leave(title)

    def add_for_selected(self):
        """The host is the selected printer's."""
        self.open("add")
        self.type("road")
        self.tabs(10, "Return")
        self.shown("banner", self.words["banner"])
        self.type("Whole way")
        self.tabs(7, "Return")
        self.display.gone(self.words["banner"])
        self.focused(self.words["add"][1])
        self.tabs(1, "Return")
        self.agree("road")
        self.assertIn(ADDRESS, self.tool.record("road"))

    def arrived(self, count):
        """What came last, when so much came; the simulator writes a file as it comes."""
        self.deck.wait_for(lambda: len(list(self.got.glob("*.prn"))) == count, "job %i at the printer" % count)
        last = max(self.got.glob("*.prn"), key=lambda path: (path.stat().st_mtime_ns, path.name))
        self.deck.wait_for(lambda: b"showpage" in last.read_bytes().rpartition(TITLE_LINE)[2], "its end")
        return last.read_bytes()

    def send_test_page(self):
        self.display.click(self.deck.bar()[PRINTER])
        self.display.click(self.display.menu(self.deck.window)[TEST_PAGE])
        self.shown("road-page", "Send Test Page")
        self.key("Home", "Return")
        self.display.gone("Send Test Page")
        page = (self.tool.path / "TestPage.ps").read_bytes()
        self.deck.wait_for(lambda: page in self.arrived(1), "the whole page")
        self.assertLess(self.arrived(1).index(TITLE_LINE), self.arrived(1).index(page))

    def copy_change_delete(self):
        self.choose("copy", "space")
        self.type("second")
        self.tabs(4, "Return")  # Apply, behind the choices and the host, which are the first one's
        self.agree("road", "second")
        self.choose("modify", "Down", "space")
        self.tabs(3)
        self.pick("Down")
        self.key("Return")  # the default printer; Apply is the default button
        self.deck.wait_for(lambda: self.tool.record(" default").rstrip("\0") == "second", "the default queue")
        self.open("delete")
        self.key("space", "Down", "space")
        self.tabs(1, "Return")
        self.agree()

    def read_manual(self):
        self.key("F1")
        self.focused(wizard.MANUAL)
        self.leave(wizard.MANUAL)

    def walk(self, send):
        self.start_deck()
        self.look_at_sheet()
        self.add_for_selected()
        self.send_test_page()
        (self.tool.path / "plain.ps").write_bytes(PLAIN)
        send(str(self.tool.path / "plain.ps"))
        self.deck.wait_for(lambda: self.arrived(2).endswith(PLAIN), "what the shell sent")
        self.assertIn(TITLE_LINE, self.arrived(2))
        self.copy_change_delete()
        self.read_manual()
        self.assertEqual(self.deck.said(), "")
        self.deck.press_exit()

    def test_own_store(self):
        self.walk(lambda path: self.tool.run("prnout", "-droad", path))

    def test_scheduler(self):
        if Scheduler.missing():
            self.skipTest(Scheduler.missing())
        cups = self.enterContext(Scheduler())
        self.tool.env |= {name: value for name, value in cups.env().items() if name.startswith(("CUPS_", "PRNQ_"))}
        (self.tool.path / ".pn_cfg").write_text(",CUPS,\n")
        self.tool.stored = lambda: sorted(cups.queues())

        def send(path):
            done = cups.run("lp", "-s", "-d", "road", path)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.walk(send)


if __name__ == "__main__":
    discovery.net = netns.Network()
    unittest.main()
