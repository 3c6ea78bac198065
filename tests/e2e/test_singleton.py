"""A second copy of the agent stops itself, and never the first."""
import shutil

import pytest

from agent import EXECUTABLE, play
from submissions import write_small
from wine import Program, wait_until, windows_path

READY = ' Watcher "PackageWatcher" is watching folder'
STOPS = " Process already running requesting shutdown..."


@pytest.fixture
def copies(site):
    """Starts copies of the agent from folders and under names of their own."""
    site.configuration["Application"]["Processes"]["SingletonAssurance"] = ["Zuletzt"]  # starts after all others

    def start(folder, name="MorvaneCrashReporter.exe", by_name=False, ready=" ", **options):
        program = site.folder / folder / name
        if not program.exists():
            program.parent.mkdir(exist_ok=True)
            shutil.copy(EXECUTABLE, program)
        command = ["cmd.exe", "/c", name] if by_name else [program]
        agent = Program(*command, f"-config={windows_path(site.write_configuration())}",
                        f"-appFolder={windows_path(site.folder / 'app')}", cwd=program.parent, **options)
        if ready:
            agent.wait_for(ready)
        return agent

    start.game = play()  # no agent ends because of it
    return start


@pytest.mark.parametrize("first, second", [
    (["first"], ["second"]),
    (["longer", "MyMorvaneCrashReporter.exe"], ["shorter", "MORVANECrashReporter.exe"]),  # the ending counts
    (["first"], ["second", "MorvaneCrashReporter.exe", True]),  # by its bare name: argv[0] has no folder
], ids=["copy", "ending", "bare-name"])
def test_a_later_copy_stops_itself(site, copies, first, second):
    older = copies(*first, ready=READY)
    later = copies(*second)
    assert later.wait(20) == 0
    assert later.text.count(STOPS) == 1
    other = copies("other", "Reporter of another game.exe", ready=READY)
    write_small(site.dumps, "after")
    site.wait_all_sent()
    assert all(agent.running and STOPS not in agent.text for agent in (older, other))


def test_of_copies_that_start_together_one_stays(site, copies):
    started = [copies(f"copy {number}") for number in range(3)]
    wait_until(lambda: sum(copy.running for copy in started) == 1, 20, "one of three copies left")
    write_small(site.dumps, "after")
    site.wait_all_sent()


def test_a_copy_waits_for_one_that_ends(site, store, copies):
    """The ending one has uploads and a launcher that does not read, and takes no crash of the game started meanwhile."""
    site.configuration["Application"]["LogFile"] = "agent.log"
    site.configuration["ProcessMonitor"]["ShutdownDelay"] = 100
    for number in range(4):
        write_small(site.dumps, f"before-{number}")
    store.set_faults({"kind": "delay", "ms": 4000, "times": 4})
    ending = copies("first", ready=None, reads=False)
    wait_until(lambda: len(store.uploads()) == 4, 20, "four uploads")
    copies.game.kill()
    log = site.folder / "app" / "agent.log"
    wait_until(lambda: " Waiting for 4 active uploads" in log.read_text(encoding="utf-8"), 20, "the end of the first begun")
    with play():
        later = copies("first")
        assert ending.wait() == 0
        write_small(site.dumps, "after")
        site.wait_all_sent()
        assert later.running and STOPS not in later.text


def test_a_copy_that_goes_does_nothing_before(site, copies):
    """Even the quickest one: it would ask without a screen, take that for a No and delete what the first has to send."""
    site.configuration["Uploader"]["EndpointOverride"] = "http://127.0.0.1:1"  # nobody listens
    write_small(site.dumps, "unsent")
    copies("first", ready=" Failed to upload package")
    half = site.packaged / "half" / "submission.pkg"  # as the first would write it now
    half.parent.mkdir()
    half.write_bytes(b"x")
    site.configuration["PackageWatcher"]["TimeBetweenChecks"] = 0
    site.configuration["Uploader"] |= {"TimeBetweenChecks": 0, "AskPermission": True}
    for _ in range(5):
        later = copies("first")
        assert later.wait(20) == 0
        assert " Added " not in later.text and "permission" not in later.text
    assert len(site.waiting_packages()) == 1 and half.exists()
