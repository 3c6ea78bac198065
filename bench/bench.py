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
from memory import peak_over_idle, write_dump, write_package  # noqa: E402
from store.client import ACCESS_KEY, SECRET_KEY, Store  # noqa: E402
import picture  # noqa: E402
import submission  # noqa: E402

DOCUMENT = ROOT / "docs" / "performance.md"
MARKERS = "<!-- written by ./bench.sh --write -->\n", "<!-- end -->\n"


def row(what, unit, subject, bound, at_most=None, at_least=None):
    """One line of the table, as its cells. Of repeated measurements, given as lists, the best counts; the worst is shown."""
    def best(measured):
        return min(measured) if isinstance(measured, list) else measured

    def cell(measured):
        spread = f" (to {max(measured):.3f})" if isinstance(measured, list) and len(measured) > 1 else ""
        return f"{best(measured):.3f}{spread} {unit}"

    ratio = best(subject) / best(bound)
    reached = ratio <= at_most if at_most else ratio >= at_least
    goal = f"at most {at_most}" if at_most else f"at least {at_least}"
    return what, cell(subject), cell(bound), f"{ratio:.3f}", goal, "ok" if reached else "MISSED"


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
        self.memory_over_time = None  # of the largest dump: (seconds, MiB)
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
        yield row("packaging it, whole (CPU)", "s", seconds, bound, at_most=1.03)

    def road(self):
        """The agent and the script take turns; both send to the same store."""
        agents, scripts = [], []
        with Store(self._folder / "road-store") as store:
            for number in range(self._rounds(3)):
                bucket = store.make_bucket(f"road-{number}")
                agents.append(self._agent_seconds(store, bucket))
                folder, work = self._files[0].parent, self._folder / "road-work"
                before = time.monotonic()
                subprocess.run([ROOT / "bench" / "road.sh", folder, work, f"{store.endpoint}/{bucket}",
                                f"{ACCESS_KEY}:{SECRET_KEY}"], stdin=subprocess.DEVNULL, check=True)
                scripts.append(time.monotonic() - before)
                assert len(store.keys(bucket)) == 2, "a package of each"
        yield row(f"from the read-only header to the object, {self._mebibytes} MiB", "s", agents, scripts, at_most=1.15)

    def _agent_seconds(self, store, bucket):
        site = Site(self._folder / bucket, store, bucket)
        folder = site.dumps / "crash"
        folder.mkdir()
        for path in self._files:
            os.link(path, folder / path.name)
        sentinel = folder / "header.json"
        shutil.copy(self._files[0].parent / sentinel.name, sentinel)
        with site.start_with_game() as beside:
            beside.agent.wait_for(" running application processes...")
            time.sleep(1)
            start = time.time()
            sentinel.chmod(0o444)
            site.wait_all_sent(1800)
            upload = store.uploads()[-1]
            assert upload["status"] == 200 and beside.quit() == 0
        return upload["time"] + upload["seconds"] - start

    def memory(self):
        sizes = (1, 8) if self._quick else (1, 64, 1024)
        with Store(self._folder / "memory-store") as store:
            for mebibytes in sizes:
                over_idle, self.memory_over_time = self._memory_of_a_dump(store, mebibytes)
                yield row(f"peak memory over idle, a dump of {mebibytes} MiB packaged and sent", "MiB", over_idle, 16,
                          at_most=1)
            for mebibytes in sizes:
                yield row(f"peak memory over idle, four packages of {mebibytes} MiB sent at once", "MiB",
                          self._memory_of_four_uploads(store, mebibytes), 16, at_most=1)

    def _memory_of_a_dump(self, store, mebibytes):
        site = Site(self._folder / f"dump-{mebibytes}", store, store.make_bucket(f"dump-{mebibytes}"))
        return peak_over_idle(site, [write_dump(site.folder / "crash", mebibytes << 20, submission.write_dump)], [], 3600)

    def _memory_of_four_uploads(self, store, mebibytes):
        site = Site(self._folder / f"four-{mebibytes}", store, store.make_bucket(f"four-{mebibytes}"))
        return peak_over_idle(site, [], [write_package(site.folder / name, mebibytes << 20) for name in "abcd"], 3600)[0]

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
        configuration["Uploader"] |= {"EndpointOverride": "http://127.0.0.1:1", "AskPermission": False,  # no listener
                                      "RetryFailedUploads": False}
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


def table(rows, machine, others=""):
    """The rows beside those of another table that were not measured again."""
    lines = {line.split(" | ")[0]: line for line in others.splitlines() if line.startswith("| ")}
    lines |= {"| what": "| what | measured | bound | ratio | goal | |\n|---|---|---|---|---|---|"}
    lines |= {f"| {cells[0]}": "| " + " | ".join(cells) + " |" for cells in rows}
    return f"{machine}\n\n" + "\n".join(lines.values()) + "\n"


def main():
    names = [name for name in vars(Rows) if not name.startswith("_")]
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("rows", nargs="*", metavar="ROW", help=f"of {', '.join(names)} (default: all)")
    parser.add_argument("--quick", action="store_true", help="little data: shows that it works, and little about speed")
    parser.add_argument("--write", action="store_true", help="write the table, and the picture if the row memory was "
                        "measured, into docs/performance.md")
    parser.add_argument("--series", type=Path, metavar="FILE", help="write the largest dump's memory over time to FILE")
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
    print(table(rows, machine), end="")
    if options.write:
        head, _, rest = DOCUMENT.read_text(encoding="utf-8").partition(MARKERS[0])
        before, _, tail = rest.partition(MARKERS[1])
        DOCUMENT.write_text(head + MARKERS[0] + table(rows, machine, before) + MARKERS[1] + tail, encoding="utf-8")
    if points := measured.memory_over_time:
        if options.series:
            picture.save(options.series, points)
        if options.write and not options.quick:
            picture.save(picture.AFTER, points)
            picture.draw()
    return failed


if __name__ == "__main__":
    sys.exit(main())
