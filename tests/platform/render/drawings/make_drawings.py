#!/usr/bin/env python3
"""Writes the small drawings that the render tests draw: one per group of entity kinds, as
plain DXF (R12 layout, no handles), so that each picture depends on a few lines of input.
Run it after changing a scene, then refresh the reference pictures (see render_test.cpp)."""
import math
import pathlib

HERE = pathlib.Path(__file__).parent


def tags(*pairs):
    return "".join(f"{code}\n{value}\n" for code, value in pairs)


def section(name, body):
    return tags((0, "SECTION"), (2, name)) + body + tags((0, "ENDSEC"))


def table(name, records):
    return tags((0, "TABLE"), (2, name), (70, len(records))) + "".join(records) + tags((0, "ENDTAB"))


def layer(name, color, linetype="CONTINUOUS", flags=0):
    return tags((0, "LAYER"), (2, name), (70, flags), (62, color), (6, linetype))


def ltype(name, dashes):
    body = [(0, "LTYPE"), (2, name), (70, 0), (3, name), (72, 65), (73, len(dashes)),
            (40, sum(abs(d) for d in dashes))]
    body += [(49, d) for d in dashes]
    return tags(*body)


def style(name, font, bigfont=""):
    return tags((0, "STYLE"), (2, name), (70, 0), (40, 0), (41, 1), (50, 0), (71, 0), (42, 2.5),
                (3, font), (4, bigfont))


def drawing(entities, blocks="", layers=(), ltypes=(), styles=()):
    # An R12 drawing holds its texts in its code page: GBK here, as the workshop's exports do.
    out = section("HEADER", tags((9, "$DWGCODEPAGE"), (3, "ANSI_936")))
    out += section("TABLES", table("LTYPE", [ltype("CONTINUOUS", [])] + list(ltypes)) +
                  table("LAYER", [layer("0", 7)] + list(layers)) +
                  table("STYLE", [style("STANDARD", "txt.shx", "gbcbig.shx")] + list(styles)))
    if blocks:
        out += section("BLOCKS", blocks)
    out += section("ENTITIES", entities)
    return out + tags((0, "EOF"))


def block(name, entities, base=(0, 0), flags=0):
    return (tags((0, "BLOCK"), (8, "0"), (2, name), (70, flags), (10, base[0]), (20, base[1]), (30, 0), (3, name)) +
            entities + tags((0, "ENDBLK"), (8, "0")))


def line(a, b, layer="0", *extra):
    return tags((0, "LINE"), (8, layer), *extra, (10, a[0]), (20, a[1]), (11, b[0]), (21, b[1]))


def curves():
    e = line((0, 0), (40, 0), "0", (62, 1))
    e += tags((0, "ARC"), (8, "0"), (62, 3), (10, 60), (20, 5), (40, 12), (50, 0), (51, 180))
    e += tags((0, "CIRCLE"), (8, "0"), (62, 1), (420, 0xFF8000), (10, 100), (20, 10), (40, 10))
    e += tags((0, "ELLIPSE"), (8, "0"), (62, 5), (10, 20), (20, 30), (11, 15), (21, 0), (40, 0.5),
              (41, 0), (42, 2 * math.pi))
    e += tags((0, "LWPOLYLINE"), (8, "0"), (62, 6), (90, 4), (70, 0),
              (10, 45), (20, 25), (42, 0.6), (10, 65), (20, 25), (40, 3), (41, 0), (10, 80), (20, 40),
              (10, 95), (20, 25))
    e += tags((0, "SPLINE"), (8, "0"), (62, 4), (70, 8), (71, 3), (72, 8), (73, 4), (74, 0),
              *[(40, k) for k in (0, 0, 0, 0, 1, 1, 1, 1)],
              (10, 0), (20, 50), (10, 20), (20, 75), (10, 40), (20, 35), (10, 60), (20, 60))
    e += tags((0, "POINT"), (8, "0"), (62, 2), (10, 70), (20, 55))
    e += line((0, -10), (110, -10), "HIDDEN")
    e += line((0, -18), (110, -18), "0", (62, 7), (370, 100))
    e += line((0, -24), (110, -24), "OFF")
    return drawing(e, layers=[layer("HIDDEN", 3, "DASHED"), layer("OFF", -1)],
                   ltypes=[ltype("DASHED", [6, -3])])


