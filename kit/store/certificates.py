"""A certificate authority for tests, and server certificates signed by it."""
import subprocess

EXTENSIONS = """subjectAltName=DNS:{name}
basicConstraints=critical,CA:FALSE
keyUsage=critical,digitalSignature,keyEncipherment
extendedKeyUsage=serverAuth
"""


class Authority:
    """Keeps its files in folder; self.certificate is the file to trust."""

    def __init__(self, folder, name):
        self._folder, self._name = folder, name
        self.certificate, self._key = folder / f"{name}.crt", folder / f"{name}.key"
        self._openssl("req", "-x509", *self._new_key(self._key), "-out", self.certificate, "-days", "3650",
                      "-subj", f"/CN={name} (tests only)", "-addext", "keyUsage=critical,keyCertSign,cRLSign")

    def issue(self, host, days=3650):
        """A PEM file with key and chain for the host name; with negative days it has expired."""
        base = self._folder / f"{self._name}-{host.replace('*', 'any')}-{days}"
        key, request, extensions, certificate, pem = (base.with_name(base.name + suffix)
                                                      for suffix in (".key", ".csr", ".ext", ".crt", ".pem"))
        extensions.write_text(EXTENSIONS.format(name=host))
        self._openssl("req", *self._new_key(key), "-out", request, "-subj", "/CN=test server")
        self._openssl("x509", "-req", "-in", request, "-CA", self.certificate, "-CAkey", self._key, "-CAcreateserial",
                      "-out", certificate, "-days", str(days), "-extfile", extensions)
        pem.write_bytes(b"".join(path.read_bytes() for path in (key, certificate, self.certificate)))
        return pem

    @staticmethod
    def _new_key(path):
        return ["-newkey", "rsa:2048", "-nodes", "-keyout", path]

    @staticmethod
    def _openssl(*arguments):
        subprocess.run(["openssl", *arguments], check=True, capture_output=True)
