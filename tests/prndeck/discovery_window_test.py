"""The window of the real program in a network of simulated printers: what a first start finds, what the discovery dialog changes,
and what is left of it in the next run. The simulator's log tells which printer a row of the list stands for."""
import contextlib
import sys
import tempfile
import time
import unittest
from pathlib import Path

import netns
import xdb
from prnsim import INCLUDE, SIMULATOR
from window_test import Deck
from xvfb import Display, missing, wait_for

reason = missing() or netns.enter()
if reason:
    print("skipped: " + reason)
    sys.exit(77)

FLEET = INCLUDE + """
subnet 10.71.1.0/24
subnet 10.71.2.0/24
printer 10.71.1.11 like tarvo-p340
  web on
  sysLocation.0 text "B\\xC3\\xBCro"
printer 10.71.1.12 like tarvo-c410
printer 10.71.1.5 like workstation
printer 10.71.2.6 like switch
printer 10.71.2.21 like tarvo-w760
printer 10.71.2.17 like tarvo-p210
  broadcast off
"""
CONSOLE, LOCALIZATION = "1.3.6.1.2.1.43.16.5.1.2.1.1", "1.3.6.1.2.1.43.7.1.1.3.1.1"
DOUBLE_CLICK = 0.25  # seconds: what comes sooner is a second click of the one before, wherever it is
CLICKS, PATIENCE = 6, 10  # seconds
FIRST_ROW, ROW = 11, 16  # middle of a list's first row, and the distance to the next
BROWSER = '#!/bin/sh\necho "$@" >>browsed\n'


def prepare(tool):
    tool.write("browser", BROWSER, 0o755)
    xdb.write(tool.path / "db" / "IPDisc.xdb", [(b"FavBrowser", b"./browser\0")])


