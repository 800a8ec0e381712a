"""The property sheet and the reset in the real program, by mouse and keys, in a network of simulated printers: every page is read
when it is turned to, what is typed is set, what a refused set says, a reset that is asked for and waited for."""
import subprocess
import sys
import unittest

import discovery_window_test as discovery
import netns
from prnsim import INCLUDE, SIMULATOR
from xvfb import wait_for

discovery.FLEET = INCLUDE + """
subnet 10.71.1.0/24
subnet 10.71.2.0/24
printer 10.71.1.11 like tarvo-c650
  sysLocation.0 text "B\\xC3\\xBCro" rw keep
  sysContact.0 text "fixed"
  reset-time 13000
printer 10.71.2.21 like tarvo-w760
"""
MIB, PRT = "1.3.6.1.2.1", "1.3.6.1.2.1.43"
STATUS, SETTINGS = 0, 1  # outer tabs
SHEET = {"en": "Printer Properties - Tarvo C650", "de": "Druckereigenschaften - Tarvo C650"}
# The inner tabs of the first outer one, with a variable that each reads.
PAGES = [("console", PRT + ".17.6.1.5.1.1"), ("input", PRT + ".8.2.1.13.1.1"), ("supplies", PRT + ".11.1.1.6.1.1"),
         ("output", PRT + ".9.2.1.7.1.1"), ("general", MIB + ".25.2.3.1.5.1"), ("interface", MIB + ".2.2.1.2.1")]
NETWORK = [("ip", MIB + ".4.3.0"), ("udp", MIB + ".7.1.0"), ("snmp-in", MIB + ".11.1.0"), ("snmp-out", MIB + ".11.2.0")]
TAB_HEIGHT, STRIP_HEIGHT = range(28, 41), 6


class Sheet(discovery.Discovery):
    test_what_is_found_changed_and_kept = None  # the base's own

    def open(self, language="en", **more):
        self.start("10.71.2.21", **more)
        self.assertEqual(self.rows(2), ["10.71.1.11", "10.71.2.21"])
        self.display.click(self.parts(self.deck.window, 6)[-1])
        self.window = self.display.window(SHEET[language])

    def tabs(self, window):
        """The buttons of the tab forms below a window, a list for each form."""
        parts = self.display.parts(window)
        boxes = [part for part in parts if part.height in TAB_HEIGHT]
        strips = [part for part in parts if part.height == STRIP_HEIGHT]
        here = [[self.display.parts(box.id)[0] for box in boxes]] if strips and len(boxes) == len(strips) else []
        return here + [form for part in parts for form in self.tabs(part.id)]

    def turn(self, tab, name, variable):
        before = len(self.asked(variable))
        self.display.click(tab)
        self.deck.wait_for(lambda: len(self.asked(variable)) > before, "the page " + name)
        self.display.keep("sheet-%s-%s" % (name, self.language), self.window)

    def turn_all(self, language, **more):
        self.language = language
        self.open(language, **more)
        tabs = {len(form): form for form in self.tabs(self.window)[1:]}
        for place, (name, variable) in list(enumerate(PAGES))[1:] + [(0, PAGES[0])]:
            self.turn(tabs[6][place], name, variable)
        self.display.click(tabs[6][5])
        for place, (name, variable) in enumerate(NETWORK, 1):
            self.turn(tabs[5][place], name, variable)
        self.turn(self.tabs(self.window)[0][SETTINGS], "contact", PRT + ".5.1.1.5.1")
        self.turn(tabs[2][1], "channels", PRT + ".14.1.1.3.1.18")
        geometry = self.display.read("xwininfo", "-frame", "-id", self.window)
        width, height = (int(line.split(":")[1]) for line in geometry.splitlines() if line.strip().startswith(("Width", "Height")))
        self.assertTrue(width <= 1024 and height <= 768, geometry)

    def press(self, place):
        """A button of the sheet's last row, behind the logo."""
        row = self.display.parts(self.parts(self.window, 3)[-1].id)
        self.display.click(sorted(row, key=lambda part: part.x)[place])

    def test_pages_and_what_is_set(self):
        self.turn_all("en")
        self.display.click([form for form in self.tabs(self.window)[1:] if len(form) == 2][0][0])
        fields = self.fields()
        self.display.click(fields[1])
        self.display.key("End")
        self.display.do("type", " 7")
        self.display.click(fields[2])
        self.display.do("type", "X")
        self.display.key("Return")  # applies
        self.deck.wait_for(lambda: self.display.windows("Printer Properties"), "the message of the refused contact")
        self.display.keep("sheet-refused", self.display.window("Printer Properties"))
        sets = [line.split()[6] for line in self.log.read_text().splitlines() if " set " in line]
        self.assertEqual(len([name for name in sets if name.startswith(MIB + ".1.6.0=")]), 1)
        self.assertEqual(len([name for name in sets if name.startswith(MIB + ".1.4.0=")]), 12)
        self.assertEqual(len(sets), 13)
        read = ["snmpget", "-v1", "-c", "rdcomm", "-Oxqv", "10.71.1.11", MIB + ".1.6.0"]
        stored = subprocess.run(read, capture_output=True, text=True, timeout=30).stdout
        self.assertEqual(bytes.fromhex(stored.strip('" \n')).decode(), "B\xfcro 7")
        self.display.focused("Printer Properties")
        self.display.key("Return")
        self.display.gone("Printer Properties")
        self.press(4)
        self.display.focused("prndeck Help")
        self.display.key("Escape")
        self.display.gone("prndeck Help")
        self.press(3)
        self.display.gone(SHEET["en"])
        self.assertEqual(self.deck.said(), "")

    def fields(self):
        """The five fields of the contact page."""
        def search(window):
            parts = self.display.parts(window)
            rows = [part for part in parts if len(self.display.parts(part.id)) == 2]
            if len(rows) == len(parts) == 5:
                return [max(self.display.parts(row.id), key=lambda part: part.width) for row in rows]
            return next((found for part in parts for found in [search(part.id)] if found), [])
        return wait_for(lambda: search(self.window), "the contact page")

    def test_german(self):
        self.turn_all("de", title="Tarvo-Druckerverwaltung", LANG="de_DE.UTF-8")
        self.assertEqual(self.deck.said(), "")

    def is_back(self):
        """Whether the console was read again behind the reset."""
        lines = [line.split() for line in self.log.read_text().splitlines()]
        behind = lines[max(place for place, line in enumerate(lines) if line[3] == "set"):]
        return any(line[6] == discovery.CONSOLE and line[7] == "sent" for line in behind)

    def test_reset(self):
        self.start("10.71.2.21")
        self.rows(2)
        self.display.alt("p")
        self.display.menu(self.deck.window)
        self.display.key("r")
        self.display.focused("Reset Printer")
        self.display.keep("reset-question")
        self.display.key("Return")
        window = self.display.window("Printer Reset")
        self.display.keep("reset-wait", window)
        self.deck.wait_for(self.is_back, "the printer to be back")
        self.display.focused("Printer Reset")
        self.display.keep("reset-done", window)
        self.display.key("Escape")
        self.display.gone("Printer Reset")
        self.assertEqual(self.deck.said(), "")


if __name__ == "__main__":
    discovery.net = netns.Network()
    unittest.main()
