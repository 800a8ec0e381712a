"""The printer simulator: its answers through net-snmp's tools, what raw datagrams do to it, its knobs against the formula
in its manual, and what it says about bad descriptions."""
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request

from prnsim import FLEETS, RECORDINGS, SIMULATOR, Simulator, draw, get_message

NAME, UPTIME, CONSOLE, RESET = "1.3.6.1.2.1.1.5.0", "1.3.6.1.2.1.1.3.0", "1.3.6.1.2.1.43.16.5.1.2.1.1", "1.3.6.1.2.1.43.5.1.1.3.1"
HOUSE = """subnet 10.71.1.0/24
seed 7
printer 10.71.1.11 like tarvo-p340
  sysName.0 text "lobby" rw max 10 keep
  1.3.6.1.4.1.7717.9.1.0 ip 10.1.2.3
  1.3.6.1.4.1.7717.9.2.0 integer -2147483648 rw
  1.3.6.1.4.1.7717.9.3.0 null
  1.3.6.1.4.1.7717.9.4.4294967295.128.127 oid 2.100.3.4294967295
  1.3.6.1.4.1.7717.9.5.0 gauge 2147483648
  1.3.6.1.4.1.7717.9.6.0 text "a longer text, whose length needs more than one byte: {address} {number} \\{ \\x00\\xff and much more of it until 128"
  sysLocation.0 text "" rw cut 4
  reset-time 300
printer 10.71.1.20 to 10.71.1.29 like tarvo-c650
  sysName.0 text "c-{number}"
printer 10.71.1.40 like tarvo-p210
  loss 30
printer 10.71.1.41 like tarvo-p210
  dies broadcast
printer 10.71.2.1 like tarvo-p210
"""

# Arguments, and what the tool prints; "NAME=" of a name is its part behind the tool.
SETS = [
    ("wrong community", "snmpget -c public {a} " + NAME, "Timeout"),
    ("no such name", "snmpget -c rdcomm {a} " + NAME + " 1.3.6.1.2.1.1.5", "noSuchName.*Failed object: .1.3.6.1.2.1.1.5\n"),
    ("set by a reader", "snmpset -c rdcomm {a} " + NAME + " s x", "noSuchName"),
    ("set of a read-only value", "snmpset -c wrcommx {a} 1.3.6.1.2.1.1.1.0 s x", "noSuchName"),
    ("wrong type", "snmpset -c wrcommx {a} " + NAME + " i 1", "badValue"),
    ("none of its numbers", "snmpset -c wrcommx {a} " + RESET + " i 7", "badValue"),
    ("too long", "snmpset -c wrcommx {a} " + NAME + " s 12345678901", "badValue"),
    ("one of two refused", "snmpset -c wrcommx {a} " + NAME + " s x 1.3.6.1.2.1.1.1.0 s x", "noSuchName.*: .1.3.6.1.2.1.1.1.0\n"),
    ("nothing was set", "snmpget -c rdcomm {a} " + NAME, '= STRING: "lobby"\n'),
    ("both set", "snmpset -c wrcommx {a} " + NAME + ' s "a b" 1.3.6.1.4.1.7717.9.2.0 i -129', '"a b"\n.*= INTEGER: -129\n'),
    ("given back", "snmpget -c wrcommx {a} 1.3.6.1.4.1.7717.9.2.0 " + NAME, '-129\n.*= STRING: "a b"\n'),
    ("cut", "snmpset -c wrcommx {a} 1.3.6.1.2.1.1.6.0 s abcdef", '"abcd"\n'),
    ("end of everything", "snmpgetnext -c rdcomm {a} 2.5", "noSuchName"),
]

