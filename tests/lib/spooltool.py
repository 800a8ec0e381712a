"""Jobs of a scratch tool directory: its senders, and what its spool directories show."""
import contextlib
import os
import time

from tooldir import QueueTool


def until(condition, seconds=15):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(0.01)
    return condition()


class SpoolTool(QueueTool):
    """For a TestCase whose self.tool has prnqtool, prnout and prnrm, and PRNQ_SPOOL set to "spool" in it."""

    def end_jobs(self):
        for name in self.tool.run("prnqtool", "-LQ").stdout.replace(":", "").split():
            self.tool.run("prnrm", name, "-")
        self.assertTrue(until(lambda: not self.detached()), self.detached())

    def detached(self):
        """The senders and watchers of this test's tool directory."""
        found = []
        for pid in filter(str.isdigit, os.listdir("/proc")):
            with contextlib.suppress(OSError):
                if os.readlink("/proc/%s/exe" % pid) == self.tool.path + "/prnout":
                    found.append(int(pid))
        return found

    def spool(self, printer):
        return "%s/spool/%s/%s" % (self.tool.path, os.path.basename(self.tool.path), printer)

    def listed(self, printer):
        """The list of jobs as the monitor shows it: owner, name and size; a job without both files is left out."""
        rows, directory = [], self.spool(printer)
        with contextlib.suppress(FileNotFoundError), open(directory + "/.q") as lines:
            for control, data in map(str.split, lines):
                paths = [directory + "/" + control, directory + "/" + data]
                if all(map(os.path.isfile, paths)):
                    with open(paths[0], errors="replace") as words:
                        rows.append((words.read().split()[3], control[1:], os.path.getsize(paths[1])))
        return rows

    def names(self, printer):
        return [name for _, name, _ in self.listed(printer)]

    def status(self, printer):
        with contextlib.suppress(FileNotFoundError), open(self.spool(printer) + "/.status") as text:
            return text.read()
