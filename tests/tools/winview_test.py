"""winview: the program's windows as pictures in every language, and a description of one's own in a real window."""
import os
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

import xvfb

BUILD = os.environ["PRN_BUILD"]
STAGE = os.path.join(BUILD, "stage")
TOOL = os.path.join(BUILD, "tools", "winview")

NOTE = """id(800)
DB nw P(prndeck) t(%s) { B nb { bp na l(%s); t nt s(10,1) <1 CB(a)>; bp nok l(OK) f(C[nok] H[nw]); } }
WF two t(Two) { l twol l(hello) .0 s(333,111); }
"""


def read_png(path):
    """Size and rows of colours, each checksum tested on the way."""
    data = Path(path).read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", data[:8]
    chunks, at = {}, 8
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        chunks[kind], check = data[at + 8:at + 8 + length], data[at + 8 + length:at + 12 + length]
        assert struct.pack(">I", zlib.crc32(kind + chunks[kind])) == check, kind
        at += length + 12
    width, height = struct.unpack(">II", chunks[b"IHDR"][:8])
    bytes_ = zlib.decompress(chunks[b"IDAT"])
    rows = [bytes_[y * (width * 3 + 1) + 1:(y + 1) * (width * 3 + 1)] for y in range(height)]
    return width, height, [[row[x:x + 3] for x in range(0, width * 3, 3)] for row in rows]


class Winview(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = xvfb.Display()
        cls.addClassCleanup(cls.display.close)
        scratch = tempfile.TemporaryDirectory(prefix="winview-")
        cls.addClassCleanup(scratch.cleanup)
        cls.scratch = Path(scratch.name)

    def run_tool(self, *words, status=0, display=True):
        env = self.display.env(DISPLAY=self.display.name if display else "")
        done = subprocess.run([TOOL, *map(str, words)], env=env, cwd=self.scratch, capture_output=True, text=True, timeout=60)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def picture_all(self, mark):
        """The size of each window in each language; its pictures are kept where all are."""
        kept, sizes = os.environ.get("PRN_PICTURES"), {}
        for language in sorted(os.listdir(os.path.join(STAGE, "db"))):
            for name in self.run_tool(STAGE).stdout.split():
                path = Path(kept or self.scratch) / ("%s-%s%s.png" % (name, language, mark))
                path.parent.mkdir(parents=True, exist_ok=True)
                self.assertEqual(self.run_tool("-l", language, "-o", path, STAGE, name).stderr, "")
                width, height, rows = read_png(path)
                sizes[name, language] = width, height, rows
                self.assertGreater(len({colour for row in rows for colour in row}), 5, name)
        return sizes

    def test_all_windows(self):
        sizes = self.picture_all("")
        self.assertIn(("MainWinDesc", "en_US"), sizes)
        for window, (width, height, _) in sizes.items():
            self.assertTrue(100 < width < 1280 and 100 < height < 1024, (window, width, height))
        self.assertNotEqual(sizes["AboutDesc", "en_US"], sizes["AboutDesc", "de_DE"])

    def test_all_windows_on_a_dense_screen(self):
        small, self.display = self.display, xvfb.Display("2560x1920x24", dpi=192)
        self.addCleanup(setattr, self, "display", small)
        self.addCleanup(self.display.close)
        large = self.picture_all("-192dpi")
        self.display = small
        for (name, language), (width, height, _) in large.items():
            self.assertTrue(width < 2048 and height < 1536, (name, language, width, height))
        for name in ("MainWinDesc", "AddQueDesc", "SystemPropertyDesc"):
            width, height, _ = large[name, "en_US"]
            self.run_tool("-l", "en_US", "-o", self.scratch / "small.png", STAGE, name)
            before = read_png(self.scratch / "small.png")[:2]
            self.assertTrue(1.5 * before[0] < width < 2.1 * before[0] and 1.5 * before[1] < height < 2.1 * before[1],
                            (name, before, width, height))

    def test_own_description(self):
        (self.scratch / "note.txt").write_text(NOTE)
        tool = subprocess.Popen([TOOL, STAGE, "note.txt", "2"], env=self.display.env(), cwd=self.scratch, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True)
        self.addCleanup(tool.kill)
        title = "About prndeck"  # the first text of set 2
        first, field, last = self.display.find_parts(self.display.window(title), 3)
        self.display.click(first)
        self.display.click(field)
        self.display.do("type", "some text\r")
        self.display.click(last)
        self.assertEqual(tool.communicate(timeout=60)[0].splitlines(),
                         ["window nw", "window two", "na 802 1 0 ", "nt 803 1 0 some text", "nok 804 1 0 "])
        self.assertEqual(tool.returncode, 0)

    def test_pictures_and_times(self):
        (self.scratch / "note.txt").write_text(NOTE)
        self.run_tool("-w", "two", "-o", "two.ppm", STAGE, "note.txt")
        head, size, depth, data = (self.scratch / "two.ppm").read_bytes().split(b"\n", 3)
        width, height = map(int, size.split())
        self.assertEqual((head, depth, len(data)), (b"P6", b"255", width * height * 3))
        self.assertTrue(width >= 333 and height >= 111, size)
        self.run_tool("-t", "1", STAGE, "note.txt")

    def test_faults(self):
        (self.scratch / "note.txt").write_text(NOTE)
        for words, status, message in (
                ((), 2, "usage: winview"), (("-q", STAGE), 2, "usage: winview"),
                ((STAGE, "nothing.txt"), 1, "nothing.txt is no window of the program, and no file that can be read"),
                (("missing", "note.txt"), 1, "there is no directory missing"),
                ((self.scratch, "note.txt"), 1, "holds no catalogue"),
                (("-w", "three", STAGE, "note.txt"), 1, "note.txt makes no window three"),
                (("-o", "no/where.png", STAGE, "note.txt"), 1, "where.png: No such file or directory")):
            self.assertIn(message, self.run_tool(*words, status=status).stderr)
        self.assertIn("can't open display", self.run_tool(STAGE, "note.txt", status=1, display=False).stderr)


if __name__ == "__main__":
    if xvfb.missing():
        print(xvfb.missing())
        sys.exit(77)
    unittest.main()
