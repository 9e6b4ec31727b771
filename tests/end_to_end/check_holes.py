"""What the hole substitution promises of the merged drawing, worked out from the exports and
CAD_hole.ini as the tool reads it:

- a hole is the set of circles of one centre (within 0.001); it is marked when a point of the
  export stands within 0.001 of that centre on the layer of a [TYPEn] section whose row diameter
  lies within 1e-05 of the hole's smallest diameter (the last such row names the symbol);
- the symbol follows from the number of circles and whether the smallest and the largest are
  dashed (their linetype on the [DASHL] list);
- the symbol drawing's entities stand at the hole's centre, each with its own colour, on the layer
  that the hole's smallest circle ends on;
- the smallest circle is gone, the other circles of the hole stay: at the centre there are
  exactly the symbol's circles and the hole's other circles.
"""
import collections
import math
import pathlib

import ezdxf

NEAR = 0.001
SAME_DIAMETER = 1e-05


def rounded(values):
    return tuple(round(v, 4) + 0.0 for v in values)


def resolve(prefix, windows_path):
    """The file of a Windows path below the prefix's drives, found without regard to case."""
    drive, rest = windows_path.split(":", 1)
    path = pathlib.Path(prefix) / "drives" / drive.lower()
    for part in [p for p in rest.split("\\") if p]:
        entries = {e.name.upper(): e for e in path.iterdir()} if path.is_dir() else {}
        if part.upper() not in entries:
            return None
        path = entries[part.upper()]
    return path


def read_hole_ini(path):
    """BLKPATH, the dash list and the rows (diameter, six names, layer) of CAD_hole.ini."""
    block_path, dashes, rows = "", [], []
    section, layer = None, ""
    for line in path.read_bytes().decode("gbk").splitlines():
        line = line.strip().upper()
        if line.startswith("[BLKPATH]"):
            section = "BLKPATH"
        elif line.startswith("[SCRSET]"):
            section = "SCRSET"
        elif line.startswith("[DASHL]"):
            section = "DASHL"
        elif line.startswith("[TYPE") and line[5:line.find("]")].isdigit() and 1 <= int(line[5:line.find("]")]) <= 99:
            section = "TYPE"
        if section is None or line.startswith(("//", ";", "[")):
            continue
        fields = [f.strip() for f in line.split(",")]
        if len(fields) < 2:
            continue
        if section == "BLKPATH" and fields[0].startswith("BLKPATH"):
            block_path = fields[1]
        elif section == "DASHL":
            dashes = fields
        elif section == "TYPE" and fields[0] == "LAYER":
            layer = fields[1]
        elif section == "TYPE":
            row = (float(fields[0]), fields[1:7], layer)
            # A row below the last one goes in before it: the one sorting step there is.
            if rows and row[0] < rows[-1][0]:
                rows.insert(len(rows) - 1, row)
            else:
                rows.append(row)
    return block_path, dashes, rows


def symbol_name(names, group, dashes):
    first_dashed = group[0]["linetype"] in dashes
    if len(group) == 1:
        return names[0] if first_dashed else names[1]
    last_dashed = group[-1]["linetype"] in dashes
    if first_dashed and last_dashed:
        return names[2]
    if not first_dashed and not last_dashed:
        return names[3]
    return names[4] if first_dashed else names[5]


def placed(entity, centre, layer):
    """The signature of a symbol entity copied to the centre and put on the layer."""
    kind = entity.dxftype()
    colour = entity.dxf.get("color", 256)
    if kind == "LINE":
        return (kind, layer, colour, rounded(entity.dxf.start + centre), rounded(entity.dxf.end + centre))
    if kind == "CIRCLE":
        return (kind, layer, colour, rounded(entity.dxf.center + centre), round(entity.dxf.radius, 4))
    if kind == "ARC":
        return (kind, layer, colour, rounded(entity.dxf.center + centre), round(entity.dxf.radius, 4),
                round(entity.dxf.start_angle, 4), round(entity.dxf.end_angle, 4))
    return (kind, layer, colour)


