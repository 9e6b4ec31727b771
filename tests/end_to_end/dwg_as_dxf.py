# -*- coding: utf-8 -*-
"""ezdxf reads DXF only: a DWG is read as the DXF that tavrik converts it to.

Every audit fix or error is a fault of the drawing, whether it was read from DXF or from DWG.
"""
import subprocess
import tempfile
from pathlib import Path

import ezdxf


def is_dwg(path):
    return Path(path).read_bytes()[:4] == b"AC10"


def read(path, tavrik):
    """ezdxf's document of a DXF, or of the DXF that tavrik converts a DWG to."""
    if not is_dwg(path):
        return ezdxf.readfile(str(path))
    with tempfile.TemporaryDirectory(prefix="dwg-as-dxf-") as temp:
        dxf = Path(temp) / (Path(path).stem + ".dxf")
        subprocess.run([tavrik, "convert", str(path), str(dxf)], check=True, capture_output=True)
        return ezdxf.readfile(str(dxf))


def audit_faults(doc):
    """The audit's errors and fixes as text."""
    auditor = doc.audit()
    faults = ["audit error %s: %s" % (e.code, e.message) for e in auditor.errors]
    faults += ["audit had to fix %s: %s" % (f.code, f.message) for f in auditor.fixes]
    return faults
