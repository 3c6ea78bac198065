"""Lets every call that the shipped agent makes to the system fail once, and looks at what became of two reports.

  scripts/fault-sweep.sh [--class NAME]... [--on] [--drop] [--keyless] [--seconds S]

Two submissions with attachments go the whole road while one call fails; then the agent runs without faults. Calls of a
class are numbered from 1 in the order in which they come, which differs a little from run to run. The errors of a class
take turns.

  --class    only these classes (see CLASSES); repeatable
  --on       the call and all after it fail
  --drop     without KeepFailedSubmissions
  --keyless  with UploaderPresigned and a signer
  --seconds  stops after that time; the runs are in random order then
"""
import argparse
import collections
import contextlib
import itertools
import multiprocessing
import os
import random
import re
import shutil
import sys
import time
from dataclasses import dataclass, replace
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "kit"))
# pylint: disable=wrong-import-position
import wine
from agent import EXECUTABLE, Site, is_complete
from package_reader import PackageError, read_package
from signer import Signer
from store.client import Store
from submissions import catalog, header, write_folder
from wine import BIN, Program, windows_path

DENIED, NOT_READY, NO_MEMORY, SHARED, NETWORK_GONE, DISK_FULL = 5, 21, 8, 32, 64, 112
ON_DISK = (SHARED, DENIED, NOT_READY, NO_MEMORY, NETWORK_GONE)
CLASSES = {  # and the errors that a call of it may meet
    "open": ON_DISK, "attributes": ON_DISK, "delete": ON_DISK, "list": ON_DISK, "rename": ON_DISK,
    "folder": ON_DISK + (DISK_FULL,),
    "read": (NOT_READY, NETWORK_GONE, NO_MEMORY), "write": (DISK_FULL, NOT_READY, NETWORK_GONE),
    "flush": (DISK_FULL, NOT_READY), "allocate": (NO_MEMORY,), "thread": (NO_MEMORY,),
    "winhttp": (12030, 12002, NO_MEMORY), "bcrypt": (NO_MEMORY,), "processes": (DENIED, NO_MEMORY),
    "console": (109, DISK_FULL), "dialog": (NO_MEMORY,),
}
EXIT_LINES = {2: " Initialization failure.", 3: " Run failure.", 4: " Shutdown failure."}
LONG = Path(*["a folder in a path longer than Windows likes"] * 6)
LONGEST_RUN = 45  # seconds; an upload alone may take 31
DELAY = int(os.environ.get("MORVANE_SWEEP_DELAY", "600"))  # milliseconds: long enough for the road on this machine
REPORTS = ("first", "aux")  # one has the name of a device


@dataclass(frozen=True)
class Fault:
    kind: str
    first: int
    last: int
    error: int
    keep: bool = True
    keyless: bool = False


NO_FAULT = Fault("none", 0, 0, 0)


def files_of(name):
    noise = random.Random(name).randbytes(3000)
    return {"crash.dmp": noise, "game.log": f"log of {name}\n".encode() * 99, "save/slot 1.bin": noise[::-1]}


def content_of(folder):
    return {path.relative_to(folder): path.is_dir() or (path.read_bytes(), path.stat().st_mode)
            for path in folder.rglob("*")}


