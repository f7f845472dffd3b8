#!/usr/bin/env python3
"""Prints the list of a folder that is to be an archive, as SPDX in JSON: every file with its sums, and what the files were
made of, by the build's own list. cmake/package/make_sbom.py FOLDER FACTS"""

import hashlib
import json
import os
import shlex
import subprocess
import sys
from datetime import datetime, timezone
from pathlib import Path

NO_ASSERTION = "NOASSERTION"


def read_facts(path):
    """The lines NAME=VALUE of the file, whose values are as a shell reads them."""
    facts = {}
    for line in Path(path).read_text().splitlines():
        if line and not line.startswith("#"):
            name, value = line.split("=", 1)
            facts[name] = " ".join(shlex.split(value))
    return facts


def debian_version(package):
    """The version of an installed Debian package."""
    found = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package],
                           capture_output=True, text=True, check=False)
    if found.returncode != 0 or not found.stdout:
        raise SystemExit(f"{package} is not installed, although the build lists it")
    return found.stdout


def described_file(number, path, folder):
    """A file of the archive."""
    data = path.read_bytes()
    return {
        "SPDXID": f"SPDXRef-File-{number}",
        "fileName": f"./{path.relative_to(folder)}",
        "checksums": [{"algorithm": "SHA1", "checksumValue": hashlib.sha1(data).hexdigest()},
                      {"algorithm": "SHA256", "checksumValue": hashlib.sha256(data).hexdigest()}],
        "licenseConcluded": NO_ASSERTION,
        "copyrightText": NO_ASSERTION,
    }


def described_package(name, version, **more):
    """A package, of which nothing was looked at but its name and version unless `more` says else."""
    return {"SPDXID": "SPDXRef-Package-" + "".join(c if c.isalnum() else "-" for c in name), "name": name,
            "versionInfo": version, "downloadLocation": NO_ASSERTION, "filesAnalyzed": False, **more}


def verification_code(files):
    """SPDX's sum of all files of a package: that of their sorted SHA-1 sums."""
    sums = sorted(file["checksums"][0]["checksumValue"] for file in files)
    return hashlib.sha1("".join(sums).encode()).hexdigest()


def main(folder, facts_file):
    """Prints the document."""
    folder = Path(folder)
    facts = read_facts(facts_file)
    paths = sorted(p for p in folder.rglob("*") if p.is_file() and not p.is_symlink())
    files = [described_file(number, path, folder) for number, path in enumerate(paths, 1)]
    archive = described_package(
        folder.name, facts["version"], filesAnalyzed=True, licenseConcluded=NO_ASSERTION,
        packageVerificationCode={"packageVerificationCodeValue": verification_code(files)},
        hasFiles=[file["SPDXID"] for file in files])
    packages = [archive]
    relationships = [("SPDXRef-DOCUMENT", "DESCRIBES", archive["SPDXID"])]

    def add(package, kind, of_archive=True):
        packages.append(package)
        ids = (package["SPDXID"], archive["SPDXID"])
        one, other = ids if of_archive else reversed(ids)
        relationships.append((one, kind, other))

    compiler, compiler_version = facts["compiler"].split()
    add(described_package(compiler, compiler_version), "BUILD_TOOL_OF")
    if (folder / "bin/korvel-layout").exists():
        # Its headers and libraries are in the program.
        for package in (facts["header_libraries"] + " " + facts["static_libraries"]).split():
            add(described_package(package, debian_version(package), supplier="Organization: Debian"),
                "STATIC_LINK", of_archive=False)
    elif not (folder / "include/hxl_sim.h").exists():
        add(described_package("libhxluser", "of the driver"), "RUNTIME_DEPENDENCY_OF")

    made = datetime.fromtimestamp(int(os.environ.get("SOURCE_DATE_EPOCH", "0")), timezone.utc)
    document = {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": folder.name,
        "documentNamespace": f"urn:korvel_utils:{folder.name}:{verification_code(files)}",
        "creationInfo": {"created": made.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: make_sbom.py"]},
        "packages": packages,
        "files": files,
        "relationships": [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
                          for one, kind, other in relationships],
    }
    print(json.dumps(document, indent=1))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        raise SystemExit(__doc__)
    main(sys.argv[1], sys.argv[2])
