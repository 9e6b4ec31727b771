#!/usr/bin/python3
# -*- coding: utf-8 -*-
"""Generates the example workshop: a prefix (a Windows machine in a folder) that holds the
tool's configuration, its libraries of drawings, the logs that switch logging on, and the
hand-off of one part exported by the UG side, ready for a batch run.

Run with Debian's /usr/bin/python3 (python3-ezdxf):

    /usr/bin/python3 examples/generate_workshop.py [--handoff dwg|dxf] [--tavrik PROGRAM] [OUTPUT]

OUTPUT defaults to examples/workshop next to this script; an existing folder is replaced.
The hand-off is DWG by default, as the UG side exports it: ezdxf draws each export as DXF and
`tavrik convert` (PROGRAM, default build/bin/tavrik) turns it into an AC1018 DWG. With
--handoff dxf the exports stay DXF: the tests that check the batch's output with ezdxf run on
that variant.
The output is deterministic: fixed handles, dates and GUIDs, no randomness, so that a test
can generate into a temporary folder and compare byte for byte with the checked-in tree.
See examples/README.md for what is drawn and why.
"""
import argparse
import io
import math
import os
import shutil
import subprocess
import sys
import uuid
from datetime import datetime
from pathlib import Path

import ezdxf
from ezdxf.document import Drawing
from ezdxf.tools import juliandate

# ---------------------------------------------------------------------------------------------
# The machine
# ---------------------------------------------------------------------------------------------

USER = "cad"
LOCALAPPDATA = "C:\\Users\\" + USER + "\\AppData\\Local"
HANDOFF = LOCALAPPDATA + "\\Convert"
CZCONFIG = "D:\\CZTools"
STANDARD_FOLDER = "GB标准"  # the configuration marked valid in standard.csv
CONFIG_ROOT = CZCONFIG + "\\config\\" + STANDARD_FOLDER
FRAME_FOLDER = CONFIG_ROOT + "\\标准图框"
SYMBOL_FOLDER = CONFIG_ROOT + "\\孔符号"
TARGET_FOLDER = "D:\\成品图\\"
PART = "MP2305-"  # stem of the part's drawings: MP2305-1.dwg, MP2305-2.dwg

# ---------------------------------------------------------------------------------------------
# Fixed metadata: an exporting CAD stamps dates and GUIDs; ours are constants per file
# ---------------------------------------------------------------------------------------------

CREATED = juliandate(datetime(2023, 5, 18, 9, 12, 40))
UPDATED = juliandate(datetime(2023, 5, 18, 9, 13, 5))
GUID_NAMESPACE = uuid.UUID("6f1c2a34-5d7e-4b8f-9a0b-1c2d3e4f5a6b")


def _fixed_guid(name, kind):
    return "{" + str(uuid.uuid5(GUID_NAMESPACE, name + "/" + kind)).upper() + "}"


def _fixed_metadata(self):
    name = getattr(self, "workshop_name", "drawing")
    self.header["$TDCREATE"] = CREATED
    self.header["$TDUCREATE"] = CREATED - 8.0 / 24.0
    self.header["$TDUPDATE"] = UPDATED
    self.header["$TDUUPDATE"] = UPDATED - 8.0 / 24.0
    self.header["$FINGERPRINTGUID"] = _fixed_guid(name, "fingerprint")
    self.header["$VERSIONGUID"] = _fixed_guid(name, "version")
    self.header["$HANDSEED"] = str(self.entitydb.handles)
    self.header["$DWGCODEPAGE"] = "ANSI_936"


# No writer stamp of ezdxf in the files, and our own dates and GUIDs.
Drawing._update_metadata = _fixed_metadata
Drawing._create_ezdxf_metadata = lambda self: None
Drawing._update_ezdxf_metadata = lambda self: None


def new_drawing(name):
    doc = ezdxf.new("R2004", setup=False)
    doc.workshop_name = name
    doc.encoding = "gbk"
    doc.header["$INSUNITS"] = 4
    doc.header["$MEASUREMENT"] = 1
    doc.header["$INSBASE"] = (0.0, 0.0, 0.0)
    doc.header["$LTSCALE"] = 1.0
    # Linetypes as acadiso.lin has them.
    doc.linetypes.new("HIDDEN", dxfattribs={
        "description": "Hidden __ __ __ __ __ __ __ __ __ __ __ __ __ __",
        "pattern": [9.525, 6.35, -3.175]})
    doc.linetypes.new("CENTER", dxfattribs={
        "description": "Center ____ _ ____ _ ____ _ ____ _ ____ _ ____",
        "pattern": [50.8, 31.75, -6.35, 6.35, -6.35]})
    return doc


def add_layers(doc, layers):
    for name, color, linetype in layers:
        if name == "0":
            doc.layers.get("0").dxf.color = color
            continue
        doc.layers.new(name, dxfattribs={"color": color, "linetype": linetype})


def save_drawing(doc, path, extents):
    msp = doc.modelspace()
    (x0, y0), (x1, y1) = extents
    msp.dxf.extmin = (x0, y0, 0.0)
    msp.dxf.extmax = (x1, y1, 0.0)
    msp.dxf.limmin = (x0, y0)
    msp.dxf.limmax = (x1, y1)
    stream = io.StringIO()
    doc.write(stream)
    data = doc.encode(stream.getvalue()).replace(b"\n", b"\r\n")
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)


# ---------------------------------------------------------------------------------------------
# Text files: GBK (code page 936) with Windows line ends
# ---------------------------------------------------------------------------------------------

def write_text(path, text, encoding="gbk"):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(text.replace("\n", "\r\n").encode(encoding))


def drive_path(root, windows_path):
    """The prefix path of a Windows path: D:\\a\\b -> <root>/drives/d/a/b."""
    drive, rest = windows_path.split(":", 1)
    parts = [p for p in rest.split("\\") if p]
    return root.joinpath("drives", drive.lower(), *parts)


# ---------------------------------------------------------------------------------------------
# Drawing on a sheet: coordinates local to a view's lower-left corner
# ---------------------------------------------------------------------------------------------

SOLID = "Continuous"
DASHED = "HIDDEN"
CENTER = "CENTER"


def cad_text(s):
    """A text as the exporting CAD stores it: characters outside GBK (such as the diameter
    signs Ø U+00D8 and ∅ U+2205) are written as \\U+XXXX."""
    out = []
    for ch in s:
        try:
            ch.encode("gbk")
            out.append(ch)
        except UnicodeEncodeError:
            out.append("\\U+%04X" % ord(ch))
    return "".join(out)


