#!/bin/sh
# Reading a 100k-entity AC1018 DWG into a database, by our reader and by acad-ts in the same run,
# and our speed and memory as multiples of acad-ts's: run_dwg_bench.sh BUILD_DIR [N] [REPEAT]
# The DWG is the generated plate drawing of N entities (default 100000) converted by our DWG
# writer; entity kinds the writer does not encode yet are missing from it, so the line of each
# reader gives the entities it read. Memory target: our peak above start under 4x the file size.
set -e
. "$(dirname "$0")/shared.sh"
build=${1:?build directory}
n=${2:-100000}
repeat=${3:-3}
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gen_plates "$n" "$work/plates.dxf" >/dev/null
dwg="$work/plates.dwg"
if ! "$build/bin/tavrik" convert "$work/plates.dxf" "$dwg" 2>/dev/null || [ ! -s "$dwg" ]; then
  dwg=$(shared_file corpus/dwg/example_2004.dwg)
  echo "no DWG writer in this build: reading $dwg, the largest AC1018 drawing of the corpus"
fi
"$build/bench/dwg_bench" "$dwg" "$repeat" | tee "$work/tavrik.txt"
node "$root/bench/acad_ts_bench.mjs" "$root/build-oracle" "$dwg" "$repeat" | tee "$work/acad.txt"
# Ours: "tavrik read T s entities E peak P MB above-start A MB file F MB"; acad-ts: "acad-ts read
# T s entities E peak P MB".
awk '{ r[FILENAME] = $3; m[FILENAME] = $8; a[FILENAME] = $11; f[FILENAME] = $14 }
     END { t = ARGV[1]; o = ARGV[2];
           printf "acad-ts / tavrik: read %.1fx, peak memory %.1fx; tavrik peak above start %.2fx the file\n",
                  r[o] / r[t], m[o] / m[t], a[t] / f[t] }' "$work/tavrik.txt" "$work/acad.txt"
