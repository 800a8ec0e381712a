"""What is sent to a queue, in the real program, by mouse and keys: the test page and a file arrive at a printer as they
are; a queue, a front end and a file that are not there are told."""
import os
import unittest

import wizard_window_test as wizard
from fakeprinter import FakePrinter

PRINTER = 2  # the entry of the menu bar
PAGE, FILE = 0, 1  # in its menu


class Send(wizard.Wizard):
    test_road = test_what_is_refused_is_said = None  # the base's own

    def setUp(self):
        super().setUp()
        self.tool.env["PATH"] = "%s:%s" % (self.tool.path, os.environ["PATH"])  # where prnout is looked for
        self.printer = self.enterContext(FakePrinter(str(self.tool.path.parent / "got")))
        self.tool.run("prnqtool", "office", "-ppd", "tv_p340.ppd", "-pm", "wp", "-hn", "127.0.0.1:%d" % self.printer.port)

    def press_entry(self, entry):
        self.display.click(self.deck.bar()[PRINTER])
        self.display.click(self.display.menu(self.deck.window)[entry])

    def send(self, name, title):
        """The queue is chosen by keys; Return in the list sends."""
        self.shown(name, title)
        self.key("Home", "Return")
        self.display.gone(title)

    def arrived(self, count):
        """The last of so many jobs."""
        jobs = self.printer.wait(count)
        self.assertEqual(len(jobs), count, (self.printer.problems, self.deck.said()))
        return jobs[-1]

    def choose_file(self, path):
        self.focused("Select File")
        self.display.keep("send-file-dialog-" + self.language, self.display.window("Select File"))
        self.key("ctrl+slash", "Delete")
        self.type(str(path))
        self.display.keep("send-file-typed-" + self.language, self.display.window("Select File"))
        self.key("Return")

    def test_what_is_sent_arrives(self):
        self.start()
        self.press_entry(PAGE)
        self.send("page", "Send Test Page")
        page = (self.tool.path / "TestPage.ps").read_bytes()
        self.assertIn(page, self.arrived(1))

        self.press_entry(FILE)
        path = self.tool.path / "a 'quoted' $(touch x) file"
        path.write_bytes(b"%!PS\nplain\n")
        self.choose_file(path)
        self.send("file", "Send File")
        self.assertIn(b"%!PS\nplain\n", self.arrived(2))
        self.assertFalse((self.tool.path / "x").exists())
        self.assertEqual(self.deck.said(), "")

    def test_files_that_cannot_be_sent(self):
        self.start()
        for path, what in ((self.tool.path / "gone", "gone"), (self.tool.path, "directory")):
            with self.subTest(what):
                self.press_entry(FILE)
                self.choose_file(path)
                self.message("send-" + what)
                self.answer("Return")
        (self.tool.path / "prnout").unlink()
        self.press_entry(PAGE)
        self.send("page-none", "Send Test Page")
        self.message("send-no-front-end")
        self.answer("Return")
        self.tool.run("prnqtool", "office", "-x")
        self.press_entry(PAGE)
        self.message("send-no-queue")
        self.answer("Return")

    def test_german(self):
        self.start("de", LANG="de_DE.UTF-8")
        self.press_entry(PAGE)
        self.shown("page", "Testseite senden")
        self.key("Escape")
        self.display.gone("Testseite senden")
        self.press_entry(FILE)
        self.display.keep("send-file-dialog-de", self.display.window("Datei ausw\xe4hlen"))


if __name__ == "__main__":
    unittest.main()
