#!/bin/sh
# Rendering a generated plate drawing of N entities (default 100000) to PNG with tavrik render
# (reading included), against reading the same file with ezdxf, in the same run:
#   run_render_bench.sh BUILD_DIR [N]
set -e
. "$(dirname "$0")/shared.sh"
build=${1:?build directory}
n=${2:-100000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gen_plates "$n" "$work/plates.dxf"
/usr/bin/python3 - "$build/bin/tavrik" "$work/plates.dxf" "$work/plates.png" <<'PY'
import subprocess, sys, time
import ezdxf
tavrik, drawing, picture = sys.argv[1:4]
t = time.perf_counter()
subprocess.run([tavrik, "render", drawing, picture], check=True)
render = time.perf_counter() - t
t = time.perf_counter()
ezdxf.readfile(drawing)
read = time.perf_counter() - t
print("tavrik render to PNG (read included): %.3f s" % render)
print("ezdxf read only:                       %.3f s" % read)
print("ezdxf read / tavrik render: %.1fx" % (read / render))
PY
