"""PackageTool from its command line: the native program, and the Windows one where both must agree."""
import gzip
import hashlib
import json
import os
import re
import shutil
import subprocess
from pathlib import Path

import pytest

import submissions
from agent import Site
from package_reader import read_package
from store.client import SECRET_KEY
from wine import BIN, ROOT, Program, windows_path

TOOL = Path(os.environ.get("MORVANE_NATIVE_BIN", ROOT / "build" / "native" / "bin")).resolve() / "PackageTool"
GOOD, PROBLEMS, REFUSED, WARNINGS = 0, 1, 3, 4
BACKSLASH = "\\"


def run(*arguments, expect=GOOD, stdin=b""):
    """The outputs as text, after the tool has ended with the expected code."""
    done = subprocess.run([TOOL, *map(str, arguments)], input=stdin, capture_output=True, timeout=50)
    assert done.returncode == expect, (arguments, done)
    return done.stdout.decode(), done.stderr.decode()


def compose(entries, **changes):
    """A package by the format's page; entries: (name, stored bytes); changes: of the header."""
    records = [{"File": name, "MD5": hashlib.md5(data).hexdigest()} for name, data in entries]
    header_bytes = json.dumps(submissions.header(Catalog={"Attachments": records}, **changes), ensure_ascii=False).encode()
    body = header_bytes + b"".join(
        b"%08X%s%s" % (len(data), hashlib.md5(data).hexdigest().encode(), data) for _, data in entries)
    return b"%08X%s%08X%s" % (len(body), hashlib.md5(body).hexdigest().encode(), len(header_bytes), body)


def write(path, content):
    path.write_bytes(content)
    return path


@pytest.fixture
def submission(scratch):
    """A submission with everything that the packager treats in a way of its own."""
    files = {"game.log": b"a line of the log\n" * 3000, "c_Minidump.dmp": os.urandom(70000),
             "logs/dxdiag.txt": "Grafik: gut\n".encode(), "ready.txt.gz": gzip.compress(b"packed before"),
             "big.bin": bytes(range(256)) * 400, "secret.tmp": b"no"}
    catalog = submissions.catalog("c_Minidump.dmp", "game.log",
                                  ["logs\\dxdiag.txt", "ready.txt", "big.bin", "secret.tmp", "missing.txt", "../evil"])
    return submissions.write_folder(scratch / "submissions" / "crash-太郎", files, submissions.header(Catalog=catalog))


@pytest.fixture
def package(scratch, submission):
    out, _ = run("pack", submission, "--to", scratch / "packed")
    return Path(out.strip())


def test_pack_gives_the_agents_bytes(scratch, submission):
    """The agent, the tool on Windows and the tool here make one package of one submission."""
    site = Site(scratch / "site")
    del site.configuration["Application"]["Processes"]["UploaderS3"]
    site.configuration["Packager"] |= {
        "AttachmentLimits": [{"Extension": ".bin", "MaxSize": 5000}], "AttachmentBlacklist": [r"\.tmp$"], "Source": "INTERNAL"}
    site.configuration["ProcessMonitor"]["ShutdownDelay"] = 1500
    shutil.copytree(submission, site.dumps / submission.name)
    site.run()
    by_agent = (site.packaged / submission.name / "submission.pkg").read_bytes()

    config = site.folder / "agent.json"
    out, error = run("pack", submission, "--to", scratch / "native", "--config", config)
    assert Path(out.strip()).read_bytes() == by_agent
    assert "Failed to copy or compress attachment missing.txt. Error=Failed to find attachment on disk" in error
    with Program(BIN / "PackageTool.exe", "pack", windows_path(submission), "--to", windows_path(scratch / "windows"),
                 "--config", windows_path(config)) as windows:
        assert windows.wait() == 0, windows.text
    assert (scratch / "windows" / submission.name / "submission.pkg").read_bytes() == by_agent
    package = read_package(by_agent)
    assert package.header["Source"] == "INTERNAL" and len(package.entries) == 5  # nothing that is barred
    assert b"truncated file size from 102400 to 5000" in package.entry("big.bin").original


