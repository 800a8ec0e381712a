"""A network of its own for a test or a demo: this process becomes the workstation, printers live in a second namespace.

    reason = netns.enter()              # first thing in the program; None, or why there can be no network here
    net = netns.Network()               # two subnets, 10.71.1.0/24 on eth1 and 10.71.2.0/24 on eth2
    net.give("10.71.1.2")               # an address of the fleet
    net.start(["snmpd", ...])           # a program among the printers
    with net.simulate(prnsim, file):    # or the printers of a description, each with its address
    subprocess.run(["snmpget", ...])    # a program on the workstation

The namespaces have no names and no process of their own: they last as long as this process and what it started, and what it
started ends with it, also when it is killed.  Networks of several processes know nothing of one another.
"""
import contextlib
import ctypes
import ipaddress
import os
import re
import shutil
import subprocess

CLONE_NEWNS, CLONE_NEWUSER, CLONE_NEWNET = 0x00020000, 0x10000000, 0x40000000
MS_BIND, MS_REC, MS_PRIVATE = 4096, 16384, 1 << 18
MAC = "02:50:72:6e:00:0"  # and the number of the subnet

_libc = ctypes.CDLL(None, use_errno=True)


def _call(name, *arguments):
    if getattr(_libc, name)(*arguments) != 0:
        number = ctypes.get_errno()
        raise OSError(number, f"{name}: {os.strerror(number)}")


def _write(path, text):
    with open(path, "w") as out:
        out.write(text)


def _become_root():
    """A user namespace in which this user is root, for what root may do without one."""
    uid, gid = os.geteuid(), os.getegid()
    _call("unshare", CLONE_NEWUSER)
    _write("/proc/self/setgroups", "deny")
    _write("/proc/self/uid_map", f"0 {uid} 1")
    _write("/proc/self/gid_map", f"0 {gid} 1")


def _ip(lines, **kwargs):
    done = subprocess.run(["ip", "-batch", "-"], input="\n".join(lines), text=True, capture_output=True, **kwargs)
    if done.returncode != 0:
        raise OSError("ip: " + done.stderr.strip())


def enter():
    """Leaves the host's network for an empty one, with mounts that nobody else sees; there is no way back."""
    os.environ["PATH"] += ":/usr/sbin:/sbin"
    if not shutil.which("ip"):
        return "ip of iproute2 is not installed"
    try:
        try:
            _call("unshare", CLONE_NEWNET | CLONE_NEWNS)
        except PermissionError:  # an ordinary user, or root in a container that may do little
            _become_root()
            _call("unshare", CLONE_NEWNET | CLONE_NEWNS)
        _call("mount", None, b"/", None, MS_REC | MS_PRIVATE, None)
        _ip(["link set lo up"])
    except OSError as error:
        return f"no network namespace for this user: {error}"
    return None


def cover(path, by):
    """Shows another file in the place of one of the host's, to this process and what it starts."""
    _call("mount", by.encode(), path.encode(), None, MS_BIND, None)


class Network:
    """A bridge for each subnet among the printers; ethN, with the first address of the subnet, on the workstation."""

    def __init__(self, *subnets):
        self.subnets = [ipaddress.ip_network(text) for text in subnets or ("10.71.1.0/24", "10.71.2.0/24")]
        self.given = set()
        home = os.open("/proc/self/ns/net", os.O_RDONLY)
        _call("unshare", CLONE_NEWNET)
        self.namespaces = [home, os.open("/proc/self/ns/net", os.O_RDONLY)]
        _call("setns", home, CLONE_NEWNET)
        workstation = f"/proc/{os.getpid()}/fd/{home}"
        fleet, here = ["link set lo up"], []
        for number, subnet in enumerate(self.subnets, 1):
            fleet += [f"link add lan{number} address {MAC}{number} type bridge",
                      f"link add port{number} type veth peer name eth{number} netns {workstation}",
                      f"link set port{number} master lan{number} up", f"link set lan{number} up"]
            here += [f"address add {subnet[1]}/{subnet.prefixlen} brd + dev eth{number}", f"link set eth{number} up"]
        with self.fleet():
            _ip(fleet)
        _ip(here)

    @contextlib.contextmanager
    def fleet(self):
        """Sockets that are made inside are the fleet's."""
        home, fleet = self.namespaces
        _call("setns", fleet, CLONE_NEWNET)
        try:
            yield
        finally:
            _call("setns", home, CLONE_NEWNET)

    def give(self, *addresses):
        """Puts addresses on the fleet's side.  The workstation knows where they are: the table of what it would have to learn
        is one for all namespaces of the host, and too small for a thousand printers beside another test's."""
        fleet, here = [], []
        for text in addresses:
            number, subnet = next((n, s) for n, s in enumerate(self.subnets, 1) if ipaddress.ip_address(text) in s)
            fleet.append(f"address add {text}/{subnet.prefixlen} brd + dev lan{number}")
            here.append(f"neighbour replace {text} lladdr {MAC}{number} nud permanent dev eth{number}")
        with self.fleet():
            _ip(fleet)
        _ip(here)
        self.given.update(addresses)

    def start(self, argv, **kwargs):
        """Starts a program in the fleet's namespace; it ends with the thread that called."""
        with self.fleet():
            return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *argv], **kwargs)

    @contextlib.contextmanager
    def simulate(self, program, file, *options):
        """The printers of a description, ready to be asked, until the block ends; their addresses stay."""
        with open(file) as text:
            runs = re.findall(r"^\s*printer\s+(\S+)(?:\s+to\s+(\S+))?", text.read(), re.M)
        spans = [[int(ipaddress.ip_address(end)) for end in (first, last or first)] for first, last in runs]
        wanted = {str(ipaddress.ip_address(n)) for first, last in spans for n in range(first, last + 1)}
        self.give(*sorted(wanted - self.given))
        with self.start([program, "-t", "3600", *options, file], stdout=subprocess.PIPE, text=True) as sim:
            try:
                ready = sim.stdout.readline()
                if not ready.startswith("ready"):
                    raise OSError(f"{program} {file}: not ready: {ready}")
                yield sim
            finally:
                sim.terminate()
        if sim.returncode != 0:
            raise OSError(f"{program} {file}: ended with {sim.returncode}")
