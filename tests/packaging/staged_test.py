"""cmake --install into a staged root, and the programs of that installation, laid over this host's files: from any directory, by
their bare names, on the store of their own."""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import overlay
from fakeprinter import FakePrinter

BUILD = os.environ["PRN_BUILD"]
QUEUE = "-log prndeck -ppd tv_c410.ppd -pm wp -hn 127.0.0.1:%d"


def install(root):
    env = {**os.environ, "DESTDIR": root}
    subprocess.run(["cmake", "--install", BUILD], env=env, check=True, stdout=subprocess.DEVNULL)
    script = Path(BUILD, "packaging/tooldir").read_text()
    return dict(re.findall(r"\b(programs|shared|config|tool)=(\S+)", script))


def tree(path):
    return {str(p.relative_to(path)): os.readlink(p) if p.is_symlink() else "" for p in Path(path).rglob("*") if p.is_symlink() or p.is_file()}


class Staged(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.mkdtemp(prefix="prnstage.")
        cls.root = cls.scratch + "/root"
        cls.places = install(cls.root)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.scratch)

    def tooldir(self, action):
        subprocess.run(["sh", BUILD + "/packaging/tooldir", action, self.root], check=True)

    def test_every_link_leads_to_what_is_installed(self):
        found = tree(self.root + self.places["tool"])
        self.assertFalse([name for name, target in found.items() if not target])
        dangling = [name for name, target in found.items() if not os.path.exists(self.root + target)]
        self.assertEqual(dangling, [".pn_cfg"])
        models = sorted(os.listdir(self.root + self.places["shared"] + "/ppd"))
        self.assertEqual(sorted(name[4:] for name in found if name.startswith("ppd/")), models)
        stage = {name for name in tree(BUILD + "/stage") if not re.match(r"db/[^/]*$|icon/|help/|\.|.*\.log$", name)}
        self.assertEqual(stage - set(found), set())
        for path in Path(self.root).rglob("*"):
            self.assertNotIn(path.name, ("que.xdb", "hostq", "IPDisc.xdb", ".settings", ".bsettings"))

    def test_own_files_stay_when_the_installation_changes(self):
        tool, shared = self.root + self.places["tool"], self.root + self.places["shared"]
        before = tree(tool)
        own = {"ppd/mine.ppd": "m", "ppd/tv_c650.ppd": "changed", "db/en_US/PrtString.xdb": "own", "db/que.xdb": "records"}
        for name, text in own.items():
            Path(tool, name).unlink(missing_ok=True)
            Path(tool, name).write_text(text)
        os.symlink("/nosuch/elsewhere.ppd", tool + "/ppd/elsewhere.ppd")  # an administrator's: none of ours
        os.rename(shared + "/ppd/tv_x150.ppd", shared + "/ppd/tv_new.ppd")
        try:
            self.tooldir("make")
            self.assertEqual({name: Path(tool, name).read_text() for name in own}, own)
            self.assertEqual(set(before) ^ set(tree(tool)), {"ppd/mine.ppd", "db/que.xdb", "ppd/elsewhere.ppd", "ppd/tv_x150.ppd", "ppd/tv_new.ppd"})
            self.tooldir("clear")
            self.assertEqual(set(tree(tool)), {*own, "ppd/elsewhere.ppd"})
        finally:
            os.rename(shared + "/ppd/tv_new.ppd", shared + "/ppd/tv_x150.ppd")
            shutil.rmtree(tool)
            self.tooldir("make")
        self.assertEqual(tree(tool), before)


class Host(Staged):
    """The same on a host of its own."""

    def setUp(self):
        self.host = overlay.Host(stage=self.root)
        self.addCleanup(self.host.__exit__)

    def good(self, line, **more):
        done = self.host.run(line, **more)
        self.assertEqual((done.returncode, done.stderr), (0, ""), line)
        return done.stdout

    test_every_link_leads_to_what_is_installed = test_own_files_stay_when_the_installation_changes = None

    def test_starts_from_any_directory(self):
        for cwd in ("/", "/usr/share", "/tmp"):
            done = self.host.run("prndeck -v", cwd=cwd)
            self.assertRegex(done.stderr, r"^prndeck [0-9.]+\n$")
            self.assertEqual(done.returncode, 0)
        done = self.host.run("prndeck -tty", user="65534:65534")
        self.assertIn("You must become root", done.stderr)

    def test_queue_from_the_menu_prints_a_file_from_where_the_user_is(self):
        tool = self.host.path + self.places["tool"]
        with FakePrinter(self.scratch + "/got") as printer:
            out = self.host.run("prndeck -tty", text="1\n1 office\n5 127.0.0.1\n15\n6\n", PRNQ_STORE="file")  # Add, and exit
            self.assertEqual((out.returncode, out.stderr), (0, ""), out.stdout[-2000:])
            self.good("prnqtool printer " + QUEUE % printer.port, PRNQ_STORE="file")
            self.assertEqual(self.good("prnqtool -LQ", PRNQ_STORE="file"), "office:\nprinter:\n")
            self.assertTrue(os.path.isfile(tool + "/db/que.xdb") and os.path.isfile(tool + "/db/hostq"))
            self.assertFalse(os.path.exists(self.host.path + self.places["programs"] + "/db/que.xdb"))
            Path(self.host.path, "tmp/page.txt").write_text("a page\n")
            self.assertEqual(self.good("prnout -dprinter page.txt", cwd="/tmp", PRNQ_STORE="file", PRNQ_SPOOL="/tmp/spool"), "")
            self.assertIn(b"a page\n", printer.wait(1)[0])
        self.assertEqual(self.host.run("prnpnxxtty -GS tv_c410.ppd", cwd="/tmp").returncode, 0)  # asks nobody
        self.assertIn("PageSize=", Path(tool, ".settings").read_text())
        self.assertEqual(self.good("prnrm printer -", PRNQ_STORE="file", PRNQ_SPOOL="/tmp/spool"), "")


if __name__ == "__main__":
    reason = overlay.missing()
    if reason:
        print("skipped: " + reason)
        sys.exit(77)
    unittest.main()
