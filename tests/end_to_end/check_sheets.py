"""What the sheets of the merged workshop drawing must carry, read through ezdxf: the frame of
each drawing's name scaled onto its sheet, the title block filled from the KEY:VALUE texts (in
upper case) and from boxsetting.txt, the used texts gone, and the dimensions of every view as
the view's holes and size decide."""
import re

# Sheets of the workshop: the world position of the marker, the sheet width (the frame box),
# and the frame drawing's width that its name selects (A3 for -1, A4 for the others).
SHEETS = [((0.0, 0.0), 840.0, 420.0), ((1000.0, 0.0), 594.0, 297.0), ((1700.0, 0.0), 594.0, 297.0)]
# The title block's values: the texts of each sheet in upper case, boxsetting.txt's [ATTWCH]
# rows where they win (审核, 单位).
TITLES = [
    {"图号": "MP2305-01", "名称": "B板", "材料": "P20", "数量": "1", "热处理": "预硬HRC28-32",
     "设计": "张伟", "日期": "2023-05-18", "页次": "1/3", "审核": "李强", "单位": "精工模具有限公司"},
    {"图号": "MP2305-02", "名称": "型芯镶件", "材料": "SKD61", "数量": "2", "热处理": "HRC48-52",
     "设计": "张伟", "日期": "2023-05-18", "页次": "2/3", "审核": "李强", "单位": "精工模具有限公司"},
    {"图号": "MP2305-03", "名称": "压板", "材料": "45#", "数量": "4", "热处理": "调质HB220-250",
     "设计": "张伟", "日期": "2023-05-18", "页次": "3/3", "审核": "李强", "单位": "精工模具有限公司"},
]
TAGS = set(TITLES[0])
# Dimensions per view, in batch order (sheet 1: front, left, top; sheet 2; sheet 3), as worked out
# by hand from the generated part: sheet 1's main view 17 x and 16 y ordinates from its datum,
# its left view 4 + 4 from the lower-right corner, its top view the height; sheet 2's main view
# has more circles than CIRCOUNT and gets its four corner ordinates, its left and top views
# their outline; sheet 3's main view 5 + 4 ordinates, its other views their outline.
VIEW_COUNTS = [33, 8, 1, 4, 1, 1, 9, 1, 1]


def near(a, b, tol=1e-6):
    return all(abs(x - y) <= tol for x, y in zip(a, b))


def in_sheet(point, sheet):
    (x, y), width, _ = sheet
    return x <= point[0] <= x + width and y <= point[1] <= y + width * 297.0 / 420.0


def key_value_texts(msp):
    """The KEY:VALUE texts whose key is a title block tag."""
    found = []
    for e in msp.query("TEXT MTEXT"):
        text = e.dxf.text if e.dxftype() == "TEXT" else e.text
        if ":" in text and text.split(":")[0] in TAGS:
            found.append(text)
    return found


def check_frames(doc, check):
    msp = doc.modelspace()
    titles = list(msp.query('INSERT[name=="标题栏"]'))
    check(len(titles) == len(SHEETS), "title blocks: %d, expected one per sheet" % len(titles))
    for sheet, values in zip(SHEETS, TITLES):
        (x, y), width, frame_width = sheet
        scale = width / frame_width
        spot = (x + (frame_width - 5.0) * scale, y + 5.0 * scale)
        mine = [t for t in titles if near(tuple(t.dxf.insert)[:2], spot)]
        check(len(mine) == 1, "no title block at %s (scale %g)" % (spot, scale))
        if not mine:
            continue
        title = mine[0]
        check(abs(title.dxf.xscale - scale) < 1e-9, "title block scale %s, expected %s" % (title.dxf.xscale, scale))
        got = {a.dxf.tag: a.dxf.text for a in title.attribs}
        check(got == values, "title block of sheet at %s: %s" % ((x, y), got))
    # The frame's lines stand on the sheet: the outer edge runs along the sheet's bottom.
    frame_lines = [e for e in msp.query('LINE[layer=="图框"]')]
    for (x, y), width, _ in SHEETS:
        check(any(near(tuple(e.dxf.start)[:2], (x, y)) and near(tuple(e.dxf.end)[:2], (x + width, y)) for e in frame_lines),
              "no frame edge along the sheet at %s" % ((x, y),))
    # Used texts are gone; the 审核 text of sheet 1 lost to boxsetting.txt and stays.
    left = key_value_texts(msp)
    check(left == ["审核:王强"], "KEY:VALUE texts left in the drawing: %s" % left)


