"""A server on 127.0.0.1 that breaks the rules of HTTP: each connection is passed to a function."""
import contextlib
import socketserver
import threading


def read_request(connection):
    """Reads a request; returns its head as text, and its body."""
    received = b""
    while b"\r\n\r\n" not in received:
        received += receive(connection)
    head, _, body = received.partition(b"\r\n\r\n")
    if b"\r\nexpect: 100-continue" in head.lower():
        connection.sendall(b"HTTP/1.1 100 Continue\r\n\r\n")
    lengths = [line.split(b":")[1] for line in head.split(b"\r\n") if line.lower().startswith(b"content-length:")]
    while len(body) < int(lengths[0]):
        body += receive(connection)
    return head.decode("ascii"), body


def receive(connection):
    block = connection.recv(1 << 16)
    if not block:
        raise ConnectionError("the client has gone")
    return block


@contextlib.contextmanager
def serving(handle):
    """Yields the port. handle(connection, over) must return when the event `over` is set or the client has gone."""
    over = threading.Event()

    class Handler(socketserver.BaseRequestHandler):
        def handle(self):
            self.request.settimeout(30)
            with contextlib.suppress(OSError):
                handle(self.request, over)

    with socketserver.ThreadingTCPServer(("127.0.0.1", 0), Handler) as server:  # its end waits for the handlers
        threading.Thread(target=server.serve_forever, args=(0.05,)).start()
        try:
            yield server.server_address[1]
        finally:
            over.set()
            server.shutdown()
