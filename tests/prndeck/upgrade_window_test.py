"""Firmware for the selected printer, by mouse in the real program, in a network of simulated printers: the file is looked for with the
filter, a file of another model is refused and nothing is sent, that of the model arrives at the printer as it is."""
import os
import tempfile
import unittest
from pathlib import Path

import discovery_window_test as discovery
import netns
import wizard_window_test as wizard
from prnsim import INCLUDE
from window_test import PRINTER
from xvfb import wait_for

UPGRADE = 2  # in the printer's menu
FIRMWARE = b"\x1b%%-12345X@PJL\r\n@PJL ENTER LANGUAGE=XFLASH %s\r\n\x00\xff binary\x1b%%-12345X"


class Upgrade(discovery.Discovery):
    test_what_is_found_changed_and_kept = None  # the base's own

    def setUp(self):
        self.got = Path(self.enterContext(tempfile.TemporaryDirectory()))
        discovery.FLEET = INCLUDE + '''
subnet 10.71.1.0/24
subnet 10.71.2.0/24
printer 10.71.1.11 like tarvo-p340
  raw "%s"
printer 10.71.2.21 like tarvo-w760
''' % self.got
        super().setUp()
        self.tool = wizard.Tool(self)
        self.tool.run("prnqtool", "office", "-ppd", "tv_p340.ppd", "-pm", "wp", "-hn", "10.71.1.11")
        self.files = self.got / "files"
        self.files.mkdir()
        for name, model in (("other.bin", b"W520"), ("this.bin", b"P340"), ("readme.txt", b"")):
            (self.files / name).write_bytes(FIRMWARE % model)

    def press_upgrade(self):
        self.display.click(self.deck.bar()[PRINTER])
        self.display.click(self.display.menu(self.deck.window)[UPGRADE])

    def take_row(self, box, row, clicks=1):
        self.display.do("mousemove", box.x + 20, box.y + discovery.FIRST_ROW + row * discovery.ROW, "click", "--repeat", clicks, 1)

    def file_dialog(self):
        """The parts of the dialog: filter, directories, files, chosen name."""
        title = "Select File"
        self.display.focused(title)
        return self.parts(self.display.window(title), 4)

    def look_for_files(self):
        pattern, _, listed, _ = self.file_dialog()
        before = self.display.pixels(listed.id)
        self.display.do("mousemove", pattern.x + 50, pattern.y + 15, "click", "--repeat", 3, "--delay", 80, 1)
        self.display.do("type", str(self.files / "*.bin"))
        self.display.key("Return")
        self.deck.wait_for(lambda: self.display.pixels(listed.id) != before, "other files in the list")
        self.display.keep("upgrade-files")

    def choose_file(self, row):
        self.take_row(self.file_dialog()[2], row, clicks=2)
        self.display.gone("Select File")
        self.display.focused("Upgrade Firmware")

    def choose_queue(self):
        """The buttons of the window, behind the logo."""
        row = self.parts(self.display.window("Upgrade Firmware"), 3)
        listed = max((part for part in self.boxes(row[1].id)), key=lambda box: box.width * box.height)
        self.take_row(listed, 0)
        return self.display.parts(row[2].id)[1:]

    def boxes(self, window):
        """The parts below a window that have none of their own."""
        parts = self.display.parts(window)
        return [box for part in parts for box in self.boxes(part.id) or [part]]

    def test_upgrade(self):
        env = {**self.tool.env, "PATH": "%s:%s" % (self.tool.path, os.environ["PATH"])}
        self.start("10.71.2.21", tool=self.tool, **env)
        self.rows(2)
        self.press_upgrade()
        self.look_for_files()
        self.choose_file(0)
        apply, cancel, _ = self.choose_queue()
        self.display.keep("upgrade-refused", self.display.window(wizard.MESSAGE))
        self.display.key("Return")
        self.display.gone(wizard.MESSAGE)
        self.display.click(apply)
        self.display.click(cancel)
        self.display.gone("Upgrade Firmware")
        self.press_upgrade()
        self.choose_file(1)
        apply, _, _ = self.choose_queue()
        self.display.click(apply)
        self.display.gone("Upgrade Firmware")
        sent = self.deck.wait_for(lambda: sorted(self.got.glob("*.prn")), "the firmware at the printer")
        self.deck.wait_for(lambda: b"P340" in sent[0].read_bytes(), "its end")
        self.assertEqual([path.read_bytes() for path in self.got.glob("*.prn")], [FIRMWARE % b"P340"])
        self.assertEqual(self.deck.said(), "")


if __name__ == "__main__":
    discovery.net = netns.Network()
    unittest.main()
