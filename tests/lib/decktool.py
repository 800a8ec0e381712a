"""A scratch tool directory for the real program, with a stand-in for prnqtool that notes what it is asked."""
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import xdb

BUILD = Path(os.environ["PRN_BUILD"])

# Notes a line of words for each run but -LQ, which is counted and answered from a file.
PRNQTOOL = r"""#!/bin/sh
if [ "$*" = -LQ ]; then { echo >>asked; } 2>/dev/null; cat queues 2>/dev/null; exit; fi
printf '%s' "${0##*/}" >>lines
for word; do printf ' <%s>' "$word" >>lines; done
echo >>lines
env >environment
"""


class DeckTool:
    def __init__(self):
        self.path = Path(tempfile.mkdtemp(prefix="prntest."))
        stage = BUILD / "stage"
        for name in ("ppd", "db"):
            shutil.copytree(stage / name, self.path / name)
        shutil.copy(stage / "trans.conf", self.path)
        os.symlink(BUILD / "prndeck", self.path / "prndeck")
        self.program = str(self.path / "prndeck")
        self.write("prnqtool", PRNQTOOL, 0o755)

    def close(self):
        shutil.rmtree(self.path)

    def write(self, name, text, mode=0o644):
        path = self.path / name
        path.write_text(text, encoding="latin-1")
        path.chmod(mode)

    def read(self, name):
        path = self.path / name
        return path.read_text(encoding="latin-1") if path.exists() else ""

    def lines(self):
        return self.read("lines").splitlines()

    def queues(self, *names):
        self.write("queues", "".join(name + ":\n" for name in names))

    def que(self, records):
        """Writes the database "que": texts by key."""
        xdb.write(self.path / "db" / "que.xdb", [(k.encode(), v.encode("latin-1")) for k, v in records.items()])

    def env(self, **changes):
        env = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "LANG")}
        return {**env, "TERM": "vt100", **changes}

    def run(self, *words, script="", limit=120, prefix=(), cwd=None, **env):
        """Runs the program on pipes: its status and both outputs."""
        data = script if isinstance(script, bytes) else script.encode("latin-1")
        done = subprocess.run([*prefix, self.program, *words], input=data, capture_output=True, timeout=limit,
                              cwd=cwd or self.path, env=self.env(**env))
        return done.returncode, done.stdout.decode("latin-1"), done.stderr.decode("latin-1")


