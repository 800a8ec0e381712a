"""A tool directory of a test's own, with real programs, a look at its queue records, and lines for the queue tool.

    with ToolDir("prnqtool") as tool:
        done = tool.run("prnqtool", "-LQ")
"""
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import xdb

# The smallest PPD with options that a scheduler without further filters takes.
PPD = """*PPD-Adobe: "4.3"
*LanguageEncoding: ISOLatin1
*Manufacturer: "Tarvo"
*ModelName: "{model}"
*NickName: "{model}"
*cupsSNMPSupplies: False
*OpenUI *PageSize/Page Size: PickOne
*DefaultPageSize: A4
*PageSize A4/A4: "<</PageSize[595 842]>>setpagedevice"
*PageSize Letter/Letter: "<</PageSize[612 792]>>setpagedevice"
*CloseUI: *PageSize
*OpenUI *Duplex/Two-Sided: PickOne
*DefaultDuplex: None
*Duplex None/Off: "<</Duplex false>>setpagedevice"
*Duplex DuplexNoTumble/Long Edge: "<</Duplex true>>setpagedevice"
*CloseUI: *Duplex
"""


def built(program):
    return os.path.join(os.environ["PRN_BUILD"], "siblings", program)


def read_records(path):
    """Key -> data of a queue database; ValueError for anything that isn't whole or not headerless."""
    if not os.path.exists(path):
        return {}
    with open(path, "rb") as database:
        image = database.read()
    records = xdb.parse(image)
    if image.startswith(xdb.MAGIC) or len(dict(records)) != len(records):
        raise ValueError("no queue database")
    return {key.decode(): data for key, data in records}


class ToolDir:
    def __init__(self, *programs):
        self.path = tempfile.mkdtemp(prefix="prntool.", dir="/tmp")
        os.chmod(self.path, 0o755)
        os.makedirs(self.path + "/ppd")
        os.makedirs(self.path + "/db")
        self.env = dict(os.environ)
        self.log = os.path.basename(self.path)  # for -log: its file goes with the directory
        for program in programs:
            shutil.copy(built(program), self.path)
        self.write("ppd/tv_a.ppd", PPD.format(model="Tarvo A"))
        self.write("ppd/tv_b.ppd", PPD.format(model="Tarvo B"))
        self.write("ppd/broken.ppd", "this is no PPD file\n")

    def write(self, name, text):
        with open(os.path.join(self.path, name), "wb") as out:
            out.write(text if isinstance(text, bytes) else text.encode())

    def command(self, program, *words):
        return [os.path.join(self.path, program), *words]

    def run(self, program, *words, timeout=120, **env):
        """Runs a program from another directory than its own, without standard input."""
        return subprocess.run(self.command(program, *words), env=dict(self.env, **env), cwd="/",
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=timeout)

    def records(self):
        return read_records(self.path + "/db/que.xdb")

    def image(self):
        """The database as bytes, and the file store's list, to show that nothing changed."""
        found = []
        for name in ("que.xdb", "hostq"):
            path = Path(self.path, "db", name)
            found.append(path.read_bytes() if path.exists() else None)
        return found

    def __enter__(self):
        return self

    def __exit__(self, *ignored):
        shutil.rmtree(self.path, ignore_errors=True)
        if os.path.exists("/tmp/%s.log" % self.log):
            os.unlink("/tmp/%s.log" % self.log)


class QueueTool:
    """For a TestCase: runs the queue tool of self.tool, and holds what every run must keep to."""

    ppd, target = "tv_a.ppd", "-pm wp -lpd -hn h1 -psqn lp"

    def tool_run(self, line, status=0, **env):
        """A line of words, or their list; a line's word LOG stands for the name of the log."""
        words = [self.tool.log if word == "LOG" else word for word in line.split()] if isinstance(line, str) else line
        done = self.tool.run("prnqtool", *words, **env)
        self.assertEqual(done.returncode, status, (line, done.stderr))
        self.assertTrue(done.stderr or not status, line)
        for told in done.stderr.splitlines():
            self.assertTrue(told.startswith("prnqtool: " if status else "prnqtool: warning: "), (line, told))
        return done

    def add(self, name, tail=None, ppd=None, **more):
        return self.tool_run("%s -log LOG -fs .settings -ppd %s %s" % (name, ppd or self.ppd, tail or self.target), **more)
