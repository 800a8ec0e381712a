"""The package on fresh Debian systems: installed, used, upgraded, removed, purged.  Started by ./check --package, which makes the package.

usage: dpkg_road.py PACKAGE CACHEDIR
"""
import configparser
import fcntl
import os
import shlex
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

import debian
import overlay
import xvfb
from fakeprinter import FakePrinter
from tooldir import PPD, read_records

PACKAGE, CACHE = sys.argv[1:3]
TOOL = "/var/lib/prndeck"
OWN_STORE = {"PRNQ_RETRY": "0.1"}
# What a system may change by itself, or dpkg writes of every package.
NOISE = ("/var/lib/dpkg", "/var/log", "/var/cache", "/run", "/proc", "/dev", "/etc/ld.so.cache", "/etc/cups", "/var/spool/cups",
         "/usr/share/icons/hicolor/icon-theme.cache")


def change_tree(tree):
    """A model more, and another renamed."""
    models = tree / "usr/share/prndeck/ppd"
    shutil.copy(models / "tv_c410.ppd", models / "tv_new.ppd")
    os.rename(models / "tv_x150.ppd", models / "tv_x151.ppd")


class Road(unittest.TestCase):
    base = None

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.mkdtemp(prefix="prnroad.")
        cls.newer = debian.newer(PACKAGE, "99:1", cls.scratch, change_tree)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.scratch)

    def arrive(self):
        self.host = overlay.Host(base=str(self.base))
        self.addCleanup(self.host.__exit__)
        self.before = self.files()

    def setUp(self):
        self.arrive()
        self.printer = FakePrinter(tempfile.mkdtemp(dir=self.scratch)).__enter__()
        self.addCleanup(self.printer.__exit__, None, None, None)

    def path(self, name):
        return Path(self.host.path + name)

    def files(self):
        """Everything but what changes by itself, without entering it."""
        found = set()
        for place, folders, names in os.walk(self.host.path):
            name = place[len(self.host.path):]
            folders[:] = [folder for folder in folders if name + "/" + folder not in NOISE]
            found.update(name + "/" + entry for entry in [*names, *folders])
        return found - set(NOISE)

    def good(self, line, **more):
        done = self.host.run(line, **more)
        self.assertEqual(done.returncode, 0, (line, done.stdout[-2000:], done.stderr[-2000:]))
        return done.stdout

    def quiet(self, line, **more):
        done = self.host.run(line, **{**OWN_STORE, **more})
        self.assertEqual((done.returncode, done.stderr), (0, ""), (line, done.stdout[-1000:]))
        return done.stdout

    def start(self, line):
        null = subprocess.DEVNULL
        started = subprocess.Popen(self.host.words("exec " + line), env=overlay.ENV, stdin=null, stdout=null, stderr=null)
        self.addCleanup(started.wait)
        self.addCleanup(started.kill)
        return started

    def dpkg(self, action, package=""):
        if os.path.isfile(package):
            shutil.copy(package, self.path("/tmp/prndeck.deb"))
            package = "/tmp/prndeck.deb"
        out = self.good("dpkg %s %s 2>&1" % (action, package), limit=120, LC_ALL="C", DEBIAN_FRONTEND="noninteractive")
        self.path("/tmp/prndeck.deb").unlink(missing_ok=True)
        return out

    def add(self, name, more="", port=None):
        self.quiet("prnqtool %s -ppd tv_c410.ppd -pm wp -hn 127.0.0.1:%d -log prndeck %s" % (name, port or self.printer.port, more))

    def prints(self, name, count):
        self.path("/tmp/page.ps").write_text("%%!PS-Adobe-3.0\n%% page %d\nshowpage\n" % count)
        self.quiet("prnout -d%s page.ps" % name, cwd="/tmp")
        jobs = self.printer.wait(count, 60)
        self.assertEqual(len(jobs), count)
        return jobs[-1]

    def own_files(self):
        """What an administrator leaves: a model of his, one of ours changed, a setting, records."""
        self.path(TOOL + "/ppd/mine.ppd").write_text(PPD.format(model="Mine"))
        self.path(TOOL + "/ppd/tv_c650.ppd").unlink()
        self.path(TOOL + "/ppd/tv_c650.ppd").write_text(PPD.format(model="Ours, changed"))
        with open(self.path("/etc/prndeck/trans.conf"), "a") as conf:
            conf.write("# ours\n")
        names = [TOOL + "/ppd/mine.ppd", TOOL + "/ppd/tv_c650.ppd", TOOL + "/db/que.xdb", "/etc/prndeck/trans.conf"]
        names += [name for name in (TOOL + "/db/hostq", TOOL + "/db/IPDisc.xdb") if self.path(name).exists()]
        return {name: self.path(name).read_bytes() for name in names}

    def kept(self, own):
        self.assertEqual({name: self.path(name).read_bytes() for name in own}, own)

    def dangling(self):
        links = [path for path in self.path(TOOL).rglob("*") if path.is_symlink() and path.name != ".pn_cfg"]
        return [path.name for path in links if not self.path(os.readlink(path)).exists()]

    def move(self, *more):
        """To a host where nothing has been, by the lines of the manual."""
        own = shlex.join(more) + " /etc/prndeck"
        self.good("cd %s && find . -type f | tar cf /tmp/own.tar -T - && tar cPf /tmp/rest.tar %s" % (TOOL, own))
        old = self.path("/tmp")
        self.arrive()
        self.dpkg("-i", PACKAGE)
        for name in ("own.tar", "rest.tar"):
            shutil.copy(old / name, self.path("/tmp"))
        self.good("cd %s && tar xf /tmp/own.tar && tar xPf /tmp/rest.tar && rm /tmp/own.tar /tmp/rest.tar" % TOOL)

    def purge(self):
        """Nothing is left of it, and dpkg has nothing to say about what is."""
        self.assertNotIn("warning", self.dpkg("-P", "prndeck"))
        self.assertEqual(self.files() - self.before - {"/tmp/page.ps"}, set())


