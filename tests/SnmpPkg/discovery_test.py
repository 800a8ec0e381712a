"""Printers in a network of their own, read and found by the SNMP package: beside the agent and tools of net-snmp, and beside
a model of what an exchange gives when datagrams are lost, late, doubled or damaged."""
import heapq
import ipaddress
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

import netns

ASK = os.environ["PRN_BUILD"] + "/tools/snmpask"
SIM = os.environ["PRN_BUILD"] + "/tools/prnsim"
TARGETS = "10.71.1.0 255.255.255.0,10.71.2.0 255.255.255.0"
FILTER = "(($5) && ($3))"
VARIABLES = ["1.3.6.1.2.1.1.2.0", "1.3.6.1.2.1.1.5.0", "1.3.6.1.2.1.1.1.0", "1.3.6.1.2.1.25.3.2.1.3.1",
             "1.3.6.1.2.1.2.2.1.6.1", "1.3.6.1.2.1.43.7.1.1.3.1.1"]
VALUES = ["oid 1.3.6.1.4.1.9999.1", 'text "p{number}"', 'text "Printer of a test"', 'text "Tarvo C410"',
          'hex "00 80 77 01 02 03"', "integer 2"]


def ask(*words):
    """What snmpask prints: [(address, [(name, status, type, text)])] and the result."""
    done = subprocess.run([ASK, *words], capture_output=True, text=True, timeout=120, check=True)
    hosts = []
    *lines, result = done.stdout.splitlines()
    for line in lines:
        if line.startswith("host "):
            hosts.append((line[5:], []))
        else:
            name, status, kind, text = line.split(" ", 3)
            hosts[-1][1].append((name, int(status), int(kind), text))
    return hosts, int(result.split()[1])


def texts(*words):
    return [text for _, variables in ask(*words)[0] for _, _, _, text in variables]


# ---- Beside net-snmp

def tool(name, address, *words, community="rdcomm"):
    """A tool of net-snmp that reads no configuration and no MIB; object identifiers and values as they came."""
    done = subprocess.run([name, "-v1", "-c", community, "-On", "-Ox", "-t", "1", address, *words], capture_output=True,
                          text=True, env={**os.environ, "MIBS": "", "SNMPCONFPATH": "/nonexistent"})
    return re.findall(r"^\.(\S+) = (?:(\S+): )?((?:.|\n(?!\.1\.))*)", done.stdout, re.M)


def shown(kind, value):
    """A value of those tools as the package shows it."""
    if kind == "Hex-STRING":
        text = bytes.fromhex(value).split(b"\0")[0]
        return "".join(chr(b) if 32 <= b < 127 and b != 92 else f"\\{b:02x}" for b in text)
    value = value.strip()
    if kind == "Timeticks":
        return value[1:value.index(")")]
    return {'""': "", "NULL": ""}.get(value, value[1:] if kind == "OID" else value)


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
    def agree(self, address, tree, skip=()):
        """What a walk gives, our package reads one by one, and on the way through the whole tree."""
        walked = [(name, shown(kind, value)) for name, kind, value in tool("snmpwalk", address, tree) if name not in skip]
        for start in range(0, len(walked), 20):
            part = walked[start:start + 20]
            (host, read), = ask("get", address, *[name for name, _ in part])[0]
            self.assertEqual(host, address)
            self.assertEqual([(name, text) for name, _, _, text in read], part)
            self.assertEqual({status for _, status, _, _ in read}, {0})
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


if __name__ == "__main__":
    reason = netns.enter()
    if reason:
        print("skipped: " + reason)
        sys.exit(77)
    net = netns.Network()
    net.give("10.71.1.2")
    unittest.main()
