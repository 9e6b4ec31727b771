"""Runs the batch on a copy of the example workshop and checks what a drawing office would:

- the host ends by itself (the quit timer) with status 0 while its input stays open;
- the merged drawing stands at the name built from ugm.log, ezdxf reads and audits it without
  errors, and it holds the part geometry of every sheet at its own coordinates, as the
  clean-ups leave it (CAD_line.ini of the workshop): lines, circles and arcs at Z 0, no points,
  no line shorter than the tolerance, every entity's linetype scale and lineweight set; and as
  the standardisation leaves it: curves exported with a normal of -Z come to +Z, no MTEXT is
  left, the first diameter sign of each text reads %%c, entities stand on the layer of the file
  number and the colour rows ([FILLAY], [SCRSET]), layers are converted by table ([CONVERT]),
  dimensions stand on the DIM layer;
- each marked hole carries its symbol on the layer of its smallest circle, which is gone
  (check_holes);
- Cg.log holds the expected trace, line for line; Log.log holds, for each drawing, the start and
  end lines of the clean-ups in the order the pipeline runs them; msg.txt, the hand-off files and
  the single drawings are gone;
- a second run without a hand-off changes nothing and leaves the host open for commands.

Usage: check_batch.py TAVRIK DWGVER WORKSHOP EXPECTED_CG_LOG
"""
import collections
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import ezdxf
from ezdxf import recover

import check_curves
import check_holes
import check_rules
import check_sheets
import dimension_rules

HAND_OFF = pathlib.Path("drives/c/Users/cad/AppData/Local/Convert")
LOGS = pathlib.Path("drives/d/Mytool/cad")
MERGED = pathlib.Path("drives/d/成品图/MP2305.dxf")
# The exporter's construction layers, which the batch erases (HOLECA 0 in the workshop).
CONSTRUCTION = {"BIGFRAM", "USTAND", "URECT", "FRONT", "LEFT", "TOP", "STAND", "RECT"}
CURVE_KINDS = {"LINE", "ARC", "SPLINE", "ELLIPSE"}

# The lines each drawing's clean-ups write to Log.log, in the pipeline's order: splines to lines
# and arcs, splines to polylines, merging lines and arcs, colour change, joining chains (which
# writes no end line). The log is opened in text mode, so each line ends in CR LF.
CLEANUP_LOG_LINES = ["样条曲线转直线和圆弧开始", "样条曲线转直线和圆弧结束", "样条曲线转多段线开始",
                     "样条曲线转多段线结束", "合并直线和圆弧开始", "合并直线和圆弧结束", "修改颜色开始",
                     "修改颜色结束", "串线开始"]

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


def read_setting_lines(path, sections):
    """A text configuration file as the tool reads it: lines trimmed and upper case, "//" and
    ";" comments, "[...]" section lines, settings cut at ","; {section: [(key, value)]}."""
    rows = {name: [] for name in sections}
    current = None
    for line in path.read_bytes().decode("gbk").splitlines():
        line = line.strip().upper()
        for name in sections:
            if line.startswith(name):
                current = name
        if not line or line.startswith(("//", ";", "[")) or current is None:
            continue
        pieces = line.split(",")
        if len(pieces) >= 2:
            rows[current].append((pieces[0].strip(), pieces[1].strip()))
    return rows


def wtoi(text):
    """Windows' reading of a decimal integer: blanks, a sign, digits; 0 when there are none."""
    text = text.lstrip(" \t")
    sign = -1 if text[:1] == "-" else 1
    text = text[1:] if text[:1] in "+-" else text
    digits = ""
    for ch in text:
        if not ch.isdigit():
            break
        digits += ch
    return sign * int(digits) if digits else 0


class Standard:
    """The layer rules of the workshop's drawing standard."""

    def __init__(self, workshop):
        cad = next(pathlib.Path(workshop).glob("drives/d/CZTools/config/*/CAD"))
        self.path = cad / "CAD_standard.ini"
        standard = read_setting_lines(cad / "CAD_standard.ini", ["[LAYER]", "[DIMSTYLE]", "[SUNDRY]", "[SCRSET]"])
        layerug = read_setting_lines(cad / "CAD_layerug.ini", ["[SPECIAL]", "[CONVERT]", "[FILLAY]"])
        self.layers = dict(standard["[LAYER]"])
        self.colour_rows = [(wtoi(k), v) for k, v in standard["[SCRSET]"]]
        self.conversions = layerug["[CONVERT]"]
        self.fill_layers = layerug["[FILLAY]"]
        keys = ["BIGFRAM", "DIM", "FRONT", "LEFT", "RECT", "STAND", "STRINGS", "TOP", "URECT", "USTAND"]
        self.kept = {self.layers.get(k, "") for k in keys}
        self.kept |= {c for row in self.fill_layers for c in row}

    def target_layer(self, path):
        """The layer the drawing's file number selects, or None."""
        title = pathlib.Path(path).name.split(".")[0]
        if "-" not in title:
            return None
        number = wtoi(title.rsplit("-", 1)[1].strip())
        return next((layer for n, layer in self.fill_layers if wtoi(n) == number), None)

    def layer_of(self, entity, target, colour_index=None):
        layer = entity.dxf.layer.upper()
        if colour_index is None:
            colour_index = entity.dxf.get("color", 256)
        if target is not None:
            colour = next((suffix for c, suffix in self.colour_rows if c == colour_index), None)
            if colour is not None:
                layer = target + colour
            elif layer not in self.kept | {target}:
                layer = target
        for source, to in self.conversions:
            if layer == source:
                layer = to
        if entity.dxftype() == "DIMENSION":
            layer = self.layers.get("DIM", layer)
        return layer.upper()


