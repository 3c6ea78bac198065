"""The manifest of an archive in SPDX 2.3: its files, and the third-party parts in each program."""
import hashlib
import json
import re
import time
import uuid

import debian
import terms
from components import TOOLS

UNKNOWN = "NOASSERTION"


def _identifier(kind, name):
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.]", "-", name)


def _file(name, content):
    return {
        "SPDXID": _identifier("File", name),
        "fileName": f"./{name}",
        "fileTypes": ["BINARY" if name.endswith(".exe") else "TEXT"],
        "checksums": [{"algorithm": algorithm, "checksumValue": hashlib.new(algorithm, content).hexdigest()}
                      for algorithm in ("SHA1", "SHA256")],
        "licenseConcluded": UNKNOWN,
        "licenseInfoInFiles": [UNKNOWN],
        "copyrightText": UNKNOWN,
    }


def _product(name, version, files, manifest_name):
    digests = sorted(file["checksums"][0]["checksumValue"] for file in files)
    return {
        "SPDXID": _identifier("Package", name),
        "name": name,
        "versionInfo": version,
        "primaryPackagePurpose": "APPLICATION",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": True,
        "packageVerificationCode": {
            "packageVerificationCodeValue": hashlib.sha1("".join(digests).encode()).hexdigest(),
            "packageVerificationCodeExcludedFiles": [f"./{manifest_name}"],
        },
        "licenseConcluded": UNKNOWN,
        "licenseInfoFromFiles": [UNKNOWN],
        "licenseDeclared": UNKNOWN,
        "copyrightText": UNKNOWN,
    }


def _package_url(package):
    return {"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl", "referenceLocator": package.url}


def _third_party(component):
    packages = [debian.installed(name) for name in component.packages]
    return {
        "SPDXID": _identifier("Package", component.name),
        "name": component.name,
        "versionInfo": packages[0].version,
        "supplier": "Organization: Debian",
        "sourceInfo": f"built from Debian's source package {packages[0].source}",
        "primaryPackagePurpose": "LIBRARY",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": False,
        "licenseConcluded": component.licence,
        "licenseDeclared": component.licence,
        "licenseComments": f"See licenses/{component.terms}.",
        "copyrightText": UNKNOWN,
        "externalRefs": [_package_url(package) for package in packages],
    }


def _tool(name, package):
    found = debian.installed(package)
    return {
        "SPDXID": _identifier("Tool", name),
        "name": name,
        "versionInfo": found.version,
        "supplier": "Organization: Debian",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": False,
        "externalRefs": [_package_url(found)],
    }


def _relation(element, kind, related):
    return {"spdxElementId": element, "relationshipType": kind, "relatedSpdxElement": related}


def manifest(product, version, moment, files, programs, manifest_name):
    """The document's bytes: the same for the same archive.

    files: name -> content. programs: name of a file -> its components. moment: seconds since 1970.
    """
    parts = sorted({part for found in programs.values() for part in found}, key=lambda part: part.name)
    described = [_file(name, content) for name, content in sorted(files.items())]
    package = _product(product, version, described, manifest_name)
    unlisted = sorted(set(re.findall(r"LicenseRef-[\w.-]+", " ".join(part.licence for part in parts))))
    document = {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"{product} {version}",
        "creationInfo": {
            "created": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(moment)),
            "creators": [f"Tool: {product}-release-archive"],
        },
        "packages": [package, *map(_third_party, parts), *(_tool(*tool) for tool in TOOLS.items())],
        "files": described,
        "hasExtractedLicensingInfos": [{"licenseId": name, "name": name.removeprefix("LicenseRef-"),
                                        "extractedText": terms.UNLISTED[name]()} for name in unlisted],
        "relationships": [
            _relation("SPDXRef-DOCUMENT", "DESCRIBES", package["SPDXID"]),
            *(_relation(package["SPDXID"], "CONTAINS", file["SPDXID"]) for file in described),
            *(_relation(_identifier("File", name), "STATIC_LINK", _identifier("Package", part.name))
              for name, found in sorted(programs.items()) for part in found),
            *(_relation(_identifier("Tool", name), "BUILD_TOOL_OF", package["SPDXID"]) for name in TOOLS),
        ],
    }
    # Two different documents may not have one name; the same document always has the same.
    content = json.dumps(document, sort_keys=True)
    document["documentNamespace"] = uuid.uuid5(uuid.NAMESPACE_OID, content).urn
    return (json.dumps(document, indent=2, ensure_ascii=False) + "\n").encode()
