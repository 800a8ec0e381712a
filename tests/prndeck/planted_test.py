"""A second user of the host plants links, pipes, directories, notes, records and names where he may write, while root works at
the real menus and with the queue tool: nothing of his is run, nothing of root's or of others is touched, no queue is lost, and
nothing he wrote steers root's terminal."""
import os
import re
import shutil
import stat
import subprocess
import tempfile
import unittest

import xdb
from disk import mount, private_mounts

STAGE = os.path.join(os.environ["PRN_BUILD"], "stage")
HIS = 65534
LIMIT = 100  # seconds for all of root's work; a foreign lock may cost 30 of them
NAMES = ["que.xdb_new", "que.xdb_old", "hostq_new", "IPDisc.xdb", "IPDisc.xdb_new", ".prnq_lock", ".prnq_jobs", ".prnq_jobs_new",
         ".prnq_batch", ".prnq_batch_new"]
SHELL = ["$(touch CANARY)", "`touch CANARY`", "x; touch CANARY", "x|touch CANARY", "x\ntouch CANARY", "'; touch CANARY; '", "-x all",
         "../../../etc/passwd", "\033]0;stolen\007", "\033[2J", "%s%n%s%n", "\x9b31m", "y" * 5000, "~", "*"]
# What root does: menus by a pipe, then the tool.
MENUS = "1\n1 new\n5 localhost\n15\n2\nnew\n6 2\n7\n3\nkept\n1 copy\n4 localhost\n7\n4\nnew\ny\n4\ncopy\ny\n6\n"
SHORT = "2\nkept\n1 2\n7\n6\n"
LINES = ["-LQ", "tool -ppd tv_c410.ppd -pm wp -hn localhost", "tool -mq -ui", "-x tool"]