def length(entity):
    return (entity.dxf.end - entity.dxf.start).magnitude


def cleaned_signature(entity, settings, standard, target, modified=None):
    """The signature an exported entity keeps after the clean-ups and the standardisation, or
    None when it goes. Curves are compared in world coordinates, so that a curve flipped from
    -Z to +Z keeps its signature."""
    small = settings.get("DeleteSmallLineAndPoint", {})
    deletes = small.get("BolOpen", "0") != "0"
    tolerance = float(small.get("Tolerance", "0") or 0)
    kind, _, points = signature(entity)
    if deletes and (kind == "POINT" or (kind == "LINE" and length(entity) < tolerance)):
        return None
    if kind in ("CIRCLE", "ARC"):
        centre = entity.ocs().to_wcs(entity.dxf.center)
        points = (tuple(round(v, 6) for v in centre), round(entity.dxf.radius, 6))
    if kind in ("LINE", "CIRCLE", "ARC"):
        points = tuple(p[:2] + (0.0,) if isinstance(p, tuple) else p for p in points)
    colour = modified if modified is not None else changed_colour(entity, settings)
    return (kind, standard.layer_of(entity, target, colour), points)


def nearest_colour_index(rgb):
    """The palette index 1 to 254 nearest to an RGB triple by the sum of byte differences."""
    from ezdxf.colors import aci2rgb
    return min(range(1, 255), key=lambda i: (sum(abs(a - b) for a, b in zip(aci2rgb(i), rgb)), i))


def rgb_of(text):
    numbers = [int(n) if n.isdigit() else 0 for n in text.split()] + [0, 0, 0]
    return tuple(n & 255 for n in numbers[:3])


def changed_colour(entity, settings):
    """The entity's colour after the colour table of [ModifyColor]: the first rule whose old
    colour is the entity's (its layer's for ByLayer) gives the new colour as its own."""
    rules = re.findall(r'\{"ColorOld":"([^"]*)","ColorNew":"([^"]*)"\}',
                       settings.get("ModifyColor", {}).get("StrChangeColor", ""))
    own = entity.dxf.get("color", 256)
    shown = own
    if own == 256 and entity.doc is not None and entity.dxf.layer in entity.doc.layers:
        shown = abs(entity.doc.layers.get(entity.dxf.layer).dxf.color)
    for old, new in rules:
        if old and new and nearest_colour_index(rgb_of(old)) == shown:
            return nearest_colour_index(rgb_of(new))
    return own


def part_geometry(paths, settings, standard):
    """The non-text geometry of the drawings off the construction layers, as signatures: for
    the exports as the batch must leave it (a target layer per file), for the merged drawing as
    it stands (no target: layers as found)."""
    found = collections.Counter()
    for path in paths:
        doc = ezdxf.readfile(path)
        target = standard.target_layer(path) if settings is not None else None
        modified = {} if settings is None else check_rules.modified_colours(
            doc.modelspace(), settings, changed_colour, nearest_colour_index)
        for entity in doc.modelspace():
            if entity.dxf.layer.upper() in CONSTRUCTION or entity.dxftype() in ("TEXT", "MTEXT"):
                continue
            # The curve clean-ups rebuild lines, arcs, splines and ellipses: check_curves
            # follows those.
            if settings is not None and entity.dxftype() in CURVE_KINDS:
                continue
            if settings is not None and check_rules.rebuilt_by_rules(entity, settings, nearest_colour_index):
                continue
            if settings is None:
                cleaned = merged_signature(entity)
            else:
                cleaned = cleaned_signature(entity, settings, standard, target, modified.get(id(entity)))
            if cleaned is not None:
                found[cleaned] += 1
    return found


def final_layer_of(settings, standard):
    """For an export and its model space: the layer each entity ends on in the merged drawing."""
    def layer_for(path, msp):
        target = standard.target_layer(path)
        modified = check_rules.modified_colours(msp, settings, changed_colour, nearest_colour_index)
        return lambda entity: cleaned_signature(entity, settings, standard, target, modified.get(id(entity)))[1]
    return layer_for


def merged_signature(entity):
    kind, layer, points = signature(entity)
    if kind in ("CIRCLE", "ARC"):
        centre = entity.ocs().to_wcs(entity.dxf.center)
        points = (tuple(round(v, 6) for v in centre), round(entity.dxf.radius, 6))
    return (kind, layer, points)


