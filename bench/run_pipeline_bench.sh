#!/bin/sh
# The whole batch on one generated plate sheet of N entities (default 100000), timed against
# reading and writing the same file with the codec, and the clean-ups of the first pass timed
# one by one on it:
#   run_pipeline_bench.sh BUILD_DIR [N]
# The batch runs on a copy of the example workshop whose hand-off holds only this sheet. Its
# total includes the host's own wait of 2 s before it closes (the quit timer).
set -e
. "$(dirname "$0")/shared.sh"
build=${1:?build directory}
n=${2:-100000}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gen_plates "$n" "$work/plates.dxf"
/usr/bin/python3 "$here/plate_sheet.py" "$work/plates.dxf" "$work/sheet.dxf"
"$build/bench/dxf_bench" "$work/sheet.dxf" "$work/codec.dxf" | tee "$work/codec.txt"
# The workshop with a DXF hand-off, whose first export the plates' sheet replaces.
/usr/bin/python3 "$here/../examples/generate_workshop.py" --handoff dxf "$work/prefix" > /dev/null
handoff="$work/prefix/drives/c/Users/cad/AppData/Local/Convert"
rm -f "$handoff"/MP2305-*.dxf
cp "$work/sheet.dxf" "$handoff/MP2305-1.dxf"
cp "$build/bin/dwgver.so" "$work/prefix/drives/d/Mytool/application/dwgver.dll"
start=$(date +%s.%N)
"$build/bin/tavrik" --prefix "$work/prefix" < /dev/null > "$work/batch.out" 2>&1 || true
end=$(date +%s.%N)
awk -v s="$start" -v e="$end" '{ r = $3; w = $6 }
     END { t = e - s; printf "batch %.2f s, without the 2 s quit timer %.2f s; codec read + write %.2f s; ratio %.1fx\n",
                        t, t - 2, r + w, (t - 2) / (r + w) }' "$work/codec.txt"
# The run report's time of the drawing: from the start of the run to the drawing's save, the
# report's own work taken out (ProcessDrawing in wall time, with the load before it).
report="$work/prefix/drives/d/Mytool/cad/report.json"
[ -f "$report" ] && grep -o '"seconds": [0-9.]*' "$report" | head -n 1 |
    awk '{ printf "ProcessDrawing %.2f s in wall time (the run report'"'"'s time of the drawing)\n", $2 }'
TMPDIR="$work" "$build/bench/cleanup_bench" "$work/sheet.dxf"
