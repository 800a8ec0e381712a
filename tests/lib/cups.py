"""A private print scheduler for tests: own directories, own socket, own data; the host's is never touched.

    with Scheduler() as cups:
        cups.run("lpadmin", "-p", "q", "-v", "socket://127.0.0.1:9100", "-E")

The tree lies under /tmp because the scheduler's helpers run as another user and must be able to reach it.  Where
the host lacks the backends for sockets, LPD or local devices, small ones of our own stand in for them. Filters are ours
unless the host's are asked for, so that documents come out as they went in, whatever is installed.
"""
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

CUPSD = "/usr/sbin/cupsd"
SERVER_BIN = "/usr/lib/cups"
DATA_DIR = "/usr/share/cups"

FILES_CONF = """ServerRoot {root}/etc
RequestRoot {root}/spool
TempDir {root}/spool/tmp
CacheDir {root}/cache
StateDir {root}/run
ServerBin {root}/bin
DataDir {root}/data
AccessLog {root}/access_log
ErrorLog {root}/error_log
PageLog {root}/page_log
Printcap
FileDevice Yes
SystemGroup root
"""

# DirtyCleanInterval 0: a queue stands in printers.conf as soon as lpadmin has returned.
CUPSD_CONF = """Listen {root}/run/cups.sock
Browsing Off
DefaultShared No
WebInterface No
DirtyCleanInterval 0
LogLevel info
<Location />
  Allow localhost
</Location>
"""

# A backend: argv is job, user, title, copies, options and perhaps files; the target stands in DEVICE_URI.
BACKEND = r'''#!{python} -IB
import os, socket, sys, urllib.parse
if len(sys.argv) == 1:
    print('network {scheme} "Unknown" "{scheme}"')
    sys.exit(0)
uri = urllib.parse.urlsplit(os.environ["DEVICE_URI"])
data = b"".join(open(name, "rb").read() for name in sys.argv[6:]) or sys.stdin.buffer.read()
if "{scheme}" in ("parallel", "serial"):
    with open(urllib.parse.unquote(uri.path), "wb", buffering=0) as device:
        device.write(data)
    sys.exit(0)
port = uri.port or {{"socket": 9100, "lpd": 515}}["{scheme}"]
sock = socket.create_connection((uri.hostname, port), 10)
def step(data):
    sock.sendall(data)
    if sock.recv(1) != b"\0":
        sys.exit("receiver refuses")
if "{scheme}" == "lpd":
    control = ("Htest\nP%s\nJ%s\nldfA001test\n" % (sys.argv[2], sys.argv[3])).encode()
    step(b"\2" + uri.path[1:].encode() + b"\n")
    step(b"\2%d cfA001test\n" % len(control))
    step(control + b"\0")
    step(b"\3%d dfA001test\n" % len(data))
    step(data + b"\0")
else:
    sock.sendall(data)
sock.close()
'''

# Stands in for the filters of a PostScript queue: the document goes through as it is.
FILTER = """#!/bin/sh
shift 5
exec cat "$@"
"""
CONVS = "application/postscript application/vnd.cups-postscript 66 pstops\n"


