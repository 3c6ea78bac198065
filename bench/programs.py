"""What the measuring scripts share: running programs that are measured, and the line that reports a row."""
import os
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]


@dataclass
class Use:
    """What a program and those that it waited for took."""
    wall: float  # seconds
    cpu: float  # seconds
    peak: int  # bytes resident in the largest of them

    def __add__(self, other):
        return Use(self.wall + other.wall, self.cpu + other.cpu, max(self.peak, other.peak))


def run(command, stdout=subprocess.DEVNULL):
    """Runs a program to its end; anything but exit code 0 ends this one."""
    start = time.monotonic()
    process = subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=stdout)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"bench: {command[0]} ended with {process.returncode}")
    return Use(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def under_wine(program, *arguments, stdout=subprocess.DEVNULL):
    return run([ROOT / "scripts" / "run-wine.sh", program, *arguments], stdout)


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def report(name, unit, subject, bound, limit):
    """A row whose ratio subject / bound may be at most limit (see bench/src/Bench.h)."""
    verdict = "ok" if subject / bound <= limit else "MISSED"
    print(f"ROW\t{name}\t{subject:.3f} {unit}\t{bound:.3f} {unit}\t{subject / bound:.3f}\t<= {limit:g}\t{verdict}",
          flush=True)


def note(text):
    print(f"  {text}", flush=True)
