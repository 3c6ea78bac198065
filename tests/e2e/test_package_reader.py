"""The judge is judged first: the reader must refuse every damaged package."""
import gzip
import hashlib
import json

import pytest

from package_reader import PackageError, read_package, unpack
from submissions import catalog, header


def digest(data):
    return hashlib.md5(data).hexdigest().encode()


def build_package(original=b"some log text", name="game.log"):
    stored = gzip.compress(original)
    names = catalog(log=name)
    names["Log"]["MD5"] = digest(stored).decode()
    head = json.dumps(header(Catalog=names)).encode()
    body = head + b"%08X" % len(stored) + digest(stored) + stored
    return b"%08X" % len(body) + digest(body) + b"%08X" % len(head) + body


def test_refuses_every_other_length():
    data = build_package()
    for length in [*range(len(data)), len(data) + 1]:
        with pytest.raises(PackageError):
            read_package((data + b"x")[:length])


def test_refuses_every_changed_byte():
    data = build_package()
    for position in range(len(data)):
        with pytest.raises(PackageError):
            read_package(data[:position] + bytes([data[position] ^ 1]) + data[position + 1:])


def test_unpacks_only_below_the_folder(scratch):
    unpack(read_package(build_package(name="logs\\game.log")), scratch / "good")
    assert (scratch / "good" / "logs" / "game.log").read_bytes() == b"some log text"
    with pytest.raises(PackageError):
        unpack(read_package(build_package(name="../game.log")), scratch / "bad")
    assert not (scratch / "game.log").exists()