def texts():
    e = tags((0, "TEXT"), (8, "0"), (62, 7), (10, 0), (20, 40), (40, 6), (1, "Tavrik 1:1"))
    e += tags((0, "TEXT"), (8, "0"), (62, 1), (10, 0), (20, 25), (40, 8), (1, "技术要求 %%c20"), (7, "HZ"))
    e += tags((0, "TEXT"), (8, "0"), (62, 5), (10, 90), (20, 0), (40, 5), (50, 90), (1, "ROTATED"))
    e += tags((0, "TEXT"), (8, "0"), (62, 3), (10, 0), (20, 0), (11, 50), (21, 10), (40, 5), (72, 1),
              (1, "居中 centre"))
    e += tags((0, "MTEXT"), (8, "0"), (62, 6), (10, 0), (20, -10), (40, 5), (71, 1), (7, "HZ"),
              (1, "{\\fSimSun|b1;粗体}\\P第二行 \\H0.7x;\\S+0.1^-0.05;"))
    return drawing(e, styles=[style("HZ", "hztxt.shx", "hzbig.shx")])


def mtext_codes():
    """Multi-line texts with their format codes: colours, heights, widths, slant, tracking,
    under-, over- and strike-through lines, the three kinds of stack, an empty paragraph, and
    a text attached at its middle centre."""
    codes = ("Normal {\\C1;red} {\\c16711680;blue}\\P{\\H2x;Big} {\\W2;wide} {\\Q20;slant} {\\T2;spaced}"
             "\\P{\\Lunder} {\\Oover} {\\Kstrike}\\P\\P1\\S1/2; 3\\S3#4; 50\\S+0.1^-0.05;"
             "\\P{\\fArial|b1|i1;粗斜} %%c8")
    e = tags((0, "MTEXT"), (8, "0"), (62, 7), (10, 0), (20, 60), (40, 5), (71, 1), (1, codes))
    e += tags((0, "MTEXT"), (8, "0"), (62, 5), (10, 85), (20, 20), (40, 4), (71, 5),
              (1, "中心\\P{\\H1.5x;MIDDLE}\\Pcentre"))
    e += line((85, 10), (85, 30), "0", (62, 1)) + line((75, 20), (95, 20), "0", (62, 1))
    return drawing(e, styles=[style("HZ", "hztxt.shx", "hzbig.shx")])


def blocks():
    inner = block("INNER", line((-5, 0), (5, 0), "0", (62, 0)) + tags(
        (0, "CIRCLE"), (8, "0"), (62, 0), (10, 0), (20, 0), (40, 4)) + line((0, 0), (0, 8), "0", (62, 3)))
    outer = block("OUTER", tags(
        (0, "INSERT"), (8, "0"), (62, 0), (2, "INNER"), (10, 10), (20, 0), (41, 0.5), (42, 0.5), (50, 30)) +
        tags((0, "INSERT"), (8, "0"), (2, "INNER"), (10, -10), (20, 0)) +
        line((-20, -10), (20, -10), "0") +
        tags((0, "ATTDEF"), (8, "0"), (10, -20), (20, -18), (40, 4), (1, ""), (3, "件号?"), (2, "NO"), (70, 0)) +
        tags((0, "ATTDEF"), (8, "0"), (10, -20), (20, 14), (40, 4), (1, ""), (3, "secret"), (2, "HIDE"), (70, 1)),
        flags=2)
    e = tags((0, "INSERT"), (8, "0"), (62, 1), (66, 1), (2, "OUTER"), (10, 30), (20, 30))
    e += tags((0, "ATTRIB"), (8, "0"), (10, 10), (20, 12), (40, 4), (1, "件号 7"), (2, "NO"), (70, 0))
    e += tags((0, "ATTRIB"), (8, "0"), (10, 10), (20, 44), (40, 4), (1, "SECRET"), (2, "HIDE"), (70, 1))
    e += tags((0, "SEQEND"), (8, "0"))
    e += tags((0, "INSERT"), (8, "0"), (62, 5), (2, "OUTER"), (10, 90), (20, 30), (41, 1.5), (42, 1.5), (50, 90))
    return drawing(e, blocks=inner + outer)


