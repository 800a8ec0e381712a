"""The icons: what lies in the data folder is what the tools draw, every model has its picture, and the files keep to
what the program reads."""
import glob
import os
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
ICONS = os.path.join(ROOT, "data", "icon")
SIZES = {"Brand_Banner_Hrz": (580, 50), "TLogo": (32, 32), "unixhint": (32, 32)}


def files(folder):
    return sorted(os.path.relpath(f, folder) for f in glob.glob(folder + "/**/*.x[bp]m", recursive=True))


class Icons(unittest.TestCase):
    def test_are_drawn_by_the_tools(self):
        with tempfile.TemporaryDirectory() as scratch:
            for tool in ("mkicons.py", "mkpictures.py"):
                subprocess.run([sys.executable, "-B", os.path.join(ROOT, "tools", tool), scratch], check=True)
            self.assertEqual(files(scratch), files(ICONS))
            for name in files(scratch):
                with open(os.path.join(scratch, name)) as made, open(os.path.join(ICONS, name)) as kept:
                    self.assertEqual(made.read(), kept.read(), name)

    def test_every_model_has_a_picture(self):
        models = [os.path.basename(f)[:-4] for f in glob.glob(os.path.join(ROOT, "data", "ppd", "*.ppd"))]
        self.assertEqual(sorted(models), sorted(os.path.dirname(f) for f in files(ICONS) if "static" in f))

    def test_keep_to_the_limits(self):
        for name in files(ICONS):
            with open(os.path.join(ICONS, name)) as file:
                text = file.read()
            base = os.path.basename(name)[:-4]
            if name.endswith(".xbm"):
                size = tuple(int(n) for n in re.findall(r"_(?:width|height) (\d+)", text))
            else:
                lines = re.findall(r'(?<=\n)"([^"]*)"', text)
                *size, colours, key = (int(n) for n in lines[0].split())
                self.assertTrue(text.startswith("/* XPM */\n") and colours <= 16 and key == 1, name)
                self.assertTrue(all(re.fullmatch(r". c (None|#[0-9A-F]{6})", c) for c in lines[1:colours + 1]), name)
                self.assertEqual([len(row) for row in lines[colours + 1:]], [size[0]] * size[1], name)
            self.assertEqual(tuple(size), SIZES.get(base, (27, 27) if base.startswith("Button") else (250, 200)), name)


if __name__ == "__main__":
    unittest.main()