class Pen:
    """Draws into model space with an offset, the way the exporter writes a view:
    explicit linetype on each entity (UG does not use ByLayer linetypes)."""

    def __init__(self, msp, ox, oy):
        self.msp, self.ox, self.oy = msp, ox, oy

    def at(self, x, y):
        return Pen(self.msp, self.ox + x, self.oy + y)

    def p(self, x, y, z=0.0):
        return (self.ox + x, self.oy + y, z)

    @staticmethod
    def attribs(layer, linetype, color, lineweight):
        a = {"layer": layer, "linetype": linetype}
        if color is not None:
            a["color"] = color
        if lineweight is not None:
            a["lineweight"] = lineweight
        return a

    def line(self, a, b, layer="1", linetype=SOLID, color=None, lineweight=None, z=0.0):
        return self.msp.add_line(self.p(*a, z), self.p(*b, z),
                                 dxfattribs=self.attribs(layer, linetype, color, lineweight))

    def circle(self, c, diameter, layer="1", linetype=SOLID, color=None, mirrored=False):
        a = self.attribs(layer, linetype, color, None)
        x, y, _ = self.p(*c)
        if mirrored:
            # Normal (0,0,-1): the object system's x axis is the world's -x.
            a["extrusion"] = (0.0, 0.0, -1.0)
            return self.msp.add_circle((-x, y, 0.0), diameter / 2.0, dxfattribs=a)
        return self.msp.add_circle((x, y, 0.0), diameter / 2.0, dxfattribs=a)

    def arc(self, c, radius, start, end, layer="1", linetype=SOLID, color=None, mirrored=False):
        a = self.attribs(layer, linetype, color, None)
        x, y, _ = self.p(*c)
        if mirrored:
            a["extrusion"] = (0.0, 0.0, -1.0)
            return self.msp.add_arc((-x, y, 0.0), radius, (180.0 - end) % 360.0,
                                    (180.0 - start) % 360.0, dxfattribs=a)
        return self.msp.add_arc((x, y, 0.0), radius, start, end, dxfattribs=a)

    def spline(self, control, layer="1", linetype=SOLID, color=None, degree=3):
        """A clamped B-spline through its end control points, uniform inner knots."""
        n = len(control)
        inner = n - degree - 1
        knots = [0.0] * (degree + 1) + [float(i + 1) for i in range(inner)] + \
                [float(inner + 1)] * (degree + 1)
        return self.msp.add_open_spline([self.p(*q) for q in control], degree=degree, knots=knots,
                                        dxfattribs=self.attribs(layer, linetype, color, None))

    def arc_spline(self, c, radius, start, end, **kw):
        """A quarter arc (or less) exported as a cubic Bezier spline."""
        a0, a1 = math.radians(start), math.radians(end)
        k = 4.0 / 3.0 * math.tan((a1 - a0) / 4.0) * radius
        cx, cy = c
        p0 = (cx + radius * math.cos(a0), cy + radius * math.sin(a0))
        p3 = (cx + radius * math.cos(a1), cy + radius * math.sin(a1))
        p1 = (p0[0] - k * math.sin(a0), p0[1] + k * math.cos(a0))
        p2 = (p3[0] + k * math.sin(a1), p3[1] - k * math.cos(a1))
        return self.spline([p0, p1, p2, p3], **kw)

    def ellipse(self, c, major, ratio, start=0.0, end=math.tau, layer="1", linetype=SOLID,
                color=None):
        return self.msp.add_ellipse(self.p(*c), major_axis=(major[0], major[1], 0.0), ratio=ratio,
                                    start_param=start, end_param=end,
                                    dxfattribs=self.attribs(layer, linetype, color, None))

    def radius_dimension(self, c, radius, angle, layer="1"):
        """A radius dimension as the exporter leaves it: on a layer of the part."""
        dim = self.msp.add_radius_dim(center=self.p(*c), radius=radius, angle=angle,
                                      dimstyle="Standard", dxfattribs={"layer": layer})
        dim.render()
        return dim

    def point(self, c, layer):
        return self.msp.add_point(self.p(*c), dxfattribs={"layer": layer})

    def polyline(self, points, layer, color=None, closed=True):
        pl = self.msp.add_lwpolyline([(self.ox + x, self.oy + y, b) for x, y, b in points],
                                     format="xyb", close=closed,
                                     dxfattribs=self.attribs(layer, SOLID, color, None))
        return pl

    def text(self, s, pos, height, layer="TEXT", style="chinesef_fs"):
        x, y, _ = self.p(*pos)
        return self.msp.add_text(cad_text(s), dxfattribs={"insert": (x, y, 0.0), "height": height,
                                                "style": style, "layer": layer})

    def mtext(self, s, pos, height, width=0.0, layer="TEXT", style="chinesef_fs"):
        x, y, _ = self.p(*pos)
        a = {"insert": (x, y, 0.0), "char_height": height, "style": style, "layer": layer,
             "attachment_point": 1}
        if width:
            a["width"] = width
        return self.msp.add_mtext(cad_text(s), dxfattribs=a)

    def rect(self, x0, y0, x1, y1, layer, linetype=SOLID, color=None):
        self.line((x0, y0), (x1, y0), layer, linetype, color)
        self.line((x1, y0), (x1, y1), layer, linetype, color)
        self.line((x1, y1), (x0, y1), layer, linetype, color)
        self.line((x0, y1), (x0, y0), layer, linetype, color)


# ---------------------------------------------------------------------------------------------
# The exported drawings of the part
# ---------------------------------------------------------------------------------------------

# Layers of a UG export: numbered geometry layers, construction layers of the sheets and
# views, and one layer per hole type for the points at hole centres.
EXPORT_LAYERS = [
    ("0", 7, SOLID),
    ("1", 7, SOLID),          # visible outline
    ("2", 2, DASHED),         # hidden lines
    ("3", 4, CENTER),         # centre lines
    ("TEXT", 3, SOLID),       # notes and KEY:VALUE texts
    ("线割", 1, SOLID),       # wire-cut contours
    ("RECT", 1, SOLID),       # sheet markers
    ("URECT", 1, SOLID),
    ("STAND", 1, SOLID),
    ("USTAND", 1, SOLID),
    ("BIGFRAM", 8, SOLID),    # sheet outer rectangles
    # View rectangles, grey: a colour that no clean-up rule names, so that they come through
    # the chains of green pieces as the lines they are.
    ("FRONT", 8, SOLID),
    ("LEFT", 8, SOLID),
    ("TOP", 8, SOLID),
    ("H_TAP", 6, SOLID),      # hole types: tapped
    ("H_CBORE", 6, SOLID),    # counterbored screw holes
    ("H_PIN", 6, SOLID),      # dowel pins
    ("H_WATER", 5, SOLID),    # cooling water
]

