"""OpenStack Swift with its S3 API in this one process: object, container and account server and the proxy.

It checks signature, digests, clock and region as strictly as S3, and was written by others, so it can judge the agent.
Eventlet must have patched the standard library before this module is imported.
"""
import json
import os

import eventlet
import eventlet.wsgi
from swift.common import ring, utils, wsgi
from swift.common.http_protocol import SwiftHttpProtocol

ACCOUNT, USER = "store", "agent"

SWIFT_CONF = """
[swift-hash]
swift_hash_path_suffix = tests
swift_hash_path_prefix = tests
[storage-policy:0]
name = one
default = yes
"""

STORAGE_CONF = """
[DEFAULT]
swift_dir = {folder}
devices = {folder}/devices
mount_check = false
fallocate_reserve = 0
[pipeline:main]
pipeline = server
[app:server]
use = egg:swift#{server}
"""

PROXY_CONF = """
[DEFAULT]
swift_dir = {folder}
[pipeline:main]
pipeline = catch_errors gatekeeper listing_formats s3api tempauth copy slo proxy-server
[app:proxy-server]
use = egg:swift#proxy
account_autocreate = true
node_timeout = 60
[filter:catch_errors]
use = egg:swift#catch_errors
[filter:gatekeeper]
use = egg:swift#gatekeeper
[filter:listing_formats]
use = egg:swift#listing_formats
[filter:copy]
use = egg:swift#copy
[filter:slo]
use = egg:swift#slo
[filter:tempauth]
use = egg:swift#tempauth
user_{account}_{user} = {secret_key} .admin
[filter:s3api]
use = egg:swift#s3api
location = {region}
storage_domain = {domain}
"""


class MemoryCache:
    """Replaces memcached by a dictionary. Values go through JSON, as they do with memcached."""

    def __init__(self):
        self._values = {}

    def get(self, key, *_, **__):
        value = self._values.get(key)
        return None if value is None else json.loads(value)

    def set(self, key, value, *_, **__):
        self._values[key] = json.dumps(value)

    def incr(self, key, delta=1, *_, **__):
        self.set(key, int(self.get(key) or 0) + delta)
        return self.get(key)

    def decr(self, key, delta=1, *_, **__):
        return self.incr(key, -delta)

    def delete(self, key, *_, **__):
        self._values.pop(key, None)

    def get_multi(self, keys, *_, **__):
        return [self.get(key) for key in keys]

    def set_multi(self, mapping, *_, **__):
        for key, value in mapping.items():
            self.set(key, value)


class NoLog:
    def write(self, *_):
        pass

    debug = info = warning = error = write


def serve(socket, application):
    """Answers requests on the socket from a green thread of its own, for the life of the process."""
    eventlet.spawn_n(eventlet.wsgi.server, socket, application, NoLog(),
                     protocol=SwiftHttpProtocol, keepalive=True, debug=False, log_output=False)


def listen(port):
    return eventlet.listen(("127.0.0.1", port), backlog=128)


def write_file(folder, name, text):
    path = os.path.join(folder, name)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    return path


def start_storage_server(folder, server):
    """One storage server on a port of the system's choice, and the ring by which the proxy finds it."""
    socket = listen(0)
    port = socket.getsockname()[1]
    builder = ring.RingBuilder(part_power=4, replicas=1, min_part_hours=0)
    builder.add_dev({"id": 0, "region": 1, "zone": 1, "device": "disk", "weight": 1.0, "meta": "",
                     "ip": "127.0.0.1", "port": port, "replication_ip": "127.0.0.1", "replication_port": port})
    builder.rebalance(seed=1)
    builder.get_ring().save(os.path.join(folder, f"{server}.ring.gz"))
    configuration = write_file(folder, f"{server}.conf", STORAGE_CONF.format(folder=folder, server=server))
    serve(socket, wsgi.loadapp(configuration))


def start(folder, secret_key, region, domain):
    """Starts everything below folder; returns the S3 application, to be called with environ['swift.cache'] set."""
    folder = os.path.abspath(folder)
    os.makedirs(os.path.join(folder, "devices", "disk"), exist_ok=True)
    write_file(folder, "swift.conf", SWIFT_CONF)
    utils.set_swift_dir(folder)
    for server in ("object", "container", "account"):
        start_storage_server(folder, server)
    configuration = write_file(folder, "proxy.conf", PROXY_CONF.format(
        folder=folder, secret_key=secret_key, region=region, domain=domain, account=ACCOUNT, user=USER))
    return wsgi.loadapp(configuration)
