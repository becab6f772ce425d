#!/usr/bin/env bash
# Regenerates the raster icons from resources/Horalo.svg. The outputs are committed, so this
# only needs running after the SVG changes.
set -euo pipefail
for tool in rsvg-convert /usr/bin/convert; do
  command -v "$tool" >/dev/null || { echo "make-icons: needs librsvg2-bin and imagemagick (apt)" >&2; exit 2; }
done
cd "$(dirname "$0")/../resources"
convert=/usr/bin/convert
pages=()
for size in 16 22 24 32 48 64 128 256; do
  rsvg-convert -w "$size" -h "$size" Horalo.svg -o "icons/horalo-${size}.png"
  if ((size <= 64)); then pages+=("icons/horalo-${size}.png"); fi
done
# The status item's image: one page per tray size, so the desktop can pick the crispest.
"$convert" "${pages[@]}" -compress lzw Horalo.tif
