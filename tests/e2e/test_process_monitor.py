"""The agent ends after its games, and not while one of them runs."""
import shutil
import time

import pytest

from agent import GAME
from wine import Program

CLOSED = " All monitored processes have closed, starting shutdown delay timer..."
REAPPEARED = " A monitored processes has reappeared, resuming normal monitoring..."
REQUESTING = " ProcessMonitor requesting shutting down..."
DELAY = 1.5


@pytest.fixture
def game(site):
    """Starts games under names of their own; all end with the test."""
    started = []

    def start(name):
        program = site.folder / name
        if not program.exists():
            shutil.copy(GAME, program)
        running = Program(program, "--stay-alive", "900000", "--crash", "none", "--quiet")
        started.append(running)
        return running

    yield start
    for running in started:
        running.kill()


@pytest.fixture
def watching(site):
    """Starts an agent that watches these names."""
    def start(names, *arguments):
        site.configuration["ProcessMonitor"] = {"TimeBetweenChecks": 50, "ShutdownDelay": int(DELAY * 1000),
                                                "WatchedApplications": names}
        return site.start(*arguments)
    return start


def said(agent):
    return [line.split("\t")[1] for line in agent.stdout.decode().splitlines()
            if line.endswith((CLOSED, REAPPEARED, REQUESTING))]


@pytest.mark.parametrize("program, names, arguments", [
    ("Mein Spiel für 太郎.exe", ["no such.exe", "SPIEL FÜR 太郎.exe"], []),  # an ending, in another case
    ("ByArgument.exe", ["Other.exe"], ["-PROCESS=ByArgument.exe", "-process=byargument.exe"]),
], ids=["configured", "argument"])
def test_the_agent_ends_a_delay_after_the_game(game, watching, program, names, arguments):
    running = game(program)
    with watching(names, *arguments) as agent:
        agent.wait_for(" is watching folder ")
        running.kill()
        ended = time.monotonic()
        assert agent.wait() == 0
        assert time.monotonic() - ended >= DELAY
    assert said(agent) == [CLOSED, REQUESTING]
