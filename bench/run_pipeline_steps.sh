#!/bin/sh
# The steps of ProcessDrawing timed one by one on the generated plate sheet of N entities
# (default 100000): the batch and the codec's read and write of the same file are recorded with
# perf at the same sampling rate, and each step's processor time is printed as a share of the
# batch and as a multiple of the read and write. Needs perf (linux-perf) and a build with debug
# information (RelWithDebInfo):
#   run_pipeline_steps.sh BUILD_DIR [N]
set -e
. "$(dirname "$0")/shared.sh"
build=${1:?build directory}
n=${2:-100000}
here=$(cd "$(dirname "$0")" && pwd)
command -v perf > /dev/null || { echo "run_pipeline_steps.sh: perf is not installed" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gen_plates "$n" "$work/plates.dxf"
/usr/bin/python3 "$here/plate_sheet.py" "$work/plates.dxf" "$work/sheet.dxf"
# The workshop with a DXF hand-off, whose first export the plates' sheet replaces.
/usr/bin/python3 "$here/../examples/generate_workshop.py" --handoff dxf "$work/prefix" > /dev/null
handoff="$work/prefix/drives/c/Users/cad/AppData/Local/Convert"
rm -f "$handoff"/MP2305-*.dxf
cp "$work/sheet.dxf" "$handoff/MP2305-1.dxf"
cp "$build/bin/dwgver.so" "$work/prefix/drives/d/Mytool/application/dwgver.dll"
record="perf record -q -F 200 -g --call-graph dwarf,16384"
$record -o "$work/codec.data" "$build/bench/dxf_bench" "$work/sheet.dxf" "$work/codec.dxf"
$record -o "$work/batch.data" "$build/bin/tavrik" --prefix "$work/prefix" < /dev/null > "$work/batch.out" 2>&1 || true
/usr/bin/python3 "$here/pipeline_steps.py" "$work/batch.data" "$work/codec.data"
