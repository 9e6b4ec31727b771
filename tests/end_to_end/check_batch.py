"""Runs the batch on a copy of the example workshop and checks what a drawing office would:

- the host ends by itself (the quit timer) with status 0 while its input stays open;
- the merged drawing stands at the name built from ugm.log, ezdxf reads and audits it without
  errors, and it holds the part geometry of every sheet at its own coordinates, as the
  clean-ups leave it (CAD_line.ini of the workshop): lines, circles and arcs at Z 0, no points,
  no line shorter than the tolerance, every entity's linetype scale and lineweight set;
- Cg.log holds the expected trace, line for line; msg.txt, the hand-off files and the single
  drawings are gone;
- a second run without a hand-off changes nothing and leaves the host open for commands.

Usage: check_batch.py TAVRIK DWGVER WORKSHOP EXPECTED_CG_LOG
"""
import collections
import pathlib
import shutil
import subprocess
import sys
import tempfile

import ezdxf
from ezdxf import recover

import check_sheets

HAND_OFF = pathlib.Path("drives/c/Users/cad/AppData/Local/Convert")
LOGS = pathlib.Path("drives/d/Mytool/cad")
MERGED = pathlib.Path("drives/d/成品图/MP2305.dxf")
# The exporter's construction layers, which the batch erases (HOLECA 0 in the workshop).
CONSTRUCTION = {"BIGFRAM", "USTAND", "URECT", "FRONT", "LEFT", "TOP", "STAND", "RECT"}

failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def run_host(tavrik, prefix, commands=None, timeout=300):
    """Runs tavrik on the prefix. Without commands its input stays open, so only the module
    can end it."""
    process = subprocess.Popen([tavrik, "--prefix", str(prefix)], stdin=subprocess.PIPE,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    try:
        if commands is None:
            out, err = process.communicate(timeout=timeout)  # input never closed by us
        else:
            out, err = process.communicate(commands.encode(), timeout=timeout)
    except subprocess.TimeoutExpired:
        process.kill()
        out, err = process.communicate()
        failures.append("tavrik did not end within %d s (stderr: %s)" % (timeout, err.decode(errors="replace")))
    return process.returncode, out.decode(errors="replace"), err.decode(errors="replace")


def signature(entity):
    """What must survive the merge: kind, layer and the coordinates that place the entity."""
    kind = entity.dxftype()
    points = []
    for name in ("start", "end", "center", "location", "insert"):
        if entity.dxf.hasattr(name):
            points.append(tuple(round(v, 6) for v in entity.dxf.get(name)))
    if kind == "CIRCLE" or kind == "ARC":
        points.append(round(entity.dxf.radius, 6))
    if kind in ("TEXT", "MTEXT"):
        points.append(entity.dxf.text if kind == "TEXT" else entity.text)
    return (kind, entity.dxf.layer.upper(), tuple(points))


def read_cad_line_ini(workshop):
    """The sections of the workshop's CAD_line.ini as dictionaries (GBK, ';' comments)."""
    sections = {}
    current = None
    for path in pathlib.Path(workshop).glob("drives/d/CZTools/config/*/CAD/CAD_line.ini"):
        for line in path.read_bytes().decode("gbk").splitlines():
            line = line.strip()
            if line.startswith("[") and line.endswith("]"):
                current = sections.setdefault(line[1:-1], {})
            elif current is not None and "=" in line and not line.startswith(";"):
                key, value = line.split("=", 1)
                current.setdefault(key.strip(), value.strip())
    return sections


def length(entity):
    return (entity.dxf.end - entity.dxf.start).magnitude


def cleaned_signature(entity, settings):
    """The signature an exported entity keeps after the clean-ups, or None when it goes."""
    small = settings.get("DeleteSmallLineAndPoint", {})
    deletes = small.get("BolOpen", "0") != "0"
    tolerance = float(small.get("Tolerance", "0") or 0)
    kind, layer, points = signature(entity)
    if deletes and (kind == "POINT" or (kind == "LINE" and length(entity) < tolerance)):
        return None
    if kind in ("LINE", "CIRCLE", "ARC"):
        points = tuple(p[:2] + (0.0,) if isinstance(p, tuple) else p for p in points)
    return (kind, layer, points)


def part_geometry(paths, settings=None, exports=False):
    """The part's entities; of the exports, the KEY:VALUE texts that fill title blocks are left
    out, since the batch erases them once used."""
    found = collections.Counter()
    for path in paths:
        doc = ezdxf.readfile(path)
        used = set(check_sheets.key_value_texts(doc.modelspace())) - {"审核:王强"} if exports else set()
        for entity in doc.modelspace():
            if entity.dxf.layer.upper() in CONSTRUCTION:
                continue
            cleaned = cleaned_signature(entity, settings) if settings is not None else signature(entity)
            if cleaned is not None and not (cleaned[0] in ("TEXT", "MTEXT") and cleaned[2][-1] in used):
                found[cleaned] += 1
    return found


def check_cleanups(doc, settings):
    """What the clean-ups promise of every entity of the finished drawing."""
    dotted = settings.get("public", {}).get("StrDottedLineType", "")
    scale = float(settings.get("UpLineScale", {}).get("VarScale", "0") or 0)
    tolerance = float(settings.get("DeleteSmallLineAndPoint", {}).get("Tolerance", "0") or 0)
    wrong = collections.defaultdict(list)
    for entity in doc.modelspace():
        kind = entity.dxftype()
        if kind == "POINT":
            wrong["points left"].append(entity.dxf.location)
        if kind == "LINE":
            if entity.dxf.start.z != 0.0 or entity.dxf.end.z != 0.0:
                wrong["lines off Z 0"].append(entity.dxf.start)
            if length(entity) < tolerance:
                wrong["lines shorter than %g" % tolerance].append(entity.dxf.start)
        if kind in ("CIRCLE", "ARC") and entity.dxf.center.z != 0.0:
            wrong["circles and arcs off Z 0"].append(entity.dxf.center)
        expected_scale = scale if entity.dxf.get("linetype", "BYLAYER") == dotted else 0.0
        if entity.dxf.get("ltscale", 1.0) != expected_scale:
            wrong["linetype scale not %g" % expected_scale].append((kind, entity.dxf.get("ltscale", 1.0)))
        if entity.dxf.get("lineweight", -1) != 0:
            wrong["lineweight not 0"].append((kind, entity.dxf.get("lineweight", -1)))
    for what, where in wrong.items():
        failures.append("merged drawing: %s (%d), e.g. %s" % (what, len(where), where[:3]))


def main():
    tavrik, dwgver, workshop, expected_log = sys.argv[1:5]
    with tempfile.TemporaryDirectory(prefix="tavrik-e2e-") as scratch:
        prefix = pathlib.Path(scratch) / "workshop"
        shutil.copytree(workshop, prefix)
        shutil.copy(dwgver, prefix / "drives/d/Mytool/application/dwgver.dll")
        exports = sorted(p for p in (prefix / HAND_OFF).glob("*.dxf"))
        settings = read_cad_line_ini(prefix)
        expected_geometry = part_geometry(exports, settings, exports=True)

        status, out, err = run_host(tavrik, prefix)
        check(status == 0, "first run: status %s, stderr: %s" % (status, err))

        merged = prefix / MERGED
        check(merged.is_file(), "no merged drawing at %s" % MERGED)
        if merged.is_file():
            doc, auditor = recover.readfile(merged)
            check(not auditor.has_errors, "ezdxf recover errors: %s" % auditor.errors)
            audit = doc.audit()
            check(not audit.has_errors, "ezdxf audit errors: %s" % audit.errors)
            # Read as the exports were, so that texts compare in the same form.
            merged_geometry = part_geometry([merged])
            missing = expected_geometry - merged_geometry
            check(not missing, "geometry of the sheets missing in the merged drawing: %s" % list(missing)[:5])
            check_sheets.check_frames(doc, check)
            check_sheets.check_dimensions(doc, check)
            check_cleanups(doc, settings)

        log = (prefix / LOGS / "Cg.log").read_bytes()
        expected = pathlib.Path(expected_log).read_bytes()
        if log != expected:
            failures.append("Cg.log differs from the expected trace:\n%s\n--- expected ---\n%s" % (
                log.decode("gbk", errors="replace"), expected.decode("gbk", errors="replace")))
        check(not (prefix / LOGS / "msg.txt").exists(), "msg.txt is still there")
        left = sorted(p.name for p in (prefix / HAND_OFF).iterdir())
        check(left == [], "hand-off folder still holds %s" % left)

        # Second run: no hand-off. The command line stays open: InsertSheet runs the batch by
        # hand, which again finds nothing to do.
        merged_bytes = merged.read_bytes() if merged.is_file() else b""
        status, out, err = run_host(tavrik, prefix, commands="InsertSheet\n")
        check(status == 0, "second run: status %s, stderr: %s" % (status, err))
        check("Command:" not in err and "unknown command" not in err, "second run: %s" % err)
        check(merged.is_file() and merged.read_bytes() == merged_bytes, "second run changed the merged drawing")
        after = (prefix / LOGS / "Cg.log").read_bytes()
        check(after == log + b"20191115\r\n20191115\r\n",
              "second run logged more than two build stamps: %r" % after[len(log):])

    for failure in failures:
        print("FAIL:", failure)
    print("end-to-end batch:", "ok" if not failures else "%d failures" % len(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
