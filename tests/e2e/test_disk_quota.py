"""The quotas of the shipped agent: under a flood, and over folders of every kind."""
import os
import threading
import time

import pytest

from package_reader import read_package
from submissions import catalog, header, write_folder, write_small
from wine import wait_until, windows_path

# The flood of a regular run; MORVANE_FLOOD_SECONDS=120 plays it at full length.
FLOOD_SECONDS = int(os.environ.get("MORVANE_FLOOD_SECONDS", "12"))
TIME_BETWEEN_FOLDERS = 0.05
FILE_SIZE = 20_000


def quota_site(site, **keys):
    """The site with a quota over its two folders; what is not given keeps the default."""
    site.packaged.mkdir(parents=True)
    site.configuration["Application"]["Processes"]["DiskQuota"] = ["Quota"]
    site.configuration["Quota"] = {"DumpsFolder": windows_path(site.dumps), "PackagedFolder": windows_path(site.packaged),
                                   "TimeBetweenChecks": 100, **keys}
    return site


def size_of(area):
    """Bytes of the files directly inside the area's folders, as far as they are still there."""
    total = 0
    for folder in area.iterdir():
        try:
            total += sum(path.stat().st_size for path in folder.iterdir() if path.is_file())
        except OSError:  # it went this moment
            pass
    return total


def memory_of(agent):
    """Resident bytes of the agent's process."""
    with open(f"/proc/{agent.pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith("VmRSS:"))


class Flood(threading.Thread):
    """Writes submissions that don't compress, one after the other, as long as it lasts."""

    def __init__(self, dumps, seconds):
        super().__init__()
        self._dumps, self._end = dumps, time.monotonic() + seconds
        self.count = 0

    def run(self):
        while time.monotonic() < self._end:
            name = f"flood-{self.count:05}"
            write_folder(self._dumps / name, {"game.dmp": os.urandom(FILE_SIZE)},
                         header(Key=name, Catalog=catalog(dump="game.dmp")))
            self.count += 1
            time.sleep(TIME_BETWEEN_FOLDERS)


@pytest.mark.limit(FLOOD_SECONDS * 2 + 120)
def test_a_flood_stays_under_both_quotas_and_the_survivors_are_sent(site, store, bucket):
    dumps_quota, packaged_quota = 30 * FILE_SIZE, 40 * FILE_SIZE
    endpoint = site.configuration["Uploader"]["EndpointOverride"]
    quota_site(site, DumpsQuota=dumps_quota, PackagedQuota=packaged_quota)
    site.configuration["Uploader"]["EndpointOverride"] = "http://127.0.0.1:1"  # nobody listens
    flood = Flood(site.dumps, FLOOD_SECONDS)
    with site.start_with_game() as beside:
        beside.agent.wait_for(" running application processes...")
        flood.start()
        memory, slack = [], 2 * FILE_SIZE / TIME_BETWEEN_FOLDERS  # two seconds of the flood
        while flood.is_alive():
            memory.append(memory_of(beside.agent))
            # Over the quota is what comes while a pass runs. A busy machine may be late with one.
            for area, quota in (site.dumps, dumps_quota), (site.packaged, packaged_quota):
                wait_until(lambda: size_of(area) <= quota + slack, 10, f"{area} under its quota")
            time.sleep(0.25)
        flood.join()
        assert flood.count * FILE_SIZE > 4 * packaged_quota, "that was no flood"
        wait_until(lambda: not site.waiting_dumps(), 60, "the flood packaged or gone")
        wait_until(lambda: size_of(site.packaged) <= packaged_quota, 5, "the packages under their quota")
        # Each watcher knows every name for the rest of the run; nothing else may stay.
        assert max(memory) - memory[len(memory) // 3] < (4 << 20) + flood.count * 1024, f"the agent grows: {memory}"
        assert beside.quit(90) == 0
    assert " that puts us over our quota\r\n" in beside.agent.text
    assert not list(site.work.iterdir())

    survivors = site.waiting_packages()
    assert survivors
    site.configuration["Uploader"]["EndpointOverride"] = endpoint
    with site.start_with_game() as beside:
        site.wait_all_sent(60)
        assert beside.quit() == 0
    sent = {read_package(store.get(bucket, key)).header["Key"] for key in store.keys(bucket)}
    assert sent == {folder.name for folder in survivors}


@pytest.mark.limit(120)
def test_folders_of_every_kind_go(site):
    quota_site(site, DumpsQuota=0, InvalidGraceTime=1)
    outside = site.folder / "precious"
    outside.mkdir()
    (outside / "save game").write_bytes(b"keep me")
    write_small(site.dumps, "linked")
    (site.dumps / "linked" / "saves").symlink_to(outside)
    large = site.dumps / "ten thousand files"
    large.mkdir()
    for number in range(10_000):
        (large / f"{number:05}.log").touch()
    for name in ("太郎 Jörg 🎮", "read only"):
        write_small(site.dumps, name)
        for path in (site.dumps / name).iterdir():
            path.chmod(0o444)
    nested = site.dumps / "nested" / "logs" / "old"
    nested.mkdir(parents=True)
    (nested / "x.log").write_bytes(b"x")
    unpacked = {"DiskQuota": ["Quota"], "ProcessMonitor": ["ProcessMonitor"]}  # the packager would be quicker
    site.configuration["Application"]["Processes"] = unpacked
    with site.start_with_game() as beside:
        # Windows removes a link alone; where the system can't, the folder stays rather than what the link leads to.
        wait_until(lambda: {path.name for path in site.dumps.iterdir()} <= {"linked"}, 90, "every folder gone")
        assert beside.quit() == 0
    assert all(b"linked" in line for line in beside.agent.stderr.splitlines())
    assert (outside / "save game").read_bytes() == b"keep me"


def test_folders_that_vanish_are_ordinary_failures(site, store, bucket):
    """With no room at all every folder vanishes under whoever works in it; what gets through is whole."""
    quota_site(site, DumpsQuota=0, PackagedQuota=0, TimeBetweenChecks=1)
    with site.start_with_game() as beside:
        for number in range(60):
            write_small(site.dumps, f"vanishing-{number:02}")
        wait_until(lambda: not list(site.dumps.iterdir()) and not list(site.packaged.iterdir()), 40, "empty folders")
        assert beside.agent.running
        assert beside.quit() == 0
    assert " puts us over our quota\r\n" in beside.agent.text
    assert "exception" not in beside.agent.text.lower()
    for key in store.keys(bucket):
        read_package(store.get(bucket, key))
    assert not list(site.work.iterdir())
