"""Without the optional keys the agent speaks https to Amazon's own names, and only to a server that proves to be it."""
import os
import subprocess
import sys
from pathlib import Path

import pytest

from wine import ROOT

NAMESPACES = ["unshare", "--mount", "--net"]


@pytest.mark.limit(120)
def test_the_default_endpoint_is_amazons_over_https(scratch):
    if subprocess.run([*NAMESPACES, "true"], check=False, capture_output=True).returncode != 0:
        pytest.skip("needs the right to make network and mount namespaces (root with CAP_SYS_ADMIN)")
    run = subprocess.run([*NAMESPACES, sys.executable, Path(__file__).with_name("default_endpoint.py"), scratch],
                         env={**os.environ, "PYTHONPATH": str(ROOT / "kit")},
                         check=False, capture_output=True, text=True, timeout=110)
    assert run.returncode == 0, run.stdout + run.stderr