class Discovery(unittest.TestCase):
    def setUp(self):
        self.display = Display(screen="1024x768x24", manager=True)
        self.addCleanup(self.display.close)
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.log = Path(scratch.name) / "log"
        fleet = Path(scratch.name) / "test.fleet"
        fleet.write_text(FLEET)
        simulator = net.simulate(SIMULATOR, str(fleet), "-l", str(self.log))
        simulator.__enter__()
        self.addCleanup(simulator.__exit__, None, None, None)

    def asked(self, name):
        """Addresses that were asked for the variable, in order."""
        return [line.split()[1] for line in self.log.read_text().splitlines() if line.split()[6] == name]

    def start(self, last, **more):
        self.last = last
        before = len(self.asked(LOCALIZATION))
        self.deck = Deck(self, self.display, **more)
        self.found(before)

    def found(self, before):
        """Waits for the end of a discovery, whose last host is asked for its last variable."""
        self.deck.wait_for(lambda: self.last in self.asked(LOCALIZATION)[before:], "a discovery")

    def records(self):
        return {key.decode(): data.decode() for key, data in xdb.read(self.deck.tool.path / "db" / "IPDisc.xdb")}

    def parts(self, window, count):
        return self.display.find_parts(window, count)

    def click_row(self, box, row):
        time.sleep(DOUBLE_CLICK)
        self.display.do("mousemove", box.x + 40, box.y + FIRST_ROW + row * ROW, "click", 1)

    def rows(self, count):
        """The addresses of the list's rows, when there are so many; a click below the last one selects nothing."""
        box = self.parts(self.parts(self.deck.window, 6)[2].id, 2)[-1]  # below the titles
        seen = []
        for row in [*range(count), count, 0]:
            before = len(self.asked(CONSOLE))
            selected = lambda: len(self.asked(CONSOLE)) > before
            # The list may be filled a moment after the last answer, and a click in front of that is lost.
            for _ in range(CLICKS):
                self.click_row(box, row)
                with contextlib.suppress(AssertionError):
                    row == count or wait_for(selected, "the selection", PATIENCE)
                if row == count or selected():
                    break
            if row < count:
                self.assertTrue(selected(), "row %i isn't selected" % row)
                seen += self.asked(CONSOLE)[before:]
        self.assertEqual(seen[count:], seen[:1], seen)
        return seen[:count]

    def dialog(self):
        self.display.alt("s")
        self.display.menu(self.deck.window)
        self.display.key("p")
        self.display.focused("Printer Discovery")
        return self.display.window("Printer Discovery")

    def page(self, window):
        """Parts of the page that is shown, below its hint: rows of numbers, the list, the row of buttons."""
        return self.display.parts(self.parts(window, 6)[4].id)[1:]

    def test_what_is_found_changed_and_kept(self):
        self.start("10.71.2.21", change=prepare)
        self.display.keep("discovery-first", self.deck.window)
        self.assertEqual(self.records()["SubnetList"], "10.71.1.1,255.255.255.0,1,0\n10.71.2.1,255.255.255.0,1,0\n")
        self.assertEqual(self.rows(3), ["10.71.1.11", "10.71.1.12", "10.71.2.21"])
        self.display.keep("discovery-selected", self.deck.window)
        buttons = self.parts(self.deck.window, 6)[-5:]
        self.display.click(buttons[3])
        self.agree_to_browser()
        self.display.click(buttons[3])
        self.deck.wait_for(lambda: self.deck.tool.read("browsed"), "the browser")
        self.assertEqual(self.deck.tool.read("browsed"), "http://10.71.1.11\n")

        self.change()
        stored = {"FavBrowser": "./browser\0", "IPaddr": ",10.71.1.12,10.71.2.17,",
                  "SubnetList": "10.71.2.0,255.255.255.0,0,1\n10.71.1.1,255.255.255.0,1,0\n10.71.2.1,255.255.255.0,0,0\n"}
        self.assertEqual(self.records(), stored)
        before, self.last = len(self.asked(LOCALIZATION)), "10.71.1.12"
        self.display.click(buttons[1])  # Refresh
        self.found(before)
        left = ["10.71.1.12", "10.71.2.17", "10.71.1.11"]  # single addresses come first
        self.assertEqual(self.rows(3), left)
        self.deck.press_exit()
        self.start("10.71.1.11", tool=self.deck.tool)
        self.assertEqual(self.rows(3), left)
        self.assertEqual(self.records(), stored)
        self.assertEqual(self.deck.said(), "")

    def agree_to_browser(self):
        """Anybody may have stored the command: root is shown it."""
        message = " " * 5
        self.display.keep("discovery-browser", self.display.window(message))
        self.display.key("Return")
        self.display.gone(message)
        self.display.focused("Web Browser")
        self.assertEqual(self.deck.tool.read("browsed"), "")
        self.display.key("Return")
        self.display.gone("Web Browser")

    def change(self):
        """Adds a subnet and disables it, scans, disables what the scan finds of it, adds addresses; OK."""
        window = self.dialog()
        address, mask, listed, buttons = self.page(window)
        add, _, switch, scan = self.display.parts(buttons.id)
        box = max(self.parts(listed.id, 2), key=lambda part: part.height)
        self.display.click(self.parts(address.id, 7)[0])
        self.display.do("type", "10.71.2.0")
        self.display.click(self.parts(mask.id, 7)[0])
        self.display.do("type", "255.255.255.0")
        self.display.click(add)
        for row in (2, 1):  # the new one, then one of the interfaces
            self.click_row(box, row)
            self.display.click(switch)
        self.display.keep("discovery-subnets", window)
        self.display.click(scan)  # takes that back; those of the interfaces now stand behind the user's
        self.click_row(box, 2)
        self.display.click(switch)
        self.display.click(self.parts(window, 6)[1])
        address, _, _ = wait_for(lambda: self.page(window) if len(self.page(window)) == 3 else None, "the addresses")
        for text in ("10.71.2.17", "10.71.1.12"):
            self.display.click(self.parts(address.id, 7)[0])
            self.display.do("type", text)
            self.display.key("Return")
        self.display.keep("discovery-addresses", window)
        self.display.click(self.display.parts(self.parts(window, 3)[-1].id)[1])  # OK, behind the logo
        self.display.gone("Printer Discovery")


if __name__ == "__main__":
    net = netns.Network()
    unittest.main()
