"""The icons: what lies in the data folder is what the tools draw, and every model has its picture."""
import glob
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
ICONS = os.path.join(ROOT, "data", "icon")


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


if __name__ == "__main__":
    unittest.main()
