"""The archive that a studio gets: it works as unpacked, says truly what is in it, and always comes out the same."""
import hashlib
import json
import os
import re
import subprocess
import zipfile
from pathlib import Path

import pytest

from wine import BIN, ROOT, SCRATCH, Program, windows_path

BUILD = BIN.parent
AGENT = "MorvaneCrashReporter.exe"
PAGES = ["formats.md", "log.md", "starting-the-agent.md"]
KEYLESS = ["keyless-upload.md", "upload_signer.py", "recommended-configuration-keyless.json"]
PROGRAMS = [AGENT, "PackageTool.exe"]
MANIFEST = "MorvaneCrashReporter.spdx.json"
# A sentence of the terms of each part that is linked in.
TERMS = {"zlib.txt": "Jean-loup Gailly", "RapidJSON.txt": "Permission is hereby granted, free of charge",
         "GCC-runtime.txt": "GCC RUNTIME LIBRARY EXCEPTION", "mingw-w64.txt": "LUCENT DISCLAIMS ALL WARRANTIES"}


def run(*command, **options):
    done = subprocess.run(list(map(str, command)), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    assert done.returncode == 0, done.stdout
    return done.stdout


def pack(**options):
    output = run("cmake", "--build", BUILD, "--target", "package", **options)
    return Path(re.search(r"^/.*\.zip$", output, re.MULTILINE)[0])


@pytest.fixture(scope="module")
def archive():
    return pack()


@pytest.fixture(scope="module")
def unpacked(archive):
    """The one folder that comes out, far from the rest of the project."""
    with zipfile.ZipFile(archive) as content:
        content.extractall(SCRATCH / "Spiele von Jörg")
    return SCRATCH / "Spiele von Jörg" / archive.stem


def test_works_as_unpacked(unpacked):
    names = {"README.txt", "configuration.schema.json", f"{AGENT}.json", MANIFEST, *PROGRAMS, *PAGES, *KEYLESS,
             *(f"licenses/{name}" for name in TERMS)}
    assert {path.relative_to(unpacked).as_posix() for path in unpacked.rglob("*") if path.is_file()} == names
    for name, said in TERMS.items():
        assert said in (unpacked / "licenses" / name).read_text(encoding="utf-8")
    configuration = unpacked / f"{AGENT}.json"
    with Program(unpacked / AGENT, cwd="/") as agent:
        agent.wait_for(f" Using config: {windows_path(configuration)}")
        agent.wait_for(' Watcher "PackageWatcher" is watching folder')
        assert agent.stderr == b""
    for recommended in (configuration, unpacked / KEYLESS[2]):
        with Program(unpacked / "PackageTool.exe", "check-config", windows_path(recommended)) as tool:
            assert tool.wait() == 4 and tool.text.count("placeholder") == tool.text.count("\n"), tool.text
        assert (unpacked / json.loads(recommended.read_text(encoding="utf-8"))["$schema"]).is_file()


def test_manifest_describes_every_file(unpacked):
    manifest = json.loads((unpacked / MANIFEST).read_text(encoding="utf-8"))
    digests = {path.relative_to(unpacked).as_posix(): hashlib.sha256(path.read_bytes()).hexdigest()
               for path in unpacked.rglob("*") if path.is_file() and path.name != MANIFEST}
    assert digests == {file["fileName"].removeprefix("./"): sum["checksumValue"] for file in manifest["files"]
                       for sum in file["checksums"] if sum["algorithm"] == "SHA256"}
    assert set(re.findall(r"LicenseRef-[\w.-]+", json.dumps(manifest["packages"]))) == {
        licence["licenseId"] for licence in manifest["hasExtractedLicensingInfos"] if licence["extractedText"].strip()}


def test_comes_out_the_same_again(archive, scratch):
    first = archive.read_bytes()
    for program in PROGRAMS:  # linked once more
        command = run("ninja", "-C", BUILD, "--quiet", "-t", "commands", f"bin/{program}").splitlines()[-1]
        aside = f"-o '{scratch}/{program}' '-Wl,--out-implib,{scratch}/import.a' '-Wl,--dependency-file,{scratch}/linked'"
        run("sh", "-c", f"{command.removeprefix(': && ').removesuffix(' && :')} {aside}", cwd=BUILD)
        content = (scratch / program).read_bytes()
        assert content == (BIN / program).read_bytes() and str(ROOT).encode() not in content
    again = pack(cwd="/", umask=0o077, env={**os.environ, "TZ": "Asia/Tokyo", "LC_ALL": "C", "PYTHONHASHSEED": "1"})
    assert again == archive and again.read_bytes() == first
