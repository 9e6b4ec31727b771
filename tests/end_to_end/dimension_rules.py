"""The dimensions each view of the workshop must get, worked out from the exported drawings and
CAD_standard.ini by the dimensioning rules, without the program: the sheets (marker circles and
their BIGFRAM rectangles), the view rectangles, the datum circles and the hole circles as the
exports hold them, then the choice of ordinates or outline, the x and y selections, the text
spreading and the tolerance classes. The result is one list of expected dimensions per view,
compared with the merged drawing by check_sheets.check_dimensions.

Colours: the clean-ups of the workshop keep red (ColorExclude of [ModifyColor]) and never make a
circle red, so a circle is of the red class exactly when the export draws it red.
"""
import math

import ezdxf

VIEWS = [("FRONT", 0), ("LEFT", 1), ("TOP", 2)]
MARKER_KEYS = ["RECT", "URECT", "STAND", "USTAND"]
CLASSES = {"red": ("Reddec", "RedToler"), "other": ("Otherdec", "OtherToler"),
           "coner": ("Conerdec", "ConerToler"), "base": ("Basedec", "BaseToler"),
           "evel": ("Eveldec", "EvelToler")}


def read_standard(path):
    """Keys of CAD_standard.ini by section (GBK, `key,value` rows, // and ; comments)."""
    sections, section = {}, None
    for line in path.read_bytes().decode("gbk").splitlines():
        line = line.strip()
        if not line or line.startswith("//") or line.startswith(";"):
            continue
        if line.startswith("["):
            section = sections.setdefault(line.strip("[]").upper(), {})
            continue
        key, _, value = line.partition(",")
        section[key.strip()] = value.strip()
    return sections


def tolerance(text):
    """a^b: shown as +a over -b; both nearly zero (or no ^) means no tolerance: None."""
    if "^" not in text:
        return None
    a, b = (float(v) for v in text.split("^")[:2])
    if abs(a) < 1e-05 and abs(b) < 1e-05:
        return None
    return (a, -b)  # (DIMTP, DIMTM)


class Record:
    def __init__(self, center, color):
        self.center, self.color, self.text = center, color, list(center)


def layer_is(entity, name):
    return entity.dxf.layer.upper() == name.upper()


def circles_of(msp):
    """Every circle: (world centre, colour index, layer), in drawing order."""
    found = []
    for c in msp.query("CIRCLE"):
        center = tuple(c.ocs().to_wcs(c.dxf.center))
        found.append((center, c.dxf.get("color", 256), c.dxf.layer, c))
    return found


def sheets_of(msp, layers):
    """Marker centres in drawing order and the box of the BIGFRAM lines through each."""
    markers = [c for c in msp.query("CIRCLE") if any(layer_is(c, layers[k]) for k in MARKER_KEYS)]
    sheets = []
    for marker in markers:
        p = marker.dxf.center
        xs, ys = [], []
        for line in msp.query("LINE"):
            if layer_is(line, layers["BIGFRAM"]) and (
                    (line.dxf.start - p).magnitude <= 1e-05 or (line.dxf.end - p).magnitude <= 1e-05):
                for q in (line.dxf.start, line.dxf.end):
                    xs.append(q.x)
                    ys.append(q.y)
        sheets.append(((min(xs), min(ys)), (max(xs), max(ys))))
    return sheets


def bubble(records, axis):
    """Ascending on the text position; a pair is exchanged unless the first is strictly smaller."""
    n = len(records)
    while n > 1:
        swapped = False
        for i in range(n - 1):
            if not records[i].text[axis] < records[i + 1].text[axis]:
                records[i], records[i + 1] = records[i + 1], records[i]
                swapped = True
        n -= 1
        if not swapped:
            break


def spread(records, axis, pitch):
    changed = True
    while changed:
        changed = False
        for i in range(len(records) - 1):
            a, b = records[i].text[axis], records[i + 1].text[axis]
            if b - a < pitch:
                records[i].text[axis] = a - pitch * 0.5
                records[i + 1].text[axis] = b + pitch * 0.5
                changed = True


def merge(records):
    kept = []
    for r in records:
        if not any(math.dist(k.center, r.center) <= 0.001 for k in kept):
            kept.append(r)
    return kept


