#!/usr/bin/python3
"""CPU time of an idle agent with every process and packages waiting that no store takes.

    bench/idle_agent.py [--packages 100] [--seconds 60] [--defaults]

The goal is 0.3 CPU seconds a minute with docs/recommended-configuration.json; --defaults leaves every pause at the
program's own default. Under Wine: only the agent's own process counts, not the server that stands for the kernel.
"""
import argparse
import json
import os
import shutil
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests" / "e2e"))

import wine  # noqa: E402
from agent import EXECUTABLE, GAME  # noqa: E402

GOAL = 0.3  # CPU seconds a minute


def configuration(defaults):
    content = json.loads((ROOT / "docs" / "recommended-configuration.json").read_text(encoding="utf-8"))
    content["Uploader"].update({"EndpointOverride": "http://127.0.0.1:1", "AskPermission": False})  # nobody listens
    content["ProcessMonitor"]["WatchedApplications"] = ["SampleGame.exe"]
    for section in content.values():
        if defaults:
            section.pop("TimeBetweenChecks", None)
    return content


def write_packages(folder, count):
    for number in range(count):
        package = folder / f"2024-05-06_07-08-09_crash-{number:05}" / "submission.pkg"
        package.parent.mkdir(parents=True)
        package.write_bytes(os.urandom(1000))
        package.chmod(0o444)


def cpu_seconds(pid):
    fields = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--packages", type=int, default=100)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--defaults", action="store_true")
    options = parser.parse_args()
    folder = wine.SCRATCH / "idle"
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "app").mkdir(parents=True)
    write_packages(folder / "app" / "PackagedDumps", options.packages)
    (folder / "agent.json").write_text(json.dumps(configuration(options.defaults)), encoding="utf-8")

    wine.make_prefix()
    game = wine.Program(GAME, "--stay-alive", "9000000", "--crash", "none", "--quiet")
    agent = wine.Program(EXECUTABLE, f"-config={wine.windows_path(folder / 'agent.json')}",
                         f"-appFolder={wine.windows_path(folder / 'app')}")
    try:
        wine.wait_until(lambda: agent.stderr.count(b"Failed to upload package") == options.packages, 120,
                        "one attempt for each package")
        time.sleep(3)
        before = cpu_seconds(agent.pid)
        time.sleep(options.seconds)
        a_minute = (cpu_seconds(agent.pid) - before) * 60 / options.seconds
    finally:
        agent.kill()
        game.kill()
        wine.stop_prefix()
    print(f"{options.packages} packages waiting: {a_minute:.2f} CPU seconds a minute, {a_minute / GOAL:.2f} of the goal")


if __name__ == "__main__":
    main()
