"""Printers in a network of their own, read and found by the SNMP package: beside the agent and tools of net-snmp, and beside
a model of what an exchange gives when datagrams are lost, late, doubled or damaged."""
import heapq
import ipaddress
import itertools
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import netns
from prnsim import FLEETS, RECORDINGS, SIMULATOR, draw, get_message
from snmpask import FILTER, VARIABLES, ask

VALUES = ["oid 1.3.6.1.4.1.9999.1", 'text "p{number}"', 'text "Printer of a test"', 'text "Tarvo C410"',
          'hex "02 80 77 01 02 03"', "integer 2"]


def texts(*words):
    return [text for _, variables in ask(*words)[0] for _, _, _, text in variables]


# ---- Beside net-snmp

def tool(name, address, *words, community="rdcomm"):
    """A tool of net-snmp that reads no configuration and no MIB; object identifiers and values as they came."""
    done = subprocess.run([name, "-v1", "-c", community, "-On", "-Ox", "-t", "1", address, *words], capture_output=True,
                          text=True, env={**os.environ, "MIBS": "", "SNMPCONFPATH": "/nonexistent"})
    return re.findall(r"^\.(\S+) = (?:(\S+): )?((?:.|\n(?!\.1\.))*)", done.stdout.removesuffix("End of MIB\n"), re.M)


def shown(kind, value):
    """A value of those tools as the package shows it."""
    if kind == "Hex-STRING":
        text = bytes.fromhex(value).split(b"\0")[0]
        return "".join(chr(b) if 32 <= b < 127 and b != 92 else f"\\{b:02x}" for b in text)
    value = value.strip()
    if kind == "Timeticks":
        return value[1:value.index(")")]
    return {'""': "", "NULL": ""}.get(value, value[1:] if kind == "OID" else value)


UPTIMES = "1.3.6.1.2.1.1.3.0", "1.3.6.1.2.1.25.1.1.0"
ODD = Path(FLEETS) / "odd.fleet"
KINDS_SHOWN = {"INTEGER": 0, "Counter32": 1, "Gauge32": 2, "Timeticks": 3, "Hex-STRING": 5, "OID": 7, "IpAddress": 9}
AGENT_CONF = """rocommunity rdcomm
rwcommunity wrcommx
override .1.3.6.1.4.1.9999.1.1 integer -5
override .1.3.6.1.4.1.9999.1.2 uinteger 4000000000
override .1.3.6.1.4.1.9999.1.3 octet_str "lobby"
override .1.3.6.1.4.1.9999.2.1 object_id .1.3.6.1.2.1.2147483647
override .1.3.6.1.4.1.9999.2.2 counter 4294967295
override .1.3.6.1.4.1.9999.2.3 timeticks 77
override -rw .1.3.6.1.4.1.9999.7.0 integer 3
override -rw .1.3.6.1.2.1.1.6.0 octet_str "x"
"""
# Each column of these stands still while it is read twice.
AGENT_TREES = ["1.3.6.1.2.1.1.1", "1.3.6.1.2.1.1.2", "1.3.6.1.2.1.1.6", "1.3.6.1.2.1.2.2.1.2", "1.3.6.1.2.1.2.2.1.5",
               "1.3.6.1.2.1.4.20", "1.3.6.1.2.1.25.3.2", "1.3.6.1.4.1.9999"]


