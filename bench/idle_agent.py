#!/usr/bin/python3
"""CPU time of an idle agent with every process and packages waiting that no store takes.

    bench/idle_agent.py [--packages 100] [--seconds 60] [--defaults] [--quick]

The goal is 0.3 CPU seconds a minute, with docs/recommended-configuration.json and, by --defaults, with every pause at
the program's own default. Under Wine: only the agent's own process counts, not the server that stands for the kernel.
"""
import argparse
import json
import os
import shutil
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "kit"))

import wine  # noqa: E402
from agent import EXECUTABLE, GAME  # noqa: E402

GOAL = 0.3  # CPU seconds a minute


def configuration(defaults):
    content = json.loads((ROOT / "docs" / "recommended-configuration.json").read_text(encoding="utf-8"))
    content["Uploader"].update({"EndpointOverride": "http://127.0.0.1:1", "AskPermission": False})  # nobody listens
    content["ProcessMonitor"]["WatchedApplications"] = ["SampleGame.exe"]
    for section in content.values():
        if defaults and isinstance(section, dict):
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
    parser.add_argument("--quick", action="store_true", help="five seconds: shows that it works, and little more")
    options = parser.parse_args()
    seconds = 5 if options.quick else options.seconds
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
        time.sleep(seconds)
        a_minute = (cpu_seconds(agent.pid) - before) * 60 / seconds
    finally:
        agent.kill()
        game.kill()
        wine.stop_prefix()
    pauses = "default pauses" if options.defaults else "recommended pauses"
    verdict = "ok" if a_minute <= GOAL else "MISSED"
    print(f"ROW\tidle with {options.packages} packages, {pauses} (CPU)\t{a_minute:.3f} s/min\t{GOAL:.3f} s/min"
          f"\t{a_minute / GOAL:.3f}\t<= 1\t{verdict}")


if __name__ == "__main__":
    main()
