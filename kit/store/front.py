"""The layer in front of the store: a log of the requests, and the faults that a test asks for.

A fault hits uploads (PUT of an object) only. It is a dictionary with "kind", "times" (how many uploads, default 1)
and what the kind needs:

  status   answer "status" with error "code" and "headers" instead of storing; "early": without reading the body
  delay    wait "ms", then serve as usual
  hang     read the body, then send nothing for "ms" (default: ten minutes), then close
  reset    reset the connection "at" the first, middle or last byte of the body
  close    read the body, close without an answer
  bad-etag store the object, answer with another ETag
  drip     store the object, answer one byte every "ms"
  cut      store the object, end the connection within the answer's head or body ("at": "head" or "body")
  clock    judge the request by a clock that is "seconds" ahead
"""
import os
import re
import socket
import struct
import time
from unittest import mock

import eventlet
from swift.common.middleware.s3api.utils import S3Timestamp

from store.swift_server import ACCOUNT, USER

BLOCK = 1 << 16
LOGGED_HEADERS = {"HTTP_HOST": "host", "HTTP_CONTENT_MD5": "content-md5", "CONTENT_TYPE": "content-type",
                  "HTTP_X_AMZ_CONTENT_SHA256": "sha256", "HTTP_USER_AGENT": "user-agent"}


class Disconnect(eventlet.greenlet.GreenletExit):
    """Ends the connection without an answer: not an Exception, so the server writes no 500."""


def read_body(environ, length=None):
    """Reads and drops the body, or its first length bytes."""
    left = body_length(environ) if length is None else length
    while left > 0 and (block := environ["wsgi.input"].read(min(BLOCK, left))):
        left -= len(block)


def body_length(environ):
    return int(environ.get("CONTENT_LENGTH") or 0)


def connection_of(environ):
    wrapped = environ["wsgi.input"].get_socket()
    return getattr(wrapped, "fd", wrapped)


def reset(connection):
    """Drops the connection at once. Eventlet would shut it down properly, so another socket takes its descriptor."""
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    with socket.socket() as other:
        os.dup2(other.fileno(), connection.fileno())


class Front:
    def __init__(self, application, cache, access_key):
        self._application = application
        self._cache = cache
        self._access_key = access_key
        self._in_flight = set()
        self.faults = []
        self.log = []

    def reset(self):
        """Forgets faults, log and open requests: a killed client's request may still wait for its body."""
        self._in_flight = set()
        self.faults.clear()
        self.log.clear()

    def __call__(self, environ, start_response):
        environ["swift.cache"] = self._cache
        entry = self._log_request(environ)

        def start(status, headers, exc_info=None):
            entry["status"] = int(status.split()[0])
            return start_response(status, headers)

        in_flight = self._in_flight
        in_flight.add(id(entry))
        entry["in_flight"] = len(in_flight)
        try:
            return self._answer(environ, start, entry)
        finally:
            in_flight.discard(id(entry))
            entry["seconds"] = time.time() - entry["time"]

    def _log_request(self, environ):
        entry = {"time": time.time(), "method": environ["REQUEST_METHOD"], "scheme": environ["wsgi.url_scheme"],
                 "path": environ.get("RAW_PATH_INFO", environ["PATH_INFO"]), "status": None,
                 "length": body_length(environ)}
        entry.update((name, environ[key]) for key, name in LOGGED_HEADERS.items() if key in environ)
        self.log.append(entry)
        return entry

    def _answer(self, environ, start, entry):
        fault = self._next_fault(entry)
        if fault:
            handler = getattr(self, "_" + fault["kind"].replace("-", "_"))
            return handler(fault, environ, start)
        return self._store(environ, start)

    def _next_fault(self, entry):
        if entry["method"] != "PUT" or not entry["length"] or not self.faults:
            return None
        fault = self.faults[0]
        fault["times"] = fault.get("times", 1) - 1
        if fault["times"] <= 0:
            self.faults.pop(0)
        return fault

    def _store(self, environ, start):
        """Passes the request on. In a header the key id is not part of what is signed, so Swift's own user can replace
        it; a signed address must name that user itself."""
        if "X-Amz-Credential=" in environ.get("QUERY_STRING", ""):
            return self._application(environ, start)
        authorization = environ.get("HTTP_AUTHORIZATION", "")
        wanted, stand_in = f"Credential={self._access_key}/", f"Credential={ACCOUNT}:{USER}/"
        if wanted not in authorization:
            read_body(environ)
            return self._error(start, 403, "InvalidAccessKeyId" if authorization else "AccessDenied")
        environ["HTTP_AUTHORIZATION"] = authorization.replace(wanted, stand_in, 1)
        return self._application(environ, start)

    @staticmethod
    def _error(start, status, code, headers=()):
        body = f'<?xml version="1.0" encoding="UTF-8"?>\n<Error><Code>{code}</Code></Error>'.encode()
        start(f"{status} {code}", [("Content-Type", "application/xml"), ("Content-Length", str(len(body))), *headers])
        return [body]

    # One method for each kind of fault.

    def _status(self, fault, environ, start):
        if not fault.get("early"):
            read_body(environ)
        return self._error(start, fault["status"], fault["code"], map(tuple, fault.get("headers", ())))

    def _delay(self, fault, environ, start):
        eventlet.sleep(fault["ms"] / 1000)
        return self._store(environ, start)

    def _hang(self, fault, environ, start):
        read_body(environ)
        eventlet.sleep(fault.get("ms", 600_000) / 1000)
        raise Disconnect

    def _reset(self, fault, environ, start):
        length = body_length(environ)
        read_body(environ, {"first": 1, "middle": length // 2, "last": length}[fault["at"]])
        reset(connection_of(environ))
        raise Disconnect

    def _close(self, fault, environ, start):
        read_body(environ)
        raise Disconnect

    def _bad_etag(self, fault, environ, start):
        def replaced(status, headers, exc_info=None):
            return start(status, [(name, f'"{"0" * 32}"' if name.lower() == "etag" else value)
                                  for name, value in headers])
        return self._store(environ, replaced)

    def _drip(self, fault, environ, start):
        self._by_hand(environ, start, lambda answer: (answer[i:i + 1] for i in range(len(answer))), fault["ms"] / 1000)

    def _cut(self, fault, environ, start):
        def short(answer):
            if fault["at"] == "head":
                yield answer[:answer.lower().index(b"etag: ") + 12]
            else:
                yield re.sub(rb"(?i)(content-length: )0\r", rb"\g<1>1000\r", answer) + b"not a thousand bytes"

        self._by_hand(environ, start, short)

    def _by_hand(self, environ, start, pieces_of, pause=0):
        """Stores the object and sends the answer itself, in the pieces that pieces_of makes of it."""
        connection = connection_of(environ)  # Swift replaces the input
        head = []

        def keep(status, headers, exc_info=None):
            start(status, headers)
            head.append(f"HTTP/1.1 {status}\r\n" + "".join(f"{name}: {value}\r\n" for name, value in headers) + "\r\n")

        body = b"".join(self._store(environ, keep))
        for piece in pieces_of(head[0].encode() + body):
            connection.sendall(piece)
            eventlet.sleep(pause)
        raise Disconnect

    def _clock(self, fault, environ, start):
        with mock.patch.object(S3Timestamp, "now", lambda: S3Timestamp(time.time() + fault["seconds"])):
            return self._store(environ, start)