FAULTS = [
    ("no such type", "model a\n  1.3.1 word 5\n", ':2: no such type: word'),
    ("value outside", "1.3.1 integer 5\n", ":1: a value belongs into the block of a model or printer"),
    ("too big", "model a\n 1.3.1 integer 2147483648\n", ":2: bad integer: 2147483648"),
    ("open text", 'model a\n 1.3.1 text "a\n', ":2: the text has no closing quote"),
    ("escape", 'model a\n 1.3.1 text "\\q"\n', ":2: unknown escape"),
    ("twice", "model a\n1.3.1 integer 5\n1.3.1 null\n", ":3: 1.3.1 stands in this block already"),
    ("unknown model", "printer 10.0.0.1 like b\n", ":1: no such model above: b"),
    ("address twice", "printer 10.0.0.1 to 10.0.0.9\nprinter 10.0.0.5\n", ":2: 10.0.0.5 stands in "),
    ("broadcast", "subnet 10.0.0.0/24\n\nprinter 10.0.0.255\n", ":3: 10.0.0.255 is the broadcast address of a subnet"),
    ("mask", "subnet 10.0.0.1/24\n", ":1: 10.0.0.1/24 has bits behind its mask"),
    ("row", "model a\n table 1.3 1 integer, 2 text rw\n row 1 5\n", ":3: this row has 1 values, its table 2 columns"),
    ("knob", "all\n loss 101\n", ":2: bad value of loss: 101"),
    ("knob without value", "all\n delay\n", ":2: delay wants a value"),
    ("at", "model a\n at 1.3.2 web on\n", ":2: web can't be had for one identifier"),
    ("nothing to remove", "model a\n remove 1.3.2\n", ":2: there is nothing at or below 1.3.2"),
    ("itself", 'include "bad.fleet"\n', ":1: more than 16 descriptions include each other"),
    ("damaged recording", 'model a\n recording "bad.fleet"\n', ":1: a line of a recording is OID|TYPE|VALUE"),
]


def run(line):
    return subprocess.run(line, shell=True, capture_output=True, text=True, timeout=60, env=dict(os.environ, MIBS="", LC_ALL="C"))


def values(text):
    """What snmpwalk -Ox printed, as lines of a recorded walk with all texts in hex."""
    types = {"INTEGER": "2", "OID": "6", "IpAddress": "64", "Counter32": "65", "Gauge32": "66", "Timeticks": "67"}
    for name, value in re.findall(r"^\.([\d.]+) = (.*(?:\n(?!\.|End).*)*)", text, re.M):
        kind, _, rest = value.partition(": ")
        if value in ('""', "NULL"):
            yield f"{name}|4|" if value == '""' else f"{name}|5|"
        elif kind == "Hex-STRING":
            yield f"{name}|4|" + rest.replace(" ", "").replace("\n", "").lower()
        else:
            yield f"{name}|{types[kind]}|" + re.sub(r"^\.|^\((\d+)\).*", r"\1", rest)


def hexed(line):
    """A line of a recorded walk as values() gives it."""
    line = re.sub(r"\|4\|(.*)", lambda at: "|4|" + at[1].encode().hex(), line)
    return re.sub(r"\|4x\|(.*)", lambda at: "|4|" + at[1].lower(), line)


