"""Fixtures of the end-to-end tests: one store for all, and for each test a bucket, a scratch folder and a limit.

With several workers (pytest -n) each has a prefix, a display, a store and scratch folders of its own.
"""
import ctypes
import os
import re
import shutil
import signal
import subprocess
import zlib

import pytest

import wine
from agent import EXECUTABLE, GAME, Site
from display import Display
from signer import Signer
from store.client import Store

USUAL_LIMIT = 60
LONGEST = ["test_sweep", "test_permission_prompt", "test_load", "test_store_faults"]

wine.SCRATCH /= os.environ.get("PYTEST_XDIST_WORKER", "")
wine.PREFIX = wine.SCRATCH / "wine"


def pytest_collection_modifyitems(items):
    """The longest files first, so that the workers end together."""
    items.sort(key=lambda item: -LONGEST.index(item.path.stem) if item.path.stem in LONGEST else 1)


@pytest.fixture(scope="session", autouse=True)
def may_mount():
    """Moves the run into a mount namespace of its own, so that what tests mount ends with it."""
    new_namespace = 0x20000
    return (ctypes.CDLL(None).unshare(new_namespace) == 0
            and subprocess.run(["mount", "--make-rprivate", "/"], check=False).returncode == 0)


@pytest.fixture(scope="session", autouse=True)
def prefix(may_mount):  # Wine's server must see the mounts
    for program in (EXECUTABLE, GAME):
        assert program.is_file(), f"{program} is missing: ./test.sh builds it"
    wine.make_prefix()
    yield
    wine.stop_prefix()


@pytest.fixture(autouse=True)
def limit(request):
    """Fails the test when its time is up."""
    marker = request.node.get_closest_marker("limit")
    seconds = marker.args[0] if marker else USUAL_LIMIT

    def time_is_up(*_):
        raise TimeoutError(f"the test took more than {seconds} s")

    signal.signal(signal.SIGALRM, time_is_up)
    signal.alarm(seconds)
    yield
    signal.alarm(0)


@pytest.fixture(autouse=True)
def programs():
    """Ends what the test left running: the next test's windows would compete with its own."""
    yield
    wine.Program.kill_all()


def short_name(request):
    """The test's name in characters that buckets and folders allow, with a number that makes it unique."""
    name = re.sub(r"[^a-z0-9]+", "-", request.node.name.lower())[:48].strip("-")
    return f"{name}-{zlib.crc32(request.node.nodeid.encode()):08x}"


@pytest.fixture
def scratch(request):
    """An empty folder, kept after the test for inspection."""
    folder = wine.SCRATCH / request.node.path.stem / short_name(request)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


@pytest.fixture
def mount_disk(may_mount):
    """mount_disk(folder, options) gives an existing folder a disk of its own."""
    if not may_mount:
        pytest.skip("needs the right to mount (root with CAP_SYS_ADMIN)")
    return lambda folder, options: subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", folder], check=True)


@pytest.fixture(scope="session")
def running_display():
    display = Display(wine.SCRATCH / "display")
    yield display
    display.end()


@pytest.fixture
def display(running_display):
    """The screen. A test must leave it empty."""
    yield running_display
    running_display.wait_for_no_window("", 5)


@pytest.fixture(scope="session")
def running_store():
    folder = wine.SCRATCH / "store"
    shutil.rmtree(folder, ignore_errors=True)
    with Store(folder) as store:
        yield store


@pytest.fixture
def store(running_store):
    running_store.reset()
    return running_store


@pytest.fixture
def bucket(store, request):
    return store.make_bucket(short_name(request))


@pytest.fixture
def signer(store, bucket):
    """Gives addresses in the test's bucket to agents without a key."""
    with Signer(store.endpoint, bucket) as running:
        yield running


@pytest.fixture
def site(scratch, store, bucket):
    """An installation that uploads into the test's bucket."""
    return Site(scratch, store, bucket)
