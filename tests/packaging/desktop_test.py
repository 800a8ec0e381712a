"""What desktops and shells read of an installation: menu entry, icons, description, administrator's action, completion."""
import configparser
import glob
import os
import shutil
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml
from pathlib import Path

BUILD = os.environ["PRN_BUILD"]
ID = "org.prndeck.prndeck"

# A line as it is typed, and what is offered for its last word.
COMPLETED = [
    ("prndeck -", "-tty -nd -help -v"), ("prnqtool o", "office own"), ("prnqtool q -p", "-ppd -pm -psqn"), ("prnqtool q -pm w", "wp wps"),
    ("prnqtool -x a", "all"), ("prnqtool new -cl of", "office"), ("prnout -do", "-doffice -down"), ("prnout -d of", "office"),
    ("prnout fi", "file.txt"), ("prnrm o", "office own"), ("prnrm own ", "- A00001"),
    ("prnqtool --en", "--ensure"), ("prnqtool --ensure --b", "--batch"), ("prnqtool --dry-run o", "office own"), ("prnout --j", "--json"),
    ("prnpnxxtty -MS o", "office own"), ("prnpnxxtty -S", "-SBP"),
]
COMPLETER = """prnqtool() { [ "$*" = -LQ ] && printf 'office:\\nown:\\n'; }
prnout() { [ "$*" = "-l -d own" ] && printf 'Queue Job\\nown A00001\\n'; }
compopt() { :; }
. "$1"
COMP_WORDS=("${@:2}") COMP_CWORD=$(($# - 2))
function=$(complete -p "$2" | sed 's/.*-F \\([^ ]*\\) .*/\\1/')
"$function" "$2" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
echo "${COMPREPLY[*]}"
"""


class Desktop(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.root = tempfile.mkdtemp(prefix="prndesk.")
        subprocess.run(["cmake", "--install", BUILD], env={**os.environ, "DESTDIR": cls.root}, check=True, stdout=subprocess.DEVNULL)
        cls.share = glob.glob(cls.root + "/**/share/applications", recursive=True)[0][:-len("applications")]

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.root)

    def installed(self, command):
        return [p for p in ("bin", "sbin") if os.access(self.share + "/../" + p + "/" + os.path.basename(command), os.X_OK)]

    def test_entry_names_what_is_there(self):
        path = self.share + "applications/" + ID + ".desktop"
        entry = configparser.ConfigParser(interpolation=None)
        entry.optionxform = str
        entry.read(path)
        for section in entry.sections():
            self.assertTrue(self.installed([w for w in entry[section]["Exec"].split() if w != "pkexec"][0]), section)
            self.assertIn("Name", entry[section])
        actions = {"Desktop Action " + name for name in entry["Desktop Entry"]["Actions"].split(";") if name}
        self.assertEqual(actions | {"Desktop Entry"}, set(entry.sections()))
        for size in (48, 64, 128, 256):
            image = Path(self.share, "icons/hicolor/%ix%i/apps" % (size, size), entry["Desktop Entry"]["Icon"] + ".png").read_bytes()
            self.assertEqual(image[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual(struct.unpack(">II", image[16:24]), (size, size))

    def test_description_and_action_fit_the_entry(self):
        about = xml.parse(self.share + "metainfo/" + ID + ".metainfo.xml").getroot()
        self.assertTrue(os.path.exists(self.share + "applications/" + about.findtext("launchable")))
        self.assertTrue(all(self.installed(node.text) for node in about.findall("provides/binary")))
        action = xml.parse(self.share + "polkit-1/actions/" + ID + ".policy").getroot().find("action")
        notes = {note.get("key").rsplit(".", 1)[1]: note.text for note in action.findall("annotate")}
        self.assertTrue(self.installed(notes["path"]))
        self.assertEqual(notes["allow_gui"], "true")
        self.assertEqual({node.text[:10] for node in action.find("defaults")}, {"auth_admin"})

    def test_readers_of_the_formats_accept_them(self):
        icons = glob.glob(self.share + "icons/hicolor/*/apps/prndeck.png")
        for command in (["desktop-file-validate", self.share + "applications/" + ID + ".desktop"],
                        ["appstreamcli", "validate", "--no-net", self.share + "metainfo/" + ID + ".metainfo.xml"],
                        ["identify", "-regard-warnings", *icons]):
            with self.subTest(command[0]):
                if not shutil.which(command[0]):
                    self.skipTest(command[0] + " is not installed")
                done = subprocess.run(command, capture_output=True, text=True)
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_bash_completes_words_and_queues(self):
        Path(self.root, "file.txt").touch()
        for line, wanted in COMPLETED:
            program = line.split()[0]
            script = self.share + "bash-completion/completions/" + program
            done = subprocess.run(["bash", "-c", COMPLETER, "bash", script, *line.split(" ")], capture_output=True, text=True, cwd=self.root)
            self.assertEqual((done.stdout.strip(), done.stderr), (wanted, ""), line)


if __name__ == "__main__":
    unittest.main()
