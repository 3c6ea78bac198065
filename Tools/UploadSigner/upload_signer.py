#!/usr/bin/env python3
"""Gives agents without a key an address for one package each; docs/keyless-upload.md says how to deploy it.

AWS Lambda calls handler behind a function URL. As a program it serves on 127.0.0.1 only, for tests, or behind a web
server of yours that speaks https:

  upload_signer.py [PORT]    prints the port when it serves; 0 or none: the system chooses it

The settings are environment variables. boto3 finds credentials and region by itself, in a function those of its role.

  BUCKET           where the packages go
  LARGEST_SIZE     bytes of a package; without it 64 MiB
  ALLOWED_HEADERS  JSON: {"x-build": ["1041", "1042"]} signs only for agents whose SignerHeaders say one of these
  STORE_ENDPOINT   scheme, host and port of an S3-compatible store; without it Amazon's
"""
import base64
import functools
import json
import os
import re
import sys
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

import boto3
from botocore.config import Config

SECONDS = 15 * 60  # that an address holds
LARGEST_QUESTION = 4096  # bytes
CONTENT_TYPE = "application/octet-stream"


class Refusal(Exception):
    """With the HTTP status and the reason."""


@functools.cache
def store():
    """Its addresses name the bucket's region, which boto3 leaves out otherwise: agents follow no redirection."""
    own = os.environ.get("STORE_ENDPOINT")
    regional = Config(signature_version="s3v4", s3={"addressing_style": "path" if own else "virtual",
                                                    "us_east_1_regional_endpoint": "regional"})
    return boto3.client("s3", endpoint_url=own or boto3.client("s3", config=regional).meta.endpoint_url,
                        config=regional)


def check_headers(headers):
    for name, values in json.loads(os.environ.get("ALLOWED_HEADERS", "{}")).items():
        if headers.get(name.lower()) not in values:
            raise Refusal(403, f"{name} is not allowed")


def read_question(text):
    """The key, the size and the Content-MD5 of a package. The key must be the MD5 of what is sent: so nobody can put
    other bytes under the key of a package that is there."""
    try:
        question = json.loads(text) if len(text) <= LARGEST_QUESTION else None
        key, size, md5 = question["Key"], question["Size"], question["ContentMD5"]
    except (ValueError, KeyError, TypeError):
        raise Refusal(400, "no question about a package") from None
    if not isinstance(key, str) or not re.fullmatch("[0-9a-f]{32}", key):
        raise Refusal(400, "Key is no MD5")
    if md5 != base64.b64encode(bytes.fromhex(key)).decode():
        raise Refusal(400, "ContentMD5 is not that of the key")
    if type(size) is not int or not 0 < size <= int(os.environ.get("LARGEST_SIZE", 64 << 20)):
        raise Refusal(403, "Size is not allowed")
    return key, size, md5


def sign(key, size, md5):
    """What S3 then refuses: another key, length or body, another type, and a request that comes late."""
    url = store().generate_presigned_url(
        "put_object", ExpiresIn=SECONDS, HttpMethod="PUT",
        Params={"Bucket": os.environ["BUCKET"], "Key": key, "ContentLength": size, "ContentMD5": md5,
                "ContentType": CONTENT_TYPE})
    return {"Url": url, "Headers": {"Content-Type": CONTENT_TYPE}}


def handler(event, _):
    """event and result have the form of a function URL's: names of headers are in lower case."""
    try:
        check_headers(event.get("headers", {}))
        text = event.get("body") or ""
        if event.get("isBase64Encoded"):
            text = base64.b64decode(text)
        status, answer = 200, sign(*read_question(text))
    except Refusal as refusal:
        status, answer = refusal.args[0], {"Error": refusal.args[1]}
        print(f"refused: {refusal.args[1]}", file=sys.stderr)
    return {"statusCode": status, "headers": {"Content-Type": "application/json"}, "body": json.dumps(answer)}


class Server(BaseHTTPRequestHandler):
    timeout = 30

    def do_POST(self):
        length = int(self.headers.get("Content-Length") or 0)
        body = self.rfile.read(length).decode("utf-8", "replace") if 0 < length <= LARGEST_QUESTION else ""
        result = handler({"headers": {name.lower(): value for name, value in self.headers.items()}, "body": body}, None)
        answer = result["body"].encode()
        self.send_response(result["statusCode"])
        for name, value in {**result["headers"], "Content-Length": str(len(answer))}.items():
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(answer)

    def log_message(self, *_):
        pass


if __name__ == "__main__":
    store()  # threads may share a client, but not make one at the same time
    with ThreadingHTTPServer(("127.0.0.1", int((sys.argv + ["0"])[1])), Server) as server:
        print(server.server_address[1], flush=True)
        server.serve_forever()
