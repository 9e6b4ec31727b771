#!/usr/bin/env bash
# Makes the README's pictures of the workshop's finished part afresh from the current build:
# runs the batch on a copy of the example workshop (scripts/run-workshop), then draws the merged
# drawing with ezdxf's drawing add-on (docs/workshop_merged.png) and with tavrik render
# (docs/workshop_render.png). The end-to-end workshop test draws the same two pictures the same
# way and fails when the checked-in ones differ, so run this after a change that shows in the
# merged drawing.
# Usage: docs/make_pictures.sh
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d /tmp/tavrik-pictures.XXXXXX)
trap 'rm -rf "$scratch"' EXIT
bash "$root/scripts/run-workshop" "$scratch/workshop" >/dev/null
merged="$scratch/workshop/drives/d/成品图/MP2305.dxf"
/usr/bin/python3 "$root/docs/render_drawing.py" "$merged" "$root/docs/workshop_merged.png" --dpi 110 2>/dev/null
"$root/build/bin/tavrik" render "$merged" "$root/docs/workshop_render.png" --size 1600x700
echo "docs/workshop_merged.png and docs/workshop_render.png drawn from $merged"
