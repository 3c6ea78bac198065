"""A local S3 store for tests and the demo, on 127.0.0.1 only.

  /usr/bin/python3 -m store FOLDER --access-key ID --secret-key KEY [--http PORT] [--https PORT --pem FILE]

FOLDER keeps the objects. Port 0 lets the system choose. Prints one line of JSON with the ports when it serves, and
ends when its standard input is closed, so it never outlives the program that started it. The control port takes
POST /faults (a list, see front.py), POST /reset (no faults, empty log), GET /log.
"""
import eventlet
import eventlet.debug

eventlet.monkey_patch(all=False, socket=True, select=True, thread=True, time=True)

# pylint: disable=wrong-import-position
import argparse
import json
import logging
import os
import sys

from store import front, swift_server


def parse_arguments():
    parser = argparse.ArgumentParser(prog="store")
    parser.add_argument("folder")
    parser.add_argument("--access-key", required=True)
    parser.add_argument("--secret-key", required=True)
    parser.add_argument("--http", type=int, default=0)
    parser.add_argument("--https", type=int)
    parser.add_argument("--pem", help="certificate and private key for --https")
    parser.add_argument("--region", default="us-east-1")
    parser.add_argument("--domain", default="s3.us-east-1.amazonaws.com")
    return parser.parse_args()


def control(store_front):
    def application(environ, start_response):
        body = environ["wsgi.input"].read()
        answer = {}
        if environ["PATH_INFO"] == "/faults":
            store_front.faults[:] = json.loads(body)
        elif environ["PATH_INFO"] == "/reset":
            store_front.reset()
        elif environ["PATH_INFO"] == "/log":
            answer = store_front.log
        else:
            start_response("404 Not Found", [])
            return [b""]
        start_response("200 OK", [("Content-Type", "application/json")])
        return [json.dumps(answer).encode()]
    return application


def listen_tls(port, pem):
    return eventlet.wrap_ssl(swift_server.listen(port), certfile=pem, keyfile=pem, server_side=True)


def main():
    options = parse_arguments()
    logging.disable(logging.WARNING)
    eventlet.debug.hub_exceptions(False)  # clients may refuse our certificate
    swift = swift_server.start(options.folder, options.secret_key, options.region, options.domain)
    store_front = front.Front(swift, swift_server.MemoryCache(), options.access_key)

    sockets = {"http": swift_server.listen(options.http), "control": swift_server.listen(0)}
    if options.https is not None:
        sockets["https"] = listen_tls(options.https, options.pem)
    ports = {name: socket.getsockname()[1] for name, socket in sockets.items()}
    for name, socket in sockets.items():
        swift_server.serve(socket, control(store_front) if name == "control" else store_front)

    print(json.dumps(ports), flush=True)
    while eventlet.tpool.execute(sys.stdin.read, 1):
        pass
    os._exit(0)  # green threads still hold connections


main()