OFFSET = 5.0  # view rectangles stand this far outside the part's outline (OFFSET of [SUNDRY])


def export_drawing(name):
    doc = new_drawing(name)
    add_layers(doc, EXPORT_LAYERS)
    doc.styles.get("Standard").dxf.font = "txt.shx"
    doc.styles.new("chinesef_fs", dxfattribs={"font": "chinesef_fs.shx", "width": 0.8})
    doc.styles.new("bar", dxfattribs={"font": "FREE3OF9.TTF"})
    # Decimal point, not the metric default comma, as the shop's standard has it.
    doc.dimstyles.get("Standard").dxf.dimdsep = ord(".")
    return doc


class Sheet:
    """One sheet of an export: marker circle at the lower-left corner, outer rectangle on
    BIGFRAM with the marker's centre on a corner, views on FRONT/LEFT/TOP."""

    def __init__(self, msp, origin, width, height, marker_layer):
        self.msp, self.width, self.height = msp, width, height
        self.pen = Pen(msp, origin[0], origin[1])
        self.counts = {"markers": 0, "points": 0}
        pen = self.pen
        pen.circle((0.0, 0.0), 10.0, layer=marker_layer)
        self.counts["markers"] += 1
        # Two of the four lines run through the marker's centre, one from it, one to it.
        pen.line((0.0, 0.0), (width, 0.0), "BIGFRAM")
        pen.line((width, 0.0), (width, height), "BIGFRAM")
        pen.line((width, height), (0.0, height), "BIGFRAM")
        pen.line((0.0, height), (0.0, 0.0), "BIGFRAM")

    def view(self, layer, x, y, w, h):
        """A view of a part w x h whose lower-left outline corner is at (x, y)."""
        self.pen.rect(x - OFFSET, y - OFFSET, x + w + OFFSET, y + h + OFFSET, layer)
        return self.pen.at(x, y)

    def point(self, pen, c, layer):
        pen.point(c, layer)
        self.counts["points"] += 1

    def key_values(self, x, y, height, rows):
        """KEY:VALUE texts, one below the other; a row ("M", text) is written as MTEXT."""
        for i, row in enumerate(rows):
            kind, s = row if isinstance(row, tuple) else ("T", row)
            pos = (x, y - i * height * 2.0)
            if kind == "M":
                self.pen.mtext(s, pos, height)
            else:
                self.pen.text(s, pos, height)

    # Holes as the exporter draws them, with a point at the centre on the type's layer.
    def tapped(self, pen, c, minor, major, mirrored=False, back=False):
        pen.circle(c, minor, linetype=DASHED if back else SOLID, mirrored=mirrored)
        pen.circle(c, major, linetype=DASHED)
        self.point(pen, c, "H_TAP")

    def counterbore(self, pen, c, through, bore, mirrored=False):
        pen.circle(c, through)
        pen.circle(c, bore, mirrored=mirrored)
        self.point(pen, c, "H_CBORE")

    def pin(self, pen, c, d, red=True):
        pen.circle(c, d, color=1 if red else None)
        self.point(pen, c, "H_PIN")

    def water(self, pen, c, d, mirrored=False):
        pen.circle(c, d, mirrored=mirrored)
        self.point(pen, c, "H_WATER")


