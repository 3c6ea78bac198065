"""Killed at random moments, beside a store that fails one upload in five, the agent loses nothing and sends nothing twice."""
import json
import os
import random
import time

import pytest

from submissions import write_small
from wine import wait_until

# The kills of a regular run; MORVANE_KILLS=1000 is a soak of half an hour.
KILLS = int(os.environ.get("MORVANE_KILLS", "20"))
BATCH = 15
FAULTS = ({"kind": "status", "status": 503, "code": "SlowDown"}, {"kind": "reset", "at": "last"}, {"kind": "close"},
          {"kind": "bad-etag"}, {"kind": "cut", "at": "head"})


@pytest.mark.limit(200 + 10 * KILLS)
def test_twenty_kills_lose_nothing(site, store, bucket):
    seed = random.randrange(1 << 32)
    print(f"seed {seed}")
    rng = random.Random(seed)
    names, interrupted = [], 0
    site.configuration["Uploader"]["ReceiptFile"] = "receipts.jsonl"
    store.set_faults(*(fault for number in range(3 * KILLS)
                       for fault in ({"kind": "delay", "ms": 0, "times": 4}, FAULTS[number % len(FAULTS)])))
    for _ in range(KILLS):
        for _ in range(BATCH if len(site.waiting_dumps()) < 100 else 0):
            names.append(f"kill-{len(names):05}")
            write_small(site.dumps, names[-1])
        with site.start() as agent:
            agent.wait_for(" running application processes...")
            time.sleep(rng.uniform(0, 0.8))
            agent.kill()
        interrupted += not site.all_sent()
    assert interrupted >= KILLS // 2, "too few kills met the agent at work to say anything"

    store.set_faults()
    with site.start_with_game() as beside:
        wait_until(lambda: not site.waiting_dumps(), 150, "every submission packaged")
        assert beside.quit() == 0
    # A package that was sent before its folder, which a kill had kept from deletion, was packaged again: that one is sent
    # in the next run, under the same key.
    site.run_until_sent(60)
    assert sorted(package.header["Key"] for package in site.sent_packages()) == sorted(names)
    receipts = (site.folder / "app" / "receipts.jsonl").read_text().splitlines()
    assert len(receipts) >= 1000 or {json.loads(line)["Key"] for line in receipts if line.endswith("}")} == set(store.keys(bucket))
    # A half deleted source folder whose package was sent before the next start is left to DiskQuota.
    assert {path.parent for path in site.left_on_disk()} <= {site.dumps}