class Run:
    """One fault on the road of the two reports."""

    def __init__(self, folder, store, bucket, fault):
        shutil.rmtree(folder, ignore_errors=True)
        self.fault, self.store, self.bucket = fault, store, store.make_bucket(bucket)
        self.folder, self.site = folder, Site(folder / LONG, store, bucket)
        self.problems, self.counts, self.log, self.runs, self.is_met = [], {}, "", 0, False
        self._signer = Signer(store.endpoint, self.bucket) if fault.keyless else contextlib.nullcontext()
        if fault.keyless:
            self.site.use_signer(self._signer.url)
        self._configure()
        shutil.copy(EXECUTABLE, folder)
        shutil.copy(BIN / "StrictWindows.dll", folder / "normaliz.dll")
        for name in REPORTS + ("linked",):
            parent = self.site.dumps if name in REPORTS else folder / "outside"
            write_folder(parent / name, files_of(name), header(Key=name, Catalog=catalog(
                dump="crash.dmp", log="game.log", attachments=["save/slot 1.bin"])))
        (self.site.dumps / "linked").symlink_to(folder / "outside" / "linked")
        self.outside = content_of(folder / "outside")

    def _configure(self):
        configuration = self.site.configuration
        configuration["Application"]["Processes"] |= {"DiskQuota": ["DiskQuota"], "SingletonAssurance": ["Singleton"]}
        for name in ("DumpWatcher", "PackageWatcher"):
            configuration[name]["TimeBetweenChecks"] = 50
        configuration["DiskQuota"] = {"DumpsFolder": windows_path(self.site.dumps), "TimeBetweenChecks": 100,
                                      "PackagedFolder": windows_path(self.site.packaged)}
        configuration["Singleton"] = {}
        configuration["Packager"]["KeepFailedSubmissions"] = self.fault.keep
        configuration["Uploader"] |= {"AskPermission": True, "ReceiptFile": "receipts.jsonl"}
        self.receipts = self.site.folder / "app" / "receipts.jsonl"
        self.receipts.parent.mkdir(exist_ok=True)
        self.receipts.write_text("one of many\n" * 1000, encoding="utf-8")  # so that it is made shorter
        configuration["ProcessMonitor"] = {"TimeBetweenChecks": 100, "ShutdownDelay": DELAY,
                                           "WatchedApplications": ["NoGame.exe"]}

    def go(self):
        """The outcome: "sent", "sent later", "lost as documented", or "FAILED" with self.problems."""
        with self._signer:
            return self._go()

    def _go(self):
        self._start(self.fault)
        later, sent = self._waiting(), self._sent()
        lost = [name for name in REPORTS if name not in sent and name not in later]
        self.problems += [f"{name} is lost" for name in lost if not self._says_lost(name)]
        if self.fault.first == self.fault.last:
            self._check_rests()
        for _ in range(3):  # a package that was sent but not deleted may be made again
            if self._left():
                self._start(NO_FAULT)
        sent = self._sent()
        self.problems += [f"{name} never arrived" for name in REPORTS if name not in lost and name not in sent]
        self.problems += [f"{name} is there {count} times" for name, count in sent.items() if count > 1]
        self.problems += [f"left: {path.relative_to(self.site.folder)}" for path in self._left()]
        if content_of(self.folder / "outside") != self.outside:
            self.problems.append("touched what is outside its folders")
        if len(self.receipts.read_bytes().splitlines()) < 1000:
            self.problems.append("lost receipts")
        return ("FAILED" if self.problems else "lost as documented" if lost else "sent later" if later else "sent")

    def _start(self, fault):
        self.runs += 1
        report = self.folder / f"calls-{self.runs}.txt"
        variables = wine.environment() | {
            "WINEDLLOVERRIDES": "normaliz=n", "STRICT_REPORT": windows_path(report), "STRICT_ANSWER": "6",
            "STRICT_FAULT": f"{fault.kind} {fault.first} {fault.last} {fault.error}"}
        with Program(self.folder / EXECUTABLE.name, f"-config={windows_path(self.site.write_configuration())}",
                     f"-appFolder={windows_path(self.site.folder / 'app')}", variables=variables) as program:
            try:
                code = program.wait(LONGEST_RUN)
            except AssertionError:
                code = "none in time"
        text = program.text
        self.log += text
        calls = report.read_text() if report.exists() else ""  # a crash leaves none
        self.counts = self.counts or {name: int(count) for name, count in re.findall(r"^(\w+) (\d+)$", calls, re.M)}
        self.is_met = self.is_met or "failed " in calls
        if "refused " in calls:
            self.problems.append("a name that Windows refuses")
        stays = re.search(" Failed (to|post) initialize (step for )?process ProcessMonitor", text)  # nobody ends it
        if (code not in range(5) or EXIT_LINES.get(code, "") not in text and fault.first == fault.last) and not stays:
            self.problems.append(f"exit code {code}")
        if "ASSERT" in text and fault.kind != "allocate":  # memory that runs out is such a failure
            self.problems.append("a failed assertion")

    def _sent(self):
        """How often each report is in the store. One that is not whole counts as never, unless a line says so."""
        sent = collections.Counter()
        for key in self.store.keys(self.bucket):
            sent[self._name_in(self.store.get(self.bucket, key))] += 1
        return sent

    def _name_in(self, package):
        try:
            package = read_package(package)
        except PackageError as error:
            return f"a broken package ({error})"
        name = package.header["Key"]
        whole = name in REPORTS and files_of(name) == {entry.name: entry.original for entry in package.entries}
        said = not self.fault.keep and " Failed to copy or compress attachment " in self.log
        return name if whole or name in REPORTS and said else f"{name}, not whole"

    def _waiting(self):
        """The reports that wait on the disk, whole, for the next run."""
        waiting = set()
        for name in REPORTS:
            dump, package = self.site.dumps / name, self.site.packaged / name / "submission.pkg"
            if is_complete(package.parent, package.name):
                waiting.add(self._name_in(package.read_bytes()))
            elif is_complete(dump, "header.json"):
                waiting |= {name} if all((dump / file).read_bytes() == content
                                         for file, content in files_of(name).items()) else set()
        return waiting

    def _says_lost(self, name):
        lines = [" Failed to get user's permission"]
        if not self.fault.keep:
            lines += [f" Failed to package dump folder .*{name}", f" Failed to generate package file .*{name}"]
        return any(re.search(line, self.log) for line in lines)

    def _left(self):
        return [path for path in self.site.left_on_disk() if path != self.site.dumps / "linked"]

    def _check_rests(self):
        work = list(self.site.work.iterdir()) if self.site.work.is_dir() else []
        half = [path for path in self._left() if path.parent == self.site.packaged
                and not is_complete(path, "submission.pkg")]
        self.problems += [f"rest: {path.relative_to(self.site.folder)}" for path in work + half]


