"""A discovery run over 250 and 1,000 simulated printers, which all answer a broadcast at once.

The floor is one second of silence and every question as a bare round trip in the same run.  Behind it stands what the snmp
backend of CUPS takes on the same network, once, with its own port tests; PRN_CUPS_SNMP names another one than the host's.

Behind these, 250 printers on a bad network, refreshed a few times over: who is found, beside what the model of the tests says,
and how many have values of another printer.
"""
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

BUILD = Path(os.environ["PRN_BUILD"])
TESTS = Path(__file__).resolve().parent.parent / "tests"
sys.path[:0] = [str(TESTS / "lib"), str(TESTS / "SnmpPkg")]
import netns  # noqa: E402
from discovery_test import Exchange, Printer, VALUES, shown  # noqa: E402
from prnsim import SIMULATOR  # noqa: E402
from snmpask import FILTER, VARIABLES, ask  # noqa: E402

MODELS = Path(__file__).resolve().parent.parent / "tools/prnsim/tarvo.fleet"
RUNS = 20
BACKEND = os.environ.get("PRN_CUPS_SNMP", "/usr/lib/cups/backend/snmp")
FLEETS = (("10.71.1.0/24", 250), ("10.72.0.0/22", 1000))  # the first printer is .2
PRINTERS = """include "{models}"
subnet {subnet}
pace 0
printer {subnet[2]} to {last} like tarvo-p210
  raw on
"""


BAD = (  # name, refreshes, seconds that an answer is waited for, knobs of all, of one among them
    ("one answer late", 3, 3, ["delay 5 30"], [f"at {VARIABLES[3]} delay 3500"]),
    ("2 % loss", 3, 1, ["loss 2"], []),
)
ADDRESS = "02 50 72 {:02x} {:02x} {:02x}"  # the hardware address of one printer


def timed(argv, **kwargs):
    start = time.perf_counter()
    done = subprocess.run(argv, capture_output=True, text=True, check=True, **kwargs)
    return time.perf_counter() - start, done.stdout


def discover(subnet):
    start = time.perf_counter()
    hosts, _ = ask("-f", FILTER, "find", f"{subnet.network_address} {subnet.netmask}", *VARIABLES)
    return time.perf_counter() - start, len(hosts)


def floor(addresses):
    return 1 + float(timed([BUILD / "bench/snmpFloor", *VARIABLES], input="\n".join(addresses))[1])


def cups(subnet, scratch):
    """Seconds and printers of the backend; it also asks for port 9100 of each."""
    if not os.access(BACKEND, os.X_OK):
        return "no backend"
    (Path(scratch) / "snmp.conf").write_text(f"Address {subnet.broadcast_address}\nCommunity rdcomm\n")
    took, out = timed([BACKEND], env={**os.environ, "CUPS_SERVERROOT": scratch})
    return f"{took:.2f} s, {out.count('network ')} found"


def bad_fleet(subnet, knobs, one):
    """The text of a description, and its model."""
    text, printers = [f"subnet {subnet}", "pace 0"], {}
    for n in range(2, 252):
        address = str(subnet[n])
        values = dict(zip(VARIABLES, VALUES))
        values[VARIABLES[1]] = f'text "{address}"'
        values[VARIABLES[4]] = f'hex "{ADDRESS.format(*subnet[n].packed[1:])}"'
        own = [*knobs, *(one if n == 100 else ())]
        text += [f"printer {address}", *own, *(f"{name} {value}" for name, value in values.items())]
        printers[address] = Printer(address, n, values, own, 1)
    return "\n".join(text) + "\n", printers


def wrong(hosts):
    """Those that have the name or the hardware address of another one."""
    own = ((address, {VARIABLES[1]: address, VARIABLES[4]: shown("Hex-STRING", ADDRESS.format(*map(int, address.split(".")[1:])))}, read)
           for address, read in hosts)
    return sum(any(status == 0 and text != values.get(name, text) for name, status, _, text in read) for _, values, read in own)


def bad_network(net, subnet, name, runs, wait, knobs, one):
    text, printers = bad_fleet(subnet, knobs, one)
    model = Exchange(printers, [subnet], wait)
    lists, rows = set(), []
    with tempfile.NamedTemporaryFile("w", suffix=".fleet") as fleet:
        fleet.write(text)
        fleet.flush()
        with net.simulate(SIMULATOR, fleet.name):
            for _ in range(runs):
                start = time.perf_counter()
                hosts, _ = ask("-t", str(wait), "-f", FILTER, "find", f"{subnet.network_address} {subnet.netmask}", *VARIABLES)
                rows.append((time.perf_counter() - start, len(hosts), len(model.run()[0]), wrong(hosts)))
                lists.add(tuple(host for host, _ in hosts))
    for took, found, wanted, others in rows:
        print(f"  250 printers, {name:<19}{took:>7.1f} s {found:>5} found, model {wanted}, {others} with a neighbour's values")
    print(f"  250 printers, {name:<19}{len(lists)} different lists in {runs} refreshes")


def main():
    reason = netns.enter()
    if reason:
        print("discovery: skipped, " + reason)
        return
    net = netns.Network(*(subnet for subnet, _ in FLEETS))
    print(f"{'discovery':<24}{'ours s':>9}{'floor s':>9}{'ratio':>7}{'worst':>7}{'all found':>12}   snmp backend of CUPS")
    for subnet, (_, count) in zip(net.subnets, FLEETS):
        addresses = [str(subnet[n]) for n in range(2, count + 2)]
        with tempfile.TemporaryDirectory() as scratch:
            fleet = Path(scratch) / "bench.fleet"
            fleet.write_text(PRINTERS.format(models=MODELS, subnet=subnet, last=addresses[-1]))
            with net.simulate(str(BUILD / "tools/prnsim/prnsim"), str(fleet)):
                runs = [(*discover(subnet), floor(addresses)) for _ in range(RUNS)]
                theirs = cups(subnet, scratch)
        whole = sum(found == count for _, found, _ in runs)
        ours, least = (statistics.median(run[i] for run in runs) for i in (0, 2))
        worst = max(took / bare for took, _, bare in runs)
        print(f"{count:>6} printers{'':<9}{ours:>9.3f}{least:>9.3f}{ours / least:>7.3f}{worst:>7.3f}{whole:>6} of {RUNS:<3}   {theirs}")
    for row in BAD:
        bad_network(net, net.subnets[0], *row)


main()
