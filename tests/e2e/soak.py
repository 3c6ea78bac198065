"""Kills agents at random moments while they send submissions to a store that fails one upload in five.

  scripts/fault-sweep.sh soak [COUNT]    COUNT submissions, 10,000 without a number; 0 lost and 0 twice is the goal

Several agents run side by side, each with folders of its own; every second one of them is killed, on average.
"""
import collections
import concurrent.futures
import random
import shutil
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "kit"))
# pylint: disable=wrong-import-position
import wine
from agent import Site
from package_reader import read_package
from store.client import Store
from submissions import write_small

FAULTS = ({"kind": "status", "status": 503, "code": "SlowDown"}, {"kind": "reset", "at": "last"}, {"kind": "close"},
          {"kind": "bad-etag"}, {"kind": "cut", "at": "head"})
AGENTS = 6
AT_ONCE = 100  # submissions that wait at a time, so that every kill meets the agent at work


def one_in_five(uploads):
    return [fault for number in range(uploads // 5)
            for fault in ({"kind": "delay", "ms": 0, "times": 4}, FAULTS[number % len(FAULTS)])]


def soak(site, names):
    """Returns the number of kills."""
    left, kills = list(names), 0
    while left or not site.all_sent():
        for _ in range(min(AT_ONCE - len(site.waiting_dumps()), len(left))):
            write_small(site.dumps, left.pop())
        with site.start() as agent:
            time.sleep(random.uniform(0, 2 * AGENTS))
            kills += agent.running
            agent.kill()
        if kills % 20 == 0:
            print(f"{site.folder.name}: {kills} kills, {len(left)} submissions still to come", flush=True)
    with site.start() as agent:  # what a kill left half deleted goes at the next start
        agent.wait()
    return kills


def main(count):
    folder = wine.SCRATCH / "soak"
    shutil.rmtree(folder, ignore_errors=True)
    wine.PREFIX = folder / "wine"
    wine.make_prefix()
    start, names = time.monotonic(), [f"soak-{number:05}" for number in range(count)]
    try:
        with Store(folder / "store") as store:
            store.make_bucket("soak")
            store.set_faults(*one_in_five(3 * count))
            sites = [Site(folder / f"agent-{number}", store, "soak") for number in range(AGENTS)]
            for site in sites:
                site.configuration["Packager"]["KeepFailedSubmissions"] = True
            with concurrent.futures.ThreadPoolExecutor(AGENTS) as pool:
                kills = sum(pool.map(soak, sites, (names[number::AGENTS] for number in range(AGENTS))))
            uploads = store.uploads()
            arrived = collections.Counter(read_package(store.get("soak", key)).header["Key"]
                                          for key in store.keys("soak"))
    finally:
        wine.stop_prefix()
    lost, twice = set(names) - set(arrived), [name for name, keys in arrived.items() if keys > 1]
    rests = [path for site in sites for path in site.left_on_disk()]
    failed = sum(upload["status"] != 200 for upload in uploads)
    print(f"{count} submissions, {kills} kills, {len(uploads)} uploads, {failed} of them without success, "
          f"{time.monotonic() - start:.0f} s: {len(lost)} lost, {len(twice)} twice, "
          f"{len(rests)} rests of sent ones, which DiskQuota would delete")
    return 1 if lost or twice or not all(site.all_sent() for site in sites) else 0


if __name__ == "__main__":
    sys.exit(main(int(sys.argv[1]) if len(sys.argv) > 1 else 10_000))
