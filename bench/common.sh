# Sourced by the bench scripts: the built programs a script needs, a scratch folder `tmp` removed
# on exit, and busy processes that keep the cores loaded while something is measured.

# need_built SCRIPT_NAME EXECUTABLE...: stop with a message when one is missing.
need_built() {
    local name=$1
    shift
    for exe; do
        [[ -x $exe ]] || { echo "$name: $exe not built" >&2; exit 1; }
    done
}

busy_pids=()
start_busy() {
    for ((i = 0; i < $1; i++)); do
        yes >/dev/null &
        busy_pids+=($!)
    done
}
stop_busy() {
    for p in "${busy_pids[@]}"; do kill "$p" 2>/dev/null || true; done
    for p in "${busy_pids[@]}"; do wait "$p" 2>/dev/null || true; done
    busy_pids=()
}

tmp=$(mktemp -d)
# A script with more to clean (its own servers) defines bench_cleanup after sourcing this file.
declare -F bench_cleanup >/dev/null || bench_cleanup() { :; }
trap 'bench_cleanup; stop_busy; rm -rf "$tmp"' EXIT
