"""A house of simulated printers in a private network, and what a discovery run finds in it; then, while the printers answer,
the program that the arguments name, or without arguments prndeck in its windows, where there is a display.  Started by ./run demo."""
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
from pathlib import Path

import netns
from snmpask import BUILD, VARIABLES, ask

TOP = Path(__file__).resolve().parent.parent
SIM = BUILD + "/tools/prnsim/prnsim"
FLEET = str(TOP / "tools/prnsim/demo.fleet")
ROW = "{:<16}{:<26}{:<9}{}"
# Queues that are there from the start: name, model's file, address.
QUEUES = (("lobby", "tv_p340.ppd", "10.71.1.11"), ("graphics", "tv_c410.ppd", "10.71.1.12"), ("night-run", "tv_w760.ppd", "10.71.2.21"))


def host_names(addresses):
    """A hosts file in which each printer has the name that it gives itself."""
    lines = ["127.0.0.1 localhost"]
    for address in addresses:
        values = subprocess.run([SIM, "-d", address, FLEET], capture_output=True, text=True, check=True).stdout
        names = [line.split("|", 2)[2].strip('"') for line in values.splitlines() if line.startswith(VARIABLES[1] + "|")]
        lines += [f"{address} {name}.example.com" for name in names if name.replace("-", "").isalnum()]
    return "\n".join(lines) + "\n"


def host_name(address):
    try:
        return socket.gethostbyaddr(address)[0]
    except OSError:
        return address


def show(net):
    """A discovery run as the program makes it, but with the hosts that are no printers, and less patience with silent ones."""
    print("Looking for printers on " + " and ".join(map(str, net.subnets)) + "\n", flush=True)
    targets = ",".join(f"{subnet.network_address} {subnet.netmask}" for subnet in net.subnets)
    hosts, _ = ask("-t", "1", "find", targets, *VARIABLES)
    counts = {"yes": 0, "no": 0, "-": 0}
    print(ROW.format("Address", "Host name", "Printer", "Description"))
    for address, variables in hosts:
        filled = [status == 0 and kind != 8 for _, status, kind, _ in variables]
        printer = "-" if address == "-" else "yes" if filled[3] and filled[5] else "no"
        counts[printer] += 1
        if printer != "-":
            print(ROW.format(address, host_name(address), printer, variables[3 if filled[3] else 2][3]))
    print(f"\n{counts['yes']} printers, {counts['no']} other hosts, {counts['-']} that answered once and never again.")


def why_no_windows():
    display = os.environ.get("DISPLAY", "")
    if not display:
        return "No display: the windows are left out."
    if not re.match(r"(unix)?:", display):
        return f"The display {display} is another host's: the demo's network can't reach it, so the windows are left out."
    return ""


def run_windows():
    """prndeck in a tool directory of its own, with queues in the tool's own store; nothing of it stays."""
    with tempfile.TemporaryDirectory(prefix="prndeck-demo.") as scratch:
        deck = Path(scratch) / "deck"
        shutil.copytree(Path(BUILD) / "stage", deck, symlinks=False, ignore=shutil.ignore_patterns("que.xdb", "IPDisc.xdb", "hostq"))
        os.mkdir(scratch + "/spool")
        netns.cover("/var/spool", scratch + "/spool")  # where jobs wait
        path = str(deck) + ":" + os.environ["PATH"]
        env = {**os.environ, "PRNQ_STORE": "file", "PATH": path}
        for name, ppd, address in QUEUES:
            words = [str(deck / "prnqtool"), name, "-log", "prndeck", "-ppd", ppd, "-pm", "wp", "-lpd", "-hn", address, "-psqn", "lp", "-fe", "-ui"]
            subprocess.run(words, cwd=deck, env=env, check=True)
        print("\nThe windows of prndeck, with queues that go with the demo. Exit ends it.", flush=True)
        return subprocess.run([str(deck / "prndeck")], cwd=deck, env=env).returncode


def main():
    reason = netns.enter()
    if reason:
        sys.exit(f"The demo needs a network of its own: {reason}.\nAn administrator can start it, or allow user namespaces.")
    try:
        net = netns.Network()
    except OSError as error:
        sys.exit(f"The demo's network can't be made: {error}.")
    with net.simulate(SIM, FLEET, "-t", "100000000"):
        with tempfile.NamedTemporaryFile("w", suffix=".hosts") as hosts:  # the mount keeps it
            hosts.write(host_names(net.given))
            hosts.flush()
            netns.cover("/etc/hosts", hosts.name)
        show(net)
        if sys.argv[1:]:
            return subprocess.run(sys.argv[1:]).returncode  # its network is this one
        reason = why_no_windows()
        if reason:
            print("\n" + reason)
            return 0
        return run_windows()


# What was made is removed, however the demo is ended.
for number in (signal.SIGTERM, signal.SIGHUP):
    signal.signal(number, lambda got, _: sys.exit(128 + got))
try:
    sys.exit(main())
except KeyboardInterrupt:
    sys.exit(130)
