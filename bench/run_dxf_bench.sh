#!/bin/sh
# Reading and writing a generated plate drawing of N entities (default 100000), by the codec
# and by ezdxf in the same run, and the codec's speed as a multiple of ezdxf's:
#   run_dxf_bench.sh BUILD_DIR [N]
set -e
. "$(dirname "$0")/shared.sh"
build=${1:?build directory}
n=${2:-100000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gen_plates "$n" "$work/plates.dxf"
"$build/bench/dxf_bench" "$work/plates.dxf" "$work/tavrik.dxf" | tee "$work/tavrik.txt"
/usr/bin/python3 "$(dirname "$0")/ezdxf_bench.py" "$work/plates.dxf" "$work/ezdxf.dxf" | tee "$work/ezdxf.txt"
# Both lines begin "NAME read R s write W s"; ours goes on "(processor P s)": the write formats on
# every core, and the last ratio counts its processor time instead, as if on one core.
awk '{ r[FILENAME] = $3; w[FILENAME] = $6; p[FILENAME] = $9 }
     END { t = ARGV[1]; e = ARGV[2];
           printf "ezdxf / tavrik: read %.1fx write %.1fx total %.1fx (on one core %.1fx)\n",
                  r[e] / r[t], w[e] / w[t], (r[e] + w[e]) / (r[t] + w[t]), (r[e] + w[e]) / (r[t] + p[t]) }' \
    "$work/tavrik.txt" "$work/ezdxf.txt"