def sheet_plate_b(msp, origin):
    """Sheet 1: the B plate (B板) 300 x 200 x 45, P20, drawn 1:2 on an A3 sheet (840 x 594)."""
    s = Sheet(msp, origin, 840.0, 594.0, "RECT")
    W, H, T = 300.0, 200.0, 45.0

    # Main view: the plate seen from above.
    m = s.view("FRONT", 100.0, 150.0, W, H)
    # Outline: bottom edge broken into collinear pieces, top edge drawn twice (once reversed),
    # left edge left at the height of the top face, a heavy lineweight from the exporter.
    for a, b in ((0.0, 110.0), (110.0, 190.0), (190.0, W)):
        m.line((a, 0.0), (b, 0.0), lineweight=50)
    m.line((W, 0.0), (W, H), lineweight=50)
    m.line((W, H), (0.0, H), lineweight=50)
    m.line((0.0, H), (W, H), lineweight=50)
    m.line((0.0, H), (0.0, 0.0), lineweight=50, z=T)
    m.line((W, H), (W + 0.003, H + 0.002))  # a stub left by the exporter
    # Insert pocket 120 x 80, R10 corners, in green pieces; one corner came out as a spline,
    # one with the normal (0,0,-1).
    g = {"color": 3}
    m.line((100.0, 60.0), (200.0, 60.0), **g)
    m.line((210.0, 70.0), (210.0, 130.0), **g)
    m.line((200.0, 140.0), (100.0, 140.0), **g)
    m.line((90.0, 130.0), (90.0, 70.0), **g)
    m.arc((100.0, 70.0), 10.0, 180.0, 270.0, **g)
    m.arc((200.0, 70.0), 10.0, 270.0, 360.0, **g)
    m.arc_spline((200.0, 130.0), 10.0, 0.0, 90.0, **g)
    m.arc((100.0, 130.0), 10.0, 90.0, 180.0, mirrored=True, **g)
    # Guide pillar holes, H7 (red), one set off against wrong assembly.
    for c in ((30.0, 30.0), (270.0, 34.0), (30.0, 170.0), (270.0, 170.0)):
        m.circle(c, 25.0, color=1)
    # M10 cap screws: 11 through, 17.5 counterbore.
    for i, c in enumerate(((75.0, 20.0), (225.0, 20.0), (75.0, 180.0), (225.0, 180.0))):
        s.counterbore(m, c, 11.0, 17.5, mirrored=i in (1, 2))
    # M8 tapped holes: 6.8 tap drill solid, 8 thread dashed.
    for i, c in enumerate(((20.0, 70.0), (20.0, 130.0), (280.0, 70.0), (280.0, 130.0))):
        s.tapped(m, c, 6.8, 8.0, mirrored=i == 3)
    # Dowel pins 8 H7.
    s.pin(m, (60.0, 100.0), 8.0)
    s.pin(m, (240.0, 100.0), 8.0)
    # An ejector hole 6 at 30 degrees to the face: an ellipse.
    m.ellipse((150.0, 30.0), (3.0 / math.cos(math.radians(30.0)), 0.0), math.cos(math.radians(30.0)))
    # Wire-cut slot 24 x 12 for a slider lock.
    m.polyline([(144.0, 164.0, 0.0), (156.0, 164.0, 1.0), (156.0, 176.0, 0.0),
                (144.0, 176.0, 1.0)], "线割", color=1)
    # Cooling channels 8 across the plate: hidden lines, one broken in three.
    for y in (48.0, 56.0, 144.0):
        m.line((0.0, y), (W, y), "2", DASHED)
    for a, b in ((0.0, 95.0), (95.0, 205.0), (205.0, W)):
        m.line((a, 152.0), (b, 152.0), "2", DASHED)
    # Centre lines, blue as UG exports them.
    for y in (52.0, 148.0):
        m.line((-4.0, y), (W + 4.0, y), "3", CENTER, color=5)
    m.line((150.0, -4.0), (150.0, H + 4.0), "3", CENTER, color=5)
    m.line((-4.0, 100.0), (W + 4.0, 100.0), "3", CENTER, color=5)
    # A corner radius of the pocket as the exporter dimensioned it, on the outline's layer.
    m.radius_dimension((200.0, 70.0), 10.0, 315.0)
    # The plate is measured from its centre: a datum circle on the view's layer.
    m.circle((150.0, 100.0), 6.0, layer="FRONT")
    m.point((150.0, 100.0), "0")  # the view centre that UG leaves behind

    # Left view: the plate seen from the side, thickness across.
    left = s.view("LEFT", 490.0, 150.0, T, H)
    left.rect(0.0, 0.0, T, H, "1")
    left.line((0.0, H), (0.0, 0.0))  # left edge twice
    left.spline([(20.0, 60.0), (20.0, 85.0), (20.0, 115.0), (20.0, 140.0)], layer="2",
                linetype=DASHED)  # a straight hidden edge exported as a spline
    left.line((20.0, 60.0), (T, 60.0), "2", DASHED)
    left.line((20.0, 140.0), (T, 140.0), "2", DASHED)
    for y in (17.5, 42.5, 157.5, 182.5):
        left.line((0.0, y), (T, y), "2", DASHED)
    s.water(left, (22.5, 52.0), 8.0)
    s.water(left, (22.5, 148.0), 8.0, mirrored=True)
    for y in (52.0, 148.0):
        left.line((-4.0, y), (T + 4.0, y), "3", CENTER, color=5)

    # Top view: the plate seen from the front, with a local section break line.
    top = s.view("TOP", 100.0, 400.0, W, T)
    top.rect(0.0, 0.0, W, T, "1")
    for x in (17.5, 42.5, 257.5, 282.5):
        top.line((x, 0.0), (x, T), "2", DASHED)
    top.line((90.0, 20.0), (90.0, T), "2", DASHED)
    top.line((210.0, 20.0), (210.0, T), "2", DASHED)
    top.line((90.0, 20.0), (210.0, 20.0), "2", DASHED)
    top.spline([(235.0, 0.0), (243.0, 8.0), (229.0, 18.0), (243.0, 28.0), (229.0, 38.0),
                (237.0, T)], color=3)

    # Notes, hole callouts with diameter signs, the barcode.
    p = s.pen
    p.text("4-Ø11通孔 沉头Ø17.5深11", (100.0, 128.0), 5.0)
    p.text("4-M8深20 底孔∅6.8", (100.0, 116.0), 5.0)
    p.text("2-Ø8 H7 销孔配作", (100.0, 104.0), 5.0)
    p.mtext("4-Ø25 H7 导柱孔\\P2-Ø8 运水孔贯穿", (280.0, 132.0), 5.0)
    p.mtext("技术要求\\P1.未注倒角C0.5\\P2.未注公差按GB/T 1804-m\\P3.锐边倒钝", (540.0, 440.0),
            5.0, width=200.0)
    p.text("*MP2305-01*", (620.0, 560.0), 7.0)
    s.key_values(540.0, 330.0, 5.0, [
        "图号:MP2305-01", ("M", "名称:B板"), "材料:p20", "数量:1", "热处理:预硬HRC28-32",
        ("M", "设计:张伟"), "日期:2023-05-18", "页次:1/3", "审核:王强"])
    return s


