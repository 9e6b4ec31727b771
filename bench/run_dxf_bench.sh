#!/bin/sh
# Reading and writing a generated plate drawing of N entities (default 100000), by the codec
# and by ezdxf in the same run: run_dxf_bench.sh BUILD_DIR [N]
set -e
build=${1:?build directory}
n=${2:-100000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
/usr/bin/python3 /work/shared/bench/gen_plates.py "$n" "$work/plates.dxf"
"$build/bench/dxf_bench" "$work/plates.dxf" "$work/tavrik.dxf"
/usr/bin/python3 "$(dirname "$0")/ezdxf_bench.py" "$work/plates.dxf" "$work/ezdxf.dxf"
