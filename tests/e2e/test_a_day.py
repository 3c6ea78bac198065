"""A whole day of a game in time-lapse, with every process of the agent as docs/ recommends them."""
import json
import time

import pytest

from agent import GAME
from package_reader import read_package
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
        self.app = site.folder / "app"
        self.errors = []  # of all agents that ended

    @property
    def packaged(self):
        """Quota and packager write its name each in their own way."""
        (folder,) = [path for path in self.app.iterdir() if path.name.lower() == "packageddumps"]
        return folder

    def play(self, *arguments):
        """The game, until it is killed."""
        return Program(GAME, "--quiet", "--dumps", windows_path(self.app / "dumps"),
                       *(arguments or ("--stay-alive", "900000", "--crash", "none")), variables=self._display.variables())

    def crash(self, name, *arguments):
        self.play("--name", name, *arguments).wait()

    def start_agent(self):
        return self._site.start(variables=self._display.variables())

    def answer(self, key):
        self._display.wait_for_window(PROMPT)
        time.sleep(SETTLED)
        self._display.press(key)
        self._display.wait_for_no_window(PROMPT)

    def end(self, agent):
        assert agent.wait() == 0
        self.errors += agent.stderr.decode().splitlines()


def in_time_lapse(store, bucket):
    """The recommended configuration, with the test's store and a day's times in seconds."""
    configuration = json.loads(RECOMMENDED.read_text(encoding="utf-8"))
    for section in configuration.values():
        if "TimeBetweenChecks" in section:
            section["TimeBetweenChecks"] //= 20
    configuration["ProcessMonitor"].update({"TimeBetweenChecks": 100, "ShutdownDelay": 1500,
                                            "WatchedApplications": ["SampleGame.exe"]})
    configuration["Uploader"].update({"BucketName": bucket, "AccessKey": ACCESS_KEY, "SecretKey": SECRET_KEY,
                                      "EndpointOverride": store.endpoint, "UseVirtualAddressing": False})
    return configuration


def morning(day):
    """A crash that the player reports, a restart of game and agent, and another crash."""
    game, agent = day.play(), day.start_agent()
    agent.wait_for(" running application processes...")
    day.crash("crash-1")
    day.answer(YES)
    agent.wait_for("crash-1\" in ")
    game.kill()
    agent.wait_for(" All monitored processes have closed")
    game, second = day.play(), day.start_agent()
    day.end(second)
    agent.wait_for(" A monitored processes has reappeared")
    day.crash("crash-2")
    agent.wait_for("crash-2\" in ")
    game.kill()
    day.end(agent)


def afternoon(day, store):
    """The store is down."""
    store.set_faults({"kind": "status", "status": 503, "code": "SlowDown", "times": 1000})
    game, agent = day.play(), day.start_agent()
    day.crash("crash-3")
    day.answer(YES)
    day.crash("crash-4")
    for name in ("crash-3", "crash-4"):
        agent.wait_for(f"{name}. Error=")
    game.kill()
    day.end(agent)
    assert sorted(path.name for path in day.packaged.iterdir()) == ["crash-3", "crash-4"]


def evening(day, store):
    """The store is back."""
    store.reset()
    game, agent = day.play(), day.start_agent()
    day.answer(YES)
    for name in ("crash-3", "crash-4"):
        agent.wait_for(f"{name}\" in ")
    game.kill()
    day.end(agent)


def night(day):
    """The player refuses."""
    game, agent = day.play(), day.start_agent()
    agent.wait_for(" running application processes...")
    day.crash("crash-5")
    day.answer(NO)
    wait_until(lambda: not any(day.packaged.iterdir()), 20, "the refused package deleted")
    game.kill()
    day.end(agent)


@pytest.mark.limit(180)
def test_a_day(site, display, store, bucket):
    site.configuration = in_time_lapse(store, bucket)
    day = Day(site, display)
    morning(day)
    afternoon(day, store)
    evening(day, store)
    night(day)
    sent = [read_package(store.get(bucket, key)).header["InstanceKey"] for key in store.keys(bucket)]
    assert sorted(sent) == ["crash-1", "crash-2", "crash-3", "crash-4"]
    assert sorted(path.name.lower() for path in day.app.iterdir()) == [
        "crashreporter.log", "dumps", "packageddumps", "packagetemp"]
    assert not list(day.app.glob("*/*")), "something is left behind"
    assert sorted(line.split("\t")[1].split(" in folder ")[0] for line in day.errors) == [
        " Failed to upload package"] * 2 + [" Upload stopped at: Store refused the object: 503 SlowDown"] * 2