def sheet_core_insert(msp, origin):
    """Sheet 2: a core insert (型芯镶件) 100 x 70 x 30, SKD61, 1:2 on an A4 sheet (594 x 420)."""
    s = Sheet(msp, origin, 594.0, 420.0, "RECT")
    W, H, T = 100.0, 70.0, 30.0

    m = s.view("FRONT", 60.0, 170.0, W, H)
    m.line((5.0, 0.0), (95.0, 0.0))
    m.line((W, 5.0), (W, 65.0))
    m.line((95.0, H), (5.0, H))
    m.line((5.0, H), (95.0, H))  # top edge twice
    m.line((0.0, 65.0), (0.0, 5.0))
    m.arc((5.0, 5.0), 5.0, 180.0, 270.0, mirrored=True)
    m.arc((95.0, 5.0), 5.0, 270.0, 315.0)  # one corner in two pieces
    m.arc((95.0, 5.0), 5.0, 315.0, 360.0)
    m.arc((95.0, 65.0), 5.0, 0.0, 90.0)
    m.arc((5.0, 65.0), 5.0, 90.0, 180.0)
    # M6 tapped holes; the last one is tapped from the back: both its circles are dashed.
    for i, c in enumerate(((10.0, 10.0), (90.0, 10.0), (10.0, 60.0), (90.0, 60.0))):
        s.tapped(m, c, 5.0, 6.0, mirrored=i == 0, back=i == 3)
    m.circle((35.0, 35.0), 4.0)  # ejector pins
    m.circle((65.0, 35.0), 4.0)
    # Vent holes 2 in a grid: with them the view holds more circles than CIRCOUNT and gets its
    # outline dimensioned instead of an ordinate per hole.
    for i in range(6):
        for j in range(4):
            m.circle((25.0 + 10.0 * i, 20.0 + 10.0 * j), 2.0)
    m.spline([(20.0, 25.0), (30.0, 50.0), (45.0, 50.0), (55.0, 20.0), (68.0, 18.0),
              (80.0, 45.0)])  # parting line of the core, free form
    m.line((50.0, -4.0), (50.0, H + 4.0), "3", CENTER, color=5)
    m.line((-4.0, 35.0), (W + 4.0, 35.0), "3", CENTER, color=5)

    left = s.view("LEFT", 200.0, 170.0, T, H)
    left.rect(0.0, 0.0, T, H, "1")
    for y in (7.5, 12.5, 57.5, 62.5):
        left.line((18.0, y), (T, y), "2", DASHED)
    left.line((0.0, 33.0), (T, 33.0), "2", DASHED)
    left.line((0.0, 37.0), (T, 37.0), "2", DASHED)

    top = s.view("TOP", 60.0, 270.0, W, T)
    top.rect(0.0, 0.0, W, T, "1")
    for x in (33.0, 37.0, 63.0, 67.0):
        top.line((x, 0.0), (x, T), "2", DASHED)

    p = s.pen
    p.text("4-M6深12 底孔∅5", (60.0, 150.0), 5.0)
    p.text("2-Ø4 顶针孔", (60.0, 138.0), 5.0)
    p.text("*MP2305-02*", (400.0, 390.0), 7.0)
    s.key_values(300.0, 330.0, 5.0, [
        "图号:MP2305-02", ("M", "名称:型芯镶件"), "材料:SKD61", "数量:2",
        "热处理:HRC48-52", ("M", "设计:张伟"), "日期:2023-05-18", "页次:2/3"])
    return s


def sheet_clamp(msp, origin):
    """Sheet 3: a clamp (压板) 180 x 40 x 20, 45 steel, 1:2 on an A4 sheet (594 x 420)."""
    s = Sheet(msp, origin, 594.0, 420.0, "URECT")
    W, H, T = 180.0, 40.0, 20.0

    m = s.view("FRONT", 60.0, 200.0, W, H)
    m.line((0.0, 0.0), (100.0, 0.0))
    m.line((100.0, 0.0), (W, 0.0))  # bottom edge in two pieces
    m.line((W, 0.0), (W, H))
    m.line((W, H), (0.0, H))
    m.line((0.0, H), (0.0, 0.0))
    for i, x in enumerate((30.0, 90.0, 150.0)):
        s.counterbore(m, (x, 20.0), 6.6, 11.0, mirrored=i == 1)
    m.line((-4.0, 20.0), (W + 4.0, 20.0), "3", CENTER, color=5)

    left = s.view("LEFT", 280.0, 200.0, T, H)
    left.rect(0.0, 0.0, T, H, "1")
    left.line((0.0, 14.5), (T, 14.5), "2", DASHED)
    left.line((0.0, 25.5), (T, 25.5), "2", DASHED)
    left.ellipse((10.0, 20.0), (0.0, 5.5), 0.5, 0.0, math.pi, layer="2", linetype=DASHED)

    top = s.view("TOP", 60.0, 280.0, W, T)
    top.rect(0.0, 0.0, W, T, "1")
    for x in (30.0, 90.0, 150.0):
        top.line((x - 5.5, 14.0), (x + 5.5, 14.0), "2", DASHED)
        top.line((x - 5.5, 14.0), (x - 5.5, T), "2", DASHED)
        top.line((x + 5.5, 14.0), (x + 5.5, T), "2", DASHED)
        top.line((x - 3.3, 0.0), (x - 3.3, 14.0), "2", DASHED)
        top.line((x + 3.3, 0.0), (x + 3.3, 14.0), "2", DASHED)

    # A detail of the clamp as the exporter left it: a circle and a half circle written as
    # ellipses, a nearly flat arc, a circle and an arc in pieces, a line in pieces.
    d = s.pen.at(380.0, 150.0)
    d.ellipse((20.0, 90.0), (6.0, 0.0), 1.0)
    d.ellipse((60.0, 90.0), (0.0, 6.0), 1.0, 0.0, math.pi)
    d.arc((85.0, 100.0 - 2000.0), 2000.0, 89.85, 90.15)
    for a, b in ((10.0, 130.0), (130.0, 250.0), (250.0, 10.0)):
        d.arc((20.0, 40.0), 8.0, a, b)
    for a, b in ((200.0, 270.0), (270.0, 340.0)):
        d.arc((60.0, 40.0), 8.0, a, b)
    for a, b in ((0.0, 20.0), (20.0, 50.0), (50.0, 80.0)):
        d.line((a, 0.0), (b, 0.0))

    p = s.pen
    p.text("3-Ø6.6通孔 沉头Ø11深6.5", (60.0, 180.0), 5.0)
    p.text("*MP2305-03*", (400.0, 390.0), 7.0)
    s.key_values(300.0, 330.0, 5.0, [
        "图号:MP2305-03", ("M", "名称:压板"), "材料:45#", "数量:4", "热处理:调质HB220-250",
        ("M", "设计:张伟"), "日期:2023-05-18", "页次:3/3"])
    return s


# Sheets of the part. The merge adds no offset, so the UG side places every sheet of the part
# at its own place in the world: the drawing -1 at x 0, the drawing -2 at x 1000 and x 1700.
PART_DRAWINGS = [
    ("MP2305-1.dxf", [(sheet_plate_b, (0.0, 0.0))]),
    ("MP2305-2.dxf", [(sheet_core_insert, (1000.0, 0.0)), (sheet_clamp, (1700.0, 0.0))]),
]


def write_exports(root):
    folder = drive_path(root, HANDOFF)
    summary = []
    for file_name, sheets in PART_DRAWINGS:
        doc = export_drawing(file_name)
        msp = doc.modelspace()
        made = [make(msp, origin) for make, origin in sheets]
        xs = [o[0] for _, o in sheets] + [o[0] + s.width for (_, o), s in zip(sheets, made)]
        ys = [o[1] for _, o in sheets] + [o[1] + s.height for (_, o), s in zip(sheets, made)]
        save_drawing(doc, folder / file_name, ((min(xs), min(ys)), (max(xs), max(ys))))
        summary.append((file_name, len(made), sum(s.counts["markers"] for s in made),
                        sum(s.counts["points"] for s in made)))
    return summary


