"""Files that another program holds, a full disk, and what a killed run left: nothing is lost, nothing stays behind."""
import os
import time

import pytest

from submissions import catalog, header, write_folder, write_small
from wine import BIN, Program, wait_until, windows_path


def hold(*arguments):
    holder = Program(BIN / "FileHolder.exe", *arguments)
    holder.wait_for("held")
    return holder


def held_submission(site):
    """Completes a submission whose header and dump are held without sharing."""
    folder = write_folder(site.dumps / "held", {"a.dmp": b"dump"}, header(Catalog=catalog(dump="a.dmp")), complete=False)
    holder = hold(*(windows_path(folder / name) for name in ("header.json", "a.dmp")))
    (folder / "header.json").chmod(0o444)
    return holder


def test_a_file_held_for_a_moment_arrives(site):
    with site.start_with_game() as beside, held_submission(site) as holder:
        beside.agent.wait_for(" Starting packaging submission held")  # the next step opens the header
        time.sleep(0.4)  # of the 1.02 s for which the agent waits
        holder.kill()
        site.wait_all_sent()
        assert beside.quit() == 0
    (package,) = site.sent_packages()
    assert package.entry("a.dmp").original == b"dump"
    assert beside.agent.stderr == b""


def test_a_file_held_for_long_is_for_the_next_run(site):
    site.configuration["Packager"]["KeepFailedSubmissions"] = True
    with site.start_with_game() as beside, held_submission(site) as holder:
        beside.agent.wait_for(" Failed to package dump folder")
        holder.kill()
        assert beside.quit() == 0
    assert site.left_on_disk() == [site.dumps / "held"]
    site.run_until_sent()
    (package,) = site.sent_packages()
    assert package.entry("a.dmp").original == b"dump"


@pytest.mark.parametrize("keep", [False, True])
def test_a_full_disk_keeps_nothing_and_stops_no_other(site, store, bucket, mount_disk, keep):
    site.packaged.mkdir(parents=True)
    mount_disk(site.packaged, "size=2m")
    free = os.statvfs(site.packaged).f_bfree
    site.configuration["Packager"]["KeepFailedSubmissions"] = keep
    big = write_folder(site.dumps / "big", {"noise.bin": os.urandom(4 << 20)},
                       header(Key="big", Catalog=catalog(attachments=["noise.bin"])))
    with site.start_with_game() as beside:
        beside.agent.wait_for(' Failed to generate package file for submission "big", error: '
                              '"Failed to write package file"')
        wait_until(lambda: site.left_on_disk() == ([big] if keep else []), 5, "the big one's space given back")
        assert os.statvfs(site.packaged).f_bfree == free
        write_small(site.dumps, "next")
        wait_until(lambda: store.keys(bucket), 20, "the next one sent")
        assert beside.quit() == 0
    assert [package.header["Key"] for package in site.sent_packages()] == ["next"]
    if keep:
        mount_disk(site.packaged, "remount,size=20m")
        site.run_until_sent()
        assert {package.header["Key"] for package in site.sent_packages()} == {"big", "next"}
    assert site.left_on_disk() == []


def test_what_a_kill_left_half_deleted_goes(site):
    """Each rest as a kill during a deletion leaves it; beside them what only looks alike."""
    stay = [site.dumps / "half written" / "game.log", site.dumps / "other" / "game.log",
            site.packaged / "foreign" / "notes.txt", site.packaged / "with notes" / "submission.pkg",
            site.packaged / "with notes" / "notes.txt", site.work / "foreign" / "notes.txt"]
    for path in [*stay, site.packaged / "half" / "submission.pkg", site.work / "shared" / "submission.pkg",
                 site.packaged / "sent" / "submission.pkg", site.dumps / "sent" / "game.log"]:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(b"x")
    (site.packaged / "sent" / "submission.pkg").chmod(0o444)
    (site.packaged / "empty").mkdir()
    (site.work / "empty").mkdir()
    del site.configuration["Application"]["Processes"]["UploaderS3"]
    site.run()
    assert site.left_on_disk() == sorted({path.parent for path in stay} | {site.packaged / "sent"})
    assert all(path.exists() for path in stay)


def test_a_package_that_can_not_be_read_stays(site, store):
    """One is empty, the other is open for writing, so that it may change."""
    del site.configuration["Application"]["Processes"]["Packager"]  # would take them for half ones
    packages = [site.packaged / name / "submission.pkg" for name in ("empty", "written")]
    for package, content in zip(packages, (b"", b"x")):
        package.parent.mkdir(parents=True)
        package.write_bytes(content)
    with site.start_with_game() as beside, hold("--writing", windows_path(packages[1])) as holder:
        for package in packages:
            package.chmod(0o444)
            beside.agent.wait_for(f' Failed to load package in "{windows_path(package.parent)}" for upload . Error=')
        holder.kill()
        assert beside.quit() == 0
    assert all(package.exists() for package in packages) and store.uploads() == []
