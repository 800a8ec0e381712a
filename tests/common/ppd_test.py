"""The PPD files conform, name their models so that the program can list them, and agree with the models' records."""
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
LISTS = ("DisableCustomBanner", "W2PSDisableCustomBanner", "DefaultCustomBannerOff", "DisableCustomBannerSetup")
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


def matches(key, text):
    """Whether a printer that describes itself with this text is recognised by the rule."""
    if key.startswith("*****"):
        return any(text.startswith(piece) for piece in key[5:].split("*") if piece)
    vendors, *models = key.split()
    vendor = any(re.search(r"(^| )%s( |$)" % re.escape(word), text) for word in vendors.split(","))
    return vendor and any(re.search(r" %s($|[\s/A-Za-z,;])" % re.escape(word), text) for word in models)


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

    def test_lists(self):
        for name in LISTS:
            with self.subTest(name):
                self.assertRegex(RECORDS[name], r"^,(\w+,)+$")
                self.assertLessEqual(set(RECORDS[name].strip(",").split(",")), {path.stem for path in PPDS})

    def test_recognition(self):
        """Each model but the generic one recognises its own name, in both spellings, and no other model's."""
        keys = {path.stem: record(path.stem).get("Key") for path in PPDS}
        self.assertIsNone(keys.pop("tv_generic"))
        for base in keys:
            model = base[3:].upper()
            for text in ("Tarvo " + model, "TARVO %s;V2.1" % model, "Tarvo %s/N 600 dpi" % model):
                with self.subTest(text):
                    self.assertEqual([other for other, key in keys.items() if matches(key, text)], [base])


if __name__ == "__main__":
    unittest.main()
