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


@pytest.fixture(scope="module")
def manifest(unpacked):
    return json.loads((unpacked / MANIFEST).read_text(encoding="utf-8"))


def test_works_as_unpacked(unpacked):
    names = {"README.txt", "configuration.schema.json", f"{AGENT}.json", MANIFEST, *PROGRAMS,
             *(f"licenses/{name}" for name in TERMS)}
    assert {path.relative_to(unpacked).as_posix() for path in unpacked.rglob("*") if path.is_file()} == names
    for name, said in TERMS.items():
        assert said in (unpacked / "licenses" / name).read_text(encoding="utf-8")
    configuration = unpacked / f"{AGENT}.json"
    with Program(unpacked / AGENT, cwd="/") as agent:
        agent.wait_for(f" Using config: {windows_path(configuration)}")
        agent.wait_for(' Watcher "PackageWatcher" is watching folder')
        assert agent.stderr == b""
    with Program(unpacked / "PackageTool.exe", "check-config", windows_path(configuration)) as tool:
        assert tool.wait() == 0, tool.text
    assert (unpacked / json.loads(configuration.read_text(encoding="utf-8"))["$schema"]).is_file()


def test_manifest_describes_every_file(manifest, unpacked):
    digests = {path.relative_to(unpacked).as_posix(): hashlib.sha256(path.read_bytes()).hexdigest()
               for path in unpacked.rglob("*") if path.is_file() and path.name != MANIFEST}
    assert digests == {file["fileName"].removeprefix("./"): sum["checksumValue"] for file in manifest["files"]
                       for sum in file["checksums"] if sum["algorithm"] == "SHA256"}
    elements = {element["SPDXID"] for element in [manifest, *manifest["packages"], *manifest["files"]]}
    assert elements == {relation[end] for relation in manifest["relationships"]
                        for end in ("spdxElementId", "relatedSpdxElement")}
    assert set(re.findall(r"LicenseRef-[\w.-]+", json.dumps(manifest["packages"]))) == {
        licence["licenseId"] for licence in manifest["hasExtractedLicensingInfos"] if licence["extractedText"].strip()}


def ninja(tool, *arguments):
    return run("ninja", "-C", BUILD, "--quiet", "-t", tool, *arguments)


def link(program, folder):
    """Links the program once more, into the folder; returns what the linker reads."""
    command = ninja("commands", f"bin/{program}").splitlines()[-1].removeprefix(": && ").removesuffix(" && :")
    aside = f"-o '{folder}/{program}' '-Wl,--out-implib,{folder}/import.a' '-Wl,--dependency-file,{folder}/linked'"
    return run("sh", "-c", f"{command} {aside} -Wl,--trace", cwd=BUILD).splitlines()


def files_of(program, scratch):
    """Everything that the linker reads for the program, and the headers of its objects."""
    objects = [name for name in ninja("inputs", f"bin/{program}").splitlines() if name.endswith(".obj")]
    names = [*link(program, scratch), *re.findall(r"^    (.*)$", ninja("deps", *objects), re.MULTILINE)]
    return {os.path.realpath(BUILD / name) for name in names}


@pytest.mark.parametrize("program", PROGRAMS)
def test_manifest_covers_all_that_is_linked(manifest, scratch, program):
    mine = {relation["relatedSpdxElement"] for relation in manifest["relationships"]
            if relation["spdxElementId"] == f"SPDXRef-File-{program}" and relation["relationshipType"] == "STATIC_LINK"}
    covered = {reference["referenceLocator"] for package in manifest["packages"] if package["SPDXID"] in mine
               for reference in package["externalRefs"]}
    foreign = [path for path in files_of(program, scratch) if not Path(path).is_relative_to(ROOT)]
    owners = {line.split(":")[0] for line in run("dpkg-query", "--search", *foreign).splitlines()}
    urls = run("dpkg-query", "--show", "--showformat", "pkg:deb/debian/${Package}@${Version}?arch=${Architecture}\\n",
               *owners)
    assert set(urls.replace("+", "%2B").split()) == covered


def test_comes_out_the_same_again(archive, scratch):
    first = archive.read_bytes()
    for program in PROGRAMS:
        link(program, scratch)
        content = (scratch / program).read_bytes()
        assert content == (BIN / program).read_bytes() and str(ROOT).encode() not in content
    again = pack(cwd="/", umask=0o077, env={**os.environ, "TZ": "Asia/Tokyo", "LC_ALL": "C", "PYTHONHASHSEED": "1"})
    assert again == archive and again.read_bytes() == first