def test_list_and_verify(scratch, package):
    data = package.read_bytes()
    entries = read_package(data).entries
    text, _ = run("list", package)
    assert f"  MD5           {hashlib.md5(data).hexdigest()}\n" in text
    for entry in entries:
        assert re.search(rf"^  {re.escape(entry.name.replace(BACKSLASH, '/'))} +{len(entry.stored)} +{len(entry.original)}  "
                         rf"{hashlib.md5(entry.stored).hexdigest()}$", text, re.M), entry.name
    _, report = json.loads(run("--json", "list", package, "-", stdin=data)[0])["Packages"]
    assert (report["File"], report["Header"]["Changelist"], report["Problems"]) == ("-", 7, [])
    assert [(entry["Name"], entry["UnpackedSize"]) for entry in report["Entries"]] == [
        (entry.name.replace("\\", "/"), len(entry.original)) for entry in entries]

    assert run("verify", package)[0] == f"{package}: good, 6 files\n"
    changed = write(scratch / "changed.pkg", data[:-1] + bytes([data[-1] ^ 1]))
    assert "changed.pkg: offset 8: Body: the recorded digest is" in run("verify", changed, expect=PROBLEMS)[0]
    assert "--nothing: Failed to open input file" in run("verify", package, "--", "--nothing", expect=REFUSED)[1]


def test_list_reads_a_folder_of_packages(scratch):
    folder = scratch / "bucket"
    (folder / "below").mkdir(parents=True)
    module = {"file": "C:\\Games\\game.exe", "baseAddr": 0x140000000, "size": 0x2000, "pdbPath": "", "guid4": [],
              **dict.fromkeys(("guid1", "guid2", "guid3", "age"), 0)}
    stack = {"Callstack": [0x140001A2B, 0x13FFFFFFF, 0x140002000, *range(100)], "ModuleInfo": [module]}
    data = compose([("a\\b.txt", gzip.compress(b"text"))], **stack)
    for name in ("c", "below/d"):
        write(folder / name, data)
    for name, content, problem in (("a0", b"", "offset 0: A package begins with 48 bytes of lengths and digest, but 0 bytes"),
                                   ("b20", b"x" * 20, "offset 0: A package begins with 48 bytes of lengths and digest, but 20"),
                                   ("e", compose([], Changelist="7"),
                                    "offset 48: The header can't be read: line 1, column 242: \"Changelist\": expected uint32")):
        broken = write(folder / name, content)
        assert f"{broken}: {problem}" in run("list", broken, expect=PROBLEMS)[0]
    write(folder / os.fsdecode(b"\xff"), b"")  # a name without a form in UTF-8 hides none of its neighbours
    lines, errors = run("list", folder, "--ndjson", expect=PROBLEMS)
    assert [line.split(":")[1] for line in errors.splitlines()] == [
        f' Skipped an entry of folder "{folder}/" whose name has no UTF-8 form', *(f" {folder}/{name}" for name in ("a0", "b20", "e"))]
    whole = [json.loads(line) for line in lines.splitlines()]
    assert [(line["File"], line["MD5"]) for line in whole] == [
        (f"{folder}/{name}", hashlib.md5(data).hexdigest()) for name in ("below/d", "c")]
    assert whole[0]["Frames"][:3] == ["game.exe+0x1a2b", "0x13fffffff", "0x140002000"] and len(whole[0]["Frames"]) == 100
    text, _ = run("list", folder / "c")
    assert " game.exe+0x1a2b\n" in text and " and 3 more\n" in text and "  a/b.txt " in text