class Plain(Road):
    """Without a print system."""

    def test_from_install_to_purge(self):
        self.dpkg("-i", PACKAGE)
        self.assertRegex(self.host.run("prndeck -v", cwd="/usr", user="65534:65534").stderr, r"^prndeck [\d.]+\n$")
        self.assertEqual(self.dangling(), [])
        # The menu, then lines: name, host; one with a banner page.
        done = self.host.run("prndeck -tty", text="1\n1 office\n5 127.0.0.1\n15\n6\n")
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout[-2000:])
        self.add("printer", "-d")
        self.add("titled", "-bp")
        self.assertEqual(self.quiet("prnqtool -LQ"), "office:\nprinter:\ntitled:\n")
        self.assertEqual(os.stat(self.path(TOOL + "/db/que.xdb")).st_mode & 0o777, 0o644)
        self.assertIn(b"page 1", self.prints("printer", 1))
        self.assertIn(b"Helvetica-Bold", self.prints("titled", 2))

        own = self.own_files()
        self.dpkg("-i", self.newer)
        self.kept(own)
        self.assertEqual(self.dangling(), [])
        models = set(os.listdir(self.path(TOOL + "/ppd")))
        self.assertTrue({"tv_new.ppd", "tv_x151.ppd", "mine.ppd"} <= models and "tv_x150.ppd" not in models, models)
        self.assertIn(b"page 3", self.prints("printer", 3))

        self.dpkg("-r", "prndeck")
        self.kept(own)
        left = {path.relative_to(self.path(TOOL)) for path in self.path(TOOL).rglob("*") if path.is_symlink()}
        self.assertEqual(left, set())
        self.assertEqual(self.host.run("prndeck -v").returncode, 127)
        self.dpkg("-i", PACKAGE)
        self.kept(own)
        self.assertIn(b"page 4", self.prints("printer", 4))
        self.assertTrue(set(read_records(str(self.path(TOOL + "/db/que.xdb")))) >= {"office", "printer", "titled"})
        self.purge()

    def under_way(self, action, package):
        """A change of a queue goes on while dpkg is called: the records that it wants are held for a while."""
        with open(self.path(TOOL + "/db/que.xdb"), "rb") as records:
            fcntl.flock(records, fcntl.LOCK_EX)
            change = self.start("prnqtool late%s -ppd tv_c410.ppd -pm wp -hn 127.0.0.1:9" % action)
            xvfb.wait_for(lambda: self.host.run("flock -n %s/db/.prnq_lock true" % TOOL).returncode, "the change")
            shutil.copy(package, self.path("/tmp/prndeck.deb"))
            dpkg = self.start("dpkg %s %s" % (action, {"-r": "prndeck"}.get(action, "/tmp/prndeck.deb")))
            time.sleep(2)
            self.assertIsNone(dpkg.poll(), "dpkg %s did not wait" % action)
        self.assertEqual((change.wait(30), dpkg.wait(60)), (0, 0))
        self.assertIn("late" + action, read_records(str(self.path(TOOL + "/db/que.xdb"))))

    def test_moves_to_another_host(self):
        self.dpkg("-i", PACKAGE)
        self.add("printer", "-d -bp")
        own = self.own_files()
        self.move()
        self.kept(own)
        self.assertEqual(self.quiet("prnqtool -LQ"), "printer:\n")
        self.assertIn(b"Helvetica-Bold", self.prints("printer", 1))
        self.add("another")
        self.purge()

    def test_removal_waits_for_a_change_and_ends_the_senders(self):
        self.dpkg("-i", PACKAGE)
        with socket.create_server(("127.0.0.1", 0)) as taken:
            port = taken.getsockname()[1]
        self.add("off", "-d", port)  # a printer that is switched off
        self.path("/tmp/page.ps").write_text("waits\n")
        self.quiet("prnout page.ps", cwd="/tmp", PRNQ_RETRY="10")
        xvfb.wait_for(self.senders, "the sender")
        self.under_way("-i", self.newer)
        self.assertTrue(self.senders())
        self.under_way("-r", self.newer)
        xvfb.wait_for(lambda: not self.senders(), "the sender to end", 10)
        spool = list(self.path("/var/spool/Tarvo/prndeck").rglob("*"))
        self.assertTrue(any(path.is_file() and path.read_text() == "waits\n" for path in spool), spool)  # the job stays
        self.path("/tmp/prndeck.deb").unlink()
        self.purge()

    def senders(self):
        return [pid for pid in self.host.processes() if "/usr/lib/prndeck/prnout" in os.readlink("/proc/%s/exe" % pid)]

    @unittest.skipIf(xvfb.missing(), xvfb.missing())
    def test_window_of_an_ordinary_user_has_nothing_to_complain_of(self):
        self.dpkg("-i", PACKAGE)
        self.add("office")
        self.path("/tmp/errors").touch()
        entry = configparser.ConfigParser(interpolation=None)
        entry.read(self.path("/usr/share/applications/org.prndeck.prndeck.desktop"))
        with xvfb.Display() as display, open(self.path("/tmp/errors"), "w") as errors:
            words = self.host.words("exec " + entry["Desktop Entry"]["Exec"], user="65534:65534")
            window = subprocess.Popen(words, env={**overlay.ENV, "DISPLAY": display.name}, stderr=errors, stdout=errors)
            self.addCleanup(window.wait)
            self.addCleanup(window.kill)
            display.window("Tarvo Printer Administration")
            time.sleep(4)  # the discovery begins after two
            self.assertIsNone(window.poll())
            window.kill()
        self.assertEqual(self.path("/tmp/errors").read_text(), "")
        self.assertFalse(self.path(TOOL + "/db/IPDisc.xdb").exists())


