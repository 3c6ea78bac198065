"""PackageTool from its command line: the native program, and the Windows one where both must agree."""
import gzip
import hashlib
import json
import os
import pty
import re
import shutil
import subprocess
from pathlib import Path

import pytest

import submissions
from agent import Site
from package_reader import read_package
from wine import BIN, ROOT, Program, windows_path

TOOL = Path(os.environ.get("MORVANE_NATIVE_BIN", ROOT / "build" / "native" / "bin")).resolve() / "PackageTool"
GOOD, PROBLEMS, USAGE, REFUSED = 0, 1, 2, 3


@pytest.fixture(scope="module", autouse=True)
def tool_is_there():
    assert TOOL.is_file(), f"{TOOL} is missing: ./test.sh native builds it"


def run(*arguments, expect=GOOD, stdin=b"", cwd=None):
    """The outputs as text, after the tool has ended with the expected code."""
    done = subprocess.run([TOOL, *map(str, arguments)], input=stdin, capture_output=True, cwd=cwd, timeout=50)
    assert done.returncode == expect, (arguments, done)
    return done.stdout.decode(), done.stderr.decode()


def compose(entries):
    """A package by the format's page; entries: (name, stored bytes)."""
    records = [{"File": name, "MD5": hashlib.md5(data).hexdigest()} for name, data in entries]
    header_bytes = json.dumps(submissions.header(Catalog={"Attachments": records}), ensure_ascii=False).encode()
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


PACKAGER = {"AttachmentLimits": [{"Extension": ".bin", "MaxSize": 5000}], "AttachmentBlacklist": [r"\.tmp$"],
            "Source": "INTERNAL"}


def test_pack_gives_the_agents_bytes(scratch, submission):
    """The agent, the tool on Windows and the tool here make one package of one submission."""
    site = Site(scratch / "site")
    processes = site.configuration["Application"]["Processes"]
    del processes["UploaderS3"]
    site.configuration["Packager"].update(PACKAGER)
    site.configuration["ProcessMonitor"]["ShutdownDelay"] = 1500
    shutil.copytree(submission, site.dumps / submission.name)
    with site.start() as agent:
        agent.wait_for(" All monitored processes have closed")
        assert agent.wait() == 0, agent.text
    by_agent = (site.packaged / submission.name / "submission.pkg").read_bytes()

    config = site.folder / "agent.json"
    out, error = run("pack", submission, "--to", scratch / "native", "--config", config)
    assert Path(out.strip()).read_bytes() == by_agent
    assert "Failed to copy or compress attachment missing.txt. Error=Failed to find attachment on disk" in error
    with Program(BIN / "PackageTool.exe", "pack", windows_path(submission), "--to", windows_path(scratch / "windows"),
                 "--config", windows_path(config)) as windows:
        assert windows.wait() == 0, windows.text
    assert (scratch / "windows" / submission.name / "submission.pkg").read_bytes() == by_agent
    assert read_package(by_agent).header["Source"] == "INTERNAL"


def test_list_and_verify(scratch, package):
    data = package.read_bytes()
    entries = read_package(data).entries
    text, _ = run("list", package)
    assert "Application   Game\n" in text and "Instance key  c\n" in text
    for entry in entries:
        assert re.search(rf"^  {re.escape(entry.name)} +{len(entry.stored)} +{len(entry.original)}  "
                         rf"{hashlib.md5(entry.stored).hexdigest()}$", text, re.M), entry.name
    _, report = json.loads(run("list", package, "-", "--json", stdin=data)[0])["Packages"]
    assert (report["File"], report["Header"]["Changelist"], report["Problems"]) == ("-", 7, [])
    assert [(entry["Name"], entry["UnpackedSize"]) for entry in report["Entries"]] == [
        (entry.name, len(entry.original)) for entry in entries]

    assert run("verify", package)[0] == f"{package}: good, 6 files\n"
    changed = write(scratch / "changed.pkg", data[:-1] + bytes([data[-1] ^ 1]))
    assert "changed.pkg: offset 8: Body: the recorded digest is" in run("verify", changed, expect=PROBLEMS)[0]
    assert "-: offset 0: The body is recorded as" in run("verify", "-", stdin=data[:-1], expect=PROBLEMS)[0]
    assert "Failed to open input file" in run("verify", scratch / "nothing", package, expect=REFUSED)[1]
    not_gzip = compose([("a.txt", b"plain")])
    assert '"a.txt": Not a gzip stream' in run("verify", "-", stdin=not_gzip, expect=PROBLEMS)[0]


def test_unpack_gives_back_the_files(scratch, package, submission):
    out = scratch / "out"
    run("unpack", package, "--to", out)
    for entry in read_package(package.read_bytes()).entries:
        assert (out / entry.name.replace("\\", "/")).read_bytes() == entry.original
    assert (out / "game.log").read_bytes() == (submission / "game.log").read_bytes()
    assert json.loads((out / "header.json").read_bytes())["InstanceKey"] == "c"

    (out / "game.log").write_bytes(b"mine")
    assert '"game.log" was not unpacked: There is already a file of that name' in run(
        "unpack", package, "--to", out, expect=REFUSED)[1]
    run("unpack", package, "--to", out, "--force", "--limit", "1K", expect=PROBLEMS)
    assert (out / "game.log").read_bytes() == b"mine"  # only a complete file replaces one
    run("unpack", package, "--to", out, "--force")
    assert (out / "game.log").read_bytes() != b"mine"

    run("unpack", package, package, "--to", "two/deep", "--stored", cwd=scratch)
    assert gzip.decompress((scratch / "two" / "deep" / "submission~2" / "game.log.gz").read_bytes()) == (
        out / "game.log").read_bytes()