def test_unpack_gives_back_the_files(scratch, package, submission):
    out = scratch / "out"
    run("unpack", package, "--to", out)
    for entry in read_package(package.read_bytes()).entries:
        assert (out / entry.name.replace("\\", "/")).read_bytes() == entry.original
    assert (out / "game.log").read_bytes() == (submission / "game.log").read_bytes()
    (out / "game.log").write_bytes(b"mine")
    assert '"game.log" was not unpacked: There is already a file of that name' in run(
        "unpack", package, "--to", out, expect=REFUSED)[1]
    run("unpack", package, "--to", out, "--force", "--limit", "1K", expect=PROBLEMS)
    assert (out / "game.log").read_bytes() == b"mine"  # only a complete file replaces one
    run("unpack", package, f"--to={out}", "--force")
    assert (out / "game.log").read_bytes() != b"mine"

    run("unpack", package, package, "--to", scratch / "two", "--stored")
    assert (scratch / "two" / "submission~2" / "game.log.gz").is_file()


def test_unpack_stays_in_its_folder(scratch):
    names = ["../evil", "/tmp/evil-of-package", "C:\\evil", "NUL", "link/evil", "a.txt", "A.TXT", "a.txt/b", "d.e/c", "d.e",
             "linked", "dangling", "header.json", "\x1b[31mred"]
    out, outside = scratch / "out", scratch / "outside"
    outside.mkdir()
    out.mkdir()
    kept = write(outside / "kept", b"mine")
    for link, target in {"link": outside, "linked": kept, "dangling": outside / "new"}.items():
        (out / link).symlink_to(target)
    hostile = write(scratch / "hostile.pkg", compose([(name, gzip.compress(name.encode())) for name in names]))
    _, error = run("unpack", hostile, "--to", out, "--force", expect=REFUSED)
    assert {path.name: path.read_text() for path in out.rglob("*") if path.is_file() and "header" not in path.name} == {
        "A~2.TXT": "A.TXT", "a.txt": "a.txt", "c": "d.e/c", "linked": "linked", "dangling": "dangling"}
    assert [path.read_bytes() for path in outside.iterdir()] == [b"mine"] and not (scratch / "evil").exists()
    for name, reason in {"link/evil": "A link lies on the way", "a.txt/b": "Failed to create the folder",
                         "d.e": "There is already a folder of that name"}.items():
        assert f'"{name}" was not unpacked: {reason}' in error
    assert "\x1b" not in error


def test_unpack_stops_a_bomb(scratch):
    package = write(scratch / "bomb.pkg", compose([("small.txt", gzip.compress(b"x")),
                                                   ("bomb.bin", gzip.compress(bytes(60 << 20)))]))
    _, error = run("unpack", package, "--to", scratch / "out", "--limit", "10M", expect=PROBLEMS)
    assert '"bomb.bin": The unpacked content is over the limit' in error
    assert sorted(path.name for path in (scratch / "out").iterdir()) == ["header.json", "small.txt"]


def test_pack_keeps_what_is_there(scratch, package, submission):
    before = package.read_bytes()
    _, error = run("pack", submission, "--to", scratch / "packed", expect=REFUSED)
    assert "There is already a package" in error
    run("pack", submission, "--to", scratch / "packed", "--force")
    assert package.read_bytes() == before and not package.stat().st_mode & 0o222
    (submission / "header.json").write_text("{")
    run("pack", submission, "--to", scratch / "packed", "--force", expect=REFUSED)
    assert package.read_bytes() == before  # only a complete package replaces one
    assert [path.name for path in (scratch / "packed").iterdir()] == [submission.name]  # no work folder stays


