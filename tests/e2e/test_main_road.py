"""The road of one crash: a game that really crashes, the agent beside it, the object in the store."""
import hashlib

import pytest

from agent import GAME
from package_reader import read_package
from store.client import SECRET_KEY
from submissions import write_small
from wine import Program, wait_until, windows_path

ATTACHMENT_SIZE = 100_000


def attachment_content(number, size):
    """What the sample game writes."""
    content, line = b"", 0
    while len(content) < size:
        line += 1
        content += b"attachment %d line %d\n" % (number, line)
    return content[:size]


def crash(site, kind="access-violation", name="crash", *arguments):
    return Program(GAME, "--dumps", windows_path(site.dumps), "--name", name, "--crash", kind,
                   "--attachments", "2", "--attachment-size", str(ATTACHMENT_SIZE), *arguments)


def only_object(store, bucket):
    """The bucket's one object, whose key must be its MD5."""
    keys = store.keys(bucket)
    assert len(keys) == 1
    data = store.get(bucket, keys[0])
    assert keys[0] == hashlib.md5(data).hexdigest()
    return data


@pytest.mark.parametrize("kind, message", [
    ("access-violation", "Access violation writing 0x0"),
    ("abort", "Abnormal program termination"),
    ("exception", "Unhandled C++ exception: the level could not be loaded"),
])
def test_a_crash_arrives_whole_and_the_agent_ends(site, store, bucket, kind, message):
    name = f"太郎 {kind}"
    with crash(site, kind, name, "--stay-alive", "1500") as game, site.start() as agent:
        assert agent.wait() == 0
        assert game.wait() != 0

    package = read_package(only_object(store, bucket))
    assert package.header["Exception"]["Message"] == message
    assert package.header["Source"] == "EXTERNAL"
    assert package.header["InstanceKey"] == name
    assert package.header["Callstack"] and package.header["ModuleInfo"]
    assert [entry.name for entry in package.entries] == [
        f"{name}.log", f"{name}_Minidump.dmp", "attachment1.txt", "attachment2.txt"]
    assert b"the game goes wrong now" in package.entry(f"{name}.log").original
    assert package.entry(f"{name}_Minidump.dmp").original.startswith(b"MDMP")
    for number in (1, 2):
        content = package.entry(f"attachment{number}.txt").original
        assert content == attachment_content(number, ATTACHMENT_SIZE)

    assert site.left_on_disk() == []


def test_the_road_is_as_promised(site, store, bucket):
    """What the agent says, what the store is asked, how soon folders go; beside a game whose crash handler failed."""
    with crash(site, "abort", "broken", "--fail-in-handler") as game:
        game.wait()
    broken = sorted(path.name for path in (site.dumps / "broken").iterdir())
    assert broken and "header.json" not in broken
    with site.start_with_game() as beside, crash(site):
        beside.agent.wait_for(" Packaged folder crash for submission")
        wait_until(lambda: not (site.dumps / "crash").exists(), 1, "the submission folder deleted")
        beside.agent.wait_for(" Uploaded package for submission folder")
        wait_until(lambda: not (site.packaged / "crash").exists(), 1, "the packaged folder deleted")
        assert beside.quit() == 0
    assert sorted(path.name for path in (site.dumps / "broken").iterdir()) == broken

    dumps, packaged = windows_path(site.dumps) + "\\", windows_path(site.packaged) + "\\"
    log = beside.agent.stdout.decode()
    positions = [log.find(text) for text in (
        f" Added {dumps}crash to pending folder list",
        " Starting packaging submission crash...",
        " Packaged folder crash for submission",
        " Starting packaging of file crash...",
        f" Added {packaged}crash to pending folder list",
        f" Starting upload thread for submission in folder {packaged}crash",
        f' Uploaded package for submission folder "{packaged}crash" in ')]
    assert positions == sorted(positions) and positions[0] >= 0, log
    assert beside.agent.stderr == b"" and SECRET_KEY not in log

    data = only_object(store, bucket)
    (upload,) = store.uploads()
    assert upload["path"] == f"/{bucket}/{hashlib.md5(data).hexdigest()}"
    assert upload["length"] == len(data)
    assert upload["content-type"] == "application/octet-stream"
    assert upload["content-md5"]
    assert upload["sha256"] == hashlib.sha256(data).hexdigest()  # over http the payload is signed


def test_limits_blacklist_and_source_come_from_the_configuration(site, store, bucket):
    site.configuration["Packager"].update({
        "AttachmentLimits": [{"Extension": ".txt", "MaxSize": 60_000}],
        "AttachmentBlacklist": ["ment2"], "Source": "INTERNAL", "SubmissionFilename": "parcel.bin"})
    site.configuration["PackageWatcher"]["SentinelFile"] = "parcel.bin"
    site.configuration["Uploader"]["SubmissionFilename"] = "parcel.bin"
    with crash(site), site.start() as agent:
        assert agent.wait() == 0
    package = read_package(only_object(store, bucket))
    assert package.header["Source"] == "INTERNAL"
    assert [record["File"] for record in package.header["Catalog"]["Attachments"]] == ["attachment1.txt"]
    content = attachment_content(1, ATTACHMENT_SIZE)
    banner = (b"\n\n<<<<<<<<<<  truncated file size from 100000 to 60000 during bug submission >>>>>>>>>>\n\n")
    assert package.entry("attachment1.txt").original == content[:30_000] + banner + content[70_000:]
    assert " Dropped black listed attachment attachment2.txt" in agent.text


@pytest.mark.parametrize("work", ["PackagedDumps", "PACKAGEDDUMPS\\"])
def test_equal_folders_keep_the_files_beside_the_package(site, work):
    application = windows_path(site.folder / "app") + "\\"
    site.configuration["Packager"] |= {"PackagedFolder": application + "PackagedDumps", "PackageWorkFolder": application + work}
    del site.configuration["Application"]["Processes"]["UploaderS3"]
    write_small(site.dumps, "one")
    with site.start() as agent:
        assert agent.wait() == 0
    assert sorted(path.name for path in (site.packaged / "one").iterdir()) == [
        "game.log.gz", "header.json", "note.txt.gz", "submission.pkg"]
    assert site.left_on_disk() == [site.packaged / "one"]