def merged_signature(entity):
    kind = entity.dxftype()
    layer = entity.dxf.layer.upper()
    if kind in ("CIRCLE", "ARC"):
        centre = entity.ocs().to_wcs(entity.dxf.center)
        base = (kind, layer, entity.dxf.get("color", 256), rounded(centre), round(entity.dxf.radius, 4))
        if kind == "ARC":
            base += (round(entity.dxf.start_angle, 4), round(entity.dxf.end_angle, 4))
        return base
    if kind == "LINE":
        return (kind, layer, entity.dxf.get("color", 256), rounded(entity.dxf.start), rounded(entity.dxf.end))
    return (kind, layer, entity.dxf.get("color", 256))


def holes_of(msp):
    """The circles of the model space grouped by centre, each group sorted by diameter."""
    circles = []
    for e in msp.query("CIRCLE"):
        centre = e.ocs().to_wcs(e.dxf.center)
        circles.append({"entity": e, "centre": ezdxf.math.Vec3(centre.x, centre.y, 0.0),
                        "diameter": 2.0 * e.dxf.radius, "linetype": e.dxf.get("linetype", "BYLAYER").upper()})
    groups, left = [], list(circles)
    while left:
        cur = left.pop()
        group = [cur] + [c for c in left if (c["centre"] - cur["centre"]).magnitude <= NEAR]
        left = [c for c in left if c not in group]
        groups.append(sorted(group, key=lambda c: c["diameter"]))
    return groups


def expected_holes(exports, prefix, hole_ini, layer_for):
    """For each marked hole of the exports: its centre, the symbol's file, the placed signatures
    of the symbol's entities and the diameters of the circles that stay at its centre."""
    block_path, dashes, rows = read_hole_ini(hole_ini)
    holes = []
    for path in exports:
        msp = ezdxf.readfile(path).modelspace()
        layer_of = layer_for(path, msp)
        points = [(p.dxf.location, p.dxf.layer.upper()) for p in msp.query("POINT")]
        for group in holes_of(msp):
            first = group[0]
            name = None
            for diameter, names, layer in rows:
                if abs(first["diameter"] - diameter) > SAME_DIAMETER:
                    continue
                if any((point - first["centre"]).magnitude <= NEAR and point_layer == layer
                       for point, point_layer in points):
                    name = symbol_name(names, group, dashes)
            if name is None:
                continue
            symbol = resolve(prefix, block_path + name + ".dwg")
            layer = layer_of(first["entity"])
            entities = list(ezdxf.readfile(symbol).modelspace()) if symbol else []
            holes.append({
                "centre": first["centre"], "symbol": name, "found": symbol is not None,
                "placed": collections.Counter(placed(e, first["centre"], layer) for e in entities),
                "circles": sorted([round(c["diameter"], 4) for c in group[1:]] +
                                  [round(2.0 * e.dxf.radius, 4) for e in entities if e.dxftype() == "CIRCLE"]),
            })
    return holes


def check_holes(holes, doc, check):
    msp = doc.modelspace()
    found = collections.Counter(merged_signature(e) for e in msp)
    circles = [(e.ocs().to_wcs(e.dxf.center), round(2.0 * e.dxf.radius, 4)) for e in msp.query("CIRCLE")]
    check(holes, "no marked hole in the exports")
    for hole in holes:
        where = tuple(round(v, 3) for v in hole["centre"])
        check(hole["found"], "hole at %s: no symbol file %s" % (where, hole["symbol"]))
        missing = hole["placed"] - found
        check(not missing, "hole at %s: symbol %s not in place on its layer: %s" % (where, hole["symbol"], list(missing)[:3]))
        at = sorted(d for c, d in circles if math.hypot(c.x - hole["centre"].x, c.y - hole["centre"].y) <= NEAR)
        check(at == hole["circles"], "hole at %s: circles %s at the centre, expected %s (the smallest gone)" %
              (where, at, hole["circles"]))
