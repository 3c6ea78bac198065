"""A store that fails in every way: the package stays, and a later run sends it, or this one if it may try again."""
import json
import re
import shutil
import time

import pytest

from store.client import SECRET_KEY
from submissions import write_small
from wine import wait_until

FAILED = "Failed to put stream in S3 bucket"
WRONG_ETAG = "MD5 of stream received by S3 doesn't match the MD5 we computed locally"
NO_ANSWER = r"Failed to \w+ HTTP [a-z ]+: \d+"  # the step and the number depend on when the end is noticed
REQUEST_TIMEOUT = 30

FAULTS = [  # and what the log says of it
    ({"kind": "status", "status": 503, "code": "SlowDown", "early": True}, "Store refused the object: 503 SlowDown"),
    ({"kind": "status", "status": 307, "code": "TemporaryRedirect", "headers": [["Location", "/elsewhere/x"]]},
     "Store refused the object: 307 TemporaryRedirect"),
    ({"kind": "reset", "at": "middle"}, NO_ANSWER), ({"kind": "close"}, NO_ANSWER),
    # Wine takes what came of a head for all of it, half an ETag included. Either error keeps the package.
    ({"kind": "cut", "at": "head"}, WRONG_ETAG), ({"kind": "bad-etag"}, WRONG_ETAG),
]
SKEWED = ({"kind": "clock", "seconds": 3600}, "Store refused the object: 403 RequestTimeTooSkewed")  # of every request meanwhile


def run_until_failed(site, reasons):
    """As many packages as there are reasons, each tried once."""
    with site.start_with_game() as beside:
        wait_until(lambda: beside.agent.stderr.count(b" Failed to upload ") == len(reasons), 30, "every upload failed")
        assert beside.quit() == 0
    said = beside.agent.stderr.decode()
    ends = re.findall(rf"(?: Upload stopped at: | Failed to upload .*Error=(?={WRONG_ETAG}))(.*)\r\n", said)
    assert len(ends) == len(reasons), said
    for reason in reasons:
        end = next((end for end in ends if re.fullmatch(reason, end)), None)
        assert end, f"{reason}: {said}"
        ends.remove(end)
    assert SECRET_KEY not in said


def assert_failed(agent, count, error=FAILED):
    errors = agent.stderr.decode()
    assert errors.count(" Failed to upload package in folder ") == errors.count(f". Error={error}\r\n") == count, errors


def assert_later_run_sends(site, store, count):
    store.reset()
    assert len(site.waiting_packages()) == count
    assert site.run_until_sent().stderr == b""
    assert len(site.sent_packages()) == count


@pytest.mark.parametrize("faults", [FAULTS, [SKEWED]], ids=["broken", "skewed"])
def test_a_failing_store_keeps_the_package(site, store, faults):
    for number in range(len(faults)):
        write_small(site.dumps, f"kept-{number}")
    store.set_faults(*(fault for fault, _ in faults))
    run_until_failed(site, [reason for _, reason in faults])
    assert len(store.uploads()) == len(faults)  # no second attempt within a run
    assert_later_run_sends(site, store, len(faults))


def status(number, code, times=1, **more):
    return {"kind": "status", "status": number, "code": code, "times": times, **more}


@pytest.mark.parametrize("fault, settings, statuses, seconds", [
    (status(503, "SlowDown", 2), {}, [503, 503, 200], 0.3),
    (status(503, "SlowDown", headers=[["Retry-After", "2"]]), {}, [503, 200], 2),
    (status(403, "AccessDenied", 9), {}, [403, 403], 0.1),
    (status(503, "SlowDown"), {"TimeBetweenRetries": 60000}, [503], 0),  # the run ends before
    ({"kind": "bad-etag"}, {"VerifyETag": False}, [200], 0),
], ids=["busy twice", "asked to wait", "refused", "stopped", "foreign ETag"])
def test_a_run_tries_again(site, store, bucket, fault, settings, statuses, seconds):
    site.configuration["Uploader"] |= {"RetryFailedUploads": True, "TimeBetweenRetries": 100,
                                       "ReceiptFile": "receipts.jsonl", **settings}
    write_small(site.dumps, "tried")
    store.set_faults(fault)
    with site.start_with_game() as beside:
        if statuses[-1] == 200:
            site.wait_all_sent()
        else:
            beside.agent.wait_for(" Leaving package in " if len(statuses) > 1 else " Trying package in ", 30)
        start = time.time()
        assert beside.quit() == 0
        assert time.time() - start < 2
    uploads = store.uploads()
    assert [upload["status"] for upload in uploads] == statuses
    assert uploads[-1]["time"] - uploads[0]["time"] >= seconds
    if statuses[-1] != 200:
        assert_later_run_sends(site, store, 1)
    receipts = (site.folder / "app" / "receipts.jsonl").read_text().splitlines()
    assert [(receipt["Submission"], receipt["Key"], receipt["Size"]) for receipt in map(json.loads, receipts)] == [
        ("tried", key, len(store.get(bucket, key))) for key in store.keys(bucket)]


