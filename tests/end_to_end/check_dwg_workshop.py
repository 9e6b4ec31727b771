"""Runs the batch on a copy of the example workshop, whose hand-off is DWG as the UG side exports
it, and on a copy of its DXF variant, and checks the DWG run's merged drawing:

- it stands at the name built from ugm.log (MP2305.dwg) and is an AC1018 DWG;
- our reader reads it back (tavrik convert to DXF) and ezdxf reads and audits that DXF
  (tests/end_to_end/dwg_as_dxf.py);
- its model space holds what the DXF variant's merged drawing holds: the entities per kind and
  layer, the texts and the layers;
- acad-ts and libredwg-web (build-oracle, when scripts/deps installed it) read it without an
  error and find the same model-space entities per kind.

Usage: check_dwg_workshop.py TAVRIK DWGVER WORKSHOP WORKSHOP_DXF SOURCE_ROOT
"""
import collections
import pathlib
import shutil
import subprocess
import sys
import tempfile

import check_batch
import dwg_as_dxf

MERGED_FOLDER = pathlib.Path("drives/d/成品图")

failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def run_batch(tavrik, dwgver, workshop, prefix):
    shutil.copytree(workshop, prefix)
    shutil.copy(dwgver, prefix / "drives/d/Mytool/application/dwgver.dll")
    status, _, err = check_batch.run_host(tavrik, prefix)
    check(status == 0, "%s: tavrik ended with %s (stderr: %s)" % (workshop, status, err))
    return sorted(p.name for p in (prefix / MERGED_FOLDER).glob("MP2305*"))


def content(doc):
    """What the merged drawing holds, whatever its format: model-space entities per kind and
    layer, the texts, the layers."""
    msp = doc.modelspace()
    kinds = collections.Counter((e.dxftype(), e.dxf.layer.upper()) for e in msp)
    texts = collections.Counter(e.dxf.text for e in msp.query("TEXT"))
    layers = sorted(layer.dxf.name.upper() for layer in doc.layers)
    return kinds, texts, layers


def oracle_kinds(source_root, merged):
    """Model-space entities per kind as each oracle reads them; None without the oracles."""
    oracle = source_root / "build-oracle"
    if not (oracle / "node_modules/@node-projects/acad-ts").exists():
        return None
    run = subprocess.run(["node", str(source_root / "tests/platform/dwg/oracle_written.mjs"),
                          str(oracle), str(merged)], capture_output=True, text=True, timeout=300)
    check(run.returncode == 0, "the oracles failed: %s" % run.stderr)
    kinds = {"acad-ts": collections.Counter(), "libredwg": collections.Counter()}
    read = set()
    for line in run.stdout.splitlines():
        words = line.split(" ", 3)
        if len(words) < 3 or words[1] not in kinds:
            continue
        reader, what = words[1], words[2]
        check(what != "ERROR", "%s: %s" % (reader, line))
        if what == "READ":
            read.add(reader)
        elif what not in ("LAYER", "STRING", "ATTRIB") and len(words) == 4:
            kinds[reader][what] += 1
    check(read == set(kinds), "read by %s only" % sorted(read))
    return kinds


def main(argv):
    if len(argv) != 5:
        print(__doc__)
        return 2
    tavrik, dwgver = argv[0], argv[1]
    workshop, variant, source_root = (pathlib.Path(a).resolve() for a in argv[2:])
    with tempfile.TemporaryDirectory(prefix="workshop-dwg-") as temp:
        dwg_run, dxf_run = pathlib.Path(temp) / "dwg", pathlib.Path(temp) / "dxf"
        names = run_batch(tavrik, dwgver, workshop, dwg_run)
        check(names == ["MP2305.dwg"], "DWG hand-off, merged drawings: %s" % names)
        names = run_batch(tavrik, dwgver, variant, dxf_run)
        check(names == ["MP2305.dxf"], "DXF hand-off, merged drawings: %s" % names)
        merged = dwg_run / MERGED_FOLDER / "MP2305.dwg"
        if failures or not merged.exists():
            return report()
        check(merged.read_bytes()[:6] == b"AC1018", "the merged drawing is no AC1018 DWG")
        try:
            doc = dwg_as_dxf.read(merged, tavrik)
        except Exception as error:  # the converter's or ezdxf's error names the fault
            check(False, "the merged DWG does not read back: %s" % error)
            return report()
        for fault in dwg_as_dxf.audit_faults(doc):
            check(False, "merged DWG: %s" % fault)
        expected = content(dwg_as_dxf.read(dxf_run / MERGED_FOLDER / "MP2305.dxf", tavrik))
        got = content(doc)
        for name, want, have in zip(("entities per kind and layer", "texts", "layers"), expected, got):
            check(want == have, "%s differ from the DXF variant's: missing %s, extra %s"
                  % (name, difference(want, have), difference(have, want)))
        kinds = oracle_kinds(source_root, merged)
        if kinds is None:
            print("oracles not installed (scripts/deps): their reads skipped")
        else:
            ours = collections.Counter(e.dxftype() for e in doc.modelspace())
            for reader, theirs in kinds.items():
                check(theirs == ours, "%s reads other entities: %s, ours %s" % (reader, dict(theirs), dict(ours)))
    return report()


def difference(a, b):
    if isinstance(a, collections.Counter):
        return dict(a - b)
    return sorted(set(a) - set(b))


def report():
    for message in failures + check_batch.failures:
        print("FAIL: " + message)
    if failures or check_batch.failures:
        return 1
    print("DWG workshop: merged DWG read back, audited, equal to the DXF variant's, read by the oracles")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
