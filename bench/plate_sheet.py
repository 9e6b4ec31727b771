#!/usr/bin/python3
"""Turns a generated plate drawing into an exported sheet that the whole pipeline works on: a
sheet marker circle on layer RECT, the sheet's outer rectangle on BIGFRAM through its centre and
a view rectangle on FRONT around all the plates.

usage: /usr/bin/python3 plate_sheet.py IN.dxf OUT.dxf
"""
import sys

import ezdxf
from ezdxf import bbox


def main(source, target):
    doc = ezdxf.readfile(source)
    msp = doc.modelspace()
    box = bbox.extents(msp, fast=True)
    (x0, y0, _), (x1, y1, _) = box.extmin, box.extmax
    for name in ("RECT", "BIGFRAM", "FRONT"):
        if name not in doc.layers:
            doc.layers.add(name)
    margin = 0.05 * max(x1 - x0, y1 - y0)
    fx0, fy0, fx1, fy1 = x0 - 2 * margin, y0 - 2 * margin, x1 + 2 * margin, y1 + 2 * margin
    msp.add_circle((fx0, fy0), 5.0, dxfattribs={"layer": "RECT"})
    for a, b in (((fx0, fy0), (fx1, fy0)), ((fx1, fy0), (fx1, fy1)), ((fx1, fy1), (fx0, fy1)), ((fx0, fy1), (fx0, fy0))):
        msp.add_line(a, b, dxfattribs={"layer": "BIGFRAM"})
    vx0, vy0, vx1, vy1 = x0 - margin, y0 - margin, x1 + margin, y1 + margin
    msp.add_lwpolyline([(vx0, vy0), (vx1, vy0), (vx1, vy1), (vx0, vy1)], close=True, dxfattribs={"layer": "FRONT"})
    doc.saveas(target)


if __name__ == "__main__":
    main(*sys.argv[1:3])