def select(records, axis, middle):
    """Columns (axis 0, sides top and bottom by y against middle) or rows (axis 1, sides right and
    left by x): (high side, low side), each end of a group on its side."""
    work = [Record(r.center, r.color) for r in records]
    high, low = [], []
    along = 1 - axis  # the coordinate that orders a group
    while work:
        seed = work.pop(0)
        group = [seed]
        for i in range(len(work) - 1, -1, -1):
            if abs(work[i].text[axis] - seed.text[axis]) <= 0.001:
                group.append(work.pop(i))
        if len(group) > 1:
            bubble(group, along)
            lo, hi = group[0], group[-1]
            if middle <= lo.text[along]:
                high.append(hi)
            if hi.text[along] <= middle:
                low.append(lo)
            if lo.text[along] <= middle and hi.text[along] >= middle:
                high.append(hi)
                low.append(lo)
        elif seed.text[along] < middle:
            low.append(seed)
        else:
            high.append(seed)
    return high, low


class Rules:
    def __init__(self, standard):
        self.dimstyle = standard["DIMSTYLE"]
        self.sundry = standard["SUNDRY"]
        self.layers = standard["LAYER"]
        self.mid = [0.0, 0.0]  # survives from view to view and drawing to drawing
        self.erased = set()

    def number(self, key):
        return float(self.sundry[key])

    def klass(self, name):
        dec_key, tol_key = CLASSES[name]
        return int(float(self.sundry[dec_key])), tolerance(self.sundry[tol_key])

    def ordinate(self, out, use_y, origin, at, leader, scale, klass, datum):
        if datum is not None:
            origin = datum
        if math.dist(origin, at) <= 1e-05:
            klass = "base"
        axis = 1 if use_y else 0
        dec, tol = self.klass(klass)
        out.append({"kind": "y" if use_y else "x", "origin": origin[:2], "at": at[:2], "leader": leader[:2],
                    "measured": abs(at[axis] - origin[axis]), "dimdec": dec, "tol": tol, "dimscale": scale})

    def outline(self, out, a, b, line, rotation, scale):
        direction = (math.cos(rotation), math.sin(rotation))
        measured = abs((b[0] - a[0]) * direction[0] + (b[1] - a[1]) * direction[1])
        dec, tol = self.klass("evel")
        out.append({"kind": "rotated", "xline1": a[:2], "xline2": b[:2], "dimline": line[:2],
                    "angle": math.degrees(rotation), "measured": measured, "dimdec": dec, "tol": tol,
                    "dimscale": scale})

    def sheet(self, msp, box):
        """The expected dimensions of the views of one sheet: [(layer, raw view box, [dims])]."""
        (fx0, fy0), (fx1, fy1) = box
        scale = (fx1 - fx0) / 297.0
        pitch = float(self.dimstyle["DIMTXT"]) * float(self.dimstyle["DIMSCALE"]) * scale
        offset = pitch * self.number("ORDOFFSCL")
        dim_scale = scale * float(self.dimstyle["DIMSCALE"])
        views = []
        for key, kind in VIEWS:
            layer = self.layers[key]
            lines = [l for l in msp.query("LINE") if layer_is(l, layer) and all(
                fx0 <= q.x <= fx1 and fy0 <= q.y <= fy1 for q in (l.dxf.start, l.dxf.end))]
            datum = None
            for center, _, circle_layer, circle in circles_of(msp):
                if circle.dxf.handle in self.erased:
                    continue
                if circle_layer.upper() == layer.upper() and fx0 < center[0] < fx1 and fy0 < center[1] < fy1:
                    datum = center  # the last one met wins; every one is erased
                    self.erased.add(circle.dxf.handle)
            if not lines:
                continue
            points = [q for l in lines for q in (l.dxf.start, l.dxf.end)]
            e0 = (min(q.x for q in points), min(q.y for q in points), min(q.z for q in points))
            e1 = (max(q.x for q in points), max(q.y for q in points), max(q.z for q in points))
            out = []
            self.view(msp, kind, e0, e1, datum, layer, pitch, offset, dim_scale, out)
            views.append((layer, (e0[:2], e1[:2]), out))
        return views

    def view(self, msp, kind, e0, e1, datum, layer, pitch, offset, scale, out):
        d = self.number("OFFSET")
        x0, y0, x1, y1, z = e0[0] + d, e0[1] + d, e1[0] - d, e1[1] - d, e0[2]
        ll, lr, ul, ur = (x0, y0, z), (x1, y0, z), (x0, y1, z), (x1, y1, z)
        old_x, old_y = self.mid
        left, right = (x0 - 10.0, old_y, z), (x1 + 10.0, old_y, z)
        bottom, top = (old_x, y0 - 10.0, z), (old_x, y1 + 10.0, z)
        self.mid = [(x1 + x0) * 0.5, (y1 + y0) * 0.5]
        width, height = abs(x0 - x1), abs(y0 - y1)
        plain, red = [], []
        for center, color, circle_layer, circle in circles_of(msp):
            if circle.dxf.handle in self.erased:
                continue
            if e0[0] <= center[0] <= e1[0] and e0[1] <= center[1] <= e1[1]:
                (red if color == 1 else plain).append(Record(center, color))
        for r in red:
            for p in plain:
                if math.dist(r.center, p.center) <= 0.001:
                    p.color = 1
        circles = plain + red
        n = len(circles)
        if n < 1:
            half_pi = 1.5707963267948966
            if kind == 0:
                self.outline(out, ll, ul, left, half_pi, scale)
                self.outline(out, ul, ur, top, 0.0, scale)
            elif kind == 1:
                self.outline(out, lr, ll, bottom, 0.0, scale)
            else:
                self.outline(out, lr, ur, right, half_pi, scale)
            return
        if self.number("XMAX") < width or self.number("YMAX") < height or n >= self.number("CIRCOUNT"):
            origin = lr if kind == 1 else ll
            marker = datum
            d1 = math.dist(marker, ul if kind == 1 else ll) if marker else -1.0
            d2 = math.dist(marker, lr if kind == 1 else ur) if marker else -1.0
            if marker is not None and math.dist(marker, origin) < 0.001:
                datum = None  # a marker on the origin corner is no datum
            if kind == 1:
                rows = [(1, ul, (x0 - offset, y1, z)), (0, ul, (x0, y1 + offset, z)),
                        (1, lr, (x1 + offset, y0, z)), (0, lr, (x1, y0 - offset, z))]
            else:
                rows = [(1, ll, (x0 - offset, y0, z)), (0, ll, (x0, y0 - offset, z)),
                        (1, ur, (x1 + offset, y1, z)), (0, ur, (x1, y1 + offset, z))]
            for use_y, at, leader in rows:
                self.ordinate(out, use_y, origin, at, leader, scale, "coner", datum)
            if 1e-06 < d1 and 0.001 < d2:
                self.ordinate(out, 1, marker, marker, (x0 - offset, marker[1], marker[2]), scale, "coner", datum)
                self.ordinate(out, 0, marker, marker, (marker[0], y0 - offset, marker[2]), scale, "coner", datum)
            return
        seeds = [Record(lr, 256), Record(ul, 256)] if kind == 1 else [Record(ll, 256), Record(ur, 256)]
        circles += seeds + ([Record(datum, 256)] if datum else [])
        circles = merge(circles)
        opposite = ul if kind == 1 else ur
        origin = (x1, y0, e1[2]) if kind == 1 else (x0, y0, z)

        def klass(r):
            if math.dist(r.center, opposite) <= 1e-05:
                return "coner"
            return "red" if r.color == 1 else "other"

        top_list, bottom_list = select(circles, 0, self.mid[1])
        for side in (top_list, bottom_list):
            bubble(side, 0)
        spread(bottom_list, 0, pitch)
        spread(top_list, 0, pitch)
        for r in top_list:
            self.ordinate(out, 0, origin, r.center, (r.text[0], y1 + offset, 0.0), scale, klass(r), datum)
        for r in bottom_list:
            self.ordinate(out, 0, origin, r.center, (r.text[0], y0 - offset, 0.0), scale, klass(r), datum)
        right_list, left_list = select(circles, 1, self.mid[0])
        for side in (left_list, right_list):
            bubble(side, 1)
        spread(left_list, 1, pitch)
        spread(right_list, 1, pitch)
        for r in left_list:
            self.ordinate(out, 1, origin, r.center, (x0 - offset, r.text[1], 0.0), scale, klass(r), datum)
        for r in right_list:
            self.ordinate(out, 1, origin, r.center, (x1 + offset, r.text[1], 0.0), scale, klass(r), datum)


def expected_views(exports, standard_path):
    """[(drawing name, sheet box, view layer, raw view box, [expected dimensions])] for the
    exports in the batch's order."""
    rules = Rules(read_standard(standard_path))
    views = []
    for path in exports:
        msp = ezdxf.readfile(path).modelspace()
        rules.erased = set()  # datum markers erased so far in this drawing
        for box in sheets_of(msp, rules.layers):
            for layer, view_box, dims in rules.sheet(msp, box):
                views.append((path.name, box, layer, view_box, dims))
    return views