# ---------------------------------------------------------------------------------------------
# Sheet frames: frame lines plus a title block reference with attributes
# ---------------------------------------------------------------------------------------------

# Title block 180 x 40, base point at its lower-right corner; rows of 8.
# (label, tag, prompt, column) with column 0 the left half, 1 the right half.
TITLE_ROWS = [
    [("名称", "名称", "零件名称"), ("图号", "图号", "图号")],
    [("材料", "材料", "材料"), ("数量", "数量", "数量")],
    [("热处理", "热处理", "热处理"), ("页次", "页次", "第几页/共几页")],
    [("设计", "设计", "设计者"), ("审核", "审核", "审核者")],
    [("日期", "日期", "日期"), ("单位", "单位", "单位名称")],
]
TITLE_DEFAULTS = {"名称": "", "图号": "", "材料": "", "数量": "1", "热处理": "",
                  "页次": "1/1", "设计": "", "审核": "", "日期": "", "单位": ""}


def title_block(doc):
    block = doc.blocks.new("标题栏", base_point=(0.0, 0.0))
    frame = {"layer": "图框", "color": 256}
    x0, x1, y1 = -180.0, 0.0, 40.0
    for i in range(6):
        block.add_line((x0, i * 8.0), (x1, i * 8.0), dxfattribs=frame)
    for x in (x0, -160.0, -90.0, -70.0, x1):
        block.add_line((x, 0.0), (x, y1), dxfattribs=frame)
    text = {"layer": "图框文字", "style": "Standard", "height": 3.5}
    for r, row in enumerate(TITLE_ROWS):
        y = y1 - 8.0 * (r + 1) + 2.25
        for col, (label, tag, prompt) in enumerate(row):
            lx, vx = (-178.5, -158.5) if col == 0 else (-88.5, -68.5)
            block.add_text(label, dxfattribs=dict(text, insert=(lx, y)))
            block.add_attdef(tag, (vx, y), TITLE_DEFAULTS[tag],
                             dxfattribs=dict(text, prompt=prompt))
    return block


def frame_drawing(name, width, height):
    """A sheet frame, landscape, lower-left corner at the origin (the base point that lands on
    the sheet marker): outer trimmed edge, inner border with a 25 binding margin, title block."""
    doc = new_drawing(name)
    add_layers(doc, [("0", 7, SOLID), ("图框", 7, SOLID), ("图框文字", 3, SOLID)])
    doc.styles.get("Standard").dxf.font = "gbenor.shx"
    doc.styles.get("Standard").dxf.bigfont = "gbcbig.shx"
    doc.styles.get("Standard").dxf.width = 0.7
    title_block(doc)
    msp = doc.modelspace()
    edge = {"layer": "图框", "lineweight": 25}
    border = {"layer": "图框", "lineweight": 50}
    pts = [(0.0, 0.0), (width, 0.0), (width, height), (0.0, height)]
    for a, b in zip(pts, pts[1:] + pts[:1]):
        msp.add_line(a, b, dxfattribs=edge)
    inner = [(25.0, 5.0), (width - 5.0, 5.0), (width - 5.0, height - 5.0), (25.0, height - 5.0)]
    for a, b in zip(inner, inner[1:] + inner[:1]):
        msp.add_line(a, b, dxfattribs=border)
    # Centring marks at the middle of each side.
    for a, b in (((width / 2, 0.0), (width / 2, 10.0)), ((width / 2, height), (width / 2, height - 10.0)),
                 ((0.0, height / 2), (35.0, height / 2)), ((width, height / 2), (width - 10.0, height / 2))):
        msp.add_line(a, b, dxfattribs=border)
    ref = msp.add_blockref("标题栏", (width - 5.0, 5.0), dxfattribs={"layer": "图框"})
    ref.add_auto_attribs(TITLE_DEFAULTS)
    return doc


# Named .dwg as the library has them (the content is DXF: the host tells a file by its content);
# the block that a frame becomes is its name less the trailing characters of ".DWG".
FRAMES = [("A3横式.dwg", 420.0, 297.0), ("A4横式.dwg", 297.0, 210.0)]


def write_frames(root):
    folder = drive_path(root, FRAME_FOLDER)
    for file_name, w, h in FRAMES:
        save_drawing(frame_drawing(file_name, w, h), folder / file_name, ((0.0, 0.0), (w, h)))


# ---------------------------------------------------------------------------------------------
# Hole symbols: one small drawing per name of CAD_hole.ini, centred on the origin
# ---------------------------------------------------------------------------------------------

# (type, layer of the points, comment, [(row diameter, front name, back name, drawer)])
def _tap(minor, major):
    return lambda pen, back: (
        pen.circle((0, 0), minor, "0", DASHED if back else SOLID, color=2 if back else 7),
        pen.circle((0, 0), major, "0", DASHED, color=2) if back else
        pen.arc((0, 0), major / 2.0, 0.0, 270.0, "0", SOLID, color=3))


def _two(small, big):
    return lambda pen, back: (
        pen.circle((0, 0), small, "0", DASHED if back else SOLID, color=2 if back else 7),
        pen.circle((0, 0), big, "0", DASHED if back else SOLID, color=2 if back else 7))


def _one(d):
    return lambda pen, back: (
        pen.circle((0, 0), d, "0", DASHED if back else SOLID, color=2 if back else 7),)


HOLE_TYPES = [
    (1, "H_TAP", "螺纹孔: 底孔实线圆 + 螺纹大径虚线圆", [
        ("5", "M6", _tap(5.0, 6.0), 6.0), ("6.8", "M8", _tap(6.8, 8.0), 8.0),
        ("8.5", "M10", _tap(8.5, 10.0), 10.0)]),
    (2, "H_CBORE", "沉头螺丝孔: 通孔 + 沉头孔", [
        ("6.6", "沉头M6", _two(6.6, 11.0), 11.0), ("9", "沉头M8", _two(9.0, 14.0), 14.0),
        ("11", "沉头M10", _two(11.0, 17.5), 17.5)]),
    (3, "H_PIN", "销钉孔", [
        ("6", "销6", _one(6.0), 6.0), ("8", "销8", _one(8.0), 8.0),
        ("10", "销10", _one(10.0), 10.0)]),
    (4, "H_WATER", "运水孔", [
        ("8", "水孔8", _one(8.0), 8.0), ("10", "水孔10", _one(10.0), 10.0)]),
]