class BesideNetSnmp(unittest.TestCase):
    def agree(self, address, tree):
        """What a walk gives, our package reads one by one, and on the way through the whole tree."""
        walked = [(name, 0, KINDS_SHOWN[kind] if kind else 8 if value.strip() == "NULL" else 5, shown(kind, value))
                  for name, kind, value in tool("snmpwalk", address, tree) if name not in UPTIMES]
        start = 0
        while start < len(walked):  # as many as a package holds
            sizes = itertools.accumulate(16 + len(text) for *_, text in walked[start:start + 20])
            part = walked[start:start + sum(size < 2048 for size in sizes)]
            (host, read), = ask("get", address, *[name for name, *_ in part])[0]
            self.assertEqual((host, read), (address, part))
            start += len(part)
        return len(walked)

    def sets(self, address, name, letter):
        """Each side changes a value and the other one reads it; neither can with the community for reading."""
        def ours(community, value): ask("-c", community, "set", address, f"{name}={letter}:{value}")
        def theirs(community, value): tool("snmpset", address, name, letter, value, community=community)
        def ours_reads(): return texts("get", address, name)[0]
        def theirs_reads(): return shown(*tool("snmpget", address, name)[0][1:])
        before = ours_reads()
        for change, community, value, read, want in ((ours, "rdcomm", "41", theirs_reads, before),
                                                     (ours, "wrcommx", "41", theirs_reads, "41"),
                                                     (theirs, "rdcomm", "42", ours_reads, "41"),
                                                     (theirs, "wrcommx", "42", ours_reads, "42")):
            change(community, value)
            self.assertEqual(read(), want, (change, community))

    def test_agent_of_net_snmp(self):
        if not shutil.which("snmpd"):
            self.skipTest("snmpd of net-snmp is not installed")
        with tempfile.TemporaryDirectory() as scratch:
            (Path(scratch) / "agent.conf").write_text(AGENT_CONF)
            agent = net.start(["snmpd", "-f", "-C", "-c", scratch + "/agent.conf", "-Ln", "udp:10.71.1.2:161"],
                              env={**os.environ, "MIBS": "", "SNMPCONFPATH": scratch, "SNMP_PERSISTENT_DIR": scratch})
            try:
                while ask("-t", "1", "get", "10.71.1.2", "1.3.6.1.2.1.1.3.0")[0][0][1][0][1] != 0:
                    self.assertIsNone(agent.poll())
                found = [self.agree("10.71.1.2", tree) for tree in AGENT_TREES]
                self.assertEqual([n > 0 for n in found], [True] * len(found), found)
                columns = ["1.3.6.1.4.1.9999.1.1", "1.3.6.1.4.1.9999.2.1"]
                self.assertEqual(texts("table", "10.71.1.2", *columns),
                                 ["-5", "1.3.6.1.2.1.2147483647", "4000000000", "4294967295", "lobby", "77"])
                self.assertEqual(texts("next", "10.71.1.2", columns[0])[-1], "4000000000")
                self.sets("10.71.1.2", "1.3.6.1.4.1.9999.7.0", "i")
                self.sets("10.71.1.2", "1.3.6.1.2.1.1.6.0", "s")
            finally:
                agent.kill()
                agent.wait()

    def test_odd_printers(self):
        """Each is asked for the one thing in which it is odd; then the package reads all that a walk of net-snmp gives."""
        def walked(host, tree):
            return {name.removeprefix(tree): shown(kind, value) if kind else value.strip()
                    for name, kind, value in tool("snmpwalk", f"10.71.200.{host}", tree)}
        prt = "1.3.6.1.2.1.43."
        with net.simulate(SIMULATOR, str(ODD)):
            printers = re.findall(r"^printer (\S+)", ODD.read_text(), re.M)
            found, answers = ask("-t", "1", "-f", FILTER, "find", "10.71.200.0 255.255.255.0", *VARIABLES)
            self.assertEqual((answers, set(printers) - {address for address, _ in found}),
                             (len(printers), {f"10.71.200.{host}" for host in (11, 12, 13, 74)}))
            names = {address: read[1][3] for address, read in found}
            self.assertEqual([names[f"10.71.200.{host}"] for host in (21, 22, 23, 72)], ["", "_" * 14, "  lobby  ", ""])
            self.assertEqual(dict(found)["10.71.200.31"][4][3], "")  # the first interface has no address
            for host, tree, wanted in (
                    (32, prt + "8.2.1.10.1.", {"2": "423", "5": "0"}), (33, prt + "11.1.1.9.1.", {"0": "4120", "1": "100"}),
                    (34, prt + "8.2.1.13.", {}), (34, prt + "10.2.1.4.", {}), (51, prt + "11.1.1.9.1.4", {"": "2147483647"}),
                    (41, "1.3.6.1.2.1.1.6.", {"0": r"B\fcro, 2. \c9tage, 20\b0C"}),
                    (42, "1.3.6.1.2.1.1.6.", {"0": r"B\c3\bcro, 2. \c3\89tage, 20\c2\b0C"}),
                    (61, prt + "16.5.1.2.1.", {"1": "\"\"", "2": "\"\""}), (62, prt + "16.5.", {}),
                    (72, prt + "8.2.1.10.1.1", {"": "NULL"})):
                self.assertEqual(walked(host, tree.rstrip(".")),
                                 {("." if tree[-1] == "." else "") + name: value for name, value in wanted.items()}, (host, tree))
            self.assertEqual(len(walked(53, prt + "11.1.1.6")), 30)
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as asker:
                asker.settimeout(5)
                asker.sendto(get_message("1.3.6.1.2.1.1.4.0"), ("10.71.200.71", 161))
                self.assertEqual(len(asker.recv(2000)), 1300)
            for address in printers:
                self.assertGreater(self.agree(address, "1.3.6.1.2.1"), 100, address)

    def test_recorded_devices(self):
        """Walks of real devices are not part of this tree; where there are some, those that have both variables are found."""
        walks = {f"10.71.200.{100 + n}": path for n, path in enumerate(sorted(RECORDINGS.glob("*.snmprec")))}
        if not walks:
            return print("no recorded walks here", file=sys.stderr)
        with tempfile.NamedTemporaryFile("w", suffix=".fleet") as fleet:
            print("subnet 10.71.200.0/24", *(f'printer {address}\n recording "{path}"' for address, path in walks.items()),
                  sep="\n", file=fleet, flush=True)
            with net.simulate(SIMULATOR, fleet.name):
                found, _ = ask("-t", "1", "-f", FILTER, "find", "10.71.200.0 255.255.255.0", *VARIABLES)
                for address, path in walks.items():
                    named = {line.split(b"|")[0].decode() for line in path.read_bytes().splitlines()}
                    self.assertEqual(address in dict(found), {VARIABLES[3], VARIABLES[5]} <= named, path)
                    self.assertGreater(self.agree(address, "1.3.6.1.2.1"), 100, path)


