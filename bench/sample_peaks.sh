#!/bin/sh
# Renders every shipped sample piece through the built-in synthesizer (tarabix-cli render, the
# same synthesizer, gain and routing as the window) and prints the peak of each in dBFS with the
# number of clipped samples, at the volume given (the window's default when none is).
#   bench/sample_peaks.sh BUILD_DIR [VOLUME]
set -eu
build=${1:-build}
volume=${2:-}
cli="$build/bin/tarabix-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 1; }
here=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

printf '| sample | peak dBFS | clipped samples |\n|---|---|---|\n'
find "$here/data/samples" \( -name '*.mzf' -o -name '*.mid' \) | sort | while read -r piece; do
    wav="$work/out.wav"
    if [ -n "$volume" ]; then
        "$cli" render "$piece" -o "$wav" --volume "$volume" >/dev/null
    else
        "$cli" render "$piece" -o "$wav" >/dev/null
    fi
    python3 - "$wav" "${piece#"$here"/data/}" <<'PY'
import array, math, sys, wave
with wave.open(sys.argv[1], 'rb') as w:
    assert w.getsampwidth() == 2
    samples = array.array('h', w.readframes(w.getnframes()))
if sys.byteorder == 'big':
    samples.byteswap()
peak = max((abs(s) for s in samples), default=0)
clipped = sum(1 for s in samples if s >= 32767 or s <= -32768)
db = 20 * math.log10(peak / 32768) if peak else float('-inf')
print(f"| {sys.argv[2]} | {db:.2f} | {clipped} |")
PY
done
