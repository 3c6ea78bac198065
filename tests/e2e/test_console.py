"""The console of -console: it shows the log, and whoever sits at it can end the agent."""
import os
import signal
from contextlib import contextmanager
from pathlib import Path

import pytest

import wine
from submissions import write_small

TITLE = "MorvaneCrashReporter"


def wait_for_console(display):
    """The console, once keys go to it."""
    return wine.wait_until(lambda: next((window for window in display.windows(TITLE) if window.foreground), None),
                           20, "a console in front")


# Ctrl+C is the system's own way to end a console program; here it must be an orderly end.
@pytest.mark.parametrize("key", ["q", "shift+q", "ctrl+c"])
def test_it_shows_the_log_and_few_keys_end_the_agent(site, display, key):
    def text_in_line(line):
        return len(display.colours(window.x + 8, window.y + 24 + 16 * line, 200, 16)) > 1

    site.configuration["Application"]["Processes"] = {"Shutdowner": ["Shutdowner"], "ProcessMonitor": ["ProcessMonitor"]}
    site.configuration["ProcessMonitor"]["ShutdownDelay"] = 600_000  # is under way, and ends too
    with site.start("-CONSOLE", variables=display.variables()) as agent:
        agent.wait_for(" All monitored processes have closed")
        window = wait_for_console(display)
        wine.wait_until(lambda: text_in_line(5), 10, "the log in the console")
        assert text_in_line(0) and not text_in_line(15)
        display.press("x", "Return", "w")
        with pytest.raises(AssertionError, match="still running"):
            agent.wait(1)
        display.press(key)
        assert agent.wait() == 0
        assert " exiting application...\r\n" in agent.text


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


def test_a_stopped_console_holds_nobody(site, store, bucket, display):
    with site.start_with_game("-console", variables=display.variables()) as agent:
        wait_for_console(display)
        with stopped_console(display):
            for number in range(5):
                write_small(site.dumps, f"dump-{number}")
            wine.wait_until(lambda: len(store.keys(bucket)) == 5, 40, "every submission sent")
            agent.game.kill()
            wine.wait_until(lambda: not agent.agent.running, 15, "the agent's end")
        assert agent.quit() == 0
