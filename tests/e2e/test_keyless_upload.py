"""Uploads without a key on the player's disk: the agent, the signer that a studio deploys, and a store that judges."""
import base64
import contextlib
import hashlib
import http.client
import json
import re
import socket
import sys
import threading
import time
from urllib.parse import quote, urlsplit

import pytest

from package_reader import read_package
from raw_server import read_request, serving
from signer import KEY_ID, Signer, settings
from store.client import SECRET_KEY
from submissions import write_small
from wine import ROOT, wait_until

BODY = b"a package"


def question(body=BODY, **changes):
    digest = hashlib.md5(body)
    return {"Key": digest.hexdigest(), "Size": len(body), "ContentMD5": base64.b64encode(digest.digest()).decode(),
            **changes}


@pytest.fixture
def ask(store, bucket, monkeypatch):
    """Calls the signer as a function behind an address is called; gives the status and the answer."""
    monkeypatch.syspath_prepend(str(ROOT / "Tools" / "UploadSigner"))
    monkeypatch.delitem(sys.modules, "upload_signer", raising=False)
    for name, value in (settings(store.endpoint, bucket) | {"ALLOWED_HEADERS": '{"X-Build": ["7", "8"]}'}).items():
        monkeypatch.setenv(name, value)
    import upload_signer

    def call(body, build="8"):
        text = body if isinstance(body, str) else json.dumps(body)
        result = upload_signer.handler({"headers": {"x-build": build}, "body": text}, None)
        return result["statusCode"], json.loads(result["body"])
    return call


def test_the_signer_signs_only_packages(ask):
    for build, status, asked in (
            ("7", 200, question()), ("7", 200, question(Size=64 << 20)), ("9", 403, question()),
            ("7", 403, question(Size=(64 << 20) + 1)), ("7", 403, question(Size=0)), ("7", 403, question(Size=True)),
            ("7", 400, question(Key="../" + "0" * 29)), ("7", 400, question(Key=question()["Key"] + "\n")),
            ("7", 400, question(ContentMD5=question(b"other")["ContentMD5"])), ("7", 400, {}), ("7", 400, []),
            ("7", 400, "{"), ("7", 400, json.dumps(question()) + " " * 4096)):
        assert ask(asked, build)[0] == status, asked


def test_the_store_takes_only_what_was_signed(ask, store, bucket):
    status, answer = ask(question())
    assert status == 200
    address = urlsplit(answer["Url"])
    other = store.make_bucket(bucket[:50] + "-other")

    def put(body=BODY, path=address.path, md5=question()["ContentMD5"]):
        connection = http.client.HTTPConnection(address.netloc, timeout=10)
        with contextlib.closing(connection):
            connection.request("PUT", f"{path}?{address.query}", body, answer["Headers"] | ({"Content-MD5": md5} if md5 else {}))
            return connection.getresponse().status

    assert put(BODY[::-1]) == 400  # another body of that length
    assert put(BODY + b"!") == 403 and put(b"other", md5=question(b"other")["ContentMD5"]) == 403 and put(md5=None) == 403
    assert put(path=f"/{bucket}/{'0' * 32}") == 403 and put(path=f"/{other}/{question()['Key']}") == 403
    store.set_faults({"kind": "clock", "seconds": 16 * 60})
    assert put() == 403
    assert store.keys(bucket) == store.keys(other) == []
    assert put() == put() == 200  # a replay brings the same object
    assert store.get(bucket, question()["Key"]) == BODY and store.keys(bucket) == [question()["Key"]]


def relay(port, trace):
    """Passes connections on to the port, and adds what goes through to the trace."""
    def pump(source, target):
        with contextlib.suppress(OSError):
            while block := source.recv(1 << 16):
                trace.append(block)
                target.sendall(block)
            target.shutdown(socket.SHUT_WR)

    def handle(connection, _):
        with socket.create_connection(("127.0.0.1", port)) as server:
            back = threading.Thread(target=pump, args=(server, connection))
            back.start()
            pump(connection, server)
            back.join()
    return serving(handle)


def run(site, failures):
    with site.start_with_game() as beside:
        wait_until(lambda: beside.agent.stderr.count(b" Failed to upload ") >= failures
                   and (failures or site.all_sent()), 45, "every upload ended")
        assert beside.quit() == 0
    return beside.agent.text


