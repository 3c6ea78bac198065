"""A whole day of a game in time-lapse, with every process of the agent as docs/ recommends them."""
import json
import time
from contextlib import contextmanager

import pytest

from agent import GAME
from permission_texts import TEXTS, TITLE
from store.client import ACCESS_KEY, SECRET_KEY
from wine import ROOT, Program, wait_until, windows_path

RECOMMENDED = ROOT / "docs" / "recommended-configuration.json"
PROMPT = TEXTS[0x0409][TITLE]
SETTLED = 1.5  # seconds after which the prompt takes an answer
YES, NO = "Return", "Escape"


class Day:
    """One machine with the game and the agent beside it."""

    def __init__(self, site, display):
        self._site, self._display = site, display
        self.app, self.errors = site.folder / "app", []  # of all agents that ended

    @property
    def packaged(self):
        """Quota and packager write its name each in their own way."""
        (folder,) = [path for path in self.app.iterdir() if path.name.lower() == "packageddumps"]
        return folder

    def play(self, *arguments):
        """The game, until it is killed."""
        return Program(GAME, "--quiet", "--dumps", windows_path(self.app / "dumps"),
                       *(arguments or ("--stay-alive", "900000", "--crash", "none")), variables=self._display.variables())

    def crash(self, name):
        self.play("--name", name).wait()

    def start_agent(self):
        return self._site.start(variables=self._display.variables())

    def answer(self, key):
        self._display.wait_for_window(PROMPT)
        time.sleep(SETTLED)
        self._display.press(key)
        self._display.wait_for_no_window(PROMPT)

    @contextmanager
    def playing(self, shutdown_delay=100):
        """Game and agent. The agent ends by itself once games that the context leaves running are killed."""
        self._site.configuration["ProcessMonitor"]["ShutdownDelay"] = shutdown_delay
        with self.play() as game, self.start_agent() as agent:
            agent.wait_for(" running application processes...")
            yield game, agent
            game.kill()
            assert agent.wait() == 0
            self.errors += agent.stderr.decode().splitlines()


def in_time_lapse(store, bucket):
    """The recommended configuration, with the test's store and a day's times in seconds."""
    configuration = json.loads(RECOMMENDED.read_text(encoding="utf-8"))
    for section in configuration.values():
        if "TimeBetweenChecks" in section:
            section["TimeBetweenChecks"] //= 20
    configuration["ProcessMonitor"].update({"TimeBetweenChecks": 100, "WatchedApplications": ["SampleGame.exe"]})
    configuration["Uploader"].update({"BucketName": bucket, "AccessKey": ACCESS_KEY, "SecretKey": SECRET_KEY,
                                      "EndpointOverride": store.endpoint, "UseVirtualAddressing": False})
    return configuration


@pytest.mark.limit(180)
def test_a_day(site, display, store, bucket):
    site.configuration = in_time_lapse(store, bucket)
    day = Day(site, display)
    # A crash that the player reports, a restart of game and agent, and another crash.
    with day.playing(shutdown_delay=5000) as (game, agent):
        day.crash("crash-1")
        day.answer(YES)
        agent.wait_for("crash-1\" in ")
        game.kill()
        agent.wait_for(" All monitored processes have closed")
        with day.play(), day.start_agent() as second:
            assert second.wait() == 0
            agent.wait_for(" A monitored processes has reappeared")
            day.crash("crash-2")
            agent.wait_for("crash-2\" in ")
    # The store is down.
    store.set_faults({"kind": "status", "status": 503, "code": "SlowDown", "times": 1000})
    with day.playing() as (_, agent):
        day.crash("crash-3")
        day.answer(YES)
        day.crash("crash-4")
        for name in ("crash-3", "crash-4"):
            agent.wait_for(f"{name}. Error=")
    assert sorted(path.name for path in day.packaged.iterdir()) == ["crash-3", "crash-4"]
    # The store is back.
    store.reset()
    with day.playing() as (_, agent):
        day.answer(YES)
        for name in ("crash-3", "crash-4"):
            agent.wait_for(f"{name}\" in ")
    # The player refuses.
    with day.playing():
        day.crash("crash-5")
        day.answer(NO)
        wait_until(lambda: not any(day.packaged.iterdir()), 20, "the refused package deleted")

    assert sorted(package.header["InstanceKey"] for package in site.sent_packages()) == ["crash-1", "crash-2", "crash-3", "crash-4"]
    assert sorted(path.name.lower() for path in day.app.iterdir()) == [
        "crashreporter.log", "dumps", "packageddumps", "packagetemp", "sent reports.jsonl"]
    assert not list(day.app.glob("*/*")), "something is left behind"
    assert {line.split("\t")[1].split(" in folder ")[0] for line in day.errors} == {
        " Failed to upload package", " Upload stopped at: Store refused the object: 503 SlowDown"}
