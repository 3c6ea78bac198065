#!/usr/bin/env python3
"""Writes the archive that a studio gets, out of a build folder of preset release.

    scripts/release/archive.py BUILD_FOLDER VERSION CHANGELIST

The same commit, built with the same packages, gives the same bytes: it does not depend on the clock, the
file system or the folder. All times are those of the last commit, or of SOURCE_DATE_EPOCH.
"""
import os
import subprocess
import sys
import time
import zipfile
from pathlib import Path

import terms
from components import components_of
from spdx import manifest

ROOT = Path(__file__).resolve().parents[2]
PRODUCT = "MorvaneCrashReporter"
PROGRAMS = (f"{PRODUCT}.exe", "PackageTool.exe")
MANIFEST = f"{PRODUCT}.spdx.json"
# Name in the archive -> file of the repository. The agent looks for its configuration under this name.
DOCUMENTS = {
    f"{PRODUCT}.exe.json": "docs/recommended-configuration.json",
    "configuration.schema.json": "docs/configuration.schema.json",
    **{page: f"docs/{page}" for page in ("formats.md", "log.md", "starting-the-agent.md")},
    "keyless-upload.md": "docs/keyless-upload.md",
    "recommended-configuration-keyless.json": "docs/recommended-configuration-keyless.json",
    "upload_signer.py": "Tools/UploadSigner/upload_signer.py",
    "README.txt": "scripts/release/README.txt",
}


def moment_of_source():
    """Seconds since 1970."""
    if stated := os.environ.get("SOURCE_DATE_EPOCH"):
        return int(stated)
    return int(subprocess.run(["git", "-C", ROOT, "log", "-1", "--format=%ct"], check=True, stdout=subprocess.PIPE).stdout)


def content_of_archive(build, version, moment):
    """Name -> bytes."""
    files = {name: (build / "bin" / name).read_bytes() for name in PROGRAMS}
    files |= {name: (ROOT / path).read_bytes() for name, path in DOCUMENTS.items()}
    files |= {f"licenses/{name}": text for name, text in terms.licence_files().items()}
    programs = {name: components_of(build / f"{name}.linked", ROOT, build) for name in PROGRAMS}
    files[MANIFEST] = manifest(PRODUCT, version, moment, files, programs, MANIFEST)
    return files


def write_zip(path, folder, files, moment):
    """Replaces the file at once; everything lies in one folder."""
    fresh = path.with_suffix(".new")
    with zipfile.ZipFile(fresh, "w") as archive:
        for name, content in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{folder}/{name}", time.gmtime(moment)[:6])
            entry.create_system = 3  # Unix, whose permissions these are
            entry.external_attr = (0o100755 if name.endswith(".exe") else 0o100644) << 16
            archive.writestr(entry, content, zipfile.ZIP_DEFLATED, compresslevel=9)
    fresh.replace(path)


def main(build, version, changelist):
    build = Path(build).resolve()
    moment = moment_of_source()
    name = f"{PRODUCT}-{version}-{changelist}-windows-x64"
    path = build / f"{name}.zip"
    write_zip(path, name, content_of_archive(build, f"{version} ({changelist})", moment), moment)
    print(path)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
