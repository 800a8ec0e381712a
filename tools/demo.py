"""A house of simulated printers in a private network, and what a discovery run finds in it; then, while the printers answer,
the program that the arguments name.  Started by ./run demo."""
import socket
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "tests/lib"))
import netns  # noqa: E402
from snmpask import BUILD, VARIABLES, ask  # noqa: E402

SIM = BUILD + "/tools/prnsim/prnsim"
FLEET = str(TOP / "tools/prnsim/demo.fleet")
ROW = "{:<16}{:<26}{:<9}{}"


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
        return subprocess.run(sys.argv[1:]).returncode if sys.argv[1:] else 0  # its network is this one


try:
    sys.exit(main())
except KeyboardInterrupt:
    sys.exit(130)
