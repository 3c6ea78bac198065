#!/usr/bin/python3
"""Measures the program against the bounds in docs/performance.md; ./bench.sh builds what this needs.

Every row is a subject against a bound, measured in the same run. A missed goal is a finding, not a failure: it is
marked in the table. The exit code is 1 only if a row could not be measured.
"""
import argparse
import json
import os
import shutil
import subprocess
import sys
import time
from functools import cached_property
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "kit"))
os.environ.setdefault("MORVANE_SCRATCH", str(ROOT / "build" / "bench-scratch"))  # deleted at the end

import wine  # noqa: E402
from agent import EXECUTABLE, GAME, Site  # noqa: E402
import submission  # noqa: E402

DOCUMENT = ROOT / "docs" / "performance.md"
MARKERS = "<!-- written by ./bench.sh --write -->\n", "<!-- end -->\n"


def row(what, unit, subject, bound, at_most=None, at_least=None):
    """One line of the table, as its cells."""
    ratio = subject / bound
    reached = ratio <= at_most if at_most else ratio >= at_least
    goal = f"at most {at_most}" if at_most else f"at least {at_least}"
    return what, f"{subject:.3f} {unit}", f"{bound:.3f} {unit}", f"{ratio:.3f}", goal, "ok" if reached else "MISSED"


def cpu_seconds(*command):
    """The processor time of a program that ends with 0, and of those that it waited for."""
    process = subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               env=wine.environment())
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    assert process.returncode == 0, f"{command[0]} ended with {process.returncode}"
    return usage.ru_utime + usage.ru_stime


def figures(*command):
    """What a program of bench/src prints: pairs of seconds, subject and bound."""
    output = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            env=wine.environment(), check=True, text=True).stdout
    return [tuple(map(float, line.split()[1:])) for line in output.splitlines() if line.startswith("FIGURES")]


class Rows:
    """Each public method measures one row or a few."""

    def __init__(self, quick):
        self._quick = quick
        self._mebibytes = 8 if quick else 256  # of the submission
        self._folder = wine.SCRATCH / "bench"
        shutil.rmtree(self._folder, ignore_errors=True)
        self._folder.mkdir(parents=True)

    def _rounds(self, usual):
        return 1 if self._quick else usual

    def _under_wine(self, program):
        return ROOT / "scripts" / "run-wine.sh", wine.BIN / f"{program}.exe"

    @cached_property
    def _files(self):
        return submission.write(self._folder / "submission", self._mebibytes << 20)

    @cached_property
    def _compressing(self):
        files = map(wine.windows_path, self._files)
        return figures(*self._under_wine("CompressBench"), self._rounds(2), *files)[0]

    def compress(self):
        yield row(f"compressing a {self._mebibytes} MiB submission (CPU)", "s", *self._compressing, at_most=1.03)

    def package(self):
        folder = self._files[0].parent
        seconds = []
        for _ in range(self._rounds(2)):
            target = self._folder / "packages"
            seconds.append(cpu_seconds(*self._under_wine("PackageTool"), "pack", wine.windows_path(folder), "--to",
                                       wine.windows_path(target)))
            shutil.rmtree(target)
        bound = self._compressing[1] + cpu_seconds("md5sum", *self._files)
        yield row("packaging it, whole (CPU)", "s", min(seconds), bound, at_most=1.03)

    def md5(self):
        ours, theirs = figures(ROOT / "build" / "bench" / "bin" / "Md5Bench", self._rounds(15))[0]
        yield row("MD5 throughput", "MiB/s", 100 / ours, 100 / theirs, at_least=0.95)

    def watcher(self):
        few, many = (1000, 10_000) if self._quick else (10_000, 100_000)
        for count in (few, many):  # made natively: under Wine each folder takes longer than the one before
            for number in range(count):
                (self._folder / str(count) / f"2024-05-06_07-08-09_crash-{number:06}").mkdir(parents=True)
        one_pass, growth = figures(*self._under_wine("WatcherBench"), wine.windows_path(self._folder), few, many,
                                   self._rounds(10))
        yield row(f"a watcher pass over {few:,} known folders", "us/folder", *(1e6 * s / few for s in one_pass),
                  at_most=1.3)
        yield row(f"the same at {many:,} against {few:,}, per folder", "us/folder",
                  *(1e6 * s / many for s in growth), at_most=1.15)

    def start(self):
        def seconds(program, wait):
            before = time.monotonic()
            with program() as started:
                wait(started)
                return time.monotonic() - before

        site = Site(self._folder / "start")
        del site.configuration["PackageWatcher"]["TimeBetweenChecks"]
        write_packages(site.packaged, 1)
        rounds = range(self._rounds(10))
        bare = min(seconds(lambda: wine.Program(wine.BIN / "PackageTool.exe"), wine.Program.wait) for _ in rounds)
        first_scan = min(seconds(site.start, lambda agent: agent.wait_for(" to pending folder list")) for _ in rounds)
        yield row("start to first scan, without a bare program's start", "ms", 1000 * (first_scan - bare), 350,
                  at_most=1)

    def idle(self):
        """With every pause at its default, the shortest that the recommended configuration does without."""
        packages = 100
        site = Site(self._folder / "idle")
        configuration = json.loads((ROOT / "docs" / "recommended-configuration.json").read_text(encoding="utf-8"))
        for section in configuration.values():
            if isinstance(section, dict):
                section.pop("TimeBetweenChecks", None)
        configuration["Uploader"] |= {"EndpointOverride": "http://127.0.0.1:1", "AskPermission": False}  # no listener
        configuration["ProcessMonitor"]["WatchedApplications"] = ["SampleGame.exe"]
        site.configuration = configuration
        write_packages(site.packaged, packages)
        pause = 5 if self._quick else 60
        with wine.Program(GAME, "--stay-alive", "9000000", "--crash", "none", "--quiet"), site.start() as agent:
            wine.wait_until(lambda: agent.stderr.count(b"Failed to upload package") == packages, 120,
                            "one attempt for each package")
            time.sleep(3)
            before = process_seconds(agent.pid)
            time.sleep(pause)
            a_minute = (process_seconds(agent.pid) - before) * 60 / pause
        yield row(f"idle agent, full configuration, {packages} packages waiting (CPU)", "s/min", a_minute, 0.3,
                  at_most=1)


