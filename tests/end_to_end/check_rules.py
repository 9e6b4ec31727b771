"""What the colour rules, the duplicate removal, the chains and the line deviation of the
workshop's CAD_line.ini promise of the merged drawing:

- colours follow the position rules of [ModifyColor] StrJson: an entity whose box lies inside
  the box of a chain of lines and arcs on a rule's layer takes the rule's colour for solid or
  for other linetypes, unless its colour is excluded (modelled here for the part geometry);
- the lines and arcs take the colours of the rules as well: the colour table of StrChangeColor,
  then the position rules; a line or arc of the merged drawing that carries an exported one has
  its colour (the layer's colour where the exported one was ByLayer and merged);
- no line lies on another line;
- the pieces of the colours of [ConnectPline] ColorInspect are polylines, not lines or arcs;
- the polylines of [LineDeviation] are offset: each stands shrunk by its rule's offset, and the
  exported outline is gone.
"""
import math
import re

from ezdxf import bbox

SAME = 0.02


def rgb_index(text, nearest):
    numbers = [int(n) if n.lstrip("-").isdigit() else 0 for n in text.split(" ")[:3]] + [0, 0, 0]
    return nearest(tuple(n & 255 for n in numbers[:3]))


def modify_rules(settings, nearest):
    """The rules of [ModifyColor] StrJson as (layer, solid, dotted, excluded) tuples."""
    text = settings.get("ModifyColor", {}).get("StrJson", "")
    rules = []
    for layer, solid, dotted, exclude in re.findall(
            r'"StrLayer":"([^"]*)","ColorSolid":"([^"]*)","ColorDotted":"([^"]*)","ColorExclude":\[([^\]]*)\]', text):
        excluded = {rgb_index(c, nearest) for c in re.findall(r'"([^"]*)"', exclude)}
        rules.append((layer, rgb_index(solid, nearest), rgb_index(dotted, nearest), excluded))
    return rules


def flat(p):
    return (p.x, p.y, 0.0)


def same_point(a, b):
    return all(abs(u - v) < SAME for u, v in zip(a, b))


def chain_boxes(msp, layer):
    """The boxes of the groups of lines and arcs on the layer whose ends meet."""
    pieces = []
    for e in msp:
        if e.dxf.layer != layer or e.dxftype() not in ("LINE", "ARC"):
            continue
        if e.dxftype() == "LINE":
            ends = (flat(e.dxf.start), flat(e.dxf.end))
        else:
            ends = (flat(e.start_point), flat(e.end_point))
        pieces.append((e, ends))
    groups, left = [], list(range(len(pieces)))
    while left:
        group = [left.pop(0)]
        for member in group:
            for w in list(left):
                if any(same_point(a, b) for a in pieces[member][1] for b in pieces[w][1]):
                    group.append(w)
                    left.remove(w)
        groups.append(bbox.extents(pieces[i][0] for i in group))
    return groups, {id(e) for e, _ in pieces}


def inside(box, chain):
    t = SAME
    return all(chain.extmin.x - t <= p.x <= chain.extmax.x + t and chain.extmin.y - t <= p.y <= chain.extmax.y + t
               for p in (box.extmin, box.extmax))


def modified_colours(msp, settings, changed_colour, nearest):
    """The colours that the position rules give, by id of the entity, for one export."""
    solid_name = settings.get("public", {}).get("StrSolidLineType", "")
    layer_colours = {layer.dxf.name: abs(layer.dxf.color) for layer in msp.doc.layers}
    settled, colours = set(), {}
    kinds = ("LINE", "CIRCLE", "ARC", "SPLINE", "LWPOLYLINE", "ELLIPSE")
    for layer, solid, dotted, excluded in modify_rules(settings, nearest):
        boxes, members = chain_boxes(msp, layer)
        settled |= members
        for chain in boxes:
            for e in msp:
                if e.dxftype() not in kinds or id(e) in settled:
                    continue
                box = bbox.extents([e])
                if not box.has_data or not inside(box, chain):
                    continue
                settled.add(id(e))
                shown = changed_colour(e, settings)
                if shown == 256:
                    shown = layer_colours.get(e.dxf.layer, -1)
                if shown not in excluded:
                    colours[id(e)] = solid if e.dxf.get("linetype", "") == solid_name else dotted
    return colours


