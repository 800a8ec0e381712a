"""A discovery run over 250 and 1,000 simulated printers, which all answer a broadcast at once.

The floor is one second of silence and every question as a bare round trip in the same run.  Behind it stands what the snmp
backend of CUPS takes on the same network, once, with its own port tests; PRN_CUPS_SNMP names another one than the host's.
"""
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

BUILD = Path(os.environ["PRN_BUILD"])
sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests/lib"))
import netns  # noqa: E402
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


main()