def write_packages(folder, count):
    for number in range(count):
        package = folder / f"2024-05-06_07-08-09_crash-{number:05}" / "submission.pkg"
        package.parent.mkdir(parents=True)
        package.write_bytes(os.urandom(1000))
        package.chmod(0o444)


def process_seconds(pid):
    """The agent's own processor time, without that of the server that acts as Wine's kernel."""
    fields = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def table(rows, machine):
    lines = [f"{machine}\n", "| what | measured | bound | ratio | goal | |", "|---|---|---|---|---|---|"]
    return "\n".join(lines + ["| " + " | ".join(cells) + " |" for cells in rows]) + "\n"


def main():
    names = [name for name in vars(Rows) if not name.startswith("_")]
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("rows", nargs="*", metavar="ROW", help=f"of {', '.join(names)} (default: all)")
    parser.add_argument("--quick", action="store_true", help="little data: shows that it works, and little about speed")
    parser.add_argument("--write", action="store_true", help="write the table into docs/performance.md")
    options = parser.parse_args()
    if unknown := set(options.rows) - set(names):
        parser.error(f"no row {', '.join(sorted(unknown))}")
    machine = f"{os.cpu_count()} processors, load {os.getloadavg()[0]:.1f} at the start."
    rows, failed = [], False
    wine.make_prefix()
    try:
        measured = Rows(options.quick)
        for name in options.rows or names:
            print(f"Measuring {name} ...", file=sys.stderr, flush=True)
            try:
                rows += getattr(measured, name)()
            except (AssertionError, OSError, subprocess.CalledProcessError) as error:
                print(f"bench: {name} could not be measured: {error}", file=sys.stderr)
                failed = True
    finally:
        wine.stop_prefix()
        shutil.rmtree(wine.SCRATCH, ignore_errors=True)
    text = table(rows, machine)
    print(text, end="")
    if options.write:
        head, _, rest = DOCUMENT.read_text(encoding="utf-8").partition(MARKERS[0])
        tail = rest.partition(MARKERS[1])[2]
        DOCUMENT.write_text(head + MARKERS[0] + text + MARKERS[1] + tail, encoding="utf-8")
    return failed


if __name__ == "__main__":
    sys.exit(main())
