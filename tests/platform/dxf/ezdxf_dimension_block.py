"""Prints what ezdxf sees in the block of every DIMENSION of a drawing: the block's name, its
texts (plain_mtext of the MTEXT), and the number of lines and polylines. Exit 1 when a
dimension names no block that the drawing holds.

Usage: ezdxf_dimension_block.py DRAWING.dxf
"""
import json
import sys

import ezdxf

doc = ezdxf.readfile(sys.argv[1])
seen = []
status = 0
for dim in doc.modelspace().query("DIMENSION"):
    name = dim.dxf.get("geometry", "")
    block = doc.blocks.get(name) if name else None
    if block is None:
        status = 1
        seen.append({"block": name, "missing": True})
        continue
    seen.append({
        "block": name,
        "texts": [m.plain_text(split=False) for m in block.query("MTEXT")],
        "raw": [m.text for m in block.query("MTEXT")],
        "lines": len(block.query("LINE")),
        "polylines": len(block.query("LWPOLYLINE")),
    })
print(json.dumps({"dimensions": seen, "errors": [str(e) for e in doc.audit().errors]},
                 ensure_ascii=False))
sys.exit(status)
