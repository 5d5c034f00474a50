#!/usr/bin/env bash
# Reads one large MIDI file (16 tracks, 1,000,000 note events, 1,000 tempo changes, pitch bends)
# with our reader and with two peers, side by side in one run, and prints the median wall time,
# the median CPU time (user + system) and the peak memory of each whole process.
#   ours    midi_read_bench --time FILE   (read the file, parse every track, stamp every event in ms)
#   midicsv midicsv FILE > /dev/null      (Debian's midicsv: parse and print every event)
#   mido    python3 -c 'mido.MidiFile(FILE)'
# usage: bench/compare_midi_readers.sh [BUILD_DIR] [RUNS]      (defaults: build 5)
set -euo pipefail

build=${1:-build}
runs=${2:-5}
bench=$build/bench/midi_read_bench
if [ ! -x "$bench" ]; then
  echo "no $bench: build it first (cmake --build $build --target midi_read_bench)" >&2
  exit 1
fi

# The peers are only needed here, never by the program.
missing=()
command -v midicsv >/dev/null || missing+=(midicsv)
/usr/bin/python3 -c 'import mido' 2>/dev/null || missing+=(python3-mido)
[ -x /usr/bin/time ] || missing+=(time)
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo=sudo
  $sudo apt-get install -y "${missing[@]}" >/dev/null
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
piece=$work/piece.mid
"$bench" --write "$piece"
echo "piece: $(stat -c %s "$piece") bytes; $("$bench" --time "$piece")"
echo "machine: $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg); $runs runs each, interleaved"

readers=(ours midicsv mido)
command_for() {
  case $1 in
    ours) cmd=("$bench" --time "$piece") ;;
    midicsv) cmd=(midicsv "$piece") ;;
    mido) cmd=(/usr/bin/python3 -c 'import sys, mido; mido.MidiFile(sys.argv[1])' "$piece") ;;
  esac
}

for ((i = 1; i <= runs; i++)); do
  for r in "${readers[@]}"; do
    command_for "$r"
    /usr/bin/time -f "%e %U %S %M" -o "$work/one" "${cmd[@]}" >/dev/null
    awk '{ print $1, $2 + $3, $4 }' "$work/one" >>"$work/$r"
  done
done

median() {  # median of column $2 of the runs of reader $1
  awk -v c="$2" '{ print $c }' "$work/$1" | sort -g |
    awk '{ v[NR] = $1 } END { m = int((NR + 1) / 2); print (NR % 2) ? v[m] : (v[m] + v[m + 1]) / 2 }'
}

ours_wall=$(median ours 1)
ours_cpu=$(median ours 2)
printf "%-8s %10s %10s %13s %12s %12s\n" reader "wall s" "cpu s" "peak RSS MB" "wall/ours" "cpu/ours"
for r in "${readers[@]}"; do
  awk -v r="$r" -v w="$(median "$r" 1)" -v c="$(median "$r" 2)" -v k="$(median "$r" 3)" \
      -v ow="$ours_wall" -v oc="$ours_cpu" \
      'BEGIN { printf "%-8s %10.3f %10.3f %13.1f %12.2f %12.2f\n", r, w, c, k / 1024, w / ow, c / oc }'
done
