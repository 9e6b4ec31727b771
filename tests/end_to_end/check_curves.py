"""What the curve clean-ups promise of the merged drawing, measured against the exports:

- every exported line, arc, spline and ellipse still runs where it ran: points sampled along it
  lie within the tolerance of some curve of the merged drawing (Z flattened);
- no spline is left: those that are lines or arcs within tolerance became lines, arcs and
  circles, the free-form ones polylines of arcs and lines; an ellipse that is a circle or an arc
  of one became a circle or an arc, a complete true ellipse stays, a partial one became a
  polyline (pieces of the colours that the chains join may end in a polyline all the same);
- a line broken into collinear pieces is one line: pieces that touch lie on the same entity;
- an arc in pieces is one arc or circle: pieces of one circle that touch lie on the same entity;
- the polylines that replace splines follow them: their vertices and points between lie within
  the tolerance of the exported spline.
"""
import collections
import math

import ezdxf
from ezdxf import path as ezpath

# The tolerance of the comparisons: the largest of the workshop's settings with the fixed 0.02 of
# the line merge and a margin for the flattening of curves below.
TOLERANCE = 0.03
FLATTENING = 0.001
CELL = 5.0


def chain_of(entity):
    """The entity as a chain of points in world coordinates, or None when it is no curve."""
    kind = entity.dxftype()
    if kind == "LINE":
        return [entity.dxf.start, entity.dxf.end]
    if kind in ("ARC", "CIRCLE", "ELLIPSE", "SPLINE"):
        return list(entity.flattening(FLATTENING))
    if kind == "LWPOLYLINE":
        return list(ezpath.make_path(entity).flattening(FLATTENING))
    return None


def samples_of(entity, count=24):
    """Points along an exported curve."""
    chain = chain_of(entity)
    if chain is None or len(chain) < 2:
        return []
    lengths = [0.0]
    for a, b in zip(chain, chain[1:]):
        lengths.append(lengths[-1] + (b - a).magnitude)
    total = lengths[-1]
    points = []
    k = 0
    for i in range(count + 1):
        target = total * i / count
        while k < len(chain) - 2 and lengths[k + 1] < target:
            k += 1
        span = lengths[k + 1] - lengths[k]
        f = 0.0 if span == 0 else (target - lengths[k]) / span
        points.append(chain[k].lerp(chain[k + 1], f))
    return points


def segment_distance(p, a, b):
    ax, ay, bx, by = a.x, a.y, b.x, b.y
    dx, dy = bx - ax, by - ay
    d2 = dx * dx + dy * dy
    t = 0.0 if d2 == 0 else max(0.0, min(1.0, ((p.x - ax) * dx + (p.y - ay) * dy) / d2))
    return math.hypot(p.x - ax - t * dx, p.y - ay - t * dy)


class SegmentGrid:
    """The segments of the merged drawing's curves, bucketed by cell, each with its entity."""

    def __init__(self, entities):
        self.cells = collections.defaultdict(list)
        for index, entity in enumerate(entities):
            chain = chain_of(entity)
            for a, b in zip(chain, chain[1:]):
                for cell in self._cells(min(a.x, b.x), min(a.y, b.y), max(a.x, b.x), max(a.y, b.y)):
                    self.cells[cell].append((a, b, index))

    @staticmethod
    def _cells(x0, y0, x1, y1):
        pad = TOLERANCE
        for i in range(math.floor((x0 - pad) / CELL), math.floor((x1 + pad) / CELL) + 1):
            for j in range(math.floor((y0 - pad) / CELL), math.floor((y1 + pad) / CELL) + 1):
                yield (i, j)

    def near(self, point):
        """The indices of the entities that pass within the tolerance of a point."""
        cell = (math.floor(point.x / CELL), math.floor(point.y / CELL))
        return {index for a, b, index in self.cells.get(cell, ()) if segment_distance(point, a, b) <= TOLERANCE}


def exported_curves(paths, settings, construction):
    """The exported lines, arcs, splines and ellipses the clean-ups work on, read before the
    batch deletes the exports; lines shorter than the small-line tolerance go in the batch and
    are left out."""
    short = float(settings.get("DeleteSmallLineAndPoint", {}).get("Tolerance", "0") or 0)
    curves = []
    for path in paths:
        for entity in ezdxf.readfile(path).modelspace():
            if entity.dxf.layer.upper() in construction:
                continue
            kind = entity.dxftype()
            if kind == "LINE" and (entity.dxf.end - entity.dxf.start).magnitude < short:
                continue
            if kind in ("LINE", "ARC", "SPLINE", "ELLIPSE"):
                curves.append(entity)
    return curves


def deviation(points, fit):
    return max(fit(p) for p in points)


def circle_through(a, b, c):
    """Centre and radius of the circle through three points in the plane, or None."""
    d = 2.0 * (a.x * (b.y - c.y) + b.x * (c.y - a.y) + c.x * (a.y - b.y))
    if abs(d) < 1e-12:
        return None
    ux = ((a.x ** 2 + a.y ** 2) * (b.y - c.y) + (b.x ** 2 + b.y ** 2) * (c.y - a.y) + (c.x ** 2 + c.y ** 2) * (a.y - b.y)) / d
    uy = ((a.x ** 2 + a.y ** 2) * (c.x - b.x) + (b.x ** 2 + b.y ** 2) * (a.x - c.x) + (c.x ** 2 + c.y ** 2) * (b.x - a.x)) / d
    return (ux, uy), math.hypot(a.x - ux, a.y - uy)


