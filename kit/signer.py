"""Starts Tools/UploadSigner as a studio would, for a bucket of the local store."""
import os
import subprocess
import sys

from store.client import SECRET_KEY
from wine import ROOT

KEY_ID = "store:agent"  # as the store itself names it: what signs an address names the key within what is signed


def settings(endpoint, bucket):
    """The signer's environment."""
    return {"BUCKET": bucket, "STORE_ENDPOINT": endpoint, "AWS_ACCESS_KEY_ID": KEY_ID,
            "AWS_SECRET_ACCESS_KEY": SECRET_KEY, "AWS_DEFAULT_REGION": "us-east-1", "AWS_CONFIG_FILE": os.devnull}


class Signer:
    """A running signer; a context manager that ends it."""

    def __init__(self, endpoint, bucket, **further):
        self._process = subprocess.Popen(
            [sys.executable, ROOT / "Tools" / "UploadSigner" / "upload_signer.py"], stdout=subprocess.PIPE, text=True,
            env={**os.environ, **settings(endpoint, bucket), **further})
        line = self._process.stdout.readline()
        if not line:
            raise RuntimeError(f"the signer ended with {self._process.wait()} before it served")
        self.port = int(line)
        self.url = f"http://127.0.0.1:{self.port}/"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait()
        self._process.stdout.close()
