"""A thousand submissions at once: none lost, never more than four uploads in flight."""
import pytest

from package_reader import read_package
from submissions import write_small

COUNT = 1000


@pytest.mark.limit(240)
def test_a_thousand_submissions_arrive(site, store, bucket):
    names = [f"load-{number:04}" for number in range(COUNT)]
    for name in names:
        write_small(site.dumps, name)
    store.set_faults({"kind": "delay", "ms": 30, "times": COUNT})  # uploads take long enough to overlap
    with site.start_with_game() as beside:
        site.wait_all_sent(200)
        assert beside.quit() == 0

    assert sorted(read_package(store.get(bucket, key)).header["Key"] for key in store.keys(bucket)) == names
    uploads = store.uploads()
    assert len(uploads) == COUNT, "one request each"
    assert max(upload["in_flight"] for upload in uploads) == 4
    assert beside.agent.stderr == b""
    assert site.left_on_disk() == []