def symbol_drawing(name, draw, size, back):
    doc = new_drawing(name)
    add_layers(doc, [("0", 7, SOLID)])
    pen = Pen(doc.modelspace(), 0.0, 0.0)
    draw(pen, back)
    r = size / 2.0 + 3.0
    pen.line((-r, 0.0), (r, 0.0), "0", CENTER, color=4)
    pen.line((0.0, -r), (0.0, r), "0", CENTER, color=4)
    return doc, r


def write_symbols(root):
    """The library names its files without extension; the tool appends .dwg. The files are
    DXF inside: the host tells the kind of a file by its content."""
    folder = drive_path(root, SYMBOL_FOLDER)
    for _, _, _, rows in HOLE_TYPES:
        for _, name, draw, size in rows:
            for back in (False, True):
                symbol = name + ("反" if back else "")
                doc, r = symbol_drawing(symbol + ".dwg", draw, size, back)
                save_drawing(doc, folder / (symbol + ".dwg"), ((-r, -r), (r, r)))


# ---------------------------------------------------------------------------------------------
# Configuration files
# ---------------------------------------------------------------------------------------------

STANDARD_CSV = """文件夹名称,有效配置,说明
GB标准,Y,国标图框与国标孔符号(默认)
企业标准,N,企业内部标准
出口标准,N,出口模具 英文图框
"""

CAD_STANDARD_INI = """// CAD_standard.ini  图纸标准(国标)
// 格式: 键,值   以 // 或 ; 开头的行为注释
[LAYER]
// 图纸标记圆所在的图层
USTAND,USTAND
URECT,URECT
RECT,RECT
STAND,STAND
// 图纸外框线
BIGFRAM,BIGFRAM
// 视图框: 主视图, 左视图, 附视图
FRONT,FRONT
LEFT,LEFT
TOP,TOP
// 尺寸标注归入的图层
DIM,标注
// 不参与图层分配的文字层
STRINGS,文字

[DIMSTYLE]
DIMSTYLE,TAVRIK
DIMSCALE,1
DIMDEC,2
DIMTXT,3.5
// 颜色: 文字, 尺寸界线, 尺寸线
DIMCLRT,7
DIMCLRE,3
DIMCLRD,3
DIMASZ,2.5
DIMLWD,-2
DIMLWE,-2
DIMEXE,1.25
DIMEXO,0.8
DIMGAP,0.8
DIMTAD,1
DIMJUST,0
DIMTIH,0
DIMTOH,0
DIMZIN,8
DIMTZIN,8
DIMTDEC,3
DIMTFAC,0.7
DIMTOLJ,1

[SUNDRY]
// 0: 处理完后删除图纸标记与视图框
HOLECA,0
// 视图框向内收缩量
OFFSET,5
// 红色精孔: 小数位与公差(上偏差^下偏差)
Reddec,3
RedToler,0.015^0
// 旋转外形尺寸
Eveldec,1
EvelToler,0^0
// 其余坐标尺寸
Otherdec,1
OtherToler,0^0
// 基准处坐标尺寸
Basedec,0
BaseToler,0^0
// 角点坐标尺寸
Conerdec,1
ConerToler,0^0
DIMOFF,10
// 坐标尺寸引线偏移 = 字高 x 此系数
ORDOFFSCL,1.5
// 视图超出此宽/高或圆数达到此值时只标外形
XMAX,400
YMAX,300
CIRCOUNT,30
LOGFILE,D:\\MYTOOL\\CAD\\Cg.log
// 开关: 插入图框, 标注尺寸, 换孔, 保存
TAVRIK,1
DIM,1
SUBCIR,1
STRSCV,0
SAVEQ,1
TIMELI,2000
COMPANY,精工模具有限公司
ACWINDOWSTATE,3

[SCRSET]
// 颜色号,图层后缀: 按颜色把图元放到 <零件层><后缀>
1,-精孔
2,-虚线
3,-细实线
4,-中心线
"""

CAD_LAYERUG_INI = """// CAD_layerug.ini  UG 图层与标准图层对照
[SPECIAL]
// 特殊图层(保留)
LAYER,0

[CONVERT]
// UG 图层,标准图层
1,粗实线
2,虚线
3,中心线
TEXT,文字
线割,线切割

[FILLAY]
// 文件序号,零件图层: 文件名最后一个 - 之后的数字
1,模板
2,镶件
3,滑块
4,斜顶
5,电极
"""

BOXSETTING_TXT = """// boxsetting.txt  图框选择与标题栏缺省属性
[SHTWCH]
// 图名通配符,图框文件(按顺序取第一个匹配)
MP2305-1,A3横式.dwg
MP2305-*,A4横式.dwg

[ATTWCH]
// 属性名,缺省值(优先于图中的 KEY:VALUE 文字)
单位,精工模具有限公司
审核,李强
"""


def cad_hole_ini():
    lines = [
        "// CAD_hole.ini  换孔配置",
        "// 孔中心点所在图层决定孔类型, 最小圆直径决定规格",
        "[BLKPATH]",
        "BLKPATH," + SYMBOL_FOLDER + "\\",
        "",
        "[SCRSET]",
        "// 颜色号,图层",
        "1,精孔",
        "2,虚线",
        "*,0",
        "",
        "[DASHL]",
        "// 视为虚线的线型",
        "HIDDEN,DASHED,HIDDEN2",
    ]
    for number, layer, comment, rows in HOLE_TYPES:
        lines += ["", "[TYPE%d]" % number, "// " + comment,
                  "// 直径,单圆虚,单圆实,双圆均虚,双圆均实,小圆虚大圆实,小圆实大圆虚",
                  "LAYER," + layer]
        for diameter, name, _, _ in rows:
            back = name + "反"
            lines.append(",".join([diameter, back, name, back, name, back, name]))
    return "\n".join(lines) + "\n"


