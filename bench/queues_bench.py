"""Many queues by one batch of prnqtool, on a private scheduler and on the tool's own store.

The yardstick on the scheduler is a loop of lpadmin that makes queues of the same values in the same run.
"""
import os
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests/lib"))
from cups import Scheduler  # noqa: E402
from tooldir import ToolDir  # noqa: E402

COUNTS = (94, 189, 378)


def line(number):
    return f"q{number} -ppd tv_a.ppd -pm psp -hn 10.1.{number // 250}.{number % 250 + 1} -ui\n"


def lpadmin(tool, number):
    host = f"10.1.{number // 250}.{number % 250 + 1}"
    return ["lpadmin", "-p", f"l{number}", "-v", f"socket://{host}:9100/?snmp=false", "-D", "Tarvo A", "-L", host,
            "-o", "printer-is-shared=false", "-o", "printer-error-policy=retry-job", "-P", tool.path + "/ppd/tv_a.ppd",
            "-o", "job-sheets-default=none,none", "-E"]


def timed(call):
    start = time.perf_counter()
    call()
    return (time.perf_counter() - start) * 1000


def batch(tool, *words):
    done = tool.run("prnqtool", *words)
    if done.returncode not in (0, 2):
        sys.exit(done.stderr)


def row(store, tool, count, loop):
    tool.write("batch", "".join(line(number) for number in range(count)))
    words = ["--ensure", "--batch", tool.path + "/batch"]
    ours, again = timed(lambda: batch(tool, *words)), timed(lambda: batch(tool, *words))
    removed = timed(lambda: batch(tool, "-x", "all"))
    yardstick, ratio = (f"{loop:.1f}", f"{ours / loop:.2f}") if loop else ("-", "-")
    print(f"{store:<9}{count:5} queues{'':<12}{ours:>10.1f}{yardstick:>12}{ratio:>8}{again:>12.1f}{removed:>12.1f}")


def main():
    print(f"{'queues by a batch':<28}{'ours ms':>14}{'lpadmin ms':>12}{'ratio':>6}{'again ms':>12}{'-x all ms':>12}")
    with ToolDir("prnqtool") as tool:
        tool.env["PRNQ_STORE"] = "file"
        for count in (*COUNTS, 3000):
            row("own store", tool, count, 0)
    if Scheduler.missing():
        print("on a scheduler: skipped, " + Scheduler.missing())
        return
    for count in COUNTS:
        with ToolDir("prnqtool") as tool, Scheduler() as cups:
            tool.env = cups.env()
            loop = timed(lambda: [cups.run(*lpadmin(tool, number), check=True) for number in range(count)])
            for number in range(count):
                cups.run("lpadmin", "-x", f"l{number}")
            row("scheduler", tool, count, loop)


main()