def test_unpack_stays_in_its_folder(scratch):
    names = ["../evil", "/tmp/evil-of-package", "C:\\evil", "NUL", "link/evil", "a.txt", "A.TXT", "a.txt", "a.txt/b",
             "d.e/c", "d.e\\C", "d.e", "linked", "dangling", "header.json", "\x1b[31mred"]
    out, outside = scratch / "out", scratch / "outside"
    outside.mkdir()
    out.mkdir()
    kept = write(outside / "kept", b"mine")
    for link, target in {"link": outside, "linked": kept, "dangling": outside / "new"}.items():
        (out / link).symlink_to(target)
    hostile = write(scratch / "hostile.pkg", compose([(name, gzip.compress(name.encode())) for name in names]))
    _, error = run("unpack", hostile, "--to", out, expect=REFUSED)
    assert error.count("There is already a file of that name") == 3  # two links and a folder
    shutil.rmtree(out / "d.e")
    for name in ("a.txt", "A~2.TXT", "a~3.txt", "header.json", "header~2.json"):
        (out / name).unlink()
    _, error = run("unpack", hostile, "--to", out, "--force", expect=REFUSED)
    assert {path.name: path.read_text() for path in out.rglob("*") if path.is_file() and "header" not in path.name} == {
        "A~2.TXT": "A.TXT", "a.txt": "a.txt", "a~3.txt": "a.txt", "c": "d.e/c", "C~2": "d.e\\C", "linked": "linked",
        "dangling": "dangling"}
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
    run("verify", package, "--limit=61M")


def test_pack_keeps_what_is_there(scratch, package, submission):
    before = package.read_bytes()
    _, error = run("pack", submission, "--to", scratch / "packed", expect=REFUSED)
    assert "There is already a package" in error
    run("pack", submission, "--to", scratch / "packed", "--force")
    assert package.read_bytes() == before and not package.stat().st_mode & 0o222
    _, error = run("pack", scratch / "nowhere", "--to", scratch / "packed", expect=REFUSED)
    assert "Failed to open json header data in dump folder!" in error
    (submission / "header.json").write_text("{")
    run("pack", submission, "--to", scratch / "packed", "--force", expect=REFUSED)
    assert package.read_bytes() == before  # only a complete package replaces one
    assert [path.name for path in (scratch / "packed").iterdir()] == [submission.name]  # no work folder stays


def test_check_config_judges_the_documented_example_and_a_typo(scratch):
    example = re.search(r"```json\n(.*?)```", (ROOT / "docs" / "configuration.md").read_text(), re.S).group(1)
    good = write(scratch / "good.json", example.encode())
    run("check-config", Site(scratch / "site").write_configuration())  # what these tests start the agent with
    typo = write(scratch / "typo.json", example.replace('"SentinelFile": "header.json"', '"Sentinel": 1').encode())
    line = example[:example.index('"SentinelFile": "header.json"')].count("\n") + 1
    problem = 'Unknown key "Sentinel", did you mean "SentinelFile"?'
    assert run("check-config", good, typo, expect=PROBLEMS)[0] == f"{good}: good\n{typo}:{line}:5: {problem}\n"
    report = json.loads(run("check-config", "-", "--json", stdin=typo.read_bytes(), expect=PROBLEMS)[0])
    assert report == {"Files": [{"File": "-", "Problems": [{"Line": line, "Column": 5, "Text": problem}]}]}


def test_schema_is_the_committed_one():
    committed = (ROOT / "docs" / "configuration.schema.json").read_text()
    assert run("config-schema")[0] == committed, "docs/configuration.schema.json: write config-schema's output there"


def test_manners():
    assert "usage: PackageTool list" in run("--help")[0]
    out, error = run("list", expect=USAGE)
    assert not out and error.startswith("PackageTool: list needs a file")
    assert "Standard input is empty" in run("list", "-", expect=REFUSED)[1]
    with open("/dev/full", "wb") as full:
        done = subprocess.run([TOOL, "--help"], stdout=full, stderr=subprocess.PIPE, timeout=20)
    assert done.returncode == REFUSED and b"Failed to write to standard output" in done.stderr


def test_a_terminal_sees_progress_of_long_work(scratch):
    zeros = gzip.compress(bytes(900 << 20), 1)  # a fraction of a second each; the bar comes after half a second
    long = write(scratch / "long.pkg", compose([(f"zeros{number}.bin", zeros) for number in range(10)]))
    master, slave = pty.openpty()
    tool = subprocess.Popen([TOOL, "verify", "--limit", str(16 << 30), long], stdout=subprocess.DEVNULL, stderr=slave)
    os.close(slave)
    shown = b""
    try:
        while part := os.read(master, 4096):
            shown += part
    except OSError:  # the terminal's other side is closed
        pass
    os.close(master)
    assert tool.wait(50) == GOOD
    assert b"long.pkg [" in shown and b" %" in shown and shown.endswith(b" \r") and b"\x1b" not in shown
