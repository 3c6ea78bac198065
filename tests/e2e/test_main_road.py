"""The road of one crash: a game that really crashes, the agent beside it, the object in the store."""
import hashlib
import time

import pytest

from agent import GAME
from store.client import SECRET_KEY
from submissions import write_small
from wine import Program, wait_until, windows_path

ATTACHMENT_SIZE = 100_000


def attachment_content(number):
    """What the sample game writes."""
    return b"".join(b"attachment %d line %d\n" % (number, line + 1) for line in range(ATTACHMENT_SIZE))[:ATTACHMENT_SIZE]


def crash(site, kind="access-violation", name="crash", *arguments):
    return Program(GAME, "--dumps", windows_path(site.dumps), "--name", name, "--crash", kind,
                   "--attachments", "2", "--attachment-size", str(ATTACHMENT_SIZE), *arguments)


@pytest.mark.parametrize("kind, message, watched, arguments", [
    ("access-violation", "Access violation writing 0x0", ["no such.exe", "GAME.exe"], []),  # an ending, in another case
    ("abort", "Abnormal program termination", ["Other.exe"], ["-PROCESS=SampleGame.exe", "-process=samplegame.exe"]),
    ("exception", "Unhandled C++ exception: the level caf\ufffd could not be loaded", ["SampleGame.exe"], []),
])
def test_a_crash_arrives_whole_and_the_agent_ends(site, kind, message, watched, arguments):
    name = f"太郎 {kind}"
    site.configuration["ProcessMonitor"]["WatchedApplications"] = watched
    with crash(site, kind, name, "--stay-alive", "3000") as game, site.start(*arguments) as agent:
        assert game.wait() != 0
        ended = time.monotonic()
        assert agent.wait() == 0
        assert time.monotonic() - ended >= site.configuration["ProcessMonitor"]["ShutdownDelay"] / 1000 - 0.1
        assert agent.text.count(" All monitored processes have closed") == 1

    (package,) = site.sent_packages()
    assert package.header["Exception"]["Message"] == message
    assert package.header["Source"] == "EXTERNAL"
    assert package.header["InstanceKey"] == name
    assert package.header["Callstack"] and package.header["ModuleInfo"]
    assert [entry.name for entry in package.entries] == [
        f"{name}.log", f"{name}_Minidump.dmp", "attachment1.txt", "attachment2.txt"]
    assert b"the game goes wrong now" in package.entry(f"{name}.log").original
    assert package.entry(f"{name}_Minidump.dmp").original.startswith(b"MDMP")
    for number in (1, 2):
        assert package.entry(f"attachment{number}.txt").original == attachment_content(number)
    assert site.left_on_disk() == []


def test_the_road_is_as_promised(site, store, bucket):
    """What the agent says, what the store is asked, how soon folders go; beside a game whose crash handler failed."""
    with crash(site, "abort", "broken", "--fail-in-handler") as game:
        game.wait()
    broken = sorted(path.name for path in (site.dumps / "broken").iterdir())
    assert broken and "header.json" not in broken
    site.configuration["Packager"]["SubmissionFilename"] = "parcel.bin"
    site.configuration["PackageWatcher"]["SentinelFile"] = "parcel.bin"
    site.configuration["Uploader"]["SubmissionFilename"] = "parcel.bin"
    with site.start_with_game() as beside, crash(site):
        beside.agent.wait_for(" Packaged folder crash for submission")
        wait_until(lambda: not (site.dumps / "crash").exists(), 1, "the submission folder deleted")
        beside.agent.wait_for(" Uploaded package for submission folder")
        wait_until(lambda: not (site.packaged / "crash").exists(), 1, "the packaged folder deleted")
        assert beside.quit() == 0
    assert sorted(path.name for path in (site.dumps / "broken").iterdir()) == broken

    log = beside.agent.stdout.decode()
    for text in (" Starting packaging submission crash...", " Starting packaging of file crash...",
                 f" Starting upload thread for submission in folder {windows_path(site.packaged)}\\crash"):
        assert text in log
    assert beside.agent.stderr == b"" and SECRET_KEY not in log

    (key,) = store.keys(bucket)
    data = store.get(bucket, key)
    (upload,) = store.uploads()
    assert upload["path"] == f"/{bucket}/{key}" and key == hashlib.md5(data).hexdigest()
    assert upload["length"] == len(data)
    assert upload["content-type"] == "application/octet-stream"
    assert upload["content-md5"]
    assert upload["sha256"] == hashlib.sha256(data).hexdigest()  # over http the payload is signed


def test_equal_folders_keep_the_files_beside_the_package(site):
    folder = windows_path(site.folder / "app")
    site.configuration["Packager"] |= {"PackagedFolder": folder + "\\PackagedDumps",
                                       "PackageWorkFolder": folder + "\\PACKAGEDDUMPS\\"}
    del site.configuration["Application"]["Processes"]["UploaderS3"]
    write_small(site.dumps, "one")
    site.run()
    assert sorted(path.name for path in (site.packaged / "one").iterdir()) == [
        "game.log.gz", "header.json", "note.txt.gz", "submission.pkg"]
    assert site.left_on_disk() == [site.packaged / "one"]
