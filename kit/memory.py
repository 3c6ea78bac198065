"""The memory that a running agent occupies, as the kernel counts it for the process: what it allocated, and all that is
mapped into it of programs and files."""
import json
import threading
import time
from pathlib import Path

from submissions import catalog, header

INTERVAL = 0.1  # seconds between two samples


def occupied(pid, field="VmRSS"):
    """MiB; VmHWM is the most since the process started or reset_peak."""
    for line in Path(f"/proc/{pid}/status").read_text(encoding="utf-8").splitlines():
        if line.startswith(field + ":"):
            return int(line.split()[1]) / 1024
    raise AssertionError(f"no {field} of process {pid}")


def reset_peak(pid):
    Path(f"/proc/{pid}/clear_refs").write_text("5", encoding="utf-8")


class Samples:
    """(seconds, MiB) of a process while the context lasts."""

    def __init__(self, pid):
        self._pid, self._over, self.points = pid, threading.Event(), []
        self._thread = threading.Thread(target=self._run, daemon=True)

    def _run(self):
        start = time.monotonic()
        while not self._over.is_set():
            self.points.append((round(time.monotonic() - start, 1), round(occupied(self._pid), 1)))
            self._over.wait(INTERVAL)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._over.set()
        self._thread.join()


def write_sparse(path, size):
    """A file of that size which is its name and zeros and takes no room on the disk. No two are the same."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with open(path, "wb") as file:
        file.write(str(path).encode())
        file.truncate(size)


def write_package(folder, size):
    """A complete package of that size. Returns its folder."""
    write_sparse(folder / "submission.pkg", size)
    (folder / "submission.pkg").chmod(0o444)
    return folder


def write_dump(folder, size, write_content=write_sparse):
    """A complete submission with a dump of that size. Returns its folder."""
    folder.mkdir(parents=True)
    write_content(folder / "crash_Minidump.dmp", size)
    sentinel = folder / "header.json"
    sentinel.write_text(json.dumps(header(Catalog=catalog(dump="crash_Minidump.dmp"))), encoding="utf-8")
    sentinel.chmod(0o444)
    return folder


def peak_over_idle(site, dumps, packages, seconds):
    """Starts the agent, moves the folders to where it finds them, and waits until all was sent. Returns the most that the
    agent occupied above its idle memory, in MiB, and the samples."""
    with site.start_with_game() as beside:
        pid = beside.agent.pid
        beside.agent.wait_for(" running application processes...")
        time.sleep(3)
        idle = occupied(pid)
        reset_peak(pid)
        with Samples(pid) as samples:
            time.sleep(1)
            for target, folders in (site.dumps, dumps), (site.packaged, packages):
                for folder in folders:
                    folder.rename(target / folder.name)
            site.wait_all_sent(seconds)
            time.sleep(1)
        peak = occupied(pid, "VmHWM")
        assert beside.quit() == 0 and not beside.agent.stderr, beside.agent.stderr[-500:]
    return peak - idle, samples.points