@unittest.skipUnless(shutil.which("snmpwalk"), "net-snmp's tools are missing")
class Tools(unittest.TestCase):
    def test_a_walk_is_the_description(self):
        for fleet, address in ((None, "10.71.1.11"), ("demo.fleet", "10.71.1.13"), ("demo.fleet", "10.71.2.7")):
            with self.subTest(fleet, address=address), Simulator(
                    fleet=fleet and os.path.join(FLEETS, fleet), text=None if fleet else HOUSE) as sim:
                dump = run(f"{' '.join(sim.argv[:3])} -d {sim.at(address)} {sim.argv[-1]}").stdout.splitlines()
                walk = list(values(run(f"snmpwalk -v1 -On -Ox -Cc -c rdcomm {sim.at(address)}:{sim.port} 1").stdout))
            wanted = [hexed(line) for line in dump]
            uptimes = (UPTIME, "1.3.6.1.2.1.25.1.1.0")
            cut = [[line for line in lines if line.split("|")[0] not in uptimes] for lines in (walk, wanted)]
            self.assertEqual(*cut)
            self.assertEqual(len(walk), len(wanted))
            self.assertGreater(len(walk), 60)

    def test_recorded_walks(self):
        """Walks of real devices are not part of this tree; where there are some, each is replayed."""
        walks = sorted(RECORDINGS.glob("*.snmprec"))
        if not walks:
            return print("no recorded walks here", file=sys.stderr)
        for path in walks:
            with self.subTest(path.name), open(path, newline="") as lines:
                recorded = dict(re.match(r"([\d.]+)\|(\w+\|.*)", line).groups() for line in lines)
                with Simulator(text=f'printer 10.71.1.11\n  recording "{path}"\n') as sim:
                    walk = list(values(run(f"snmpwalk -v1 -On -Ox -Cc -c rdcomm {sim.at('10.71.1.11')}:{sim.port} 1").stdout))
                self.assertEqual(sorted(walk), sorted(hexed(name + "|" + value) for name, value in recorded.items()))

    def test_gets_and_sets(self):
        with Simulator(text=HOUSE) as sim:
            for name, line, wanted in SETS:
                with self.subTest(name):
                    done = run(line.replace(" -c", " -v1 -On -r0 -t0.5 -c").format(a=f"{sim.at('10.71.1.11')}:{sim.port}"))
                    self.assertRegex(done.stdout + done.stderr, re.compile(wanted, re.S))

    def test_reset(self):
        with Simulator("-k", "reset-time 700", text=HOUSE) as sim:
            tool = lambda line: run(line.format(a=f"-v1 -On -Oqvt -r0 -t0.2 -c wrcommx {sim.at('10.71.1.11')}:{sim.port}")).stdout.split("\n")
            tool(f"snmpset {{a}} {NAME} s new {CONSOLE} s Busy")
            time.sleep(1)
            self.assertGreaterEqual(int(tool(f"snmpget {{a}} {UPTIME}")[0]), 100)
            self.assertEqual(tool(f"snmpset {{a}} {RESET} i 4")[0], "4")
            self.assertEqual(tool(f"snmpget {{a}} {NAME}"), [""])
            while tool(f"snmpget {{a}} {NAME}") == [""]:
                pass
            name, console, reset, uptime, _ = tool(f"snmpget {{a}} {NAME} {CONSOLE} {RESET} {UPTIME}")
            self.assertEqual((name, console, reset), ('"new"', '"Ready"', "3"))
            self.assertLess(int(uptime), 60)