def segment_holds(p, a, b, t):
    dx, dy = b.x - a.x, b.y - a.y
    length = math.hypot(dx, dy)
    if length == 0:
        return False
    if not (min(a.x, b.x) - t <= p.x <= max(a.x, b.x) + t and min(a.y, b.y) - t <= p.y <= max(a.y, b.y) + t):
        return False
    return abs((p.x - a.x) * dy - (p.y - a.y) * dx) / length < t


def carries(piece, e):
    """A merged line or arc that runs over the exported line or arc e; a nearly flat arc may have
    become a line."""
    if piece.dxftype() == "LINE" and e.dxftype() == "LINE":
        return all(segment_holds(p, piece.dxf.start, piece.dxf.end, SAME) for p in (e.dxf.start, e.dxf.end))
    if piece.dxftype() == "LINE" and e.dxftype() == "ARC":
        sweep = (e.dxf.end_angle - e.dxf.start_angle) % 360.0
        points = [e.start_point, e.end_point] + list(e.vertices([e.dxf.start_angle + sweep * 0.5]))
        return all(segment_holds(p, piece.dxf.start, piece.dxf.end, SAME) for p in points)
    if piece.dxftype() in ("ARC", "CIRCLE") and e.dxftype() == "ARC":
        a, b = piece.ocs().to_wcs(piece.dxf.center), e.ocs().to_wcs(e.dxf.center)
        return abs(piece.dxf.radius - e.dxf.radius) < SAME and math.hypot(a.x - b.x, a.y - b.y) < SAME
    return False


def check_curve_colours(exports_msp, doc, settings, changed_colour, nearest, construction, check):
    """Each exported line and arc that the chains leave is carried by a merged line or arc of the
    colour that the rules give it."""
    listed = chained_colours(settings, nearest)
    short = float(settings.get("DeleteSmallLineAndPoint", {}).get("Tolerance", "0") or 0)
    pieces = [e for e in doc.modelspace() if e.dxftype() in ("LINE", "ARC", "CIRCLE")]
    wrong, compared = [], 0
    for msp in exports_msp:
        layer_colours = {layer.dxf.name: abs(layer.dxf.color) for layer in msp.doc.layers}
        modified = modified_colours(msp, settings, changed_colour, nearest)
        for e in msp:
            if e.dxftype() not in ("LINE", "ARC") or e.dxf.layer.upper() in construction:
                continue
            if e.dxf.get("color", 256) in listed or (e.dxftype() == "LINE" and (e.dxf.end - e.dxf.start).magnitude < short):
                continue
            colour = modified.get(id(e), changed_colour(e, settings))
            allowed = {colour, layer_colours.get(e.dxf.layer)} if colour == 256 else {colour}
            found = [g.dxf.get("color", 256) for g in pieces if carries(g, e)]
            compared += 1
            if not set(found) & allowed:
                wrong.append((e.dxftype(), e.dxf.layer, sorted(allowed), found))
    check(compared > 0 and not wrong, "lines and arcs off the colour of the rules (kind, layer, expected, found): %s" % wrong[:5])


def check_no_line_on_line(exports_msp, doc, settings, check):
    """No line of the exports' geometry lies on another: the lines of the merged drawing whose
    ends are those of an exported line are compared with all lines (lines that the batch adds
    later, such as the symbols' centre marks, are not the clean-up's business)."""
    t = float(settings.get("DeleteRepeatingLine", {}).get("Tolerance", "0") or 0)
    exported = set()
    for msp in exports_msp:
        for e in msp.query("LINE"):
            ends = tuple(sorted(((round(e.dxf.start.x, 2), round(e.dxf.start.y, 2)),
                                 (round(e.dxf.end.x, 2), round(e.dxf.end.y, 2)))))
            exported.add(ends)
    lines = list(doc.modelspace().query("LINE"))
    on = []
    for a in lines:
        ends = tuple(sorted(((round(a.dxf.start.x, 2), round(a.dxf.start.y, 2)),
                             (round(a.dxf.end.x, 2), round(a.dxf.end.y, 2)))))
        if ends not in exported:
            continue
        for b in lines:
            if a is not b and segment_holds(a.dxf.start, b.dxf.start, b.dxf.end, t) and \
                    segment_holds(a.dxf.end, b.dxf.start, b.dxf.end, t):
                on.append((tuple(a.dxf.start), tuple(a.dxf.end)))
                break
    check(not on, "lines that lie on another line: %s" % on[:3])


