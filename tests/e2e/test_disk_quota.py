"""The quotas of the shipped agent under a flood."""
import os
import threading
import time
from contextlib import suppress

import pytest

from memory import occupied
from submissions import catalog, header, write_folder
from wine import wait_until, windows_path

# The flood of a regular run; MORVANE_FLOOD_SECONDS=120 plays it at full length.
FLOOD_SECONDS = int(os.environ.get("MORVANE_FLOOD_SECONDS", "12"))
TIME_BETWEEN_FOLDERS = 0.05
FILE_SIZE = 20_000


def size_of(area):
    """Bytes of the files directly inside the area's folders, as far as they are still there."""
    total = 0
    for folder in area.iterdir():
        with suppress(OSError):  # it went this moment
            total += sum(path.stat().st_size for path in folder.iterdir() if path.is_file())
    return total


def flood(dumps, written):
    """Writes submissions that don't compress, one after the other, and notes their names."""
    end = time.monotonic() + FLOOD_SECONDS
    while time.monotonic() < end:
        written.append(f"flood-{len(written):05}")
        write_folder(dumps / written[-1], {"game.dmp": os.urandom(FILE_SIZE)},
                     header(Key=written[-1], Catalog=catalog(dump="game.dmp")))
        time.sleep(TIME_BETWEEN_FOLDERS)


@pytest.mark.limit(FLOOD_SECONDS * 2 + 120)
def test_a_flood_stays_under_both_quotas_and_the_survivors_are_sent(site):
    dumps_quota, packaged_quota = 30 * FILE_SIZE, 40 * FILE_SIZE
    endpoint = site.configuration["Uploader"]["EndpointOverride"]
    site.packaged.mkdir(parents=True)
    site.configuration["Application"]["Processes"]["DiskQuota"] = ["Quota"]
    site.configuration["Quota"] = {"DumpsFolder": windows_path(site.dumps), "PackagedFolder": windows_path(site.packaged),
                                   "TimeBetweenChecks": 100, "DumpsQuota": dumps_quota, "PackagedQuota": packaged_quota}
    site.configuration["Uploader"]["EndpointOverride"] = "http://127.0.0.1:1"  # nobody listens
    written = []
    writer = threading.Thread(target=flood, args=(site.dumps, written))
    with site.start_with_game() as beside:
        beside.agent.wait_for(" running application processes...")
        writer.start()
        memory, slack = [], 2 * FILE_SIZE / TIME_BETWEEN_FOLDERS  # two seconds of the flood
        while writer.is_alive():
            memory.append(occupied(beside.agent.pid))
            # Over the quota is what comes while a pass runs. A busy machine may be late with one.
            for area, quota in (site.dumps, dumps_quota), (site.packaged, packaged_quota):
                wait_until(lambda: size_of(area) <= quota + slack, 10, f"{area} under its quota")
            time.sleep(0.25)
        assert len(written) * FILE_SIZE > 4 * packaged_quota, "that was no flood"
        wait_until(lambda: not site.waiting_dumps(), 60, "the flood packaged or gone")
        wait_until(lambda: size_of(site.packaged) <= packaged_quota, 5, "the packages under their quota")
        # Each watcher knows every name for the rest of the run; nothing else may stay.
        assert max(memory) - memory[len(memory) // 3] < 4 + len(written) / 1024, f"the agent grows: {memory}"  # MiB
        assert beside.quit(90) == 0
    assert " that puts us over our quota\r\n" in beside.agent.text
    assert not list(site.work.iterdir())

    survivors = site.waiting_packages()
    assert survivors
    site.configuration["Uploader"]["EndpointOverride"] = endpoint
    site.run_until_sent(60)
    assert {package.header["Key"] for package in site.sent_packages()} == {folder.name for folder in survivors}