def test_a_package_arrives_and_nothing_secret_passes(site, store, bucket):
    write_small(site.dumps, "one")
    trace = []
    with (relay(store.ports["http"], trace) as store_port,
          Signer(f"http://127.0.0.1:{store_port}", bucket, ALLOWED_HEADERS='{"X-Build": ["7"]}') as signer,
          relay(signer.port, trace) as port):
        site.use_signer(f"http://127.0.0.1:{port}/sign?game=1", SignerHeaders={"X-Build": "6"})
        said = run(site, 1)
        site.configuration["Uploader"]["SignerHeaders"]["X-Build"] = "7"
        store.set_faults({"kind": "clock", "seconds": 16 * 60})
        said += run(site, 1)
        said += run(site, 0)
    assert re.findall(r" Upload stopped at: (.*)\r", said) == ["Signer refused the package: 403",
                                                              "Store refused the object: 403 AccessDenied"]
    (key,) = store.keys(bucket)
    data = store.get(bucket, key)
    assert read_package(data).header["Key"] == "one"
    passed = b"".join(trace)
    for expected in (b"POST /sign?game=1 HTTP/1.1\r\n", b"X-Build: 7\r\n", json.dumps(question(data)).encode()):
        assert expected in passed
    for text in (passed.decode("latin-1"), said, site.write_configuration().read_text()):
        assert SECRET_KEY not in text and quote(SECRET_KEY, safe="") not in text
    assert "X-Amz" not in said and "X-Build" not in said and KEY_ID not in site.write_configuration().read_text()


class Liar:
    """A signer that asks the honest one and changes question or answer, each time by the next of its lies."""

    def __init__(self, signer, lies):
        self._signer, self._lies, self._lock = signer, list(lies), threading.Lock()

    def __call__(self, connection, over):
        _, body = read_request(connection)
        with self._lock:
            lie = self._lies.pop(0)
        answer = lie(self, json.loads(body), connection, over)
        if isinstance(answer, dict):
            answer = json.dumps(answer).encode()
        if answer is not None:
            connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: %d\r\n\r\n" % len(answer) + answer)

    def honest(self, asked, **changes):
        connection = http.client.HTTPConnection("127.0.0.1", self._signer.port, timeout=10)
        with contextlib.closing(connection):
            connection.request("POST", "/", json.dumps(asked | changes))
            return json.loads(connection.getresponse().read())

    def drips(self, connection, over):
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 9999\r\n\r\n{")
        while not over.wait(0.5):
            connection.sendall(b" ")


def slow(liar, asked, *_):
    time.sleep(3)
    return liar.honest(asked)


REFUSED = "Store refused the object: 403 SignatureDoesNotMatch"
LIES = [  # and the step at which the upload stops; those that take longest first
    (lambda _, __, ___, over: over.wait(60) and None, "Signer: Failed to receive HTTP response: 12002"),
    (lambda liar, _, connection, over: liar.drips(connection, over), r"Signer: Failed to read HTTP answer: \d+"),
    (lambda liar, asked, *_: liar.honest(asked | question(b"other" * 9, Size=asked["Size"])), REFUSED),
    (lambda liar, asked, *_: liar.honest(asked, Size=asked["Size"] + 1), REFUSED),
    (lambda *_: {"Url": "https://127.0.0.1:9/", "Headers": {}}, "Failed to send HTTP request: 12029"),
    (lambda liar, asked, *_: liar.honest(asked) | {"Pad": "x" * (64 << 10)}, "Signer: HTTP answer is too long"),
    (lambda *_: b"", "Signer's answer is not understood"),
    (lambda *_: None, r"Signer: Failed to receive HTTP response: \d+"),
    (slow, None),
]


@pytest.mark.limit(120)
def test_a_bad_signer_keeps_the_packages(site, store, bucket, signer):
    for number in range(len(LIES)):
        write_small(site.dumps, str(number))
    reasons = [reason for _, reason in LIES if reason]
    with serving(Liar(signer, [lie for lie, _ in LIES])) as port:
        site.use_signer(f"http://127.0.0.1:{port}")
        said = run(site, len(reasons))
    stops = re.findall(r" Upload stopped at: (.*)\r", said)
    for reason in reasons:
        assert [stop for stop in stops if re.fullmatch(reason, stop)], f"{reason}: {stops}"
    assert len(stops) == len(reasons) == len(site.waiting_packages()) and "X-Amz" not in said
    site.configuration["Uploader"]["SignerUrl"] = signer.url
    run(site, 0)
    assert len(store.keys(bucket)) == len(LIES)


def test_a_run_asks_the_signer_again(site, store, bucket, signer):
    busy = b"HTTP/1.1 503 Busy\r\nRetry-After: 1\r\nContent-Length: 0\r\n\r\n"
    attempts = [lambda _, __, connection, ___: connection.sendall(busy), *[lambda liar, asked, *_: liar.honest(asked)] * 2]
    write_small(site.dumps, "one")
    store.set_faults({"kind": "status", "status": 500, "code": "InternalError"})
    with serving(Liar(signer, attempts)) as port:
        site.use_signer(f"http://127.0.0.1:{port}", RetryFailedUploads=True, TimeBetweenRetries=10, ReceiptFile="receipts")
        start = time.time()
        said = run(site, 0)
    assert re.findall(r" Upload stopped at: (.*)\r", said) == ["Signer refused the package: 503",
                                                              "Store refused the object: 500 InternalError"]
    assert time.time() - start >= 1
    assert [json.loads((site.folder / "app" / "receipts").read_text())["Key"]] == store.keys(bucket)
