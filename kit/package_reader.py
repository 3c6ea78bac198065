#!/usr/bin/python3
"""Reads submission.pkg (layout in docs/formats.md): checks every length and digest and unpacks every entry. Written from
the format alone, so that it can judge what the agent writes.

  package_reader.py FILE [FOLDER]   prints what is in the package, or says what is wrong with it; unpacks into FOLDER
"""
import hashlib
import json
import re
import sys
import zlib
from dataclasses import dataclass
from pathlib import Path

LENGTH, DIGEST = 8, 32


class PackageError(Exception):
    pass


@dataclass
class Entry:
    name: str        # as the header has it
    stored: bytes    # the gzip stream
    original: bytes  # what the game wrote, as far as it was not truncated


@dataclass
class Package:
    header: dict
    header_bytes: bytes
    entries: list

    def entry(self, name):
        return next(entry for entry in self.entries if entry.name == name)


class Cursor:
    """Reads one field after the other; each must be complete."""

    def __init__(self, data):
        self._data, self.position = data, 0

    def __bool__(self):
        return self.position < len(self._data)

    def take(self, count, what):
        end = self.position + count
        if end > len(self._data):
            raise PackageError(f"{what} at byte {self.position} needs {count} bytes, {len(self._data)} are there")
        field, self.position = self._data[self.position:end], end
        return field

    def take_length(self, what):
        field = self.take(LENGTH, what)
        if not re.fullmatch(rb"[0-9A-F]{8}", field):
            raise PackageError(f"{what} is {field!r}, not eight upper-case hexadecimal digits")
        return int(field, 16)

    def take_digest(self, what):
        field = self.take(DIGEST, what)
        if not re.fullmatch(rb"[0-9a-f]{32}", field):
            raise PackageError(f"{what} is {field!r}, not 32 lower-case hexadecimal digits")
        return field.decode()


def check_digest(data, digest, what):
    actual = hashlib.md5(data).hexdigest()
    if actual != digest:
        raise PackageError(f"{what}: digest {digest} is recorded, {actual} is the bytes'")


def gunzip(data, what):
    """The content of one gzip stream that spans all of data; zlib checks its length and CRC."""
    stream = zlib.decompressobj(wbits=31)
    try:
        original = stream.decompress(data)
    except zlib.error as error:
        raise PackageError(f"{what}: {error}") from error
    if not stream.eof or stream.unused_data:
        raise PackageError(f"{what}: the gzip stream does not end with the data")
    return original


def listed_attachments(header):
    """(file, MD5) of each entry in package order: log, dump, attachments. An empty name has no entry."""
    catalog = header["Catalog"]
    records = [catalog.get("Log"), catalog.get("Dump"), *catalog["Attachments"]]
    return [(record["File"], record["MD5"]) for record in records if record and record["File"]]


def read_entry(cursor, name, recorded_digest):
    length = cursor.take_length(f"length of {name}")
    digest = cursor.take_digest(f"digest of {name}")
    data = cursor.take(length, name)
    check_digest(data, digest, name)
    if recorded_digest != digest:
        raise PackageError(f"{name}: the header records {recorded_digest}, the entry {digest}")
    return Entry(name, data, gunzip(data, name))


def read_package(data):
    prefix = Cursor(data)
    body_length = prefix.take_length("body length")
    body_digest = prefix.take_digest("body digest")
    header_length = prefix.take_length("header length")
    body = prefix.take(body_length, "body")
    if prefix:
        raise PackageError(f"{len(data) - prefix.position} bytes follow the body")
    check_digest(body, body_digest, "body")

    cursor = Cursor(body)
    header_bytes = cursor.take(header_length, "header")
    try:
        header = json.loads(header_bytes.decode("utf-8"))
    except ValueError as error:
        raise PackageError(f"header: {error}") from error
    entries = [read_entry(cursor, name, digest) for name, digest in listed_attachments(header)]
    if cursor:
        raise PackageError(f"{len(body) - cursor.position} bytes follow the last entry")
    return Package(header, header_bytes, entries)


def unpack(package, folder):
    """Writes the header and the original files below folder; a name that leads out of it is an error."""
    root = Path(folder).resolve()
    files = [("header.json", package.header_bytes)] + [(entry.name, entry.original) for entry in package.entries]
    for name, content in files:
        path = (root / name.replace("\\", "/")).resolve()
        if not path.is_relative_to(root):
            raise PackageError(f"{name} leads out of the folder")
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def print_table(package):
    header = package.header
    print(f"{header['Application']} on {header['Host']}, {header['Time']}: {header['Exception']['Message']}")
    print(f"instance {header.get('InstanceKey')!r}, source {header.get('Source')}, changelist {header['Changelist']}, "
          f"{len(header['Callstack'])} frames, {len(header['ModuleInfo'])} modules")
    print(f"\n{'file':<28} {'original':>12} {'packed':>12}  MD5 of the packed bytes")
    for entry in package.entries:
        digest = hashlib.md5(entry.stored).hexdigest()
        print(f"{entry.name:<28} {len(entry.original):>12,} {len(entry.stored):>12,}  {digest}")


def main(arguments):
    if len(arguments) not in (1, 2):
        print(__doc__, file=sys.stderr)
        return 2
    try:
        package = read_package(Path(arguments[0]).read_bytes())
        print_table(package)
        if len(arguments) == 2:
            unpack(package, arguments[1])
    except (OSError, PackageError) as error:
        print(f"{arguments[0]}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
