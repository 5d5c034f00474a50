#!/usr/bin/env bash
# Renders tarabix.svg into the PNG sizes a desktop asks for (hicolor/NxN/apps/tarabix.png).
# Run after changing the SVG; the PNGs are committed so installing needs no SVG renderer.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v rsvg-convert >/dev/null; then
    apt-get install -y -qq --no-install-recommends librsvg2-bin >/dev/null
fi
for size in 16 24 32 48 64 128 256; do
    mkdir -p "$here/${size}x${size}"
    rsvg-convert -w "$size" -h "$size" "$here/tarabix.svg" -o "$here/${size}x${size}/tarabix.png"
done
