"""A whole day of a game in fast motion, with every process of the agent as docs/ recommends them."""
import json
import shutil
import time

import pytest

from agent import EXECUTABLE, GAME
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

    def __init__(self, folder, display, store, bucket, delay=1500):
        self.folder, self._display = folder, display
        self.app = folder / "My Game"
        self.dumps = self.app / "dumps"
        self.errors = []  # of all agents that ended
        shutil.copy(GAME, folder / "MyGame.exe")
        self._configuration = folder / "agent.json"
        self._configuration.write_text(json.dumps(in_fast_motion(store, bucket, delay)), encoding="utf-8")

    @property
    def packaged(self):
        """Quota and packager write its name each in their own way."""
        (folder,) = [path for path in self.app.iterdir() if path.name.lower() == "packageddumps"]
        return folder

    def play(self, *arguments):
        """The game, until it is killed."""
        return Program(self.folder / "MyGame.exe", "--quiet", "--dumps", windows_path(self.dumps),
                       *(arguments or ("--stay-alive", "900000", "--crash", "none")), variables=self._display.variables())

    def crash(self, name, *arguments):
        self.play("--name", name, *arguments).wait()

    def start_agent(self, *arguments):
        return Program(EXECUTABLE, f"-config={windows_path(self._configuration)}",
                       f"-appFolder={windows_path(self.app)}", *arguments, variables=self._display.variables())

    def answer(self, key):
        self._display.wait_for_window(PROMPT)
        time.sleep(SETTLED)
        self._display.press(key)
        self._display.wait_for_no_window(PROMPT)

    def wait_sent(self, agent, name):
        agent.wait_for(f'{name}" in ')
        wait_until(lambda: not (self.packaged / name).exists(), 10, "the sent package deleted")

    def end(self, agent):
        assert agent.wait() == 0
        self.errors += agent.stderr.decode().splitlines()


def in_fast_motion(store, bucket, delay):
    """The recommended configuration, with the test's store and a day's times in seconds."""
    configuration = json.loads(RECOMMENDED.read_text(encoding="utf-8"))
    for section in configuration.values():
        if "TimeBetweenChecks" in section:
            section["TimeBetweenChecks"] //= 20
    configuration["ProcessMonitor"].update({"TimeBetweenChecks": 100, "ShutdownDelay": delay})
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
def test_a_day(scratch, display, store, bucket):
    day = Day(scratch, display, store, bucket)
    morning(day)
    afternoon(day, store)
    evening(day, store)
    night(day)
    sent = [read_package(store.get(bucket, key)).header["InstanceKey"] for key in store.keys(bucket)]
    assert sorted(sent) == ["crash-1", "crash-2", "crash-3", "crash-4"]
    assert sorted(path.name.lower() for path in day.app.iterdir()) == ["dumps", "packageddumps", "packagetemp"]
    assert not [path for folder in day.app.iterdir() for path in folder.iterdir()], "something is left behind"
    assert len(day.errors) == 2 and all(" Failed to upload package in folder" in line for line in day.errors)


@pytest.mark.limit(120)
def test_a_studios_evening(scratch, display, store, bucket):
    """Copies upon copies with the recommended delay: a living agent takes every crash, and one prompt is enough."""
    day = Day(scratch, display, store, bucket, delay=600_000)
    day.crash("before the agents")
    game, copies = day.play(), [day.start_agent() for _ in range(3)]
    wait_until(lambda: sum(copy.running for copy in copies) == 1, 20, "one of three copies left")
    (first,) = [copy for copy in copies if copy.running]
    day.answer(YES)
    day.wait_sent(first, "before the agents")
    first.kill()

    agent = day.start_agent()
    day.crash("after a kill")
    day.answer(YES)
    day.wait_sent(agent, "after a kill")
    game.kill()
    agent.wait_for(" All monitored processes have closed")
    game, turned_away = day.play(), day.start_agent()
    agent.wait_for(" A monitored processes has reappeared", 5)
    assert turned_away.wait(10) == 0
    day.crash("in the delay")
    day.wait_sent(agent, "in the delay")
    game.kill()
    agent.kill()

    with day.start_agent("-console") as agent:
        agent.wait_for(" All monitored processes have closed")
        wait_until(lambda: any(window.foreground for window in display.windows("MorvaneCrashReporter")), 20, "a console")
        display.press("q")
        assert agent.wait(5) == 0
    sent = [read_package(store.get(bucket, key)).header["InstanceKey"] for key in store.keys(bucket)]
    assert sorted(sent) == ["after a kill", "before the agents", "in the delay"]
    assert not display.windows()