class Scheduler:
    def __init__(self, host_filters=False):
        self.host_filters = host_filters
        self.root = tempfile.mkdtemp(prefix="prncups.", dir="/tmp")
        os.chmod(self.root, 0o755)
        self.socket = self.root + "/run/cups.sock"
        self.data = self.root + "/data"
        for name in ("etc", "spool/tmp", "cache", "run", "data/banners"):
            os.makedirs(os.path.join(self.root, name))
        self._link_tree()
        self._write("etc/cups-files.conf", FILES_CONF)
        self._write("etc/cupsd.conf", CUPSD_CONF)

    @staticmethod
    def missing():
        """Why a scheduler can't be had here, or None."""
        for program in (CUPSD, "/usr/sbin/lpadmin", "/usr/bin/lpstat", "/usr/bin/lp"):
            if not os.path.exists(program):
                return program + " is missing"
        return None if os.geteuid() == 0 else "a scheduler needs root"

    def _write(self, name, text):
        with open(os.path.join(self.root, name), "w") as out:
            out.write(text.format(root=self.root))

    def _link(self, source, directory, stand_ins=()):
        """The host's files below our directory, and a stand-in for each that the host lacks."""
        target = os.path.join(self.root, directory)
        os.makedirs(target, exist_ok=True)
        for name in os.listdir(source) if os.path.isdir(source) else ():
            if not os.path.lexists(os.path.join(target, name)):
                os.symlink(os.path.join(source, name), os.path.join(target, name))
        for name, text, mode in stand_ins:
            if not os.path.exists(os.path.join(target, name)):
                with open(os.path.join(target, name), "w") as out:
                    out.write(text)
                os.chmod(os.path.join(target, name), mode)

    def _link_tree(self):
        python = os.path.realpath(sys.executable)
        # A backend that others can't run is run as root: LPD and local devices need it.
        self._link(SERVER_BIN + "/backend", "bin/backend",
                   [(scheme, BACKEND.format(python=python, scheme=scheme), 0o700)
                    for scheme in ("socket", "lpd", "parallel", "serial")])
        filters, mime = (SERVER_BIN + "/filter", DATA_DIR + "/mime") if self.host_filters else ("", "")
        self._link(filters, "bin/filter", [(name, FILTER, 0o755) for name in ("pstops", "commandtops", "gziptoany")])
        self._link(mime, "data/mime", [("mime.convs", CONVS, 0o644)])
        if not mime:
            os.symlink(DATA_DIR + "/mime/mime.types", self.data + "/mime/mime.types")
        self._link(SERVER_BIN, "bin")
        self._link(DATA_DIR, "data")

    def env(self, **more):
        env = dict(os.environ, CUPS_SERVER=self.socket, PRNQ_DATADIR=self.data, LC_ALL="C")
        for name in ("LANGUAGE", "LPDEST", "PRINTER"):
            env.pop(name, None)
        env.update(more)
        return env

    def run(self, *argv, **kwargs):
        """A client command against this scheduler; the completed process, its output as text."""
        return subprocess.run(argv, env=self.env(), stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=60, **kwargs)

    def alive(self):
        with socket.socket(socket.AF_UNIX) as sock:
            try:
                sock.connect(self.socket)
                return True
            except OSError:
                return False

    def pid(self):
        with open(self.root + "/run/cupsd.pid") as pid:
            return int(pid.read())

    def start(self):
        if self.alive():  # a second one would take the socket away without a word
            raise RuntimeError("a scheduler runs on " + self.socket)
        done = subprocess.run([CUPSD, "-c", self.root + "/etc/cupsd.conf", "-s", self.root + "/etc/cups-files.conf"],
                              capture_output=True, text=True, timeout=30)
        if done.returncode != 0 or not self._until(self.alive):
            raise RuntimeError("cupsd: %d %s" % (done.returncode, done.stderr))

    def stop(self):
        if self.alive():
            pid = self.pid()
            os.kill(pid, signal.SIGCONT)
            os.kill(pid, signal.SIGTERM)
            if not self._until(lambda: self.ended(pid)):
                os.kill(pid, signal.SIGKILL)

    @staticmethod
    def ended(pid):
        """Gone, or only waiting for its parent to take notice."""
        try:
            with open("/proc/%d/stat" % pid) as stat:
                return stat.read().rpartition(")")[2].split()[0] == "Z"
        except FileNotFoundError:
            return True

    def freeze(self):
        os.kill(self.pid(), signal.SIGSTOP)

    def thaw(self):
        os.kill(self.pid(), signal.SIGCONT)

    @staticmethod
    def _until(condition, seconds=10):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                return False
            time.sleep(0.005)
        return True

    def queues(self):
        """Name -> device URI of all queues."""
        lines = self.run("lpstat", "-v").stdout.splitlines()
        return dict(line[len("device for "):].split(": ", 1) for line in lines if line.startswith("device for "))

    def default(self):
        answer = self.run("lpstat", "-d").stdout.strip()
        return answer.split(": ", 1)[1] if ": " in answer else None

    def options(self, queue):
        """What printers.conf keeps of the queue: its options by name, and the other lines by their keyword."""
        found, inside = {}, False
        with open(self.root + "/etc/printers.conf") as conf:
            for line in conf.read().splitlines():
                if line.startswith("<"):
                    inside = line[1:-1].split(" ")[1:] == [queue]
                elif inside:
                    keyword, _, value = line.partition(" ")
                    if keyword == "Option":
                        keyword, _, value = value.partition(" ")
                    found[keyword] = value
        return found

    def ppd(self, queue):
        """Text of the queue's PPD at the server, or None for a raw queue."""
        try:
            with open("%s/etc/ppd/%s.ppd" % (self.root, queue)) as ppd:
                return ppd.read()
        except FileNotFoundError:
            return None

    def log(self):
        with open(self.root + "/error_log", errors="replace") as log:
            return log.read()

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *ignored):
        self.stop()
        shutil.rmtree(self.root, ignore_errors=True)
