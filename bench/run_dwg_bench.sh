#!/bin/sh
# Reading one DWG by our decoders and by acad-ts in the same run, and our speed as a multiple of
# acad-ts's: run_dwg_bench.sh BUILD_DIR [FILE VERSION(14|2000)] [REPEAT]
# No DWG writer exists yet to make a 100k-entity drawing, so the default is the largest
# uncompressed drawing of the corpus. Ours decodes the objects without filling a database;
# acad-ts builds its document.
set -e
build=${1:?build directory}
file=${2:-/work/shared/corpus/dwg/example_2000.dwg}
version=${3:-2000}
repeat=${4:-20}
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$build/bench/dwg_bench" "$file" "$version" "$repeat" | tee "$work/tavrik.txt"
node "$root/bench/acad_ts_bench.mjs" "$root/build-oracle" "$file" "$repeat" | tee "$work/acad.txt"
awk '{ r[FILENAME] = $3; m[FILENAME] = $8 }
     END { t = ARGV[1]; a = ARGV[2];
           printf "acad-ts / tavrik: read %.1fx, peak memory %.1fx\n", r[a] / r[t], m[a] / m[t] }' \
    "$work/tavrik.txt" "$work/acad.txt"
