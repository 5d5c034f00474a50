#!/usr/bin/env bash
# Start-up speed: launch to the window shown with the start-up piece loaded, under a virtual
# display, and how soon the built-in synthesizer can sound.
#   bench/startup.sh [BUILD_DIR] [RUNS] [cold]      (defaults: build 15)
# Each run starts bin/tarabix --startup-report from a scratch working directory with default
# settings (a fresh XDG_CONFIG_HOME); the program prints the milliseconds since its process started
# (the kernel's start time, 10 ms steps) and since main(), then quits. One warm-up run first, so
# every run finds the libraries and data in the page cache, as a learner's second start does.
# With "cold", every run first drops the program, its libraries, Qt's plugins, the data and the
# SoundFont from the page cache (those files only), as at the first start after booting.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
runs=${2:-15}
cold=${3:-}
[[ $build = /* ]] || build=$here/../$build
bin=$build/bin/tarabix
[[ -x $bin ]] || { echo "no $bin: build the tarabix target first" >&2; exit 1; }

source "$here/../scripts/virtual-display.sh"

start_virtual_display
cd "$scratch"

cached_files() {
    echo "$bin"
    ldd "$bin" | awk '/=>/ {print $3}'
    find /usr/lib/*/qt6/plugins -name '*.so' 2>/dev/null
    find "$build/bin" -type f ! -name 'tarabix*'
    ls /usr/share/sounds/sf2/*.sf2 2>/dev/null
}
drop_from_page_cache() {
    cached_files | python3 -c '
import os, sys
for path in sys.stdin.read().split():
    try:
        fd = os.open(path, os.O_RDONLY)
        os.posix_fadvise(fd, 0, 0, os.POSIX_FADV_DONTNEED)
        os.close(fd)
    except OSError:
        pass'
}

"$bin" --startup-report >/dev/null
for _ in $(seq "$runs"); do
    [[ $cold == cold ]] && drop_from_page_cache
    "$bin" --startup-report
done >"$scratch/runs.txt"

grep -q 'piece=none' "$scratch/runs.txt" && echo "warning: the start-up piece was not loaded" >&2

summary() {  # field name -> "median (min to max)"
    sed -n "s/.*$1=\([0-9.]*\).*/\1/p" "$scratch/runs.txt" | sort -n |
        awk '{v[NR] = $1} END {m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2;
                               printf "%.0f ms (min %.0f, max %.0f, %d runs)", m, v[1], v[NR], NR}'
}
echo "machine: $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)${cold:+, cold page cache}"
echo "window with the start-up piece, from process start: $(summary startup_ms)"
echo "window with the start-up piece, from main():        $(summary main_to_window_ms)"

if [[ $cold != cold ]] && command -v hyperfine >/dev/null; then
    echo "whole run, launch to exit (hyperfine):"
    hyperfine --style basic --warmup 2 --runs "$runs" "$bin --startup-report" 2>/dev/null |
        sed -n 's/^ *Time (mean ± σ): *\(.*\)/  mean \1/p; s/^ *Range (min … max): *\(.*\)/  range \1/p'
fi

sf_bench=$build/bench/soundfont_ready_bench
if [[ -x $sf_bench ]]; then
    echo "built-in synthesizer (file driver in place of a sound card):"
    "$sf_bench" --benchmark_format=console 2>/dev/null | grep -E '^(SynthOpen|SoundFontReady)' |
        awk '{printf "  %-16s %s %s\n", substr($1, 1, index($1, "/") - 1), $2, $3}'
fi
