"""From the start of the program to its main menu, and to its end, with few and many queues and models.

The yardstick is a shell that starts the same children once each: what the host's processes cost by themselves.
"""
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

BUILD = Path(os.environ["PRN_BUILD"])
sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests/lib"))
import xdb  # noqa: E402

RUNS = 15
LIST = "#!/bin/sh\ncat queues\n"


def tool(directory, queues, models):
    shutil.copytree(BUILD / "stage", directory)
    generic = (directory / "ppd/tv_generic.ppd").read_text()
    for file in list(directory.glob("ppd/*"))[max(models, 1):]:
        file.unlink()
    for number in range(models - len(list(directory.glob("ppd/*")))):
        (directory / f"ppd/tv_m{number}.ppd").write_text(generic.replace("Tarvo Generic", f"Tarvo M{number}"))
    names = [f"queue{number}" for number in range(queues)]
    (directory / "queues").write_text("".join(name + ":\n" for name in names))
    (directory / "prnqtool").write_text(LIST)
    xdb.write(directory / "db/que.xdb",
              [(name.encode(), f"{name} host lp tv_generic.ppd 0 0 1 1 0 1 \0".encode()) for name in names])


def timed(argv, directory, script=b""):
    start = time.perf_counter()
    subprocess.run(argv, cwd=directory, input=script, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True,
                   env={**os.environ, "TERM": "vt100", "DISPLAY": ""})
    return (time.perf_counter() - start) * 1000


def processes(argv, directory):
    """How many programs a run starts, itself among them; - without strace."""
    if not shutil.which("strace"):
        return "-"
    done = subprocess.run(["strace", "-f", "-qq", "-e", "trace=execve", "-e", "status=successful", *argv], cwd=directory,
                          input=b"6\n", capture_output=True, env={**os.environ, "TERM": "vt100", "DISPLAY": ""})
    return len(re.findall(rb"execve\(", done.stderr))


def main():
    if os.geteuid() != 0:
        print("start to main menu: skipped, the menus need root")
        return
    print(f"{'start to main menu':<34}{'ours ms':>10}{'children ms':>13}{'ratio':>8}{'programs':>10}")
    for queues, models in ((5, 5), (1000, 5), (5, 200), (1000, 200)):
        with tempfile.TemporaryDirectory() as scratch:
            directory = Path(scratch) / "deck"
            tool(directory, queues, models)
            argv = [str(directory / "prndeck"), "-tty"]
            children = ["sh", "-c", "whoami; sh -c 'sh prnqtool -LQ'; sh -c 'sh prnqtool -LQ'; clear"]
            ours = statistics.median(timed(argv, directory, b"6\n") for _ in range(RUNS))
            floor = statistics.median(timed(children, directory) for _ in range(RUNS))
            print(f"{queues:5} queues, {models:3} models{'':<14}{ours:>10.1f}{floor:>13.1f}{ours / floor:>8.2f}"
                  f"{processes(argv, directory):>10}")


main()
