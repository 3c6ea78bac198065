#!/usr/bin/python3
"""Shows on the terminal what happens to a crash, with a key and without. ./demo.sh sets up and builds first."""
import contextlib
import hashlib
import shutil
import sys

import wine
from agent import GAME, Site
from package_reader import print_table, read_package, unpack
from signer import Signer
from store.client import Store

FOLDER = wine.SCRATCH.parent / "demo"


def say(text):
    print(f"\n\033[1m{text}\033[0m" if sys.stdout.isatty() else f"\n{text}", flush=True)


def show_files(folder):
    for path in sorted(folder.rglob("*")):
        if path.is_file():
            mark = "read-only" if not path.stat().st_mode & 0o222 else ""
            print(f"    {str(path.relative_to(FOLDER)):<60} {path.stat().st_size:>9,}  {mark}")


def show_output(name, program):
    for line in program.text.splitlines():
        print(f"    {name} | {line}")


def crash_and_report(site):
    """The game crashes beside the agent; both end by themselves."""
    say("The game starts, and with it the agent; two seconds later the game crashes.")
    with wine.Program(GAME, "--dumps", wine.windows_path(site.dumps), "--name", "Crash of 太郎",
                      "--attachments", "2", "--attachment-size", "200000", "--stay-alive", "2000") as game:
        with site.start() as agent:
            code = game.wait()
            show_output("game ", game)
            print(f"    the game has ended with code {code}")
            agent_code = agent.wait()
            show_output("agent", agent)
            print(f"    the agent has ended by itself with code {agent_code}")
    return code != 0 and agent_code == 0


def show_road(store, name):
    """Whether one crash came from a new installation into a new bucket."""
    bucket = store.make_bucket(name)
    site = Site(FOLDER / name, store, bucket)
    with contextlib.ExitStack() as stack:
        if name == "keyless":
            signer = stack.enter_context(Signer(store.endpoint, bucket))
            site.use_signer(signer.url)
            say(f"Once more without a key on the player's disk: a signer at {signer.url} gives each upload its address.")
        good = crash_and_report(site)
    good = open_report(store, bucket) and good
    left = [path for folder in (site.dumps, site.packaged) for path in folder.iterdir()]
    say(f"Left in the dumps and the packaged folder: {len(left)} folders.")
    return good and not left


def open_report(store, bucket):
    """Opens and checks everything in the bucket."""
    keys = store.keys(bucket)
    for key in keys:
        data = store.get(bucket, key)
        say(f"In the bucket: {key}, {len(data):,} bytes. Its key is the MD5 of its bytes: "
            f"{'yes' if hashlib.md5(data).hexdigest() == key else 'NO'}.")
        package = read_package(data)
        print("Every length and digest in it holds, and every entry unpacks:\n")
        print_table(package)
        opened = FOLDER / "opened" / bucket
        unpack(package, opened)
        say(f"Unpacked again into {opened.relative_to(wine.ROOT)}:")
        show_files(opened)
    return len(keys) == 1


def main():
    shutil.rmtree(FOLDER, ignore_errors=True)
    wine.make_prefix()
    try:
        with Store(FOLDER / "store") as store:
            say(f"A local S3 store serves at {store.endpoint}.")
            good = all([show_road(store, "crashes"), show_road(store, "keyless")])
    finally:
        wine.stop_prefix()
    say("Both crash reports arrived whole." if good else "SOMETHING WENT WRONG, see above.")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