# ---- Beside a model

FOREIGN = "10.71.9.2"  # an address without a printer
KINDS = {"loss": 1, "delay": 2, "duplicate": 3, "reorder": 4, "foreign": 5, "garbage": 6, "truncate": 7, "long": 8, "error": 9}
TYPES = {"text": 5, "hex": 5, "integer": 0, "oid": 7, "null": 8}


class Printer:
    """What one simulated printer sends, as doc/prnsim.md tells it."""

    def __init__(self, address, number, values, knobs, seed):
        self.address, self.number, self.values, self.seed, self.asked = address, number, values, seed, 0
        self.knobs = {}  # (identifier or "", knob): values
        for line in knobs:
            top, *words = line.split()[1:] if line.startswith("at ") else ("", *line.split())
            self.knobs[top, words[0]] = words[1:]

    def knob(self, knob, name, default=None):
        return self.knobs.get((name, knob), self.knobs.get(("", knob), default))

    def hit(self, knob, name):
        words = self.knob(knob, name)
        return words and draw(self.seed, self.address, self.asked, KINDS[knob]) < float(words[0]) * 10000

    def answers(self, name, broadcast=False):
        """[(seconds until it comes, sender, the variable that it names or "" or None if it is too long, does it fill it)]"""
        self.asked += 1
        dies = self.knob("dies", name, ["never"])[0]
        if self.hit("loss", name) or dies == "broadcast" and not broadcast or dies.isdigit() and self.asked > int(dies):
            return []
        low, *high = map(float, self.knob("delay", name, ["0"]))
        wait = low + (draw(self.seed, self.address, self.asked, KINDS["delay"]) * (high[0] - low) / 1000000 if high else 0)
        wait += float(self.knob("reorder", name)[1]) if self.hit("reorder", name) else 0
        sender = self.knob("foreign", name)[1] if self.hit("foreign", name) else self.address
        unread = self.hit("garbage", name) or self.hit("truncate", name)
        what = None if self.hit("long", name) else "" if unread else name
        fills = name in self.values and not self.hit("error", name)
        return [(wait / 1000, sender, what, fills)] * (2 if self.hit("duplicate", name) else 1)

    def value(self, name):
        kind, text = self.values[name].split(" ", 1) if " " in self.values[name] else (self.values[name], "")
        text = text.strip('"').replace("{number}", str(self.number))
        return TYPES[kind], shown("Hex-STRING", text) if kind == "hex" else text


class Exchange:
    """A discovery run: one socket, whose datagrams are taken in the order in which they come."""

    def __init__(self, printers, subnets, timeout):
        self.printers, self.subnets, self.timeout, self.now, self.queue, self.sent = printers, subnets, timeout, 0, [], 0

    def send(self, address, name, broadcast=False):
        for wait, sender, *what in self.printers[address].answers(name, broadcast) if address in self.printers else ():
            self.sent += 1
            heapq.heappush(self.queue, (self.now + wait, self.sent, sender, *what, address))

    def receive(self, limit):
        """(sender, variable named, filled, printer) of the next datagram, None after a silence."""
        if self.queue and abs(self.queue[0][0] - self.now - limit) < 0.1:
            raise AssertionError("an answer comes when the wait ends: the case is none")
        if not self.queue or self.queue[0][0] > self.now + limit:
            self.now += limit
            return None
        came, _, *got = heapq.heappop(self.queue)
        self.now = max(self.now, came)
        return got

    def read(self, address):
        variables = {name: [15, 0, "_" * 14] for name in VARIABLES}
        source, others, unanswered = "-", 0, set()

        def take(awaited):
            nonlocal source, others
            got = self.receive(self.timeout)
            if got is None or got[1] is None:
                if awaited:
                    variables[awaited][0] = 6 if got is None else 13
                return got is not None
            source, name, fills, printer = got
            others += name not in ("", awaited)
            unanswered.discard(name)
            if name and fills:
                variables[name] = [0, *self.printers[printer].value(name)]
            return True

        for name in VARIABLES:
            self.send(address, name)
            unanswered.add(name)
            take(name)
        left = others
        while left and unanswered and take(None):
            left -= 1
        return source, [(name, *variables[name]) for name in VARIABLES]

    def run(self):
        found = set()
        for subnet in self.subnets:
            count = 0
            for address in self.printers:
                if ipaddress.ip_address(address) in subnet:
                    self.send(address, VARIABLES[0], True)
            while (got := self.receive(1)) and got[1] is not None:  # one that is too long ends it like silence
                found.add(got[0])
                count += 1
        read = [self.read(address) for address in sorted(found, key=ipaddress.ip_address)]
        filled = [{name for name, status, kind, _ in variables if status == 0 and kind != 8} for _, variables in read]
        return [host for host, names in zip(read, filled) if {VARIABLES[5], VARIABLES[3]} <= names], count


