"""Prints, as JSON, what ezdxf reads back from a drawing built from scratch: audit errors,
entity counts, texts, the ordinate dimension's overrides and the block's attributes."""
import json
import sys

import ezdxf
from ezdxf import recover

doc, auditor = recover.readfile(sys.argv[1])
audit = doc.audit()
msp = doc.modelspace()
out = {
    "errors": [e.message for e in auditor.errors] + [e.message for e in audit.errors],
    "counts": {},
    "texts": sorted(e.dxf.text for e in msp.query("TEXT MTEXT")),
    "attribs": {},
    "overrides": {},
    "codepage": doc.header.get("$DWGCODEPAGE", ""),
    "version": doc.dxfversion,
}
for e in msp:
    out["counts"][e.dxftype()] = out["counts"].get(e.dxftype(), 0) + 1
for insert in msp.query("INSERT"):
    out["insert_block"] = insert.dxf.name
    for attrib in insert.attribs:
        out["attribs"][attrib.dxf.tag] = attrib.dxf.text
for dim in msp.query("DIMENSION"):
    out["dimtype"] = dim.dimtype
    out["overrides"] = {k: v for k, v in dim.override().dimstyle_attribs.items()}
for spline in msp.query("SPLINE"):
    out["spline_control_points"] = len(spline.control_points)
for ellipse in msp.query("ELLIPSE"):
    out["ellipse_ratio"] = round(ellipse.dxf.ratio, 6)
json.dump(out, sys.stdout, sort_keys=True, ensure_ascii=False)
