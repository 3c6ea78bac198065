"""The console of -console: it shows the log, and whoever sits at it can end the agent."""
import os
import signal
import subprocess
from contextlib import contextmanager
from pathlib import Path

import pytest

import wine
from display import Window
from submissions import write_small

TITLE = "MorvaneCrashReporter"


@pytest.fixture
def start(site, display):
    """Starts an agent on the display; it ends only when it is told to."""
    site.configuration = {
        "Application": {"Processes": {"Shutdowner": ["Shutdowner"]}, "Components": [], "ApplicationFolder": ""}}

    def start_and_wait(argument):
        agent = site.start(argument, variables=display.variables())
        agent.wait_for(" running application processes...")
        return agent
    return start_and_wait


@pytest.fixture
def console(display):
    """The console, once keys go to it."""
    def wait_for_console():
        def in_front():
            return next((window for window in display.windows(TITLE) if window.foreground), None)
        return wine.wait_until(in_front, 20, "a console in front")
    return wait_for_console


def assert_runs_on(agent):
    with pytest.raises(AssertionError, match="still running"):
        agent.wait(1)


def assert_ended_in_order(agent):
    assert agent.wait() == 0
    assert " exiting application...\r\n" in agent.text


def shows_text(display, window, line):
    """Whether the line of the console, from 0, has more colours than its background."""
    area = Window(x=window.x + 8, y=window.y + 24 + 16 * line, width=200, height=16)
    picture = display.picture(f"console-line-{line}", area)
    return int(subprocess.run(["identify", "-format", "%k", picture], check=True, capture_output=True).stdout) > 1


# Ctrl+C is the system's own way to end a console program; here it must be an orderly end.
@pytest.mark.parametrize("key", ["q", "shift+q", "ctrl+c"])
def test_few_keys_end_the_agent(start, console, display, key):
    with start("-CONSOLE") as agent:
        console()
        display.press("x", "Return", "w")
        assert_runs_on(agent)
        display.press(key)
        assert_ended_in_order(agent)


def test_it_shows_the_log(start, console, display):
    with start("-console") as agent:
        window = console()
        wine.wait_until(lambda: shows_text(display, window, 0), 10, "text in the first line")
        assert shows_text(display, window, 5)
        assert not shows_text(display, window, 15)
        display.press("q")
        assert_ended_in_order(agent)


@contextmanager
def stopped_console(display):
    """No console window of the display takes text, as while somebody selects some in it."""
    prefix = f"WINEPREFIX={display.variables()['WINEPREFIX']}".encode()
    hosts = [int(process.name) for process in Path("/proc").glob("[0-9]*")
             if b"conhost.exe" in (process / "cmdline").read_bytes() and prefix in (process / "environ").read_bytes()]
    assert hosts
    for host in hosts:
        os.kill(host, signal.SIGSTOP)
    try:
        yield
    finally:
        for host in hosts:
            os.kill(host, signal.SIGCONT)


def test_a_stopped_console_holds_nobody(site, store, bucket, display, console):
    with site.start_with_game("-console", variables=display.variables()) as agent:
        console()
        with stopped_console(display):
            for number in range(5):
                write_small(site.dumps, f"dump-{number}")
            wine.wait_until(lambda: len(store.keys(bucket)) == 5, 40, "every submission sent")
            assert agent.quit(15) == 0
