"""Much at once: a thousand submissions, and large files."""
import pytest

from memory import peak_over_idle, write_dump, write_package
from package_reader import read_package
from submissions import write_small

COUNT = 1000


@pytest.mark.limit(240)
def test_a_thousand_submissions_arrive(site, store, bucket):
    names = [f"load-{number:04}" for number in range(COUNT)]
    for name in names:
        write_small(site.dumps, name)
    store.set_faults({"kind": "delay", "ms": 30, "times": COUNT})  # uploads take long enough to overlap
    agent = site.run_until_sent(200)
    keys = store.keys(bucket)
    assert len(keys) == COUNT  # of as many different packages
    assert {read_package(store.get(bucket, key)).header["Key"] for key in keys[::20]} <= set(names)
    uploads = store.uploads()
    assert len(uploads) == COUNT, "one request each"
    assert 1 < max(upload["in_flight"] for upload in uploads) <= 4
    assert agent.stderr == b""
    assert site.left_on_disk() == []


@pytest.mark.limit(120)
def test_memory_does_not_grow_with_a_file(site):
    """A large dump on its way, and two large packages at the same time."""
    dump = write_dump(site.folder / "crash", 200 << 20)
    packages = [write_package(site.folder / name, 50 << 20) for name in "ab"]
    over_idle, _ = peak_over_idle(site, [dump], packages, 100)
    assert over_idle < 16
