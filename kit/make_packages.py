#!/usr/bin/python3
"""Makes packages to try a store's reader with: one real package as the pattern, and of each copy another machine, time,
build and place in the code. Some places are met often and most seldom, as with real crashes.

  make_packages.py PACKAGE COUNT FOLDER   writes COUNT files into FOLDER, each under its MD5, as the store has them
"""
import hashlib
import json
import random
import sys
from datetime import datetime, timedelta, timezone
from pathlib import Path

from package_reader import read_package

PLACES = 200
START = datetime(2024, 5, 1, tzinfo=timezone.utc)


def varied(header, number, chance):
    place = min(int(chance.paretovariate(0.6)), PLACES)
    module = header["ModuleInfo"][0]
    return {**header, "Host": f"PC-{chance.randrange(10**6):06}", "InstanceKey": f"crash-{number:08}",
            "Time": (START + timedelta(seconds=chance.randrange(30 * 86400))).strftime("%Y-%m-%dT%H:%M:%SZ"),
            "Callstack": [module["baseAddr"] + 0x1000 + 64 * place, *header["Callstack"][1:]],
            "Changelist": 48000 + chance.randrange(5)}


def compose(header, entries):
    """The layout is in docs/formats.md."""
    text = json.dumps(header, ensure_ascii=False, separators=(",", ":")).encode()
    body = text + entries
    return b"%08X%s%08X%s" % (len(body), hashlib.md5(body).hexdigest().encode(), len(text), body)


def main(pattern, count, folder):
    data = Path(pattern).read_bytes()
    package = read_package(data)
    entries = data[48 + len(package.header_bytes):]
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    chance = random.Random(1)
    for number in range(int(count)):
        made = compose(varied(package.header, number, chance), entries)
        (folder / hashlib.md5(made).hexdigest()).write_bytes(made)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