def dimension():
    graphics = (line((0, 0), (0, 18), "0") + line((50, 0), (50, 18), "0") + line((0, 15), (50, 15), "0") +
                tags((0, "SOLID"), (8, "0"), (10, 0), (20, 15), (11, 3), (21, 16), (12, 3), (22, 14), (13, 3), (23, 14)) +
                tags((0, "SOLID"), (8, "0"), (10, 50), (20, 15), (11, 47), (21, 16), (12, 47), (22, 14), (13, 47), (23, 14)) +
                tags((0, "MTEXT"), (8, "0"), (10, 25), (20, 16), (40, 3.5), (71, 8),
                     (1, "50{\\H0.7x;\\S+0.1^-0.05;}")))
    e = line((0, 0), (50, 0), "0") + line((50, 0), (50, -20), "0") + line((50, -20), (0, -20), "0") + line((0, -20), (0, 0), "0")
    e += tags((0, "DIMENSION"), (8, "0"), (62, 2), (2, "*D1"), (10, 50), (20, 15), (11, 25), (21, 16), (70, 32),
              (1, ""), (13, 0), (23, 0), (14, 50), (24, 0))
    return drawing(e, blocks=block("*D1", graphics, flags=1))


def hatches():
    solid = tags((0, "HATCH"), (8, "0"), (62, 1), (10, 0), (20, 0), (30, 0), (2, "SOLID"), (70, 1), (71, 0),
                 (91, 1), (92, 2), (72, 1), (73, 1), (93, 4),
                 (10, 0), (20, 0), (42, 0), (10, 40), (20, 0), (42, 0.5), (10, 40), (20, 30), (42, 0),
                 (10, 0), (20, 30), (42, 0), (97, 0), (75, 0), (76, 1), (98, 0))
    pattern = tags((0, "HATCH"), (8, "0"), (62, 3), (10, 0), (20, 0), (30, 0), (2, "ANSI31"), (70, 0), (71, 0),
                   (91, 2), (92, 1), (93, 4),
                   (72, 1), (10, 60), (20, 0), (11, 100), (21, 0),
                   (72, 2), (10, 100), (20, 15), (40, 15), (50, 270), (51, 90), (73, 1),
                   (72, 1), (10, 100), (20, 30), (11, 60), (21, 30),
                   (72, 1), (10, 60), (20, 30), (11, 60), (21, 0), (97, 0),
                   (92, 2), (72, 0), (73, 1), (93, 4), (10, 70), (20, 10), (10, 80), (20, 10), (10, 80), (20, 20),
                   (10, 70), (20, 20), (97, 0),
                   (75, 0), (76, 1), (52, 0), (41, 1), (77, 0), (78, 1),
                   (53, 45), (43, 0), (44, 0), (45, -2.2), (46, 2.2), (79, 0), (98, 0))
    # A solid hatch bounded by half an ellipse (an ellipse edge, clockwise) and its axis.
    ellipse = tags((0, "HATCH"), (8, "0"), (62, 5), (10, 0), (20, 0), (30, 0), (2, "SOLID"), (70, 1), (71, 0),
                   (91, 1), (92, 1), (93, 2),
                   (72, 3), (10, 20), (20, -20), (11, 20), (21, 0), (40, 0.5), (50, 180), (51, 360), (73, 0),
                   (72, 1), (10, 40), (20, -20), (11, 0), (21, -20), (97, 0), (75, 0), (76, 1), (98, 0))
    return drawing(solid + pattern + ellipse)


SCENES = {"curves": curves, "texts": texts, "blocks": blocks, "dimension": dimension, "hatches": hatches,
          "mtext_codes": mtext_codes}

if __name__ == "__main__":
    for name, make in SCENES.items():
        (HERE / f"{name}.dxf").write_text(make(), encoding="gbk", newline="\n")