def test_a_package_that_goes_while_it_waits_is_forgotten(site, store):
    site.configuration["Uploader"] |= {"RetryFailedUploads": True, "TimeBetweenRetries": 100}
    write_small(site.dumps, "gone")
    store.set_faults(status(503, "SlowDown"), {"kind": "delay", "ms": 1500})
    with site.start_with_game() as beside:
        beside.agent.wait_for(" Trying package in ", 30)
        shutil.rmtree(site.packaged / "gone")
        write_small(site.dumps, "sent later than its attempt")
        site.wait_all_sent()
        assert beside.quit() == 0
    assert_failed(beside.agent, 1)
    assert len(store.uploads()) == 2 and b" Failed to load " not in beside.agent.stderr


@pytest.mark.parametrize("name, error", [
    ("PackagedDumps", 'Failed to write a receipt into ".*PackagedDumps". Error=Failed to open the file'),
    ("../receipts", 'ReceiptFile "../receipts" is not inside the application folder: no receipts are written'),
])
def test_without_a_receipt_a_package_is_sent(site, name, error):
    site.configuration["Uploader"]["ReceiptFile"] = name
    write_small(site.dumps, "sent")
    assert re.fullmatch(rf"\[.*\]\t {error}\r\n", site.run_until_sent().stderr.decode())
    assert len(site.sent_packages()) == 1 and not (site.folder / "receipts").exists()


@pytest.mark.parametrize("key, value, reason", [
    ("SecretKey", SECRET_KEY + "x", "Store refused the object: 403 SignatureDoesNotMatch"),
    ("BucketName", "no-such-bucket", "Store refused the object: 404 NoSuchBucket"),
    ("Region", "eu-west-1", "Store refused the object: 400 AuthorizationHeaderMalformed"),
    ("EndpointOverride", "http://127.0.0.1:9", "Failed to send HTTP request: 12029"),
    ("EndpointOverride", "http://no-such-host.invalid", "Failed to send HTTP request: 12007")])
def test_a_wrong_setting_keeps_the_package(site, store, key, value, reason):
    right = site.configuration["Uploader"].get(key, "us-east-1")
    site.configuration["Uploader"][key] = value
    write_small(site.dumps, "kept")
    run_until_failed(site, [reason])
    site.configuration["Uploader"][key] = right
    assert_later_run_sends(site, store, 1)


@pytest.mark.limit(120)
def test_a_silent_store_fails_within_the_request_timeout(site, store):
    """Four hang at once; each must fail after the request time-out and at most a second more."""
    for number in range(4):
        write_small(site.dumps, f"silent-{number}")
    store.set_faults({"kind": "hang", "times": 4})
    with site.start_with_game() as beside:
        wait_until(lambda: len(store.uploads()) == 4, 20, "four uploads")
        start = time.time()
        wait_until(lambda: beside.agent.stderr.count(b" Failed to upload ") == 4, REQUEST_TIMEOUT + 10, "four failures")
        assert REQUEST_TIMEOUT - 2 <= time.time() - start <= REQUEST_TIMEOUT + 1.5
        assert beside.quit() == 0
    assert_failed(beside.agent, 4)
    assert_later_run_sends(site, store, 4)


def test_uploads_in_flight_end_before_the_agent(site, store, bucket):
    """The latest four of six have begun when it is told to end."""
    uploader = site.configuration["Application"]["Processes"].pop("UploaderS3")
    for number in range(6):
        write_small(site.dumps, f"{number}")
    with site.start_with_game() as beside:
        wait_until(lambda: not site.waiting_dumps(), 20, "six packages")
        assert beside.quit() == 0
    site.configuration["Application"]["Processes"]["UploaderS3"] = uploader
    store.set_faults({"kind": "delay", "ms": 3000, "times": 4})
    with site.start_with_game() as beside:
        wait_until(lambda: len(store.uploads()) == 4, 20, "four uploads")
        assert beside.quit() == 0
    text = beside.agent.text
    assert " Waiting for 4 active uploads to complete\r\n" in text
    found = re.findall(r" Added .*\\(\d) to pending", text)
    assert re.findall(r" Starting upload thread .*\\(\d)\r", text) == found[:-5:-1]
    assert len(store.keys(bucket)) == 4 and len(site.waiting_packages()) == 2
