#!/usr/bin/python3
"""Packaging a submission as a whole: how long it takes, and how much memory.

    bench/packaging.py time|memory --release BUILD --native BUILD --scratch FOLDER [--quick]

time: the agent's packaging (PackageTool pack of the release build, under Wine) against `gzip -9` and then `md5sum` over
the same files, natively. What it starts lives on two systems, so the time is that of the wall. Both leave their output
in files; only the agent's is flushed to the disk.
memory: the most that the same program had resident, Wine's own share included, against the largest attachment and twice
the package. Over the submission and over its log alone, which packs to little.
"""
import argparse
import shutil
from pathlib import Path

from programs import Use, note, report, run, under_wine, windows_path

ALLOWANCE = 24 << 20  # bytes: code, stacks, buffers, Wine


class Bench:
    def __init__(self, options):
        self.release = Path(options.release).resolve() / "bin"
        self.native = Path(options.native).resolve() / "bin"
        self.scratch = Path(options.scratch).resolve() / "packaging"
        self.quick = ["--quick"] if options.quick else []
        self.submission = self.scratch / "submission"
        shutil.rmtree(self.scratch, ignore_errors=True)
        self.submission.mkdir(parents=True)
        run([self.native / "WriteSubmission", f"--scratch={self.submission}", *self.quick])
        self.files = sorted(path for path in self.submission.iterdir() if path.name != "header.json")

    def pack(self, submission):
        """Packages the submission; gives what that took and the size of the package."""
        target = self.scratch / "packages"
        shutil.rmtree(target, ignore_errors=True)
        use = under_wine(self.release / "PackageTool.exe", "pack", windows_path(submission), "--to",
                         windows_path(target))
        return use, (target / submission.name / "submission.pkg").stat().st_size

    def gzip_and_md5sum(self):
        use = Use(0, 0, 0)
        for path in self.files:
            with open(self.scratch / (path.name + ".gz"), "wb") as packed:
                use += run(["gzip", "-9", "-c", path], packed)
        return use + run(["md5sum", *self.files])

    def zlib_seconds(self, command):
        out = self.scratch / "seconds"
        with open(out, "wb") as output:
            command(output)
        return float(out.read_text(encoding="utf-8"))


def least(uses, what):
    return min(getattr(use, what) for use in uses)


def measure_time(bench):
    bounds, subjects = [], []
    for _ in range(2):
        bounds.append(bench.gzip_and_md5sum())
        subjects.append(bench.pack(bench.submission)[0])
    report("packaging a submission whole (wall)", "s", least(subjects, "wall"), least(bounds, "wall"), 1.05)

    # Where the time goes: how much of it is zlib itself, in the build that ships and in Debian's own.
    bound = least(bounds, "cpu")
    shipped = bench.zlib_seconds(lambda out: under_wine(bench.release / "ZlibSeconds.exe", *bench.quick, stdout=out))
    debian = bench.zlib_seconds(lambda out: run([bench.native / "ZlibSeconds", *bench.quick], out))
    for what, seconds in (("packaging", least(subjects, "cpu")), ("zlib alone, the library that is linked in", shipped),
                          ("zlib alone, the machine's own build of it", debian)):
        note(f"processor time, {what}: {seconds:.2f} s, {seconds / bound:.3f} of gzip and md5sum ({bound:.2f} s)")


def report_memory(bench, name, submission):
    use, package = bench.pack(submission)
    largest = max(path.stat().st_size for path in submission.iterdir())
    report(f"peak memory, {name}", "MiB", use.peak / 2**20, (largest + 2 * package + ALLOWANCE) / 2**20, 1)


def measure_memory(bench):
    report_memory(bench, "submission", bench.submission)
    log_only = bench.scratch / "log-only"
    log_only.mkdir()
    shutil.copy(bench.submission / "game.log", log_only)
    header = (bench.submission / "header.json").read_text(encoding="utf-8")
    for name in ("crash_Minidump.dmp", "screenshot.png"):
        header = header.replace(name, "")
    (log_only / "header.json").write_text(header, encoding="utf-8")
    report_memory(bench, "its log alone", log_only)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("what", choices=["time", "memory"])
    parser.add_argument("--release", required=True)
    parser.add_argument("--native", required=True)
    parser.add_argument("--scratch", required=True)
    parser.add_argument("--quick", action="store_true")
    options = parser.parse_args()
    bench = Bench(options)
    try:
        measure_time(bench) if options.what == "time" else measure_memory(bench)
    finally:
        shutil.rmtree(bench.scratch, ignore_errors=True)


if __name__ == "__main__":
    main()
