"""A host of a test's own: this host's files with a staged root laid over them, or another system's. What changes there is seen by
the test alone and gone with it.

    reason = overlay.missing()          # in a network and a mount namespace from then on
    with overlay.Host(stage="/tmp/root") as host:
        done = host.run("prndeck -v")
"""
import contextlib
import os
import shutil
import signal
import subprocess
import tempfile

import netns

ENV = {"PATH": "/usr/local/bin:/usr/bin:/bin:/usr/local/sbin:/usr/sbin:/sbin", "TERM": "vt100", "HOME": "/tmp"}


def missing():
    """Why there can be no such host; empty after entering the namespaces."""
    for name in ("mount", "umount", "chroot"):
        if not shutil.which(name):
            return "there is no " + name
    return netns.enter() or ""


class Host:
    def __init__(self, base="/", stage=None):
        self.place = tempfile.mkdtemp(prefix="prnhost.")
        self.path = self.place + "/all"
        self.mounts = []
        self.mount("-t", "tmpfs", "none", self.place)
        for name in ("up", "work", "all"):
            os.mkdir(self.place + "/" + name)
        if stage:  # on another file system than the base, which may hold it
            shutil.copytree(stage, self.place + "/stage", symlinks=True)
            base = self.place + "/stage:" + base
        self.mount("-t", "overlay", "overlay", "-o", "lowerdir={1},upperdir={0}/up,workdir={0}/work".format(self.place, base), self.path)
        self.mount("-t", "tmpfs", "-o", "mode=1777", "none", self.path + "/tmp")
        for name in ("proc", "dev"):
            self.mount("--rbind", "/" + name, self.path + "/" + name)

    def mount(self, *words):
        subprocess.run(["mount", *words], check=True)
        self.mounts.append(words[-1])

    def run(self, line, cwd="/", user="root", text="", limit=60, **env):
        """A line for the shell, in the environment ENV."""
        return subprocess.run(self.words(line, cwd, user), input=text, capture_output=True, timeout=limit, env={**ENV, **env}, encoding="latin-1")

    def words(self, line, cwd="/", user="root"):
        return ["chroot", *(["--userspec=" + user] if user != "root" else []), self.path, "sh", "-c", 'cd "$0" && eval "$1"', cwd, line]

    def __enter__(self):
        return self

    def processes(self):
        """Those that still run here."""
        for pid in filter(str.isdigit, os.listdir("/proc")):
            with contextlib.suppress(OSError):  # it is gone, or the kernel's
                if os.readlink("/proc/%s/root" % pid) == self.path:
                    yield pid

    def __exit__(self, *ignored):
        for pid in self.processes():
            os.kill(int(pid), signal.SIGKILL)
        for path in reversed(self.mounts):
            subprocess.run(["umount", "-l", path], check=True)
        os.rmdir(self.place)