def actual(dim):
    """A dimension of the merged drawing in the form dimension_rules gives the expected ones."""
    style = dim.override().dimstyle_attribs
    found = {"measured": dim.dxf.actual_measurement, "dimdec": style.get("dimdec"),
             "tol": (style.get("dimtol"), style.get("dimtp"), style.get("dimtm")), "dimscale": style.get("dimscale")}
    if dim.dxf.dimtype & 7 == 6:
        found.update(kind="x" if dim.dxf.dimtype & 64 else "y", origin=tuple(dim.dxf.defpoint)[:2],
                     at=tuple(dim.dxf.defpoint2)[:2], leader=tuple(dim.dxf.defpoint3)[:2])
    else:
        found.update(kind="rotated", xline1=tuple(dim.dxf.defpoint2)[:2], xline2=tuple(dim.dxf.defpoint3)[:2],
                     dimline=tuple(dim.dxf.defpoint)[:2], angle=dim.dxf.get("angle", 0.0))
    return found


def comparable(dim):
    """A dimension as a sorted, rounded tuple; an expected tolerance (DIMTP, DIMTM) is DIMTOL on
    with both values, no tolerance leaves all three unset."""
    tol = dim["tol"]
    if tol is None:
        tol = (None, None, None)
    elif len(tol) == 2:
        tol = (1,) + tol
    values = []
    for key in sorted(k for k in dim if k != "tol"):
        value = dim[key]
        if isinstance(value, tuple):
            value = tuple(round(v, 6) + 0.0 for v in value)
        elif isinstance(value, float):
            value = round(value, 6) + 0.0
        values.append((key, value))
    values.append(("tol", tuple(None if v is None else round(v, 6) + 0.0 for v in tol)))
    return tuple(values)


def view_of(dim, views):
    """The view whose rectangle holds the dimensioned point (an ordinate's feature, an outline's
    first extension line origin)."""
    point = dim["at"] if dim["kind"] != "rotated" else dim["xline1"]
    for i, (_, _, _, ((x0, y0), (x1, y1)), _) in enumerate(views):
        if x0 <= point[0] <= x1 and y0 <= point[1] <= y1:
            return i
    return None


def check_dimensions(doc, views, check):
    """Each view carries exactly the dimensions the rules decide (dimension_rules.expected_views):
    count, kind, origin, feature, leader end or dimension line, measured value, DIMDEC, the
    tolerance class's DIMTOL/DIMTP/DIMTM and DIMSCALE; no dimension stands outside the views
    but the exporter's own."""
    counts = [len(v[4]) for v in views]
    check(counts == VIEW_COUNTS, "the rules give %s dimensions per view, the workshop %s" % (counts, VIEW_COUNTS))
    msp = doc.modelspace()
    dims = list(msp.query("DIMENSION"))
    made = [d for d in dims if d.dxf.dimtype & 7 in (0, 6)]
    found = [[] for _ in views]
    for dim in made:
        record = actual(dim)
        i = view_of(record, views)
        check(i is not None, "dimension outside every view: %s" % record)
        if i is not None:
            found[i].append(comparable(record))
    for (name, _, layer, box, expected), got in zip(views, found):
        want = sorted(comparable(d) for d in expected)
        got = sorted(got)
        where = "%s view %s at %s" % (name, layer, box)
        check(len(got) == len(want), "%s: %d dimensions, expected %d" % (where, len(got), len(want)))
        missing = [d for d in want if d not in got]
        extra = [d for d in got if d not in want]
        check(not missing and not extra, "%s: missing %s; unexpected %s" % (where, missing[:3], extra[:3]))
    # The pictures: the export's own dimensions (a radius) keep the exporter's.
    for dim in made:
        check_picture(doc, dim, check)


def shown_number(text):
    """The number at the start of a dimension's MTEXT, after its alignment code."""
    match = re.match(r"(?:\\A\d;)?(-?\d*\.?\d+)", text)
    return float(match.group(1)) if match else None


def check_picture(doc, dim, check):
    """The block the dimension names is there; its text shows the measurement rounded to the
    dimension's DIMDEC and, with DIMTOL on and unequal deviations, stacks +DIMTP over -DIMTM."""
    block = doc.blocks.get(dim.dxf.get("geometry", ""))
    check(block is not None, "dimension at %s names no block" % (tuple(dim.dxf.defpoint2)[:2],))
    if block is None:
        return
    texts = [m.text for m in block.query("MTEXT")]
    check(len(texts) == 1 and len(block.query("LINE")) >= 1,
          "block %s: texts %s, %d lines" % (block.name, texts, len(block.query("LINE"))))
    if len(texts) != 1:
        return
    style = dim.override().dimstyle_attribs
    decimals = style.get("dimdec", doc.dimstyles.get(dim.dxf.dimstyle).dxf.dimdec)
    shown = shown_number(texts[0])
    check(shown is not None and abs(shown - round(dim.dxf.actual_measurement, decimals)) < 1e-9,
          "block %s shows %r for %s with DIMDEC %s" % (block.name, texts[0], dim.dxf.actual_measurement, decimals))
    upper, lower = style.get("dimtp", 0.0), style.get("dimtm", 0.0)
    if style.get("dimtol") == 1 and abs(upper - lower) > 1e-12:
        stack = re.search(r"\\S([^^;]*)\^([^;]*);", texts[0])
        check(stack is not None and abs(float(stack.group(1)) - upper) < 1e-9
              and abs(float(stack.group(2)) + lower) < 1e-9,
              "block %s does not stack +%s over -%s: %r" % (block.name, upper, lower, texts[0]))


