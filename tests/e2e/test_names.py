"""Names reach the disk as they are: decomposed letters, other scripts, ends that Windows would strip, 400 characters."""
import pytest

from agent import Site
from submissions import catalog, header, write_folder

DECOMPOSED = "Jo\u0308rg 太郎"


@pytest.mark.parametrize("name, depth", [
    (DECOMPOSED, 1),
    ("ends in a dot.", 1),
    (f"a long name with {DECOMPOSED} in it ", 12),
], ids=["decomposed", "dot", "400 units"])
def test_folders_and_files_of_every_name(scratch, store, bucket, name, depth):
    """Configuration, application, dumps, work and packaged folder, submission, sub-folder and attachment."""
    site = Site(scratch.joinpath(*[name] * depth), store, bucket)
    site.packaged, site.work = (site.folder / f"{kind} {name}" for kind in ("packages", "work"))
    site.configuration["Packager"].update(PackagedFolder=windows(site.packaged), PackageWorkFolder=windows(site.work))
    site.configuration["PackageWatcher"]["Folder"] = windows(site.packaged) + "/"
    site.configuration["DumpWatcher"]["Folder"] = "\\\\?\\" + windows(site.dumps).replace("/", "\\")
    attachment = f"logs {DECOMPOSED}/{DECOMPOSED}.log"
    files = {f"{DECOMPOSED}.dmp": b"dump", attachment: b"log\n" * 1000}
    write_folder(site.dumps / f"crash {name}", files,
                 header(Catalog=catalog(dump=f"{DECOMPOSED}.dmp", attachments=[attachment])))
    site.run_until_sent()
    (package,) = site.sent_packages()
    assert {entry.name: entry.original for entry in package.entries} == files
    assert site.left_on_disk() == []


def windows(path):
    return "Z:" + str(path)
