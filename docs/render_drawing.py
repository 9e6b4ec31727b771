#!/usr/bin/python3
"""Renders a drawing's model space to a PNG with ezdxf's drawing add-on (matplotlib backend),
the independent picture of what the batch made.

    /usr/bin/python3 docs/render_drawing.py DRAWING.dxf OUT.png [--window X0 Y0 X1 Y1] [--dpi N]

Needs Debian's python3-ezdxf and python3-matplotlib. Exit status 1 with a message when the
drawing does not read.
"""
import argparse
import sys

import ezdxf
import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
from ezdxf import recover  # noqa: E402
from ezdxf.addons.drawing import Frontend, RenderContext  # noqa: E402
from ezdxf.addons.drawing.matplotlib import MatplotlibBackend  # noqa: E402


CJK_FONT = "WenQuanYi Micro Hei"


def render(source, target, window=None, dpi=200, width=16.0):
    try:
        doc, auditor = recover.readfile(source)
    except (IOError, ezdxf.DXFStructureError) as error:
        print("%s: %s" % (source, error), file=sys.stderr)
        return 1
    # The shop's SHX fonts are not at hand: every text style draws with a font that has the
    # Chinese glyphs (Debian's fonts-wqy-microhei), when installed.
    for style in doc.styles:
        style.dxf.font = CJK_FONT
        style.dxf.discard("bigfont")
    figure = plt.figure(figsize=(width, width * 0.45))
    axes = figure.add_axes([0, 0, 1, 1])
    context = RenderContext(doc)
    context.set_current_layout(doc.modelspace())
    Frontend(context, MatplotlibBackend(axes)).draw_layout(doc.modelspace(), finalize=True)
    if window:
        axes.set_xlim(window[0], window[2])
        axes.set_ylim(window[1], window[3])
    figure.savefig(target, dpi=dpi, facecolor="black")
    plt.close(figure)
    return 0


def main(argv):
    parser = argparse.ArgumentParser(description="Render a DXF drawing to PNG with ezdxf.")
    parser.add_argument("drawing")
    parser.add_argument("png")
    parser.add_argument("--window", type=float, nargs=4, metavar=("X0", "Y0", "X1", "Y1"))
    parser.add_argument("--dpi", type=int, default=200)
    args = parser.parse_args(argv)
    return render(args.drawing, args.png, args.window, args.dpi)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
