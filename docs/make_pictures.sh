#!/usr/bin/env bash
# Makes the README's pictures of the workshop's finished part afresh from the current build:
# runs the batch (scripts/run-workshop) on the example workshop's DXF variant, the one the tests
# run on (ezdxf reads DXF only), then draws the merged
# drawing with ezdxf's drawing add-on (docs/workshop_merged.png) and with tavrik render
# (docs/workshop_render.png). The end-to-end workshop test draws the same two pictures the same
# way and fails when the checked-in ones differ, so run this after a change that shows in the
# merged drawing.
# Usage: docs/make_pictures.sh
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d /tmp/tavrik-pictures.XXXXXX)
trap 'rm -rf "$scratch"' EXIT
/usr/bin/python3 "$root/examples/generate_workshop.py" --handoff dxf "$scratch/variant" >/dev/null
bash "$root/scripts/run-workshop" "$scratch/workshop" "$scratch/variant" >/dev/null
merged="$scratch/workshop/drives/d/成品图/MP2305.dxf"
/usr/bin/python3 "$root/docs/render_drawing.py" "$merged" "$root/docs/workshop_merged.png" --dpi 110 2>/dev/null
"$root/build/bin/tavrik" render "$merged" "$root/docs/workshop_render.png" --size 1600x700
echo "docs/workshop_merged.png and docs/workshop_render.png drawn from $merged"
