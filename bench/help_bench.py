"""One help page read and laid out, with many sections and tables, beside a text browser that prints the same page.

Both columns are what the page costs over the start of the program: the figures of a page of one line are taken off.
"""
import os
import shutil
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

HTMLTEXT = str(Path(os.environ["PRN_BUILD"]) / "tools" / "htmltext")
RUNS = 9
SECTIONS = 400  # at 1x: 480 KB

WORDS = "the queue sends each job to the printer of its model and keeps the settings that the user chose"


def section(number):
    rows = "".join(
        f"<tr><td>Tray {row}</td><td>{WORDS[row:row + 24]}</td><td>{number * row % 1000} sheets</td></tr>\n"
        for row in range(1, 8))
    return (f'<h2><a name="s{number}">Section {number}</a></h2>\n<p>'
            + f"{WORDS[:83]}<br>\n" * 6
            + f'See <a href="#s{number // 2}">section {number // 2}</a>&#32;for more.</p>\n'
            + f"<table border cellpadding=7>\n{rows}</table>\n")


def page(sections):
    body = "".join(section(number) for number in range(sections)) or "one line<br>"
    return f'<html page="contents"><head><title>Measured</title></head><body>\n{body}</body></html>\n'


def cost(argv):
    """Milliseconds and peak memory in KB of a run; the small program time(1) starts it, whose own peak is no matter."""
    start = time.perf_counter()
    done = subprocess.run(["/usr/bin/time", "-f", "%M", *argv], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          check=True, env={**os.environ, "TERM": "vt100"})
    return (time.perf_counter() - start) * 1000, int(done.stderr.split()[-1])


def over_start(argv, file, start):
    runs = [(cost([*argv, start]), cost([*argv, file])) for _ in range(RUNS)]
    return [statistics.median(there[i] - here[i] for here, there in runs) for i in (0, 1)]


def main():
    missing = [name for name in ("lynx", "time") if not shutil.which(name)]
    if missing:
        print(f"help page: skipped, no {' and no '.join(missing)}")
        return
    print(f"{'help page over start-up':<24}{'ours ms':>9}{'lynx ms':>9}{'ratio':>7}{'ours KB':>10}{'lynx KB':>9}{'ratio':>7}")
    with tempfile.TemporaryDirectory() as scratch:
        start = str(Path(scratch) / "start.html")
        Path(start).write_text(page(0))
        for times in (1, 2, 4):
            file = str(Path(scratch) / f"page{times}.html")
            size = Path(file).write_text(page(SECTIONS * times))
            ms, kb = over_start([HTMLTEXT], file, start)
            lynx_ms, lynx_kb = over_start(["lynx", "-dump"], file, start)
            print(f"{size // 1000:>9} KB{'':<12}{ms:>9.1f}{lynx_ms:>9.1f}{ms / lynx_ms:>7.2f}"
                  f"{kb:>10.0f}{lynx_kb:>9.0f}{kb / lynx_kb:>7.2f}")


main()
