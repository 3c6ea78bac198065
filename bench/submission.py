"""A crash submission as a large game leaves it, from fixed seeds: the same on every machine and in every run."""
import json
import random
import struct

from submissions import catalog, header

PAGE = 4096


def records(rng):
    """Objects of 64 bytes: a table pointer of few kinds, two pointers into one heap, small numbers, a float."""
    draw = rng.getrandbits
    return b"".join(struct.pack("<8Q", 0x7FF6A0120000 + draw(4) * 0x58, 0x1E4C0000000 + draw(20) * 16,
                                0x1E4C0000000 + draw(12) * 16, draw(7), 0x3F800000 + draw(16) * 64, 0, draw(2), 0)
                    for _ in range(PAGE // 64))


def code(rng):
    """Short instructions of few kinds, every fourth with an operand."""
    kinds = (0x24448B48, 0x8948C88B, 0x0FC08548, 0x20C48348, 0xE8CF8B48, 0xC3C0FF41, 0x4C8D4C08, 0x90CCCCCC)
    words = rng.choices(kinds, k=PAGE // 4)
    words[::4] = (rng.getrandbits(16) for _ in words[::4])
    return struct.pack(f"<{len(words)}I", *words)


def write_dump(path, size):
    rng = random.Random(1)
    with open(path, "wb") as file:
        for _ in range(size // PAGE):
            kind = rng.random()
            file.write(records(rng) if kind < 0.5 else code(rng) if kind < 0.8 else bytes(PAGE))


def write_log(path, size):
    rng = random.Random(2)
    events = ("Streaming: loaded tile", "Render: frame with draw calls", "Net: packet of peer",
              "Audio: voice started on bus", "Physics: bodies and contacts")
    written = milliseconds = 0
    with open(path, "wb") as file:
        while written < size:
            milliseconds += rng.getrandbits(4)
            seconds = milliseconds // 1000
            written += file.write(b"[2024-05-01 %02d:%02d:%02d.%03d] %s %d, %d in %d us\n" % (
                seconds // 3600 % 24, seconds // 60 % 60, seconds % 60, milliseconds % 1000,
                rng.choice(events).encode(), rng.getrandbits(12), rng.getrandbits(6), rng.getrandbits(17)))


def write(folder, size):
    """Five eighths minidump, a quarter log, the rest a picture that is compressed already; and their header."""
    folder.mkdir(parents=True)
    write_dump(folder / "crash_Minidump.dmp", size // 8 * 5)
    write_log(folder / "game.log", size // 4)
    (folder / "screenshot.png").write_bytes(random.Random(3).randbytes(size // 8))
    files = sorted(folder.iterdir())
    dump, log, picture = (path.name for path in files)
    content = header(Catalog=catalog(dump=dump, log=log, attachments=[picture]))
    (folder / "header.json").write_text(json.dumps(content), encoding="utf-8")
    return files
