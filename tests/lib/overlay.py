"""An installation on a host of a test's own: this host's files with a staged root laid over them, and its own /tmp and /var/lib/prndeck;
all of it is seen by the test alone and gone with it.

    reason = overlay.missing()          # in a network and a mount namespace from then on
    with overlay.Host("/tmp/root") as host:
        done = host.run("prndeck -v")
"""
import os
import shutil
import subprocess
import tempfile

import netns


def missing():
    """Why there can be no such host; empty after entering the namespaces."""
    for name in ("mount", "umount", "chroot"):
        if not shutil.which(name):
            return "there is no " + name
    return netns.enter() or ""


class Host:
    def __init__(self, stage):
        self.place = tempfile.mkdtemp(prefix="prnhost.")
        self.path = self.place + "/all"
        self.mounts = []
        self.mount("-t", "tmpfs", "none", self.place)
        for name in ("up", "work", "all"):
            os.mkdir(self.place + "/" + name)
        shutil.copytree(stage, self.place + "/stage", symlinks=True)
        self.mount("-t", "overlay", "overlay", "-o", "lowerdir={0}/stage:/,upperdir={0}/up,workdir={0}/work".format(self.place), self.path)
        self.mount("-t", "tmpfs", "-o", "mode=1777", "none", self.path + "/tmp")
        for name in ("proc", "dev"):
            self.mount("--rbind", "/" + name, self.path + "/" + name)

    def mount(self, *words):
        subprocess.run(["mount", *words], check=True)
        self.mounts.append(words[-1])

    def run(self, line, cwd="/", user="root", text="", limit=60, **env):
        """A line for the shell; in PATH are the usual directories only."""
        env = {"PATH": "/usr/local/bin:/usr/bin:/bin:/usr/local/sbin:/usr/sbin:/sbin", "TERM": "vt100", "HOME": "/tmp", **env}
        words = ["chroot", *(["--userspec=" + user] if user != "root" else []), self.path, "sh", "-c", 'cd "$0" && eval "$1"', cwd, line]
        return subprocess.run(words, input=text, capture_output=True, text=True, timeout=limit, env=env, encoding="latin-1")

    def __enter__(self):
        return self

    def __exit__(self, *ignored):
        for path in reversed(self.mounts):
            subprocess.run(["umount", "-l", path], check=True)
        os.rmdir(self.place)
