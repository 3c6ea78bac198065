"""The archive that a studio gets: it works as it is unpacked, says truly what is in it, and always comes out the same."""
import hashlib
import json
import os
import re
import subprocess
import zipfile
from datetime import datetime, timezone
from pathlib import Path

import pytest

from wine import BIN, ROOT, SCRATCH, Program, windows_path

BUILD = BIN.parent
AGENT = "MorvaneCrashReporter.exe"
PROGRAMS = [AGENT, "PackageTool.exe"]
MANIFEST = "MorvaneCrashReporter.spdx.json"
LICENCES = {"zlib.txt", "RapidJSON.txt", "GCC-runtime.txt", "mingw-w64.txt"}


def run(*command, **options):
    done = subprocess.run(list(map(str, command)), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    assert done.returncode == 0, done.stdout
    return done.stdout


def pack(**options):
    """The archive's path; the build's target is the only way that people use."""
    output = run("cmake", "--build", BUILD, "--target", "package", **options)
    return Path(re.search(r"^/.*\.zip$", output, re.MULTILINE)[0])


@pytest.fixture(scope="module")
def archive():
    return pack()


@pytest.fixture(scope="module")
def unpacked(archive):
    """The one folder that comes out, where nothing else of the project is near."""
    with zipfile.ZipFile(archive) as content:
        content.extractall(SCRATCH / "Spiele von Jörg")
    return SCRATCH / "Spiele von Jörg" / archive.stem


@pytest.fixture(scope="module")
def manifest(unpacked):
    return json.loads((unpacked / MANIFEST).read_text(encoding="utf-8"))


def test_holds_what_a_studio_needs(archive, unpacked):
    names = {"README.txt", "configuration.schema.json", f"{AGENT}.json", MANIFEST, *PROGRAMS,
             *(f"licenses/{name}" for name in LICENCES)}
    assert {name.removeprefix(f"{archive.stem}/") for name in zipfile.ZipFile(archive).namelist()} == names
    for name in PROGRAMS:
        assert (unpacked / name).read_bytes() == (BIN / name).read_bytes()
    listed = re.findall(r"^(\S+) {2,}", (unpacked / "README.txt").read_text(), re.MULTILINE)
    assert sorted(listed) == sorted({name.split("/")[0] for name in names} - {"README.txt"})


def test_starts_from_a_folder_of_its_own(unpacked):
    configuration = unpacked / f"{AGENT}.json"
    with Program(unpacked / AGENT, cwd="/") as agent:
        agent.wait_for(f" Using config: {windows_path(configuration)}")
        agent.wait_for(' Watcher "PackageWatcher" is watching folder')
        assert agent.stderr == b""
    with Program(unpacked / "PackageTool.exe", "check-config", windows_path(configuration)) as tool:
        assert tool.wait() == 0, tool.text
    schema = json.loads(configuration.read_text(encoding="utf-8"))["$schema"]
    assert (unpacked / schema).is_file()


@pytest.mark.parametrize("name, said", [
    ("zlib.txt", "Jean-loup Gailly"),
    ("RapidJSON.txt", "THL A29 Limited"),
    ("RapidJSON.txt", "Permission is hereby granted, free of charge"),
    ("GCC-runtime.txt", "GCC RUNTIME LIBRARY EXCEPTION"),
    ("GCC-runtime.txt", "TERMS AND CONDITIONS"),
    ("GCC-runtime.txt", "Hewlett-Packard Company makes no"),
    ("mingw-w64.txt", "Files: mingw-w64-libraries/winpthreads/*"),
    ("mingw-w64.txt", "LUCENT DISCLAIMS ALL WARRANTIES"),
])
def test_brings_the_terms(unpacked, name, said):
    assert said in (unpacked / "licenses" / name).read_text(encoding="utf-8")


def checksums(path):
    content = path.read_bytes()
    return {("SHA1", hashlib.sha1(content).hexdigest()), ("SHA256", hashlib.sha256(content).hexdigest())}


def test_manifest_has_what_spdx_requires(manifest, unpacked):
    assert (manifest["spdxVersion"], manifest["dataLicense"], manifest["SPDXID"]) == (
        "SPDX-2.3", "CC0-1.0", "SPDXRef-DOCUMENT")
    assert manifest["name"] and re.fullmatch(r"urn:uuid:[0-9a-f-]{36}", manifest["documentNamespace"])
    assert all(re.match(r"(Tool|Organization|Person): \S", creator) for creator in manifest["creationInfo"]["creators"])
    for package in manifest["packages"]:
        assert package["name"] and package["versionInfo"] and package["downloadLocation"]
        assert package["filesAnalyzed"] == ("packageVerificationCode" in package)
    elements = [element["SPDXID"] for element in [manifest, *manifest["packages"], *manifest["files"]]]
    assert len(set(elements)) == len(elements)
    assert all(re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", element) for element in elements)
    related = {(relation["spdxElementId"], relation["relatedSpdxElement"]) for relation in manifest["relationships"]}
    assert {element for pair in related for element in pair} == set(elements)  # nothing hangs in the air
    used = set(re.findall(r"LicenseRef-[\w.-]+", json.dumps(manifest["packages"])))
    explained = {licence["licenseId"] for licence in manifest["hasExtractedLicensingInfos"] if licence["extractedText"].strip()}
    assert used == explained


def test_manifest_describes_every_file(manifest, unpacked):
    found = {path.relative_to(unpacked).as_posix(): checksums(path) for path in unpacked.rglob("*") if path.is_file()}
    del found[MANIFEST]
    told = {file["fileName"].removeprefix("./"): {(sum["algorithm"], sum["checksumValue"]) for sum in file["checksums"]}
            for file in manifest["files"]}
    assert told == found
    digests = sorted(value for sums in found.values() for algorithm, value in sums if algorithm == "SHA1")
    code = manifest["packages"][0]["packageVerificationCode"]
    assert code["packageVerificationCodeValue"] == hashlib.sha1("".join(digests).encode()).hexdigest()


def ninja(tool, *arguments):
    return run("ninja", "-C", BUILD, "--quiet", "-t", tool, *arguments)


def linked_files(program, scratch):
    """What the linker says it reads when it links the program once more."""
    command = ninja("commands", f"bin/{program}").splitlines()[-1].removeprefix(": && ").removesuffix(" && :")
    aside = f"-o '{scratch}/{program}' '-Wl,--out-implib,{scratch}/import.a' '-Wl,--dependency-file,{scratch}/linked'"
    return run("sh", "-c", f"{command} {aside} -Wl,--trace", cwd=BUILD).splitlines()


def included_files(program):
    """The headers of the objects that the program is made of."""
    objects = [name for name in ninja("inputs", f"bin/{program}").splitlines() if name.endswith(".obj")]
    return re.findall(r"^    (.*)$", ninja("deps", *objects), re.MULTILINE)


def packages_of(files):
    """Owner of each file, by its path, but for our own files."""
    paths = {os.path.realpath(BUILD / name) for name in files}
    foreign = [path for path in paths if not Path(path).is_relative_to(ROOT) and not Path(path).is_relative_to(BUILD)]
    return dict(reversed(line.split(": ")) for line in run("dpkg-query", "--search", *foreign).splitlines())


@pytest.mark.parametrize("program", PROGRAMS)
def test_manifest_covers_all_that_is_linked(manifest, scratch, program):
    mine = {relation["relatedSpdxElement"] for relation in manifest["relationships"]
            if relation["spdxElementId"] == f"SPDXRef-File-{program}" and relation["relationshipType"] == "STATIC_LINK"}
    covered = {reference["referenceLocator"]: package["name"] for package in manifest["packages"]
               if package["SPDXID"] in mine for reference in package["externalRefs"]}
    owners = packages_of(linked_files(program, scratch) + included_files(program))
    versions = run("dpkg-query", "--show", "--showformat", "pkg:deb/debian/${Package}@${Version}?arch=${Architecture}\\n",
                   *set(owners.values()))
    assert set(versions.replace("+", "%2B").split()) == set(covered)
    parts = {"/libz.a": "zlib", "/document.h": "RapidJSON", "/libgcc.a": "libgcc", "/libstdc++.a": "libstdc++",
             "/libpthread.a": "winpthreads", "/libmingwex.a": "mingw-w64"}
    assert {part for ending, part in parts.items() if any(path.endswith(ending) for path in owners)} == {
        package["name"] for package in manifest["packages"] if package["SPDXID"] in mine}


def test_times_are_those_of_the_commit(archive, manifest):
    seconds = int(run("git", "-C", ROOT, "log", "-1", "--format=%ct"))
    moment = datetime.fromtimestamp(seconds, timezone.utc)
    assert manifest["creationInfo"]["created"] == moment.strftime("%Y-%m-%dT%H:%M:%SZ")
    stored = (*moment.timetuple()[:5], moment.second // 2 * 2)  # a zip counts in steps of two seconds
    assert {entry.date_time for entry in zipfile.ZipFile(archive).infolist()} == {stored}


@pytest.mark.parametrize("program", PROGRAMS)
def test_programs_tell_neither_when_nor_where_they_were_built(program):
    assert str(ROOT).encode() not in (BIN / program).read_bytes()
    headers = run("x86_64-w64-mingw32-objdump", "-p", BIN / program)
    assert set(re.findall(r"^Time/Date\s+(?:stamp\s+)?(.*)$", headers, re.MULTILINE)) <= {"0", "Thu Jan  1 00:00:00 1970"}


def test_comes_out_the_same_again(archive):
    first = archive.read_bytes()
    for program in PROGRAMS:
        os.utime(BIN / program, (0, 0))  # so old that both are linked again
    again = pack(cwd="/", umask=0o077, env={**os.environ, "TZ": "Asia/Tokyo", "LC_ALL": "C", "PYTHONHASHSEED": "1"})
    assert min((BIN / program).stat().st_mtime for program in PROGRAMS) > 0
    assert again == archive and again.read_bytes() == first