def sweep(folder, faults, seconds=1e9):
    """Runs the faults in a Wine prefix and with a store of their own; returns (class, outcome, calls) of each."""
    end, runs = time.monotonic() + seconds, []
    shutil.rmtree(folder, ignore_errors=True)
    wine.PREFIX = folder / "wine"
    wine.make_prefix()
    try:
        with Store(folder / "store") as store:
            for number, fault in enumerate(faults):
                if time.monotonic() > end:
                    break
                run = Run(folder / f"run-{number}", store, f"run-{number}", fault)
                runs.append((fault.kind, run.go(), run.counts))
                if run.problems:
                    print(f"{fault}: {'; '.join(run.problems)}   {run.folder}", flush=True)
                    (run.folder / "log.txt").write_text(run.log)
                else:
                    shutil.rmtree(run.folder)
    finally:
        wine.stop_prefix()
    return runs


def plan(counts, options):
    faults = [Fault(kind, call, 1 << 30 if options.on else call, CLASSES[kind][call % len(CLASSES[kind])], not options.drop,
                    options.keyless)
              for kind in options.kinds or CLASSES for call in range(1, counts[kind] + 1)]
    if options.seconds:
        random.shuffle(faults)
    return faults


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--class", dest="kinds", action="append", choices=CLASSES)
    parser.add_argument("--on", action="store_true")
    parser.add_argument("--drop", action="store_true")
    parser.add_argument("--keyless", action="store_true")
    parser.add_argument("--seconds", type=int)
    options = parser.parse_args()
    folder, jobs = wine.SCRATCH / "sweep", os.cpu_count()
    ((_, outcome, counts),) = sweep(folder / "count", [replace(NO_FAULT, keyless=options.keyless)])
    assert outcome == "sent", "without a fault"
    faults = plan(counts, options)
    with multiprocessing.Pool(jobs) as pool:
        parts = pool.starmap(sweep, [(folder / str(job), faults[job::jobs], options.seconds or 1e9) for job in range(jobs)])
    table = collections.defaultdict(collections.Counter)
    for kind, outcome, _ in itertools.chain(*parts):
        table[kind][outcome] += 1
    return print_table(counts, table)


def print_table(counts, table):
    columns = ("sent", "sent later", "lost as documented", "FAILED")
    print(f"{'class':<12}{'calls':>8}{'runs':>8}", *(f"{column:>18}" for column in columns))
    for kind, outcomes in sorted(table.items()):
        print(f"{kind:<12}{counts[kind]:>8}{outcomes.total():>8}", *(f"{outcomes[column]:>18}" for column in columns))
    failed = sum(outcomes["FAILED"] for outcomes in table.values())
    print(f"{sum(outcomes.total() for outcomes in table.values())} runs, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
