"""What the SNMP package reads and finds, by the program snmpask."""
import os
import subprocess

# What a discovery run reads of each host, and what makes the host a printer.
VARIABLES = ["1.3.6.1.2.1.1.2.0", "1.3.6.1.2.1.1.5.0", "1.3.6.1.2.1.1.1.0", "1.3.6.1.2.1.25.3.2.1.3.1",
             "1.3.6.1.2.1.2.2.1.6.1", "1.3.6.1.2.1.43.7.1.1.3.1.1"]
FILTER = "(($5) && ($3))"
BUILD = os.environ.get("PRN_BUILD", "build")


def ask(*words):
    """[(address, [(name, status, type, text)])] and the result; snmpask.cpp tells the words."""
    done = subprocess.run([BUILD + "/tools/snmpask", *words], capture_output=True, text=True, timeout=300, check=True)
    hosts = []
    *lines, result = done.stdout.splitlines()
    for line in lines:
        if line.startswith("host "):
            hosts.append((line[5:], []))
        else:
            name, status, kind, text = line.split(" ", 3)
            hosts[-1][1].append((name, int(status), int(kind), text))
    return hosts, int(result.split()[1])