@unittest.skipIf(os.geteuid() != 0, "the menus need root, and so does being somebody else")
class Planted(unittest.TestCase):
    planted = 0

    def setUp(self):
        scratch = tempfile.mkdtemp(prefix="prnplant.", dir="/tmp")
        self.addCleanup(shutil.rmtree, scratch)
        os.chmod(scratch, 0o755)
        self.path, self.canary, self.private = scratch + "/deck", scratch + "/his/canary", scratch + "/private"
        shutil.copytree(STAGE, self.path)
        os.chmod(self.path + "/db", 0o777)  # as the program makes it where there is none
        with open(self.path + "/.pn_cfg", "w") as marker:
            marker.write(",StandAlone,\n")
        os.mkdir(self.private, 0o700)
        with open(self.private + "/victim", "w") as victim:
            victim.write("untouched\n")
        os.mkdir(scratch + "/his")
        os.chown(scratch + "/his", HIS, HIS)
        self.env = dict(os.environ, PRNQ_SPOOL=scratch + "/spool", LANG="C", TERM="dumb")
        self.tool("kept -ppd tv_c410.ppd -pm wp -hn localhost")
        self.records = self.records_now()

    @classmethod
    def setUpClass(cls):
        """A /tmp of its own: the log's name there is one for all programs of the host."""
        reason = "the build lies in /tmp" if STAGE.startswith("/tmp/") else private_mounts()
        reason = reason or mount("-t", "tmpfs", "-o", "mode=1777", "none", "/tmp")
        if reason:
            raise unittest.SkipTest(reason)

    @classmethod
    def tearDownClass(cls):
        assert cls.planted >= 50 or os.geteuid() != 0, cls.planted

    def tool(self, line):
        return subprocess.run([self.path + "/prnqtool", *line.split()], env=self.env, stdin=subprocess.DEVNULL, capture_output=True,
                              encoding="latin-1", timeout=LIMIT)

    def records_now(self):
        return dict(xdb.read(self.path + "/db/que.xdb"))

    def as_him(self, plant):
        """Runs it as the other user; how often it could plant something."""
        child = os.fork()
        if child == 0:
            done = 0
            try:
                os.setgroups([])
                os.setgid(HIS)
                os.setuid(HIS)
                done = plant()
            finally:
                os._exit(done)
        done = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
        self.assertGreater(done, 0)
        type(self).planted += done

    def work(self, menus=SHORT):
        """Root's work beside what is planted: all that was shown."""
        run = subprocess.run([self.path + "/prndeck", "-tty"], cwd=self.path, env=self.env, input=menus, capture_output=True,
                             encoding="latin-1", timeout=LIMIT)
        shown = run.stdout + run.stderr
        for line in LINES:
            done = self.tool(line)
            shown += done.stdout + done.stderr
        return shown

    def look(self, shown):
        self.assertFalse(os.path.exists(self.canary), shown[-600:])
        self.assertEqual(os.listdir(self.private), ["victim"])
        with open(self.private + "/victim") as victim:
            self.assertEqual(victim.read(), "untouched\n")
        status = os.stat(self.private + "/victim")
        self.assertEqual((stat.S_IMODE(status.st_mode), status.st_uid), (0o644, 0))
        raw = re.search("[\x00-\x08\x0b\x0e-\x1f\x7f]", shown)  # a form feed clears what is no terminal
        self.assertIsNone(raw, raw and shown[max(0, raw.start() - 60):raw.end() + 60])
        with open(self.path + "/db/hostq") as lines:
            self.assertIn("kept:", lines.read())

    def clear(self):
        for name in NAMES:
            path = self.path + "/db/" + name
            if os.path.isdir(path) and not os.path.islink(path):
                shutil.rmtree(path)
            elif os.path.lexists(path):
                os.unlink(path)

    def test_names_beside_the_records(self):
        def link(path):
            os.symlink(self.private + "/victim", path)

        def dangling(path):
            os.symlink(self.private + "/made", path)

        def note(path):
            with open(path, "w") as out:
                out.write("drop kept %s/spool\nmove kept /tmp\nnew kept\nold kept\n" % self.path)

        for kind in (link, dangling, os.mkfifo, os.mkdir, note):
            with self.subTest(kind.__name__):
                self.as_him(lambda: sum(kind(self.path + "/db/" + name) is None for name in NAMES if not os.path.lexists(self.path + "/db/" + name)))
                self.look(self.work(MENUS if kind in (link, note) else SHORT))
                self.assertEqual(self.records_now()[b"kept"].split()[:4], self.records[b"kept"].split()[:4])
                self.clear()
                self.assertEqual(self.tool("after -ppd tv_c410.ppd -pm wp -hn localhost").returncode, 0)
                self.assertEqual(self.tool("-x after").returncode, 0)

    def test_records(self):
        """The database is open to everybody; the queue stays at the host, and his values are texts."""
        def plant():
            texts = [text.replace("CANARY", self.canary) for text in SHELL]
            rows = [(b"kept", self.records[b"kept"])]
            for number, text in enumerate(texts):
                byte = text.encode("latin-1")
                rows += [(b"q%d" % number, b"%s %s %s tv_c410.ppd 0 1 1 1 0 1 \0" % (byte, byte, byte)), (byte[:200], byte + b"\0"),
                         (b"q%d bsettings" % number, b".h1 20 " + byte + b"\0"), (b"localhost%d" % number, byte + b"\0")]
            with open(self.path + "/db/que.xdb", "wb") as database:
                database.write(xdb.build(rows))
            with open(self.path + "/db/IPDisc.xdb", "wb") as database:
                database.write(xdb.build([(b"FavBrowser", texts[0].encode("latin-1") + b"\0")]))
            return len(SHELL)

        self.as_him(plant)
        self.look(self.work(MENUS))

    def test_damage(self):
        """Neither garbage nor an endless file keeps root from his work, and the host's queue stays."""
        for image in (b"", b"\xff" * 5000, xdb.MAGIC + b"999999999\0", os.urandom(3000)):
            def plant():
                with open(self.path + "/db/que.xdb", "wb") as database:
                    database.write(image)
                return 1
            with self.subTest(image[:8]):
                self.as_him(plant)
                self.look(self.work())

        def hole():
            with open(self.path + "/db/que.xdb", "wb") as database:
                database.truncate(3 << 30)
            return 1
        self.as_him(hole)
        self.look(self.work())

    def test_log(self):
        log = "/tmp/prndeck.log"
        if os.path.lexists(log):
            os.unlink(log)
        self.addCleanup(lambda: os.path.lexists(log) and (os.rmdir(log) if os.path.isdir(log) and not os.path.islink(log) else os.unlink(log)))
        for kind in (lambda: os.symlink(self.private + "/made", log), lambda: os.symlink(self.private + "/victim", log),
                     lambda: os.mkfifo(log), lambda: os.mkdir(log)):
            self.as_him(lambda: int(kind() is None))
            self.look(self.work())
            if os.path.lexists(log):
                os.rmdir(log) if os.path.isdir(log) and not os.path.islink(log) else os.unlink(log)


if __name__ == "__main__":
    unittest.main()
