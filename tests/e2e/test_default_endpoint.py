"""Without the optional keys the agent speaks https to Amazon's own names, and only to a server that proves to be it.

The test runs this file as a program in network and mount namespaces of its own, which nothing can leave. There the names
of Amazon's endpoint lead to the local store on port 443, and only the test's authority is trusted.
"""
import fcntl
import os
import shutil
import socket
import struct
import subprocess
import sys
from pathlib import Path

import pytest

import wine
from agent import Site
from package_reader import read_package
from store.certificates import Authority
from store.client import Store
from submissions import write_small

NAMESPACES = ["unshare", "--mount", "--net"]
DOMAIN = "s3.us-east-1.amazonaws.com"
BUCKET = "default-endpoint"


def bring_loopback_up():
    get_flags, set_flags, up = 0x8913, 0x8914, 1
    with socket.socket() as any_socket:
        request = fcntl.ioctl(any_socket, get_flags, struct.pack("16sh14x", b"lo", 0))
        _, flags = struct.unpack("16sh14x", request)
        fcntl.ioctl(any_socket, set_flags, struct.pack("16sh14x", b"lo", flags | up))


def put_in_place(path, content, folder):
    """Replaces a system file, in this mount namespace only."""
    replacement = folder / path.name
    replacement.write_text(content)
    subprocess.run(["mount", "--bind", replacement, path], check=True)


def upload(folder, pem):
    """Sends a submission to a store with that certificate; returns the agent's errors, the uploads and the objects."""
    with Store(folder / "store", "--https", "443", "--pem", str(pem)) as store:
        store.make_bucket(BUCKET)
        site = Site(folder / "site", store, BUCKET)
        for key in ("EndpointOverride", "UseVirtualAddressing"):
            del site.configuration["Uploader"][key]
        write_small(site.dumps, "one")
        with site.start_with_game() as beside:
            beside.agent.wait_for("package", 20)
            wine.wait_until(lambda: site.all_sent() or beside.agent.stderr, 20, "an upload that ended")
            assert beside.quit() == 0
        objects = {key: store.get(BUCKET, key) for key in store.keys(BUCKET)}
        return beside.agent.stderr.decode(), store.uploads(), objects


def check_trusted(folder, pem):
    errors, (request,), objects = upload(folder, pem)
    ((key, data),) = objects.items()
    assert errors == "" and read_package(data).header["Key"] == "one"
    assert [request[name] for name in ("scheme", "host", "path", "sha256")] == [
        "https", f"{BUCKET}.{DOMAIN}", f"/{key}", "UNSIGNED-PAYLOAD"] and request["content-md5"]


def check_refused(folder, pem):
    errors, requests, objects = upload(folder, pem)
    assert errors.count(". Error=Failed to put stream in S3 bucket\r\n") == 1, errors
    assert not requests and not objects, "sent to a server that did not prove its name"


def main(folder):
    bring_loopback_up()
    trusted, unknown = Authority(folder, "trusted"), Authority(folder, "unknown")
    put_in_place(Path("/etc/hosts"), f"127.0.0.1 localhost {DOMAIN} {BUCKET}.{DOMAIN}\n", folder)
    put_in_place(Path("/etc/ssl/certs/ca-certificates.crt"), trusted.certificate.read_text(), folder)
    wine.PREFIX = folder / "wine"  # its server must live in this namespace
    wine.make_prefix()
    try:
        check_trusted(folder / "trusted", trusted.issue(f"*.{DOMAIN}"))
        check_refused(folder / "unknown", unknown.issue(f"*.{DOMAIN}"))
        check_refused(folder / "other name", trusted.issue("*.s3.eu-west-1.amazonaws.com"))
        check_refused(folder / "expired", trusted.issue(f"*.{DOMAIN}", days=-1))
    finally:
        wine.stop_prefix()
        shutil.rmtree(wine.PREFIX)


@pytest.mark.limit(120)
def test_the_default_endpoint_is_amazons_over_https(scratch):
    if subprocess.run([*NAMESPACES, "true"], check=False, capture_output=True).returncode != 0:
        pytest.skip("needs the right to make network and mount namespaces (root with CAP_SYS_ADMIN)")
    run = subprocess.run([*NAMESPACES, sys.executable, __file__, scratch],
                         env={**os.environ, "PYTHONPATH": str(wine.ROOT / "kit")},
                         check=False, capture_output=True, text=True, timeout=110)
    assert run.returncode == 0, run.stdout + run.stderr


if __name__ == "__main__":
    main(Path(sys.argv[1]))
