"""Broken and hostile submissions: each failure has its text, the next one goes on, nothing outside is touched."""
import gzip
import json
import os

from submissions import catalog, header, write_folder, write_small
from wine import wait_until, windows_path

PARSE = "Failed to parse json header data in dump folder!"
BRACKETS = 500_000


def text_of(**changes):
    return json.dumps(header(**changes)).encode()


COMPLETE = len(text_of())

# The file, the result's text, and where and why if the file is there to be read.
BAD_HEADERS = {
    "empty": (b"", "Invalid header of size 0 in dump folder!", None),
    "cut": (text_of()[:-1], PARSE, f"line 1, column {COMPLETE}: Missing a comma or '}}' after an object member."),
    "objects": (b'{"Catalog":' * BRACKETS, PARSE, f"line 1, column {11 * BRACKETS + 1}: Invalid value."),
    "unterminated": (b'{"Host":"' + b"x" * 30_000_000, PARSE, "line 1, column 30000010: Missing a closing quotation mark in string."),
    "encoding": (text_of(Host="?").replace(b"?", b"\xc3\x28"), PARSE, "line 1, column 11: Invalid encoding in string."),
    "wide": (text_of().decode().encode("utf-16"), PARSE, "line 1, column 1: The file is UTF-16; save it as UTF-8"),
    "no object": (b"[]", PARSE, "line 1, column 1: expected an object"),
    "no source of that name": (text_of(Source="MARTIAN"), PARSE,
                               f'line 1, column {COMPLETE + 12}: "Source": expected one of "UNKNOWN" "INTERNAL" "EXTERNAL"'),
    **{f"no {key}": (json.dumps({name: value for name, value in header().items() if name != key}).encode(), PARSE,
                     f'line 1, column 1: "{key}" is missing')
       for key in header()},
}


def test_bad_headers_give_their_text_and_the_next_goes_on(site):
    site.configuration["Packager"]["KeepFailedSubmissions"] = True  # does not keep what is wrong in itself
    for name, (content, *_) in BAD_HEADERS.items():
        write_folder(site.dumps / name, {"game.log": b"log"}, content)
    write_small(site.dumps, "good")
    errors = site.run_until_sent(45).stderr.decode()
    for name, (_, error, why) in BAD_HEADERS.items():
        folder = windows_path(site.dumps / name)
        assert f' Failed to package dump folder "{folder}", error: "{error}"\r\n' in errors
        assert why is None or f' Header of "{folder}" is wrong at {why}\r\n' in errors, (name, why)
    assert errors.count("Failed to package") == len(BAD_HEADERS)
    assert len(site.sent_packages()) == 1
    assert site.left_on_disk() == []


