#!/usr/bin/env bash
# The README's picture: Tarabix playing a piece, taken under a virtual display.
#   tools/screenshot.sh [BUILD_DIR] [PIECE] [OUT]
# defaults: build, samples/rast/samai-rast.mzf (a piece in maqam rast with its quarter tones),
# docs/screenshot.png. Starts Xvfb, opens the piece, presses Play (Alt+P), waits until notes are
# sounding and captures the window. Installs Xvfb, xdotool and ImageMagick when missing.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
[[ $build = /* ]] || build=$here/$build
piece=${2:-$build/bin/samples/rast/samai-rast.mzf}
out=${3:-$here/docs/screenshot.png}
play_seconds=${PLAY_SECONDS:-6}
bin=$build/bin/tarabix
[[ -x $bin ]] || { echo "no $bin: build the tarabix target first" >&2; exit 1; }
[[ -f $piece ]] || { echo "no piece $piece" >&2; exit 1; }

need=()
command -v Xvfb >/dev/null || need+=(xvfb)
command -v xdotool >/dev/null || need+=(xdotool)
# A stand-in `import` without -window support is replaced by the real ImageMagick.
import -version 2>/dev/null | grep -q ImageMagick || need+=(imagemagick)
if ((${#need[@]})); then
    sudo=; [[ $(id -u) -eq 0 ]] || sudo=sudo
    $sudo apt-get update -qq && $sudo apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
fi

source "$here/scripts/virtual-display.sh"

# Default settings, so the picture shows what a newcomer sees.
start_virtual_display

open_window_and_play "$bin" "$piece"
sleep "$play_seconds"

mkdir -p "$(dirname "$out")"
import -window "$window" "$out"
echo "wrote $out ($(identify -format '%wx%h' "$out"))"