def expected_kinds(curve, settings, chained_colours):
    """The kinds of entity that may carry an exported spline or ellipse in the merged drawing, or
    None where the curve lies too near a tolerance to say. Clear cases only: a curve within half
    a tolerance is a line or an arc, one beyond twice the tolerance of both is free form."""
    line_tolerance = float(settings.get("SplineToLineAndArc", {}).get("ToleranceLine", "0") or 0)
    arc_tolerance = float(settings.get("SplineToLineAndArc", {}).get("ToleranceArc", "0") or 0)
    points = list(curve.flattening(FLATTENING))
    first, last = points[0], points[-1]
    closed = (last - first).magnitude < 1e-9
    chained = {"LWPOLYLINE"} if curve.dxf.get("color", 256) in chained_colours else set()
    off_line = deviation(points, lambda p: segment_distance(p, first, last)) if not closed else math.inf
    picks = (points[0], points[len(points) // 3], points[2 * len(points) // 3]) if closed else \
        (first, points[len(points) // 2], last)
    circle = circle_through(*picks)
    off_arc = math.inf if circle is None else \
        deviation(points, lambda p: abs(math.hypot(p.x - circle[0][0], p.y - circle[0][1]) - circle[1]))
    if off_line <= 0.5 * line_tolerance:
        return {"LINE"} | chained
    if off_arc <= 0.5 * arc_tolerance:
        return ({"CIRCLE"} if closed else {"ARC"}) | chained
    if off_line <= 2.0 * line_tolerance or off_arc <= 2.0 * arc_tolerance:
        return None
    if curve.dxftype() == "ELLIPSE" and closed:
        return {"ELLIPSE"}
    return {"LWPOLYLINE"}


def lines_touch(a, b):
    """Two exported lines of one slope family whose ends lie within 0.02 of each other's segment."""
    def slope(e):
        s, t = e.dxf.start, e.dxf.end
        return 10086.0 if abs(t.x - s.x) < 0.001 else (t.y - s.y) / (t.x - s.x)
    if abs(slope(a) - slope(b)) >= 0.0005:
        return False
    ends = ((a.dxf.start, b), (a.dxf.end, b), (b.dxf.start, a), (b.dxf.end, a))
    return any(segment_distance(p, o.dxf.start, o.dxf.end) < 0.02 for p, o in ends)


def arcs_touch(a, b, tolerance):
    if abs(a.dxf.radius - b.dxf.radius) >= tolerance:
        return False
    ca, cb = a.ocs().to_wcs(a.dxf.center), b.ocs().to_wcs(b.dxf.center)
    if (ca - cb).magnitude >= tolerance:
        return False
    ends = [p for e in (a, b) for p in (e.start_point, e.end_point)]
    return any((p - q).magnitude < tolerance for p in ends[:2] for q in ends[2:])


def check_curves(curves, doc, settings, chained_colours, check):
    arc_tolerance = float(settings.get("LineAndArcMerged", {}).get("Tolerance", "0") or 0)
    merged = [e for e in doc.modelspace() if chain_of(e) is not None]
    grid = SegmentGrid(merged)

    # Which merged entities carry all samples of each exported curve.
    carriers = []
    strays = []
    for curve in curves:
        common = None
        for point in samples_of(curve):
            near = grid.near(point)
            if not near:
                strays.append((curve.dxftype(), curve.dxf.layer, tuple(round(v, 3) for v in point)))
            common = near if common is None else common & near
        carriers.append(common or set())
    check(not strays, "exported curves that no curve of the merged drawing follows: %s" % strays[:5])

    left = [(e.dxf.layer, e.dxf.handle) for e in doc.modelspace() if e.dxftype() == "SPLINE"]
    check(not left, "splines left in the merged drawing: %s" % left[:5])

    wrong = []
    for curve, carrier in zip(curves, carriers):
        if curve.dxftype() not in ("SPLINE", "ELLIPSE"):
            continue
        kinds = expected_kinds(curve, settings, chained_colours)
        found = {merged[i].dxftype() for i in carrier}
        if kinds is not None and not kinds & found:
            wrong.append((curve.dxftype(), curve.dxf.layer, sorted(kinds), sorted(found)))
    check(not wrong, "splines and ellipses not rebuilt as the kind they are (curve, layer, expected, found): %s" % wrong[:5])

    lines = [i for i, c in enumerate(curves) if c.dxftype() == "LINE"]
    apart = [(curves[i].dxf.start, curves[j].dxf.start) for i in lines for j in lines
             if i < j and lines_touch(curves[i], curves[j]) and not carriers[i] & carriers[j]]
    check(not apart, "collinear pieces that did not become one line: %s" % apart[:5])

    arcs = [i for i, c in enumerate(curves) if c.dxftype() == "ARC"]
    apart = [(curves[i].dxf.center, curves[i].dxf.radius) for i in arcs for j in arcs
             if i < j and arcs_touch(curves[i], curves[j], arc_tolerance) and not carriers[i] & carriers[j]]
    check(not apart, "arc pieces that did not become one arc: %s" % apart[:5])

    # The polylines that replaced splines follow the splines both ways.
    spline_grid = SegmentGrid([c for c in curves if c.dxftype() in ("SPLINE", "ELLIPSE")])
    off = []
    for entity in merged:
        if entity.dxftype() != "LWPOLYLINE":
            continue
        points = samples_of(entity)
        if points and all(spline_grid.near(p) for p in points[:1]):
            off += [tuple(round(v, 3) for v in p) for p in points if not spline_grid.near(p)]
    check(not off, "polylines off the splines they replace: %s" % off[:5])
