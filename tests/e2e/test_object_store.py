"""The clients of the store without the agent: one object against a real store, and against peers that no store
resembles. Each client is the probe of a build: WinHTTP's under Wine, the AWS SDK's if the native build has it."""
import contextlib
import hashlib
import os
import re
import socket
import subprocess
from pathlib import Path

import pytest

import wine
from raw_server import read_request, serving
from store.client import ACCESS_KEY, SECRET_KEY

TIMEOUT = 1.5  # seconds for a request
NATIVE_BIN = Path(os.environ.get("MORVANE_NATIVE_BIN", wine.ROOT / "build" / "native" / "bin"))
NATIVE_PROBE = NATIVE_BIN / "ObjectStoreProbe"
LINE = re.compile(r'result="(.*)" etag=\[(.*)\] status=(\d+) retry-after=(\d+) ms=(\d+)')


class Probe:
    def __init__(self, name, bucket, scratch):
        self._windows = name == "winhttp"
        self._command = ([wine.ROOT / "scripts" / "run-wine.sh", wine.BIN / "ObjectStoreProbe.exe"] if self._windows
                         else [NATIVE_PROBE])
        # Curl, below the SDK, notices a transfer that stands still only after some seconds more.
        self.latest = TIMEOUT + (1 if self._windows else 8)
        self._file = scratch / "object"
        self._arguments = {"bucket": bucket, "accessKey": ACCESS_KEY, "secretKey": SECRET_KEY,
                           "requestTimeout": int(TIMEOUT * 1000)}

    def put(self, body, **arguments):
        """(succeeded, ETag, status, seconds of Retry-After, seconds that it took)"""
        self._file.write_bytes(body)
        path = wine.windows_path(self._file) if self._windows else self._file
        arguments = {**self._arguments, "file": path, **arguments}
        run = subprocess.run([*self._command, *(f"{name}={value}" for name, value in arguments.items())],
                             env=wine.environment(), capture_output=True, text=True, timeout=50, check=False)
        [(text, tag, status, retry_after, ms)] = LINE.findall(run.stdout)
        assert run.returncode == (0 if text == "OK" else 1), run.stdout + run.stderr
        assert SECRET_KEY not in run.stdout + run.stderr
        return text == "OK", tag, int(status), int(retry_after), int(ms) / 1000

    def fails(self, body, **arguments):
        """The seconds until the upload failed."""
        done, *_, seconds = self.put(body, **arguments)
        assert not done
        return seconds


@pytest.fixture(params=["winhttp", "aws-sdk"])
def probe(request, bucket, scratch):
    if request.param == "aws-sdk" and not NATIVE_PROBE.is_file():
        pytest.skip("the native build found no AWS SDK")
    return Probe(request.param, bucket, scratch)


def test_an_object_arrives(probe, store, bucket):
    body = bytes(16 << 20)
    digest = hashlib.md5(body).hexdigest()
    assert probe.put(body, endpoint=store.endpoint, requestTimeout=30000)[:2] == (True, f'"{digest}"')
    assert store.keys(bucket) == [digest]


@pytest.mark.parametrize("arguments", [{"secretKey": "wrong"}, {"length": -5}, {"length": 0}, {"length": 4}], ids=str)
def test_a_refusal_is_a_failure(probe, store, bucket, arguments):
    probe.fails(b"hello", endpoint=store.endpoint, **arguments)
    assert not store.keys(bucket)


def never_reading(_, over):
    over.wait(30)


def dripping(connection, over):
    read_request(connection)
    connection.sendall(b"HTTP/1.1 200 OK\r\nx: ")
    while not over.wait(0.1):
        connection.sendall(b"y")


def slowly_reading(connection, over):
    while not over.wait(0.2) and connection.recv(100):
        pass


@pytest.mark.parametrize("scheme, peer, size", [
    ("http", dripping, 10), ("http", never_reading, 32 << 20), ("http", slowly_reading, 32 << 20),
    ("https", never_reading, 10)], ids=["drip", "never-read", "slow-read", "no-tls"])
def test_no_peer_holds_a_client(probe, scheme, peer, size):
    with serving(peer) as port:
        assert probe.fails(b"x" * size, endpoint=f"{scheme}://127.0.0.1:{port}") < probe.latest + size / (32 << 20)


def test_connecting_ends_with_its_own_timeout(probe):
    """A full backlog: the system answers no further connection."""
    with socket.create_server(("127.0.0.1", 0), backlog=0) as server, contextlib.ExitStack() as waiting:
        for _ in range(4):
            client = waiting.enter_context(socket.socket())
            client.setblocking(False)
            client.connect_ex(server.getsockname())
        seconds = probe.fails(b"x", endpoint=f"http://127.0.0.1:{server.getsockname()[1]}", connectTimeout=500)
    assert 0.4 < seconds < 1


@pytest.mark.parametrize("answer, expected", [
    (b'HTTP/1.1 200 OK\r\nETag: "a-B"\r\nContent-Length: 0\r\n\r\n', (True, '"a-B"', 200, 0)),
    (b"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", (True, "", 200, 0)),
    (b'HTTP/1.1 401 No\r\nWWW-Authenticate: NTLM\r\nRetry-After: 7\r\nContent-Length: 0\r\n\r\n', (False, "", 401, 7)),
    (b"", (False, "", 0, 0)),
], ids=["tag", "no-tag", "password-asked", "nothing"])
def test_answers(probe, answer, expected):
    heads = []

    def answering(connection, _):
        heads.append(read_request(connection)[0])
        connection.sendall(answer)

    with serving(answering) as port:
        assert probe.put(b"hello", endpoint=f"http://127.0.0.1:{port}")[:4] == expected
    assert len(heads) == 1 and "NTLM" not in heads[0]
    head = heads[0].lower()  # over http the signature covers the body
    assert f"x-amz-content-sha256: {hashlib.sha256(b'hello').hexdigest()}" in head
    assert "content-md5;" in head and "x-amz-content-sha256;" in head