def dimension_texts(doc):
    """Each text of each dimension's picture: the dimension's definition, the text's height and
    its box as ezdxf measures it."""
    from ezdxf import bbox
    texts = []
    for dim in doc.modelspace().query("DIMENSION"):
        definition = (dim.dxf.dimtype, tuple(dim.dxf.defpoint), tuple(dim.dxf.defpoint2), tuple(dim.dxf.defpoint3))
        for text in doc.blocks.get(dim.dxf.geometry).query("TEXT MTEXT"):
            height = text.dxf.char_height if text.dxftype() == "MTEXT" else text.dxf.height
            texts.append((definition, height, bbox.extents([text], fast=True)))
    return texts


def check_texts_apart(doc, check):
    """No two dimension texts stand on top of each other. Texts a pitch apart touch by design (the
    pitch is the text height) and ezdxf's box adds line spacing, so boxes count as on top of each
    other when they still meet after shrinking each by a quarter of the text height on every side.
    Identical dimensions (a column met by two tests of the x selection) are one text drawn twice."""
    texts = dimension_texts(doc)
    check(texts, "no dimension text in the merged drawing")
    on_top = []
    for i, (definition, height, box) in enumerate(texts):
        for other, other_height, other_box in texts[i + 1:]:
            if other == definition:
                continue
            margin = 0.5 * min(height, other_height)
            wide = min(box.extmax.x, other_box.extmax.x) - max(box.extmin.x, other_box.extmin.x)
            high = min(box.extmax.y, other_box.extmax.y) - max(box.extmin.y, other_box.extmin.y)
            if wide > margin and high > margin:
                on_top.append((tuple(box.center)[:2], tuple(other_box.center)[:2]))
    check(not on_top, "dimension texts on top of each other: %s" % on_top[:5])


# A checked-in picture is current when at most this share of its pixels (about a hundred)
# differs from a fresh drawing by more than a quarter of the full intensity in some channel:
# the same packages draw the same pixels, and one changed dimension text already changes
# several dozen.
STALE_PIXEL_SHARE = 0.0001


def differing_share(picture, fresh):
    """The share of pixels that differ by more than a quarter of full intensity; 1.0 when the
    sizes differ."""
    import matplotlib.image as image
    import numpy
    a, b = image.imread(picture)[..., :3], image.imread(fresh)[..., :3]
    if a.shape != b.shape:
        return 1.0
    return float((numpy.abs(a - b).max(axis=2) > 0.25).mean())


def check_readers(merged, scratch, tavrik, check):
    """LibreCAD's dxf2pdf converts the merged drawing, ezdxf's drawing add-on renders it, and the
    README's pictures of it (docs/workshop_merged.png by ezdxf, docs/workshop_render.png by
    tavrik render) are the ones docs/make_pictures.sh draws from it now."""
    import os
    import pathlib
    import shutil
    import subprocess
    import sys
    scratch = pathlib.Path(scratch)
    if not shutil.which("librecad"):
        # Only a machine outside CI may lack LibreCAD (scripts/deps installs it).
        check(not os.environ.get("CI"), "librecad is not installed on the CI machine")
        print("check_sheets: librecad is not installed; the dxf2pdf check is skipped")
    else:
        shutil.copy(merged, scratch / "merged.dxf")
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        run = subprocess.run(["timeout", "180", "librecad", "dxf2pdf", "-o", "merged.pdf", "merged.dxf"],
                             cwd=scratch, env=env, capture_output=True)
        pdf = scratch / "merged.pdf"
        check(run.returncode == 0 and pdf.is_file() and pdf.stat().st_size > 10000,
              "dxf2pdf did not convert the merged drawing: %s" % run.stderr[-500:])
    docs = pathlib.Path(__file__).resolve().parents[2] / "docs"
    sys.path.insert(0, str(docs))
    import render_drawing
    png = scratch / "merged.png"
    status = render_drawing.render(str(merged), str(png), dpi=110)
    check(status == 0 and png.is_file() and png.stat().st_size > 10000,
          "ezdxf's drawing add-on did not render the merged drawing")
    drawn = scratch / "render.png"
    run = subprocess.run([tavrik, "render", str(merged), str(drawn), "--size", "1600x700"], capture_output=True)
    check(run.returncode == 0, "tavrik render failed on the merged drawing: %s" % run.stderr[-500:])
    for picture, fresh in ((docs / "workshop_merged.png", png), (docs / "workshop_render.png", drawn)):
        if not fresh.is_file():
            continue
        share = differing_share(picture, fresh)
        check(share <= STALE_PIXEL_SHARE, "%s is stale: %.3f%% of its pixels differ from the merged drawing's "
              "picture (at most %.3f%%); run docs/make_pictures.sh" % (picture.name, share * 100, STALE_PIXEL_SHARE * 100))