class Datagrams(unittest.TestCase):
    def test_damage_gets_no_answer(self):
        good = get_message(NAME)
        with Simulator(text=HOUSE) as sim:
            bad = [good[:n] for n in range(len(good))] + [bytes([0xFF]) * 1400, good.replace(b"\2\1\0\4", b"\2\1\1\4"),
                   get_message(NAME, kind=0xA2), get_message(NAME, kind=0xA4), b"\x30\x84\xff\xff\xff\xff" + good]
            for n, datagram in enumerate(bad):
                sim.ask("10.71.1.11", datagram, answers=0)
            long_name = "1.3." + ".".join(["4294967295"] * 126)
            self.assertEqual(len(sim.ask("10.71.1.11", get_message(long_name, kind=0xA1))), 1)
            many = sim.ask("10.71.1.11", get_message(*[NAME] * 300))[0][1]
            self.assertIn(b"\2\1\1\2\1\0", many[:40]) # tooBig
            self.assertEqual(sim.ask("10.71.1.11", good + b"behind")[0][1][-7:], b"\4\5lobby")
            self.assertEqual([fields[-2] for fields in sim.log()], ["bad"] * len(bad) + ["sent"] * 3)

    def test_the_log_parts_its_fields(self):
        with Simulator(text=HOUSE) as sim:
            sim.ask("10.71.1.11", get_message(NAME, community=b"wrcommx", kind=0xA3, value=b'\4\6 a " \\'))
            sim.ask("10.71.1.11", get_message(NAME, community=b"a b"), timeout=0.2)
            shown = 'text:"\\x20a\\x20\\"\\x20\\\\"'
            self.assertEqual([fields[3:] for fields in sim.log()],
                             [["set", "wrcommx", "1", f"{NAME}={shown}", "sent", shown], ["get", "a%20b", "1", NAME, "community", "-"]])

    def test_broadcast_is_answered_by_the_subnet(self):
        everybody = {"10.71.1.11", "10.71.1.40", "10.71.1.41"} | {f"10.71.1.{n}" for n in range(20, 30)}
        with Simulator("-k", "loss 0", text="pace 1000\n" + HOUSE) as sim:
            got = sim.ask("10.71.1.255", get_message(NAME), answers=14, timeout=1)
            self.assertEqual(sorted(source for source, _ in got), sorted(everybody))
            got = sim.ask("10.71.1.255", get_message(NAME), answers=13, timeout=1)
            self.assertEqual({source for source, _ in got}, everybody - {"10.71.1.41"})
            self.assertEqual(sim.ask("10.71.1.41", get_message(NAME), timeout=0.2), [])

    def test_knobs_follow_the_formula(self):
        knobs = ["loss 20", "duplicate 30", "otherid 25", "error 15 badValue", "truncate 10", "long 10 1500", "garbage 5"]
        text = HOUSE.replace("like tarvo-p340", "like tarvo-p340\n  " + "\n  ".join(knobs))
        with Simulator(text=text) as sim:
            home = sim.at("10.71.1.11")
            hit = lambda n, kind, percent: draw(7, home, n, kind) < percent * 10000
            for n in range(1, 81):
                lost, copies = hit(n, 1, 20), 2 if hit(n, 3, 30) else 1
                got = [data for _, data in sim.ask("10.71.1.11", get_message(NAME), answers=copies, timeout=0.1 if lost else 5)]
                self.assertEqual(len(got), 0 if lost else copies, n)
                if lost or hit(n, 6, 5) or hit(n, 7, 10):
                    continue
                number = 1001 if hit(n, 10, 25) else 1
                status = 3 if hit(n, 9, 15) else 0
                self.assertIn(number.to_bytes(2, "big").lstrip(b"\0") + bytes([2, 1, status]), got[0][:40], n)
                self.assertEqual(len(got[0]) == 1500, hit(n, 8, 10), n)

    def test_time_and_place_of_answers(self):
        knobs = "  delay 60 90\n  reorder 50 300\n  foreign 100 10.71.1.40\n"
        with Simulator(text=HOUSE.replace("like tarvo-p340\n", "like tarvo-p340\n" + knobs)) as sim:
            home = sim.at("10.71.1.11")
            for n in range(1, 9):
                start = time.monotonic()
                got = sim.ask("10.71.1.11", get_message(NAME))
                taken = (time.monotonic() - start) * 1000
                wanted = 60 + draw(7, home, n, 2) * 30 / 1000000 + (300 if draw(7, home, n, 4) < 500000 else 0)
                self.assertEqual(got[0][0], "10.71.1.40")
                self.assertGreaterEqual(taken, wanted - 1, n)

    def test_one_identifier_alone(self):
        own = "  loss 0\n  at 1.3.6.1.2.1.43 error 100 genErr\n  at 1.3.6.1.2.1.43.16 error 0\n  at 1.3.6.1.2.1.1.5 loss 100\n"
        inherited = "model deaf like tarvo-p210\n  at 1.3.6.1.2.1.1.5.0 loss 100\n  at 1.3.6.1.2.1.1.3.0 otherid 100\nprinter 10.71.1.50 like deaf\n  at 1.3.6.1.2.1.1.5.0 loss 0\n"
        fates = [("10.71.1.11", NAME, "lost"), ("10.71.1.11", UPTIME, "sent"), ("10.71.1.11", RESET, "sent+error"),
                 ("10.71.1.11", CONSOLE, "sent"), ("10.71.1.50", NAME, "sent"), ("10.71.1.50", UPTIME, "sent+otherid")]
        for options, wanted in ((), [fate for *_, fate in fates]), (("-k", "loss 0"), ["sent", *[fate for *_, fate in fates][1:]]):
            with Simulator(*options, text=HOUSE.replace("like tarvo-p340\n", "like tarvo-p340\n" + own) + inherited) as sim:
                for address, name, fate in fates:
                    sim.ask(address, get_message(name), answers=fate != "lost" or bool(options))
                self.assertEqual([fields[7] for fields in sim.log()], wanted)

    def test_the_stages_of_a_reset(self):
        warm = f"  reset-after 400\n  warm-up 800\n  warm {CONSOLE} text \"Warming up\"\n"
        with Simulator(text=HOUSE.replace("like tarvo-p340\n", "like tarvo-p340\n" + warm)) as sim:
            seen = []

            def look():
                got = sim.ask("10.71.1.11", get_message(CONSOLE, UPTIME), timeout=0.05)
                what = re.search(b"Busy|Warming up|Ready", got[0][1])[0].decode() if got else ""
                uptime = int.from_bytes(got[0][1].rpartition(b"\x43")[2][1:], "big") if got else 0
                if not seen or seen[-1][0] != what:
                    seen.append((what, time.monotonic() - start, uptime))
            time.sleep(0.5)
            start = time.monotonic()
            sim.ask("10.71.1.11", get_message(CONSOLE, community=b"wrcommx", kind=0xA3, value=b"\4\4Busy"))
            sim.ask("10.71.1.11", get_message(RESET, community=b"wrcommx", kind=0xA3, value=b"\2\1\4"))
            while not seen or seen[-1][0] != "Ready":
                look()
            self.assertEqual([what for what, *_ in seen], ["Busy", "", "Warming up", "Ready"])
            for (what, at, uptime), (due, up) in zip(seen[1:], ((0.4, 0), (0.7, 0), (1.5, 80))):
                self.assertTrue(due - 0.1 <= at < due + 0.5 and abs(uptime - up) < 50, seen)
            self.assertGreaterEqual(seen[0][2], 50)

    def test_broadcasts_alone_take_their_time(self):
        with Simulator("-k", "loss 0", "-k", "broadcast-delay 300 400", "-k", "delay 10", text=HOUSE) as sim:
            for address, answers, low, high in (("10.71.1.255", 13, 0.3, 1), ("10.71.1.11", 1, 0.01, 0.25)):
                start = time.monotonic()
                self.assertEqual(len(sim.ask(address, get_message(NAME), answers=answers)), answers)
                self.assertTrue(low <= time.monotonic() - start < high, address)

    def test_changes_at_work(self):
        with Simulator(text=HOUSE) as sim:
            def name(address): return [data[-5:] for _, data in sim.ask(address, get_message(NAME), timeout=0.2)]
            sim.ask("10.71.1.20", get_message(NAME, community=b"wrcommx", kind=0xA3, value=b"\4\3new"))
            self.assertEqual(sim.change('10.71.1.20 sysName.0 text "other"', "10.71.1.21 at sysName loss 100",
                                        "10.71.1.22 dies 0", "10.71.1.23 web off", "10.71.1.40 loss 0"), "")
            self.assertEqual([name("10.71.1.%d" % n) for n in (20, 21, 22, 40)], [[b"other"], [], [], [b".1.40"]])
            self.assertEqual(len(sim.ask("10.71.1.21", get_message(UPTIME))), 1)
            for gone, now, line in (("10.71.1.22", "10.71.1.23", "dies never"), ("10.71.1.23", "10.71.1.22", "web on")):
                with self.assertRaises(ConnectionRefusedError):
                    socket.create_connection((sim.at(gone), sim.port), 10)
                self.assertEqual(sim.change(gone + " " + line), "")
                socket.create_connection((sim.at(gone), sim.port), 10).close()
            self.assertEqual(sim.change("10.71.1.20 remove sysName"), "")
            self.assertIn(b"\2\1\2\2\1\1", sim.ask("10.71.1.20", get_message(NAME))[0][1])  # noSuchName
            for line, wanted in (("10.71.9.9 loss 5", "no printer has the address"), ("10.71.1.20 model x", "can't be said"),
                                 ("10.71.1.20 loss", "loss wants a value"), ("10.71.1.20", "ADDRESS LINE"),
                                 ("10.71.1.20 row 1 2", "no table stands")):
                self.assertIn(wanted, sim.change(line))

    def test_web_ports_that_hang(self):
        with Simulator(text=HOUSE) as sim:
            self.assertEqual(sim.change("10.71.1.11 web mute", "10.71.1.20 web deaf"), "")
            for address in ("10.71.1.11", "10.71.1.20"):
                with socket.socket() as client, self.assertRaises(TimeoutError, msg=address):
                    client.settimeout(0.5)
                    client.connect((sim.at(address), sim.port))
                    self.assertEqual(address, "10.71.1.11")  # the other one lets nobody in
                    client.sendall(b"GET / HTTP/1.0\r\n\r\n")
                    client.recv(1)
            self.assertEqual(sim.change("10.71.1.20 web on"), "")
            socket.create_connection((sim.at("10.71.1.20"), sim.port), 10).close()

    def test_lpd(self):
        control, data = b"Hhost\nProot\nfdfA1host\n", bytes(range(256)) * 700
        parts = [b"\2lp\n", b"\2%d cfA1host\n" % len(control), control + b"\0", b"\3%d dfA1host\n" % len(data), data + b"\0"]
        with tempfile.TemporaryDirectory() as jobs, Simulator("-k", f'lpd "{jobs}"', text=HOUSE) as sim:
            home = sim.at("10.71.1.11")

            def talk(pieces, acknowledged):
                with socket.create_connection((home, sim.port + 2), 10) as client:
                    for piece in pieces:
                        client.sendall(piece)
                    client.shutdown(socket.SHUT_WR)
                    got = b""
                    while more := client.recv(100):
                        got += more
                self.assertEqual(got, acknowledged)

            def stored(name):
                with open(f"{jobs}/{home}-{name}", "rb") as kept:
                    return kept.read()
            whole = b"".join(parts)
            talk(parts, bytes(5))
            talk([whole[n:n + 1] for n in range(300)] + [whole[300:]], bytes(5))           # in pieces
            talk([b"".join(parts[:1] + parts[3:] + parts[3:] + parts[1:3])], bytes(7))  # the data first, and two files of it
            talk([parts[0], b"\0030 dfA1host\n", data], bytes(2))                          # a file of unknown length
            self.assertEqual(sorted(os.listdir(jobs)), sorted([f"{home}-{n}.prn" for n in range(1, 6)] + [f"{home}-{n}.control" for n in (1, 2, 4)]))
            self.assertEqual([stored(f"{n}.prn") == data for n in range(1, 6)], [True] * 5)
            self.assertEqual([stored(f"{n}.control") for n in (1, 2, 4)], [control] * 3)
            for refused, answer in (([b"\4lp\n"], b"no entries\n"), ([b"\2lp\n\3x y\n"], b"\0\1"), ([b"x" * 2000], b""), ([b"\n"], b"")):
                talk(refused, answer)

    def test_web_and_raw(self):
        with Simulator("-k", "loss 0", "-k", "reset-time 1500", text=HOUSE) as sim:
            page = urllib.request.urlopen(f"http://{sim.at('10.71.1.11')}:{sim.port}/", timeout=10).read().decode()
            self.assertIn("<td>lobby</td>", page)
            self.assertEqual(len(sim.ask("10.71.1.255", get_message(NAME), answers=13)), 13)
            sim.ask("10.71.1.11", get_message(RESET, community=b"wrcommx", kind=0xA3, value=b"\2\1\4"))
            for gone in ("10.71.1.11", "10.71.1.41"):  # one in its reset, one dead
                with self.assertRaises(ConnectionRefusedError):
                    socket.create_connection((sim.at(gone), sim.port), 10)
            while sim.ask("10.71.1.11", get_message(NAME), timeout=0.1) == []:
                pass
            socket.create_connection((sim.at("10.71.1.11"), sim.port), 10).close()
        with tempfile.TemporaryDirectory() as jobs, Simulator("-k", f'raw "{jobs}"', text=HOUSE) as sim:
            for n in (1, 2):
                with socket.create_connection((sim.at("10.71.1.11"), sim.port + 1), 10) as job:
                    job.sendall(b"%d" % n * 100000)
                    job.shutdown(socket.SHUT_WR)
                    job.recv(1)
                with open(f"{jobs}/{sim.at('10.71.1.11')}-{n}.prn", "rb") as stored:
                    self.assertEqual(stored.read(), b"%d" % n * 100000)


