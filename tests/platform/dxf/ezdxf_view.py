"""Prints what ezdxf sees in a DXF file as JSON: recover and audit errors, and per entity type
the handle, layer and key coordinates of every entity (model space, paper space and blocks)."""
import json
import re
import sys

import ezdxf
from ezdxf import recover

KEYS = {
    "LINE": ("start", "end"),
    "CIRCLE": ("center", "radius"),
    "ARC": ("center", "radius", "start_angle", "end_angle"),
    "POINT": ("location",),
    "TEXT": ("insert", "text"),
    "ATTRIB": ("insert", "tag", "text"),
    "ATTDEF": ("insert", "tag"),
    "MTEXT": ("insert", "text"),
    "INSERT": ("insert", "name", "xscale", "yscale", "rotation"),
    "ELLIPSE": ("center", "major_axis", "ratio"),
    "DIMENSION": ("defpoint", "text_midpoint", "dimtype"),
    "LWPOLYLINE": (),
    "SPLINE": (),
}


ESCAPE = re.compile(r"\\U\+([0-9A-Fa-f]{4})")


def rounded(value):
    if isinstance(value, str):  # \U+XXXX is the character it stands for
        return ESCAPE.sub(lambda m: chr(int(m.group(1), 16)), value)
    if isinstance(value, float):
        return round(value, 6)
    if hasattr(value, "x"):
        return [round(value.x, 6), round(value.y, 6), round(value.z, 6)]
    return value


def key_values(entity):
    kind = entity.dxftype()
    values = [rounded(entity.dxf.get(name, entity.dxf.get_default(name)))
              for name in KEYS.get(kind, ())]
    if kind == "LWPOLYLINE":
        values.append([[round(c, 6) for c in p] for p in entity.get_points("xyb")])
    if kind == "SPLINE":
        values.append([rounded(p) for p in map(ezdxf.math.Vec3, entity.control_points)])
    return values


def view(path, binary):
    if binary:
        doc = ezdxf.readfile(path)
        recover_errors = []
    else:
        doc, auditor = recover.readfile(path)
        recover_errors = [e.message for e in auditor.errors]
    audit = doc.audit()
    entities = {}
    for e in doc.entitydb.values():
        if not isinstance(e, ezdxf.entities.DXFGraphic) or e.is_alive is False:
            continue
        if e.dxftype() in ("SEQEND", "VERTEX"):
            continue
        entities.setdefault(e.dxftype(), []).append(
            [e.dxf.handle, e.dxf.get("layer", "0"), key_values(e)])
    for rows in entities.values():
        rows.sort(key=lambda r: int(r[0], 16))
    return {
        "recover_errors": recover_errors,
        "audit_errors": [f"{e.code} {e.message}" for e in audit.errors],
        "entities": entities,
    }


if __name__ == "__main__":
    path = sys.argv[1]
    with open(path, "rb") as f:
        binary = f.read(22) == b"AutoCAD Binary DXF\r\n\x1a\x00"
    json.dump(view(path, binary), sys.stdout, sort_keys=True)