def decoded(text):
    """A text with its \\U+XXXX escapes as characters."""
    return re.sub(r"\\U\+([0-9A-Fa-f]{4})", lambda m: chr(int(m.group(1), 16)), text)


def first_diameter_signs(text):
    for sign in ("\u2205", "\u00d8"):
        text = text.replace(sign, "%%c", 1)
    return text


def export_texts(paths):
    """The texts of the exports off the construction layers as single lines, with the first of
    each diameter sign as %%c: multi-line texts are exploded into their lines. The KEY:VALUE
    texts that fill title blocks are left out, since the batch erases them once used."""
    texts = collections.Counter()
    for path in paths:
        msp = ezdxf.readfile(path).modelspace()
        used = set(check_sheets.key_value_texts(msp)) - {"审核:王强"}
        for entity in msp:
            text = entity.dxf.text if entity.dxftype() == "TEXT" else getattr(entity, "text", None)
            if entity.dxf.layer.upper() in CONSTRUCTION or text in used:
                continue
            if entity.dxftype() == "TEXT":
                texts[first_diameter_signs(decoded(entity.dxf.text))] += 1
            elif entity.dxftype() == "MTEXT":
                for line in decoded(entity.text).split("\\P"):
                    if line:
                        texts[first_diameter_signs(line)] += 1
    return texts


def check_texts(doc, expected):
    found = collections.Counter(decoded(e.dxf.text) for e in doc.modelspace().query("TEXT"))
    missing = expected - found
    check(not missing, "texts missing or not normalised in the merged drawing: %s" % list(missing)[:5])
    mtexts = len(doc.modelspace().query("MTEXT"))
    check(mtexts == 0, "merged drawing still holds %d MTEXT" % mtexts)


def check_standard(doc, standard):
    msp = doc.modelspace()
    flipped = [e.dxftype() for e in msp if e.dxftype() in ("CIRCLE", "ARC", "POLYLINE")
               and tuple(e.dxf.get("extrusion", (0, 0, 1))) == (0, 0, -1)]
    check(not flipped, "curves left with a normal of -Z: %s" % flipped[:5])
    dimension_layer = standard.layers.get("DIM", "").upper()
    dimensions = [e.dxf.layer for e in msp.query("DIMENSION")]
    check(dimensions, "no dimension in the merged drawing")
    check(all(layer.upper() == dimension_layer for layer in dimensions),
          "dimensions off the layer %s: %s" % (dimension_layer, dimensions[:5]))
    layers = {layer.dxf.name.upper() for layer in doc.layers}
    for source, to in standard.conversions:
        check(to in layers or source not in layers,
              "layer %s not converted to %s: %s" % (source, to, sorted(layers)))


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
        standard = Standard(prefix)
        expected_geometry = part_geometry(exports, settings, standard)
        expected_texts = export_texts(exports)
        expected_curves = check_curves.exported_curves(exports, settings, CONSTRUCTION)
        export_spaces = [ezdxf.readfile(p).modelspace() for p in exports]
        expected_views = dimension_rules.expected_views(exports, standard.path)
        hole_ini = next(prefix.glob("drives/d/CZTools/config/*/CAD/CAD_hole.ini"))
        expected_holes = check_holes.expected_holes(exports, prefix, hole_ini, final_layer_of(settings, standard))

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
            merged_geometry = part_geometry([merged], None, standard)
            missing = expected_geometry - merged_geometry
            check(not missing, "geometry of the sheets missing in the merged drawing: %s" % list(missing)[:5])
            check_sheets.check_frames(doc, check)
            check_sheets.check_dimensions(doc, expected_views, check)
            check_sheets.check_texts_apart(doc, check)
            check_sheets.check_readers(merged, scratch, tavrik, check)
            check_cleanups(doc, settings)
            check_curves.check_curves(expected_curves, doc, settings, check_rules.chained_colours(settings, nearest_colour_index), check)
            check_rules.check_curve_colours(export_spaces, doc, settings, changed_colour, nearest_colour_index,
                                            CONSTRUCTION, check)
            check_rules.check_no_line_on_line(export_spaces, doc, settings, check)
            check_rules.check_chains(export_spaces, doc, settings, nearest_colour_index, check)
            check_rules.check_deviation(export_spaces, doc, settings, nearest_colour_index, check)
            check_holes.check_holes(expected_holes, doc, check)
            check_texts(doc, expected_texts)
            check_standard(doc, standard)

        log = (prefix / LOGS / "Cg.log").read_bytes()
        expected = pathlib.Path(expected_log).read_bytes()
        if log != expected:
            failures.append("Cg.log differs from the expected trace:\n%s\n--- expected ---\n%s" % (
                log.decode("gbk", errors="replace"), expected.decode("gbk", errors="replace")))
        cleanup_log = (prefix / LOGS / "Log.log").read_bytes().decode("gbk", errors="replace")
        expected_cleanup_log = "".join(line + "\r\n" for line in CLEANUP_LOG_LINES) * len(exports)
        check(cleanup_log == expected_cleanup_log, "Log.log differs from the clean-ups' lines:\n%s" % cleanup_log)
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