def test_nothing_outside_is_read_or_deleted(site):
    """By names that lead out of the submission, and by links that anybody may put into the dumps folder."""
    outside = site.folder / "outside"
    write_folder(outside, {"secret.txt": b"TOP SECRET"}, header(Catalog=catalog(log="secret.txt")))
    secrets = [site.dumps / "secret.txt", site.folder / "secret.txt", outside / "secret.txt"]
    for path in secrets:
        path.write_bytes(b"TOP SECRET")
    inside = windows_path(secrets[1])
    names = ["..\\secret.txt", "logs/../../secret.txt", inside, inside[2:], "Z:secret.txt", "\\\\?\\" + inside,
             "note.txt:stream", "nul.txt", "linked\\secret.txt", "linked/secret.txt", "link.txt", "packed.txt"]
    folder = site.dumps / "hostile"
    write_folder(folder, {"note.txt": b"a note", "logs/太郎.txt": b"a log below", "game.log": b"log"},
                 header(Catalog=catalog(dump=names[0], log="game.log",
                                        attachments=["note.txt", *names, "logs/太郎.txt", ""])), complete=False)
    os.symlink(outside, folder / "linked")
    os.symlink(secrets[1], folder / "link.txt")
    os.symlink(secrets[1], folder / "packed.txt.gz")
    (folder / "header.json").chmod(0o444)
    os.symlink(outside, site.dumps / "linked")
    (site.dumps / "linked header").mkdir()
    os.symlink(outside / "header.json", site.dumps / "linked header" / "header.json")

    errors = site.run().stderr.decode()
    for name in names:
        assert f" Failed to copy or compress attachment {name}. Error=Failed to find attachment on disk\r\n" in errors
    assert errors.count('error: "Failed to open json header data in dump folder!"') == 2

    (package,) = site.sent_packages()
    assert {entry.name: entry.original for entry in package.entries} == {
        "game.log": b"log", "note.txt": b"a note", "logs/太郎.txt": b"a log below"}
    assert package.header["Catalog"]["Dump"] == {"File": "", "MD5": ""}
    # Wine would delete what a link points to, so there the agent refuses, and the rest of the folder stays.
    assert not (folder / "header.json").exists() and not (folder / "game.log").exists()
    write_small(site.dumps, "beside")
    site.configuration["Application"]["Processes"] = {"DiskQuota": ["Quota"], "ProcessMonitor": ["ProcessMonitor"]}
    site.configuration["Quota"] = {"DumpsFolder": windows_path(site.dumps), "DumpsQuota": 0, "InvalidGraceTime": 0}
    with site.start_with_game() as beside:
        wait_until(lambda: not (site.dumps / "beside").exists(), 20, "the folder beside the links gone")
        assert beside.quit() == 0
    for link in ("hostile", "linked", "linked header"):
        assert windows_path(site.dumps / link).encode() in beside.agent.stderr, link
    assert all(path.read_bytes() == b"TOP SECRET" for path in secrets) and (outside / "header.json").exists()


def test_files_as_games_name_them(site):
    """Already compressed files, doubly compressed names, empty and missing ones."""
    files = {"plain.txt": b"plain", "ready.txt.gz": gzip.compress(b"ready"), "trace.gz": b"raw trace", "empty.txt": b"",
             "太郎.dmp": b"dump"}
    names = ["plain.txt", "ready.txt", "trace.gz", "empty.txt", "missing.txt"]
    write_folder(site.dumps / "names", files, header(Catalog=catalog(dump="太郎.dmp", attachments=names)))
    write_folder(site.dumps / "tar", {"data.tgz": b"tar"}, header(Catalog=catalog(attachments=["data.tgz"])))
    agent = site.run()
    # It is taken for compressed and keeps its name, under which the package does not look for it.
    assert ' Failed to generate package file for submission "tar", error: "Failed to open input file"\r\n' in agent.text
    (package,) = site.sent_packages()
    assert {entry.name: entry.original for entry in package.entries} == {
        "太郎.dmp": b"dump", "plain.txt": b"plain", "ready.txt": b"ready", "trace.gz": b"raw trace"}
    assert package.header["InstanceKey"] == "太郎"
    for name, error in (("empty.txt", "Failed to read zero length input file!"),
                        ("missing.txt", "Failed to find attachment on disk")):
        assert f" Failed to copy or compress attachment {name}. Error={error}\r\n" in agent.text


def test_the_sentinel_alone_decides(site):
    """A writable header is not taken; made read-only, it is taken on the next pass, once. Read-only folders are ignored."""
    site.configuration["DumpWatcher"]["IgnoreReadOnlyFolders"] = True
    write_small(site.dumps, "ignored").chmod(0o555)
    folder = write_folder(site.dumps / "late", {"game.log": b"log"}, header(Catalog=catalog(log="game.log")),
                          complete=False)
    write_small(site.dumps, "complete")
    with site.start_with_game() as beside:
        beside.agent.wait_for('complete" in ')
        assert (folder / "game.log").exists()
        (folder / "header.json").chmod(0o444)
        beside.agent.wait_for('late" in ')
        assert beside.quit() == 0
    assert beside.agent.text.count(f"Added {windows_path(folder)} to pending") == 1
    assert len(site.sent_packages()) == 2 and [path.name for path in site.waiting_dumps()] == ["ignored"]
