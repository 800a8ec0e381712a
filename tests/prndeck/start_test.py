"""Start-up of the real program: its words, who may run it, what it needs, and what it hands on."""
import os
import shutil
import sys
import unittest

from decktool import DeckTool

ROOT = os.geteuid() == 0
NO_DISPLAY = "prndeck: WARNING: can't open display\n"
NOT_ROOT = "nobody is logged in\nYou must become root to run prndeck\n"
NO_PPD = "ERROR: \nUnable to locate ppd files ppd/* \n\n"
MENU = """\f
                      Tarvo Printer Administration 4.50.29

 1) Add Queue 

 2) Modify Queue 

 3) Copy Queue 

 4) Delete Queue 

 6) Exit 

Queues of this host:
%s 

Enter a selection or h for help: """
AS_NOBODY = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")


class Start(unittest.TestCase):
    def setUp(self):
        self.tool = DeckTool()
        self.addCleanup(self.tool.close)

    def menu(self, *words, **more):
        """A run that leaves the main menu at once; what it showed behind the clearing of the screen."""
        status, out, err = self.tool.run(*words, script="6\n", **more)
        self.assertEqual((status, err), (0, "" if "-tty" in words else NO_DISPLAY), words)
        return out[out.index("\f"):]

    def test_version_from_any_place_among_the_words(self):
        for words in (["-v"], ["junk", "-tty", "-v"], ["-v", "-help"], ["-d", "-wiz", "-nd", "-v", "zzz"]):
            self.assertEqual(self.tool.run(*words), (0, "", "prndeck 4.50.29\n"), words)
        shutil.rmtree(self.tool.path / "ppd")  # needs no models, nor the tool directory as the current one
        self.assertEqual(self.tool.run("-v", cwd="/"), (0, "", "prndeck 4.50.29\n"))

    def test_help_needs_a_display(self):
        for words in (["-help"], ["-help", "-v"], ["-nd", "-help", "-tty"]):
            self.assertEqual(self.tool.run(*words), (1, "", NO_DISPLAY), words)

    def test_no_models(self):
        shutil.rmtree(self.tool.path / "ppd")
        for words in ([], ["-tty"]):
            self.assertEqual(self.tool.run(*words), (0, "", NO_PPD))
        (self.tool.path / "ppd").mkdir()
        self.tool.write("ppd/x.txt", "")
        self.assertEqual(self.tool.run("-tty"), (0, "", NO_PPD))

    @unittest.skipUnless(ROOT and shutil.which("setpriv"), "needs root and setpriv")
    def test_not_root(self):
        self.tool.path.chmod(0o755)
        if self.tool.run("-v", prefix=AS_NOBODY)[0] != 0:
            self.skipTest("another user can't reach the build")
        for words, err in ((["-tty"], NOT_ROOT), ([], NO_DISPLAY + NOT_ROOT)):
            self.assertEqual(self.tool.run(*words, prefix=AS_NOBODY), (1, "", err), words)
        self.assertEqual(self.tool.lines(), [])
        shutil.rmtree(self.tool.path / "ppd")
        self.assertEqual(self.tool.run("-tty", prefix=AS_NOBODY), (0, "", NO_PPD))

    @unittest.skipUnless(ROOT, "needs root")
    def test_main_menu(self):
        self.assertEqual(self.menu("-tty"), MENU % "")
        self.tool.queues("b", "a")
        self.assertEqual(self.menu(), MENU % " a b")

    @unittest.skipUnless(ROOT, "needs root")
    def test_words_that_change_nothing(self):
        for word in ("update", "-d", "-wiz", "-nd", "", "zzz", "%n%s", "-" * 4000):
            self.assertEqual(self.menu(word, "-tty"), MENU % "", word)

    @unittest.skipUnless(ROOT, "needs root")
    def test_environment_of_the_siblings(self):
        self.tool.queues("q1")
        self.tool.run("-tty", script="4\nq1\ny\n6\n")
        environment = self.tool.read("environment").splitlines()
        for line in ("PrnOutCFG=prnout", "PrnOutFileSourceDir=.", "SHELL=/usr/bin/sh "):
            self.assertIn(line, environment)

    @unittest.skipUnless(ROOT, "needs root")
    def test_without_catalogues_the_keys_are_shown(self):
        shutil.rmtree(self.tool.path / "db")
        status, out, err = self.tool.run("-tty", script="1\n3\n16\n6\n")
        missing = ["ERROR:  Could not open English database:  %s/db/en_US/%s.xdb\n" % (self.tool.path, name)
                   for name in ("CoreString", "PrtHelp", "PrtString")]
        self.assertEqual((status, err), (0, "".join(missing)))
        self.assertIn("25_1 4.50.29\n", out)
        self.assertIn(" 4) 25_83 \n", out)

    @unittest.skipUnless(ROOT, "needs root")
    def test_another_language(self):
        if not (self.tool.path / "db" / "de_DE").is_dir():
            self.skipTest("no German catalogue in the stage directory")
        out = self.menu("-tty", LANG="de_DE.UTF-8")
        self.assertIn("Tarvo", out)
        self.assertNotEqual(out, MENU % "")
        self.assertEqual(self.menu("-tty", LANG="fr_FR"), MENU % "")

    @unittest.skipUnless(ROOT, "needs root")
    def test_tool_directory_with_a_blank_and_quotes(self):
        path = self.tool.path / "it's $(touch x) a \"dir\""
        path.mkdir()
        for entry in list(self.tool.path.iterdir()):
            if entry != path:
                shutil.move(str(entry), str(path))
        base, self.tool.path, self.tool.program = self.tool.path, path, str(path / "prndeck")
        self.addCleanup(setattr, self.tool, "path", base)
        self.tool.queues("q1")
        status, _, err = self.tool.run("-tty", script="4\nq1\ny\n1\n16\n6\n")
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(self.tool.lines(), ["prnqtool <q1> <-x> <-log> <prndeck>"])
        self.assertFalse((path / "x").exists())


if __name__ == "__main__":
    unittest.main()
