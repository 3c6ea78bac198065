"""Lets every call that the shipped agent makes to the system fail once, and looks at what became of two reports.

  scripts/fault-sweep.sh [--class NAME]... [--stride N] [--errors] [--on] [--drop] [--seconds S] [--jobs N]

Two submissions with attachments go the whole road while one call fails; then the agent runs without faults. Calls of a
class are numbered from 1 in the order in which they come, which differs a little from run to run.

  --class    only these classes (see CLASSES); repeatable
  --stride   only every Nth call
  --errors   every error of the class for each call, else they take turns
  --on       the call and all after it fail
  --drop     without KeepFailedSubmissions
  --seconds  stops after that time; the runs are in random order then
"""
import argparse
import collections
import multiprocessing
import os
import random
import re
import shutil
import sys
import time
from dataclasses import dataclass
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "kit"))
# pylint: disable=wrong-import-position
import wine
from agent import EXECUTABLE, Site, is_complete
from package_reader import PackageError, read_package
from store.client import Store
from submissions import catalog, header, write_folder
from wine import BIN, Program, windows_path

DENIED, NOT_READY, NO_MEMORY, SHARED, NETWORK_GONE, DISK_FULL = 5, 21, 8, 32, 64, 112
ON_DISK = (SHARED, DENIED, NOT_READY, NO_MEMORY, NETWORK_GONE)
CLASSES = {  # and the errors that a call of it may meet
    "open": ON_DISK, "attributes": ON_DISK, "rename": ON_DISK, "delete": ON_DISK, "list": ON_DISK,
    "folder": ON_DISK + (DISK_FULL,),
    "read": (NOT_READY, NETWORK_GONE, NO_MEMORY), "write": (DISK_FULL, NOT_READY, NETWORK_GONE),
    "flush": (DISK_FULL, NOT_READY), "map": (NO_MEMORY, DENIED), "allocate": (NO_MEMORY,), "thread": (NO_MEMORY,),
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

    def __str__(self):
        calls = f"{self.first}" if self.first == self.last else f"{self.first} and all after it"
        return f"{self.kind} {calls}, error {self.error}{'' if self.keep else ', dropping failed ones'}"


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
        self._configure()
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
        configuration["Uploader"]["AskPermission"] = True
        configuration["ProcessMonitor"] = {"TimeBetweenChecks": 100, "ShutdownDelay": DELAY,
                                           "WatchedApplications": ["NoGame.exe"]}

    def go(self):
        """The outcome: "sent", "sent later", "lost as documented", or "FAILED" with self.problems."""
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
        return ("FAILED" if self.problems else "lost as documented" if lost else "sent later" if later else "sent")

    def _start(self, fault):
        self.runs += 1
        report = self.folder / f"calls-{self.runs}.txt"
        variables = wine.environment() | {"STRICT_REPORT": windows_path(report), "STRICT_ANSWER": "6",
                                          "STRICT_FAULT": f"{fault.kind} {fault.first} {fault.last} {fault.error}"}
        with Program(BIN / "StrictLauncher.exe", str(LONGEST_RUN), windows_path(EXECUTABLE),
                     f"-config={windows_path(self.site.write_configuration())}",
                     f"-appFolder={windows_path(self.site.folder / 'app')}", variables=variables) as program:
            program.wait(LONGEST_RUN + 20)
        text = program.text
        if text.startswith("not started"):  # a busy Wine may fail to
            self._start(fault)
            return
        self.log += text
        calls = report.read_text() if report.exists() else ""  # a crash leaves none
        self.counts = self.counts or {name: int(count) for name, count in re.findall(r"^(\w+) (\d+)$", calls, re.M)}
        self.is_met = self.is_met or "failed " in calls
        if "refused " in calls:
            self.problems.append("a name that Windows refuses")
        code = re.search(r"exit code 0x(\w+)", text)
        code = int(code[1], 16) if code else "none in time"
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


class Worker:
    """A Wine prefix, a store and a folder; one run at a time."""

    def __init__(self, folder):
        wine.SCRATCH, wine.PREFIX = folder, folder / "wine"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        wine.make_prefix()
        self._folder, self._store, self._runs = folder, Store(folder / "store"), 0

    def run(self, fault):
        self._runs += 1
        run = Run(self._folder / f"run-{self._runs}", self._store, f"run-{self._runs}", fault)
        outcome = run.go()
        if outcome == "FAILED":
            (run.folder / "log.txt").write_text(run.log)
        else:
            shutil.rmtree(run.folder)
        return outcome, run

    def end(self):
        self._store.stop()
        wine.stop_prefix()


def work(folder, faults, results, end):
    worker = Worker(folder)
    try:
        for fault in iter(faults.get, None):
            if time.monotonic() < end:
                outcome, run = worker.run(fault)
                results.put((fault, outcome, run.problems, str(run.folder)))
    finally:
        worker.end()
        results.put(None)


def plan(counts, options):
    faults = []
    for kind in options.kinds or CLASSES:
        errors = CLASSES[kind]
        for call in range(1, counts[kind] + 1, options.stride):
            for error in errors if options.errors else errors[call % len(errors):][:1]:
                faults.append(Fault(kind, call, 1 << 30 if options.on else call, error, not options.drop))
    if options.seconds:
        random.shuffle(faults)
    return faults


def count_calls(folder):
    worker = Worker(folder)
    try:
        outcome, run = worker.run(NO_FAULT)
        assert outcome == "sent", f"without a fault: {outcome} {run.problems}\n{run.log}"
        return run.counts
    finally:
        worker.end()


def parse_options():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--class", dest="kinds", action="append", choices=CLASSES)
    parser.add_argument("--stride", type=int, default=1)
    parser.add_argument("--errors", action="store_true")
    parser.add_argument("--on", action="store_true")
    parser.add_argument("--drop", action="store_true")
    parser.add_argument("--seconds", type=int)
    parser.add_argument("--jobs", type=int, default=2)
    return parser.parse_args()


def main():
    options = parse_options()
    folder = wine.SCRATCH / "sweep"
    counts = count_calls(folder / "count")
    faults, results = multiprocessing.Queue(), multiprocessing.Queue()
    for fault in plan(counts, options) + [None] * options.jobs:
        faults.put(fault)
    end = time.monotonic() + (options.seconds or 1e9)
    for number in range(options.jobs):
        multiprocessing.Process(target=work, args=(folder / str(number), faults, results, end)).start()
    table, busy = collections.defaultdict(collections.Counter), options.jobs
    while busy:
        result = results.get()
        if result is None:
            busy -= 1
            continue
        fault, outcome, problems, where = result
        table[fault.kind][outcome] += 1
        if problems:
            print(f"{fault}: {'; '.join(problems)}   {where}", flush=True)
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