class Descriptions(unittest.TestCase):
    def test_the_manual(self):
        with open(os.path.join(FLEETS, "..", "..", "doc", "prnsim.md")) as manual, tempfile.TemporaryDirectory() as directory:
            text = manual.read()
            example = os.path.join(directory, "example.fleet")
            os.symlink(os.path.join(FLEETS, "tarvo.fleet"), os.path.join(directory, "tarvo.fleet"))
            with open(example, "w") as out:
                out.write(text.split("```")[3])
            done = subprocess.run([SIMULATOR, "-n", example], capture_output=True, text=True, timeout=20)
            self.assertEqual(done.stdout + done.stderr, re.search("ready (103 .*\n)", text)[1])
        lost = [n for n in range(1, 21) if draw(7, "10.71.1.11", n, 1) < 200000]
        self.assertIn("the first twenty requests are number " + " and ".join(map(str, lost)) + ".", text)

    def test_faults(self):
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "bad.fleet")
            for name, text, wanted in FAULTS:
                with self.subTest(name):
                    with open(path, "w") as out:
                        out.write(text)
                    done = subprocess.run([SIMULATOR, "-n", path], capture_output=True, text=True, timeout=20)
                    self.assertEqual((done.returncode, done.stdout), (2, ""))
                    self.assertTrue(done.stderr.startswith("prnsim: " + path + wanted), done.stderr)

    def test_a_dump_is_a_recording(self):
        with tempfile.TemporaryDirectory() as directory:
            demo, copy, recorded = os.path.join(FLEETS, "demo.fleet"), directory + "/copy.fleet", directory + "/walk"
            dump = subprocess.run([SIMULATOR, "-d", "10.71.1.13", demo], capture_output=True, check=True).stdout
            with open(recorded, "wb") as out:
                out.write(dump + b"1.3.6.1.2.1.99.1|70|18446744073709551615\n1.3.6.1.2.1.99.2|64x|0A010203\n")
            with open(copy, "w") as out:
                out.write('printer 10.9.9.9\n recording "walk"\n')
            again = subprocess.run([SIMULATOR, "-d", "10.9.9.9", copy], capture_output=True, check=True).stdout
            self.assertEqual(again.replace(b"1.3.6.1.2.1.99.2|64|10.1.2.3\n", b"", 1), dump)
            self.assertNotEqual(again, dump)


if __name__ == "__main__":
    unittest.main()
