"""Prints what ezdxf sees in a DXF file as JSON: recover and audit errors, and per entity type
the handle, layer and key coordinates of every entity (model space, paper space and blocks)."""
import json
import re
import sys

import ezdxf
from ezdxf import recover
from ezdxf.lldxf.tagger import ascii_tags_loader

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


def view_of(path):
    with open(path, "rb") as f:
        binary = f.read(22) == b"AutoCAD Binary DXF\r\n\x1a\x00"
    return view(path, binary)


VERSION = re.compile(r"\$ACADVER\s*\r?\n\s*1\s*\r?\n(AC\d+)")


def file_facts(path):
    """The version an ASCII file names and the handles its records give themselves (group
    code 5, and 105 of a DIMSTYLE); None for a binary file."""
    with open(path, "rb") as f:
        if f.read(22) == b"AutoCAD Binary DXF\r\n\x1a\x00":
            return None
    with open(path, "rt", errors="replace") as f:
        version = VERSION.search(f.read(65536))
    with open(path, "rt", errors="replace") as f:
        handles = {t.value.upper() for t in ascii_tags_loader(f) if t.code in (5, 105)}
    return (version.group(1) if version else ""), handles


def comparable(seen, facts, written=False):
    """What of a view is compared. ezdxf brings R13 and R14 drawings up to R2000 as it reads
    them and adds entities of its own (the arrow blocks of dimensions): only the entities the
    file itself has count. A file without handles gets them from each reader in its own way:
    the rows are compared in file order without them."""
    if facts is None:
        return seen
    version, handles = facts
    entities = {}
    for kind, rows in seen["entities"].items():
        if not written and version in ("AC1012", "AC1014"):
            rows = [r for r in rows if r[0].upper() in handles]
        if not handles:
            rows = [r[1:] for r in rows]
        if rows:
            entities[kind] = rows
    return dict(seen, entities=entities)


def compare(original, written):
    """Exit status 0 when ezdxf sees the written file without errors and with the same
    entities as the original; 3 when ezdxf cannot read the original at all."""
    try:
        facts = file_facts(original)
        before = comparable(view_of(original), facts)
    except Exception as error:  # ezdxf's own limits: the caller checks by other means
        print(f"original unreadable by ezdxf: {error}")
        return 3
    after = comparable(view_of(written), facts, written=True)
    problems = [f"recover: {m}" for m in after["recover_errors"]]
    problems += [f"audit: {m}" for m in after["audit_errors"]]
    for kind in sorted(set(before["entities"]) | set(after["entities"])):
        rows_before = before["entities"].get(kind, [])
        rows_after = after["entities"].get(kind, [])
        if rows_before == rows_after:
            continue
        problems.append(f"{kind}: {len(rows_before)} entities before, {len(rows_after)} after")
        for a, b in zip(rows_before, rows_after):
            if a != b:
                problems.append(f"  first difference: {a} != {b}")
                break
    for p in problems[:20]:
        print(p)
    return 1 if problems else 0


if __name__ == "__main__":
    if sys.argv[1] == "--compare":
        sys.exit(compare(sys.argv[2], sys.argv[3]))
    json.dump(view_of(sys.argv[1]), sys.stdout, sort_keys=True)