def test_check_dump_and_the_documented_headers(scratch):
    whole, shortest = map(json.loads, re.findall(r"```json\n(.*?)```", (ROOT / "docs" / "formats.md").read_text(), re.S))
    files = {"crash-0042_Minidump.dmp": b"dump", "game.log": b"log" * 99, "logs/dxdiag.txt": b"text"}

    def check(name, expect, header=whole, files=files, complete=True, options=()):
        folder = submissions.write_folder(scratch / name, files, header, complete)
        return run("check-dump", folder, *options, expect=expect)[0].replace(f"{folder}", "F")

    assert (check("good", GOOD), check("short", GOOD, shortest, {})) == ("F: good, 3 files\n", "F: good, 0 files\n")
    assert shortest.keys() == submissions.header().keys()
    assert "is writable" in check("writable", PROBLEMS, complete=False)
    wrong = {**whole, "Catalog": submissions.catalog("../up.dmp", "game.log", ["a.tgz", "gone", "empty", "keep.tmp"])}
    config = write(scratch / "agent.json", json.dumps({"Packager": {
        "WatcherName": "W", "AttachmentLimits": [{"Extension": ".log", "MaxSize": 99}], "AttachmentBlacklist": ["tmp$"]}}).encode())
    said = check("wrong", PROBLEMS, wrong, {"game.log": b"log" * 99, "a.tgz": b"z", "empty": b"", "b/lost": b"1", "keep.tmp": b""},
                 options=("--config", config)).splitlines()
    assert [line.split('"')[1] for line in said] == ["../up.dmp", "game.log", "a.tgz", "gone", "empty", "keep.tmp", "b/lost"]
    for line, part in zip(said, ("refused", "warning: .*from 297 to 99 bytes", "loses the whole", "Failed to find", "zero length",
                                 "warning: .*blacklist", "warning: .*not in the catalog")):
        assert re.search(part, line), line
    assert check("late", WARNINGS, files=files | {"b": b""}) == 'F: warning: "b": is not in the catalog and is not sent\n'


def test_receipts_passes_over_a_torn_line(scratch):
    receipt = {"Time": "2024-05-06T07:08:09Z", "Submission": "crash-7", "Key": "5d41", "Size": 42, "Seconds": 0.5}
    lines = write(scratch / "receipts", f'{json.dumps(receipt)}\n{{"Time":"20\n{json.dumps(receipt)}\n'.encode())
    out = run("receipts", lines)[0].splitlines()
    assert out[0].endswith(": 2 receipts, 1 damaged line")
    assert out[1:] == 2 * ["  2024-05-06T07:08:09Z  5d41  42 bytes  crash-7"]
    (shown,) = json.loads(run("receipts", "--json", lines)[0])["Files"]
    assert shown["Receipts"] == 2 * [receipt] and shown["DamagedLines"] == 1


def test_check_config_passes_the_documented_example(scratch):
    example = re.search(r"```json\n(.*?)```", (ROOT / "docs" / "configuration.md").read_text(), re.S).group(1)
    good = write(scratch / "good.json", example.encode())
    run("check-config", Site(scratch / "site").write_configuration())  # what these tests start the agent with
    lines = run("check-config", good, expect=WARNINGS)[0].splitlines()
    assert lines and all(line.endswith(" is a placeholder of the template") for line in lines), lines
    typo = 'Unknown key "Sentinel", did you mean "SentinelFile"?'
    assert typo in run("check-config", "-", stdin=example.replace('"SentinelFile"', '"Sentinel"').encode(), expect=PROBLEMS)[0]


def test_check_config_tries_the_store(site, store, bucket, signer):
    """With the Windows program, which has the agent's client."""
    for key, code, said in ((SECRET_KEY, GOOD, " in bucket "),
                            ("wrong", PROBLEMS, "Store refused the object: 403 SignatureDoesNotMatch"),
                            ("", GOOD, " where the signer said")):
        if key:
            site.configuration["Uploader"]["SecretKey"] = key
        else:
            site.use_signer(signer.url)
            key = SECRET_KEY
        with Program(BIN / "PackageTool.exe", "check-config", "--connect", windows_path(site.write_configuration())) as tool:
            assert tool.wait() == code and said in tool.text and key not in tool.text.replace(said, ""), tool.text
    (key,) = store.keys(bucket)
    stored = store.get(bucket, key)
    assert key == hashlib.md5(stored).hexdigest() and read_package(stored).entries == []


def test_schema_is_the_committed_one_and_a_full_disk_is_noticed():
    committed = (ROOT / "docs" / "configuration.schema.json").read_text()
    assert run("config-schema")[0] == committed, "docs/configuration.schema.json: write config-schema's output there"
    with open("/dev/full", "wb") as full:
        done = subprocess.run([TOOL, "config-schema"], stdout=full, stderr=subprocess.PIPE, timeout=20)
    assert done.returncode == REFUSED and b"Failed to write to standard output" in done.stderr