def chained_colours(settings, nearest):
    """The colour indices of [ConnectPline] ColorInspect, whose pieces the chains join."""
    text = settings.get("ConnectPline", {}).get("ColorInspect", "")
    return {rgb_index(c, nearest) for c in text.split(";")[:-1]}


def check_chains(exports_msp, doc, settings, nearest, check):
    """Every exported line or arc of a listed colour that meets another such piece is part of a
    polyline of the merged drawing: its mid point lies on a polyline and on no line or arc."""
    listed = chained_colours(settings, nearest)
    polylines = [e for e in doc.modelspace().query("LWPOLYLINE")]
    pieces = [e for e in doc.modelspace() if e.dxftype() in ("LINE", "ARC")]
    loose, chained = [], 0
    for msp in exports_msp:
        for e in msp:
            if e.dxftype() != "LINE" or e.dxf.get("color", 256) not in listed:
                continue
            mid = (e.dxf.start + e.dxf.end) * 0.5
            near = lambda f: any(bbox.extents([g]).inside(mid) for g in f)
            stays = any(segment_holds(e.dxf.start, g.dxf.start, g.dxf.end, 0.01) and
                        segment_holds(e.dxf.end, g.dxf.start, g.dxf.end, 0.01) for g in pieces if g.dxftype() == "LINE")
            if near(polylines) and not stays:
                chained += 1
            else:
                loose.append(tuple(mid))
    check(chained > 0 and not loose, "pieces of listed colours not joined into polylines: %s" % loose[:3])


def check_deviation(exports_msp, doc, settings, nearest, check):
    """The exported polylines of the deviation layer stand shrunk by their rule's offset."""
    section = settings.get("LineDeviation", {})
    if section.get("BolOpen", "0") == "0":
        return
    offsets = {}
    for colour, value in re.findall(r'"Color":"([^"]*)","VarOffset":([0-9.]+)', section.get("StrJson", "")):
        offsets.setdefault(rgb_index(colour, nearest), float(value))
    boxes = [bbox.extents([e]) for e in doc.modelspace().query("LWPOLYLINE")]
    treated = 0
    for msp in exports_msp:
        for e in msp.query("LWPOLYLINE"):
            if e.dxf.layer != section.get("StrLayer") or e.dxf.get("color", 256) not in offsets:
                continue
            d = offsets[e.dxf.get("color")]
            old = bbox.extents([e])
            want = (old.extmin.x + d, old.extmin.y + d, old.extmax.x - d, old.extmax.y - d)
            found = any(all(abs(u - v) < 1e-6 for u, v in zip(want, (b.extmin.x, b.extmin.y, b.extmax.x, b.extmax.y)))
                        for b in boxes)
            kept = any(b.extmin.isclose(old.extmin, abs_tol=1e-6) and b.extmax.isclose(old.extmax, abs_tol=1e-6)
                       for b in boxes)
            check(found and not kept, "deviation polyline at %s not offset by %g" % (tuple(old.extmin), d))
            treated += 1
    check(treated > 0, "no polyline of the deviation layer in the exports")


def rebuilt_by_rules(entity, settings, nearest):
    """A polyline that the chains or the line deviation replace: followed by their checks."""
    if entity.dxftype() != "LWPOLYLINE":
        return False
    colour = entity.dxf.get("color", 256)
    deviation = settings.get("LineDeviation", {})
    offsets = {rgb_index(c, nearest) for c in re.findall(r'"Color":"([^"]*)"', deviation.get("StrJson", ""))}
    if entity.dxf.layer == deviation.get("StrLayer") and colour in offsets:
        return True
    listed = settings.get("ConnectPline", {}).get("ColorInspect", "").split(";")[:-1]
    return colour in {rgb_index(c, nearest) for c in listed}
