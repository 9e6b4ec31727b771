#!/bin/sh
# Writing a generated plate drawing of N entities (default 100000) as AC1018 DWG, against our
# own DXF writer and acad-ts's DWG writer in the same run (target: DWG within 2 times our DXF
# write): run_dwg_write_bench.sh BUILD_DIR [N] [REPEAT]
set -e
. "$(dirname "$0")/shared.sh"
build=${1:?build directory}
n=${2:-100000}
repeat=${3:-3}
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gen_plates "$n" "$work/plates.dxf"
"$build/bench/dwg_write_bench" "$work/plates.dxf" "$work" "$repeat" | tee "$work/tavrik.txt"
# acad-ts's writer is given 300 seconds for one write.
if timeout 300 node "$root/bench/acad_ts_write_bench.mjs" "$root/build-oracle" "$work/tavrik.dwg" 1 \
    > "$work/acad.txt"; then
  cat "$work/acad.txt"
  awk '/dwg write/ { w[FILENAME] = $4 }
       END { printf "acad-ts / tavrik dwg write: %.1fx\n", w[ARGV[2]] / w[ARGV[1]] }' \
      "$work/tavrik.txt" "$work/acad.txt"
else
  echo "acad-ts dwg write: did not finish within 300 s"
fi