class Case:
    """Printers on each of two subnets with these knobs, and more: (host, number of a value, what stands there, knobs);
    host 3 is on the first subnet, 1003 on the second."""

    made = 0

    def __init__(self, name, knobs=(), more=(), seed=1, hosts=10):
        self.name, self.seed = name, seed
        self.subnets = [ipaddress.ip_network(f"10.71.{2 * Case.made + n}.0/24") for n in (1, 2)]
        Case.made += 1
        whole = dict(zip(VARIABLES, VALUES))
        self.runs = [(self.subnets[1][5], hosts, whole, list(knobs)), (self.subnets[0][95], hosts, whole, list(knobs))]
        for host, number, value, own in more:
            values = {name: text for name, text in whole.items() if name != VARIABLES[number]}
            if value:
                values[VARIABLES[number]] = value
            self.runs.append((self.subnets[host // 1000][host % 1000], 1, values, [*knobs, *own]))

    def text(self):
        lines = [f"seed {self.seed}", *(f"subnet {subnet}" for subnet in self.subnets)]
        for first, count, values, knobs in self.runs:
            lines += [f"printer {first} to {first + count - 1}", *knobs, *(f"{name} {value}" for name, value in values.items())]
        return "\n".join(lines) + "\n"

    def model(self):
        printers = {str(first + n): Printer(str(first + n), n + 1, values, knobs, self.seed)
                    for first, count, values, knobs in self.runs for n in range(count)}
        return Exchange(printers, self.subnets, 1)

    def discover(self):
        """Hosts, count and seconds of a run with the simulator."""
        with tempfile.NamedTemporaryFile("w", suffix=".fleet") as fleet:
            fleet.write(self.text())
            fleet.flush()
            with net.simulate(SIMULATOR, fleet.name):
                start = time.monotonic()
                targets = ",".join(f"{subnet.network_address} {subnet.netmask}" for subnet in self.subnets)
                return *ask("-t", "1", "-f", FILTER, "find", targets, *VARIABLES), time.monotonic() - start


CASES = [
    Case("what is a printer", more=[(3, 5, "", []), (4, 3, "null", []), (250, 1, "null", []),
                                    (1250, 3, 'hex "31 25 73 5c 0a e9"', []), (1002, 4, "integer 6", [])]),
    Case("one in twenty lost", ["loss 5"], seed=1),
    Case("doubled and out of order", ["duplicate 25", "reorder 10 300"], seed=20),
    Case("damaged", ["error 5 genErr", "garbage 5", "truncate 5", "otherid 20"]),
    Case("foreign and too long", ["foreign 4 " + FOREIGN, "long 4 2000"], seed=42),
    Case("late, and gone after the broadcast", more=[(9, 1, 'text "gone"', ["dies broadcast"]),
                                                     (3, 1, 'text "slow"', ["reorder 50 1400"]),
                                                     (1099, 1, 'text "going"', ["dies 5"])], seed=4),
    Case("one variable late, among many hosts", ["delay 5 30"], seed=1, hosts=60,
         more=[(3, 1, 'text "late"', [f"at {VARIABLES[3]} delay 1500"])]),
]


class BesideModel(unittest.TestCase):
    def test_discovery(self):
        with ThreadPoolExecutor(len(CASES)) as pool:
            runs = list(pool.map(Case.discover, CASES))
        for case, (got, count, took) in zip(CASES, runs):
            with self.subTest(case.name):
                model = case.model()
                self.assertEqual((got, count), model.run())
                self.assertTrue(model.now <= took < model.now + 2, (model.now, took))
                print(f"{case.name}: {len(got)} of {len(model.printers)} in {took:.1f} s", file=sys.stderr)


if __name__ == "__main__":
    reason = netns.enter()
    if reason:
        print("skipped: " + reason)
        sys.exit(77)
    net = netns.Network("10.71.200.0/24", *(str(subnet) for case in CASES for subnet in case.subnets))
    net.give("10.71.1.2", FOREIGN)
    unittest.main()
