# -*- coding: utf-8 -*-
"""ezdxf reads DXF only: a DWG is read as the DXF that tavrik converts it to.

A multiline style read from DWG is kept whole and not decoded, so the DXF save leaves it out
while the ACAD_MLINESTYLE dictionary still names it; ezdxf's audit drops that entry. That one
fix is the known gap of the conversion and is not counted as a fault of the drawing; every other
audit fix or error is.
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


def audit_faults(doc, from_dwg):
    """The audit's errors and fixes as text, less the multiline style gap of a converted DWG."""
    styles = doc.rootdict.get("ACAD_MLINESTYLE") if from_dwg else None
    gap = None
    if styles is not None:
        gap = 'invalid handle in DICTIONARY(#%s)' % styles.dxf.handle
    auditor = doc.audit()
    faults = ["audit error %s: %s" % (e.code, e.message) for e in auditor.errors]
    faults += ["audit had to fix %s: %s" % (f.code, f.message) for f in auditor.fixes
               if gap is None or gap not in f.message]
    return faults
