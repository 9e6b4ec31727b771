#!/usr/bin/python3
# -*- coding: utf-8 -*-
"""Checks the example workshop (examples/workshop):

1. the generator, run into a temporary folder, writes exactly the checked-in tree, byte for byte;
2. ezdxf reads and audits every drawing of the tree without an error, and each is an AC1018
   drawing in code page ANSI_936; a DWG is read as the DXF that tavrik converts it to
   (tests/end_to_end/dwg_as_dxf.py);
3. the exported drawings hold what the batch expects: per sheet one marker circle with two
   BIGFRAM lines through its centre, and the points at hole centres;
4. the same holds for the workshop's DXF variant (--handoff dxf), whose exports are DXF.

Usage: check_workshop.py EXAMPLES_FOLDER TAVRIK
"""
import filecmp
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "end_to_end"))
import dwg_as_dxf  # noqa: E402

# Drawings of the hand-off: file stem -> (sheets, points at hole centres).
EXPECTED_EXPORTS = {"MP2305-1": (1, 12), "MP2305-2": (2, 7)}
MARKER_LAYERS = {"RECT", "URECT", "STAND", "USTAND"}
HOLE_LAYERS = {"H_TAP", "H_CBORE", "H_PIN", "H_WATER"}

failures = []


def fail(message):
    failures.append(message)
    print("FAIL: " + message)


def relative_files(root):
    return sorted(p.relative_to(root) for p in root.rglob("*") if p.is_file())


def compare_trees(checked_in, fresh):
    old, new = relative_files(checked_in), relative_files(fresh)
    for missing in sorted(set(new) - set(old)):
        fail("generated but not checked in: %s" % missing)
    for extra in sorted(set(old) - set(new)):
        fail("checked in but not generated: %s" % extra)
    for name in sorted(set(old) & set(new)):
        if not filecmp.cmp(checked_in / name, fresh / name, shallow=False):
            fail("differs from a fresh generation: %s" % name)


def audit_drawings(root, tavrik, expected_suffix):
    drawings = [p for p in relative_files(root) if p.suffix.lower() in (".dxf", ".dwg")]
    if not drawings:
        fail("no drawings in %s" % root)
    exports = set()
    for name in drawings:
        try:
            doc = dwg_as_dxf.read(root / name, tavrik)
        except Exception as error:  # a reader's error names the file
            fail("%s: ezdxf cannot read it: %s" % (name, error))
            continue
        for fault in dwg_as_dxf.audit_faults(doc):
            fail("%s: %s" % (name, fault))
        if doc.dxfversion != "AC1018":
            fail("%s: version %s, not AC1018" % (name, doc.dxfversion))
        if doc.header.get("$DWGCODEPAGE") != "ANSI_936":
            fail("%s: code page %s" % (name, doc.header.get("$DWGCODEPAGE")))
        if name.stem in EXPECTED_EXPORTS and "Convert" in name.parts:
            if name.suffix != expected_suffix:
                fail("%s: the hand-off's exports should be %s" % (name, expected_suffix))
            check_export(name, doc)
            exports.add(name.stem)
    if exports != set(EXPECTED_EXPORTS):
        fail("%s: exports %s, expected %s" % (root, sorted(exports), sorted(EXPECTED_EXPORTS)))
    return drawings


def check_export(name, doc):
    sheets, points = EXPECTED_EXPORTS[name.stem]
    msp = doc.modelspace()
    markers = [e for e in msp.query("CIRCLE") if e.dxf.layer.upper() in MARKER_LAYERS]
    if len(markers) != sheets:
        fail("%s: %d marker circles, expected %d" % (name, len(markers), sheets))
    frame_lines = [e for e in msp.query("LINE") if e.dxf.layer.upper() == "BIGFRAM"]
    for marker in markers:
        c = marker.dxf.center
        touching = [e for e in frame_lines
                    if e.dxf.start.isclose(c, abs_tol=1e-5) or e.dxf.end.isclose(c, abs_tol=1e-5)]
        if len(touching) != 2:
            fail("%s: %d BIGFRAM lines through the marker at %s" % (name, len(touching), c))
    hole_points = [e for e in msp.query("POINT") if e.dxf.layer.upper() in HOLE_LAYERS]
    if len(hole_points) != points:
        fail("%s: %d points on hole layers, expected %d" % (name, len(hole_points), points))


def main(argv):
    if len(argv) != 2:
        print(__doc__)
        return 2
    examples, tavrik = Path(argv[0]).resolve(), argv[1]
    checked_in = examples / "workshop"
    generator = [sys.executable, str(examples / "generate_workshop.py"), "--tavrik", tavrik]
    with tempfile.TemporaryDirectory(prefix="workshop-") as temp:
        fresh, variant = Path(temp) / "workshop", Path(temp) / "workshop_dxf"
        run = subprocess.run(generator + [str(fresh)], capture_output=True, text=True)
        if run.returncode != 0:
            fail("the generator failed:\n" + run.stdout + run.stderr)
        else:
            compare_trees(checked_in, fresh)
            audit_drawings(fresh, tavrik, ".dwg")
        run = subprocess.run(generator + ["--handoff", "dxf", str(variant)], capture_output=True,
                             text=True)
        if run.returncode != 0:
            fail("the generator failed on the DXF variant:\n" + run.stdout + run.stderr)
        else:
            hand_off = sorted(p.name for p in variant.rglob("MP2305-*"))
            if hand_off != ["MP2305-1.dxf", "MP2305-2.dxf"]:
                fail("the DXF variant's hand-off: %s" % hand_off)
            audit_drawings(variant, tavrik, ".dxf")
    drawings = audit_drawings(checked_in, tavrik, ".dwg")
    if failures:
        print("%d failure(s)" % len(failures))
        return 1
    print("workshop: %d drawings read and audited, tree equal to a fresh generation" % len(drawings))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