CAD_LINE_INI = """; CAD_line.ini  图形清理设置
[public]
; 虚线与实线的线型名
StrDottedLineType=HIDDEN
StrSolidLineType=Continuous

[UpLineScale]
; 虚线的线型比例
BolOpen=1
VarScale=0.5

[DeleteSmallLineAndPoint]
; 删除短于公差的直线及所有点
BolOpen=1
Tolerance=0.01

[ModifyColor]
; 颜色替换: 蓝色中心线改为青色
StrChangeColor=[{"ColorOld":"0 0 255","ColorNew":"0 255 255"}]
; 图层 1 的轮廓范围内: 实线改白色, 其余线型改黄色; 红/绿/青色保持不变
StrJson=[{"StrLayer":"1","ColorSolid":"255 255 255","ColorDotted":"255 255 0","ColorExclude":["255 0 0","0 255 0","0 255 255"]}]
BolOpen=1

[DeleteRepeatingLine]
; 删除重线
BolOpen=1
Tolerance=0.01

[DeleteArcDownCurve]
BolOpen=0
Tolerance=0.05

[DeleteLineDownCurve]
Tolerance=0.05

[LineDeviation]
; 线割层多段线按颜色偏移(放电间隙)
BolOpen=1
StrLayer=线割
StrJson=[{"Color":"255 0 0","VarOffset":0.1},{"Color":"255 0 255","VarOffset":0.2}]

[SplineToLineAndArc]
; 样条曲线转直线与圆弧
BolOpen=1
ToleranceLine=0.01
ToleranceArc=0.01

[SplineToPline]
BolOpen=1
Tolerance=0.02
EqualDivision=10
StrFilterLayer=
ColorInspect=

[ConnectPline]
; 绿色的直线与圆弧连成多段线
Tolerance=0.01
BolOpen=1
ColorInspect=0 255 0;

[LineAndArcMerged]
; 合并共线的直线与同心同半径的圆弧
Tolerance=0.01
BolOpen=1
"""


def write_configuration(root):
    tool = drive_path(root, CZCONFIG)
    write_text(tool / "config" / "standard.csv", STANDARD_CSV)
    cad = drive_path(root, CONFIG_ROOT) / "CAD"
    write_text(cad / "CAD_standard.ini", CAD_STANDARD_INI)
    write_text(cad / "CAD_layerug.ini", CAD_LAYERUG_INI)
    write_text(cad / "CAD_hole.ini", cad_hole_ini())
    write_text(cad / "CAD_line.ini", CAD_LINE_INI)
    write_text(drive_path(root, FRAME_FOLDER) / "boxsetting.txt", BOXSETTING_TXT)


# ---------------------------------------------------------------------------------------------
# The machine: host settings, registry, fixed tool folders, hand-off
# ---------------------------------------------------------------------------------------------

HOST_INI = """[Host]
; ANSI code page of the host: 936 (GBK) or 65001 (UTF-8)
CodePage=936
CurrentDirectory=C:\\

[Environment]
LOCALAPPDATA=""" + LOCALAPPDATA + """
USERNAME=""" + USER + "\n"

REGISTRY_REG = """Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment]
"ComSpec"="C:\\\\Windows\\\\system32\\\\cmd.exe"
"CZConfig"=\"""" + CZCONFIG.replace("\\", "\\\\") + """\"
"NUMBER_OF_PROCESSORS"="4"
"OS"="Windows_NT"
"""


def write_machine(root, summary, extension):
    write_text(root / "host.ini", HOST_INI, "ascii")
    write_text(root / "registry.reg", REGISTRY_REG, "ascii")
    # Logging is on when the log files exist: the tool never creates them. It spells the folder
    # both d:\Mytool\cad (Cg.log, msg.txt) and D:\MYTOOL\CAD (Log.log); Windows names ignore
    # case, so the three files share the one folder.
    for log in ("Cg.log", "msg.txt", "Log.log"):
        write_text(drive_path(root, "D:\\Mytool\\cad\\" + log), "")
    # dwgver.dll is installed here by the build; the merge's fallback lands in temp.
    write_text(drive_path(root, "D:\\Mytool\\application\\.gitkeep"), "")
    write_text(drive_path(root, "D:\\Mytool\\temp\\.gitkeep"), "")
    handoff = drive_path(root, HANDOFF)
    write_text(handoff / "ugm.log", TARGET_FOLDER + "\n" + HANDOFF + "\\" + PART + extension + "\n")
    out = ["UG 出图 " + PART + " 开始"]
    for file_name, sheets, _, _ in summary:
        export = Path(file_name).with_suffix(extension).name
        out.append("导出 %s\\%s 图纸 %d 张" % (HANDOFF, export, sheets))
    out.append("UG 出图结束, 启动 AutoCAD")
    write_text(handoff / "ugout.log", "\n".join(out) + "\n")


def convert_exports(root, summary, tavrik):
    """Turns each DXF export of the hand-off into the DWG the UG side would have written."""
    folder = drive_path(root, HANDOFF)
    for file_name, _, _, _ in summary:
        dxf = folder / file_name
        # The writer names the records it has no DWG form for (materials, multileader styles)
        # on stderr; the batch does not use them.
        subprocess.run([tavrik, "convert", str(dxf), str(dxf.with_suffix(".dwg"))], check=True,
                       stderr=subprocess.DEVNULL)
        dxf.unlink()


def generate(root, handoff, tavrik):
    if root.exists():
        shutil.rmtree(root)
    root.mkdir(parents=True)
    write_configuration(root)
    write_frames(root)
    write_symbols(root)
    summary = write_exports(root)
    if handoff == "dwg":
        convert_exports(root, summary, tavrik)
    write_machine(root, summary, "." + handoff)
    return summary


def main(argv):
    # Python salts its string hashes per process, and the order of a few objects that ezdxf
    # writes follows them: run with a fixed salt, so that every run writes the same bytes.
    if os.environ.get("PYTHONHASHSEED") != "0":
        env = dict(os.environ, PYTHONHASHSEED="0")
        os.execve(sys.executable, [sys.executable, os.path.abspath(__file__)] + argv, env)
    here = Path(__file__).resolve().parent
    parser = argparse.ArgumentParser(description="Generate the example workshop prefix.")
    parser.add_argument("output", nargs="?", default=str(here / "workshop"),
                        help="folder of the prefix (default: examples/workshop)")
    parser.add_argument("--handoff", choices=("dwg", "dxf"), default="dwg",
                        help="format of the UG side's exports (default: dwg)")
    parser.add_argument("--tavrik", default=str(here.parent / "build" / "bin" / "tavrik"),
                        help="the tavrik program that converts the exports to DWG")
    args = parser.parse_args(argv)
    summary = generate(Path(args.output), args.handoff, args.tavrik)
    for file_name, sheets, markers, points in summary:
        print("%s: %d sheet(s), %d marker(s), %d point(s)" % (file_name, sheets, markers, points))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
