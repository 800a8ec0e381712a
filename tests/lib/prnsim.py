"""A fleet of simulated printers for tests, on loopback addresses of its own or on those of the namespace it runs in.

    with Simulator(text="printer 10.71.1.11 like tarvo-p340\n") as sim:
        sim.ask("10.71.1.11", get_message("1.3.6.1.2.1.1.5.0"))

Texts may use the models of tarvo.fleet.  Addresses are those of the description; Simulator.at() gives the real ones.
"""
import os
import pathlib
import random
import shutil
import socket
import subprocess
import tempfile

SIMULATOR = os.path.join(os.environ["PRN_BUILD"], "tools", "prnsim", "prnsim")
FLEETS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "prnsim")
# Recorded walks of real devices, where there are any: beside this tree, or where PRN_RECORDINGS says.
RECORDINGS = pathlib.Path(os.environ.get("PRN_RECORDINGS", os.path.join(FLEETS, "..", "..", "..", "shared", "recordings")))
INCLUDE = 'include "%s"\n' % os.path.abspath(os.path.join(FLEETS, "tarvo.fleet"))


def draw(seed, address, request, kind):
    """The documented random number of a decision, 0 to 999999."""
    mask = (1 << 64) - 1
    x = (seed * 0x9E3779B97F4A7C15 + (int.from_bytes(socket.inet_aton(address), "big") << 32) + (request << 8) + kind) & mask
    x = (x ^ x >> 30) * 0xBF58476D1CE4E5B9 & mask
    x = (x ^ x >> 27) * 0x94D049BB133111EB & mask
    return (x ^ x >> 31) % 1000000


def ber(tag, content):
    length = len(content)
    octets = length.to_bytes((length.bit_length() + 7) // 8, "big")
    return bytes([tag]) + (bytes([length]) if length < 128 else bytes([128 + len(octets)]) + octets) + content


def ber_oid(dotted):
    arcs = [int(arc) for arc in dotted.split(".")]
    content = b""
    for arc in [arcs[0] * 40 + arcs[1]] + arcs[2:]:
        digits = [arc & 127]
        while arc := arc >> 7:
            digits.append(arc & 127 | 128)
        content += bytes(reversed(digits))
    return ber(6, content)


def get_message(*names, request=1, community=b"rdcomm", kind=0xA0, value=b"\5\0"):
    bindings = b"".join(ber(0x30, ber_oid(name) + value) for name in names)
    pdu = ber(2, request.to_bytes(4, "big")) + b"\2\1\0\2\1\0" + ber(0x30, bindings)
    return ber(0x30, b"\2\1\0" + ber(4, community) + ber(kind, pdu))


class Simulator:
    """fleet: a file, or text: what stands behind an include of tarvo.fleet; loopback False leaves addresses and ports alone."""

    def __init__(self, *options, fleet=None, text=None, loopback=True):
        self.directory = tempfile.mkdtemp(prefix="prnsim.")
        self.octet = random.randrange(20, 250)
        if text is not None:
            fleet = os.path.join(self.directory, "test.fleet")
            with open(fleet, "w") as out:
                out.write(INCLUDE + text)
        self.port, where = 161, []
        if loopback:
            self.port = random.randrange(20000, 32000)  # below those that other sockets get from the kernel
            where = ["-m", "10.71=127.%d" % self.octet, "-p", str(self.port), "-w", str(self.port), "-r", str(self.port + 1), "-q", str(self.port + 2)]
        self.loopback = loopback
        self.log_path = os.path.join(self.directory, "log")
        self.control = os.path.join(self.directory, "control")
        self.argv = [SIMULATOR, *where, "-l", self.log_path, "-c", self.control, "-t", "300", *options, fleet]

    def at(self, address):
        return address.replace("10.71.", "127.%d." % self.octet, 1)

    def __enter__(self):
        self.process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *self.argv], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.ready = self.process.stdout.readline()
        if not self.ready.startswith("ready "):
            raise RuntimeError("prnsim: " + self.process.communicate()[1])
        return self

    def __exit__(self, kind, value, trace):
        self.process.terminate()
        _, errors = self.process.communicate(timeout=30)
        shutil.rmtree(self.directory)
        if kind is None and (self.process.returncode or errors):
            raise RuntimeError(f"prnsim ended with {self.process.returncode}: {errors}")

    def change(self, *lines):
        """Lines "ADDRESS LINE" for printers at work; what the program says to the first one that is wrong, or ""."""
        return subprocess.run([SIMULATOR, "-e", self.control, *lines], capture_output=True, text=True, timeout=30).stderr

    def log(self):
        """The requests so far, as lists of fields."""
        with open(self.log_path) as lines:
            return [line.rstrip("\n").split(" ") for line in lines]

    def ask(self, address, datagram, answers=1, timeout=5):
        """Sends from a socket of its own; the list of (source, answer), fewer than wanted after a silence."""
        got = []
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sock:
            sock.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
            sock.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)
            sock.settimeout(timeout)
            sock.sendto(datagram, (self.at(address) if self.loopback else address, self.port))
            try:
                while len(got) < answers:
                    data, peer = sock.recvfrom(65536)
                    got.append((peer[0].replace("127.%d." % self.octet, "10.71.", 1), data))
            except TimeoutError:
                pass
        return got