class Cups(Road):
    """With CUPS from the distribution."""

    def setUp(self):
        super().setUp()
        self.scheduler = None
        self.addCleanup(self.stop)

    def stop(self):
        if self.scheduler:
            self.scheduler.terminate()
            self.scheduler.wait()

    def restart(self):
        self.stop()
        self.path("/run/cups").mkdir(exist_ok=True)
        self.scheduler = self.start("cupsd -f")
        xvfb.wait_for(lambda: "is running" in self.host.run("lpstat -r").stdout, "the scheduler")

    def test_queues_and_banners_outlive_the_package(self):
        self.restart()
        self.dpkg("-i", PACKAGE)
        self.restart()  # so that it knows the banner page
        self.add("titled", "-bp")
        self.assertIn("titled", self.good("lpstat -v"))
        self.assertIn(b"titled", self.prints("titled", 1))
        own = self.own_files()
        self.dpkg("-i", self.newer)
        self.kept(own)
        self.prints("titled", 2)
        self.dpkg("-r", "prndeck")
        self.restart()
        self.good("lp -d titled page.ps", cwd="/tmp")
        self.assertEqual(len(self.printer.wait(3, 60)), 3)
        self.purge()
        self.restart()
        self.good("lp -d titled page.ps", cwd="/tmp")  # without the banner page, but printed
        self.assertEqual(len(self.printer.wait(4, 60)), 4)

    def test_moves_to_another_host(self):
        self.restart()
        self.dpkg("-i", PACKAGE)
        self.restart()
        self.add("titled", "-d -bp")
        own = self.own_files()
        self.stop()
        self.move("/etc/cups/printers.conf", "/etc/cups/ppd")
        self.kept(own)
        self.restart()
        self.assertEqual(self.quiet("prnqtool -LQ"), "titled:\n")
        self.assertIn(b"titled", self.prints("titled", 1))
        self.add("another")
        self.purge()


def make_systems():
    start = time.monotonic()
    needs = debian.depends(PACKAGE)
    Plain.base = debian.system(CACHE, "plain", needs)
    Cups.base = debian.system(CACHE, "cups", ["cups", "cups-client"], Plain.base)
    print("Debian systems in %d s; package of %d KB" % (time.monotonic() - start, os.path.getsize(PACKAGE) / 1024), flush=True)


if __name__ == "__main__":
    if os.geteuid():
        print("skipped: installing packages needs root")
        sys.exit(77)
    make_systems()
    reason = overlay.missing()
    if reason:
        print("skipped: " + reason)
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
