"""Killed at random moments and started again, the agent loses nothing and sends nothing under two keys."""
import random
import time

import pytest

from package_reader import read_package
from submissions import write_small
from wine import wait_until

KILLS = 20
BATCH = 20


@pytest.mark.limit(300)
def test_twenty_kills_lose_nothing(site, store, bucket):
    seed = random.randrange(1 << 32)
    print(f"seed {seed}")
    rng = random.Random(seed)
    names = []
    interrupted = 0
    for kill in range(KILLS):
        batch = [f"kill-{kill:02}-{number:02}" for number in range(BATCH)]
        for name in batch:
            write_small(site.dumps, name)
        names += batch
        with site.start() as agent:
            agent.wait_for(" running application processes...")
            time.sleep(rng.uniform(0, 0.8))
            agent.kill()
        interrupted += not site.all_sent()
    assert interrupted >= KILLS // 2, "too few kills met the agent at work to say anything"

    with site.start_with_game() as beside:
        wait_until(lambda: not site.waiting_dumps(), 150, "every submission packaged")
        assert beside.quit() == 0
    # A package that was sent before its folder, which a kill had kept from deletion, was packaged again: that one is sent
    # in the next run, under the same key.
    with site.start_with_game() as beside:
        site.wait_all_sent(60)
        assert beside.quit() == 0
    assert sorted(read_package(store.get(bucket, key)).header["Key"] for key in store.keys(bucket)) == sorted(names)
    assert site.left_on_disk() == []
