"""The PPD files conform, name their models so that the program can list them, and have a record each that it can read."""
import re
import subprocess
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
import checkcat

PPDS = sorted((ROOT / "data" / "ppd").iterdir())
RECORDS = {key: text.value for key, text in
           checkcat.Catalogue(ROOT / "data" / "catalogue" / "en_US" / "PrtString.msg").texts.items()}
ITEMS = {  # item: what its value looks like
    "Key": r"\*{5}[^*\n]+(\*[^*\n]+)*|[^\s,]+(,[^\s,]+)* \S+( \S+)*",
    "LprQue": r"[A-Za-z0-9_-]{1,14}",
    "v5ModelName": r"[^\n]+",
    "v4DriverPluginFilename": r"\S+",
    "PRDUpgrade": r"ps|milan|pjl( \S+)+",
    "SNMPServicesEnable": r"FALSE|TRUE",
    "SNMPReadOnly": r"FALSE|TRUE",
    "NoPrinterReset": r"",
    "SNMPResetMode": r"SNMPReset(Normal|Private|Public|CustomComm|SendPrivateOnce|SendPublicOnce)",
}


def record(base):
    return checkcat.items(RECORDS[base])[0]


class PpdTest(unittest.TestCase):
    def test_conformity(self):
        for path in PPDS:
            with self.subTest(path.name):
                run = subprocess.run(["cupstestppd", path], capture_output=True, text=True)
                self.assertEqual((run.returncode, run.stdout.strip()), (0, "%s: PASS" % path), run.stderr)

    def test_names_and_options(self):
        names = []
        for path in PPDS:
            with self.subTest(path.name):
                self.assertRegex(path.name, r"^[a-z0-9_]{1,37}\.ppd$")
                text = path.read_text("ascii")
                found = re.findall(r'^\*ModelName: "(Tarvo [^",\n]+)"$', text, re.M)
                self.assertEqual(len(found), 1)
                self.assertLess(max(len(line) for line in text.split("\n")), 256)
                self.assertIn("\n*cupsSNMPSupplies: False\n", text)
                self.assertIsNone(re.search(r"^\*\w+ [^:/\n]+/[^:\n]*,", text, re.M))  # options are kept in comma lists
                names += found
        self.assertEqual(len(set(names)), len(PPDS))
        self.assertIn("tv_generic.ppd", [path.name for path in PPDS])

    def test_records(self):
        models = {key for key, value in RECORDS.items() if value.startswith(".sppditem")}
        self.assertEqual(models, {path.stem for path in PPDS})
        for base in sorted(models):
            for item, value in record(base).items():
                with self.subTest(base + " " + item):
                    self.assertIn(item, ITEMS)
                    self.assertRegex(value, "^(%s)$" % ITEMS[item])
        for item in ITEMS:
            self.assertTrue([base for base in models if item in record(base)], "no model shows the item " + item)


if __name__ == "__main__":
    unittest.main()
