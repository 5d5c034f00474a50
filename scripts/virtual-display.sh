# Sourced by the scripts that start the window without a screen (start-up timing, screenshot,
# install check). Sourcing it makes $scratch, a fresh folder removed on exit together with the
# Xvfb and any process whose id the script puts in $app_pid.
# start_virtual_display starts an Xvfb of its own on a free display and gives the program a
# fresh per-user environment inside $scratch.
scratch=$(mktemp -d)
xvfb_pid= app_pid=
virtual_display_cleanup() {
    [[ -n $app_pid ]] && kill "$app_pid" 2>/dev/null
    [[ -n $xvfb_pid ]] && kill "$xvfb_pid" 2>/dev/null
    rm -rf "$scratch"
}
trap virtual_display_cleanup EXIT

start_virtual_display() {
    local display=:$((90 + RANDOM % 400))
    while [[ -e /tmp/.X11-unix/X${display#:} ]]; do display=:$((90 + RANDOM % 400)); done
    Xvfb "$display" -screen 0 1280x800x24 -nolisten tcp >"$scratch/xvfb.log" 2>&1 &
    xvfb_pid=$!
    for _ in $(seq 50); do [[ -e /tmp/.X11-unix/X${display#:} ]] && break; sleep 0.1; done
    export DISPLAY=$display QT_QPA_PLATFORM=xcb
    export XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch/run
    mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
}
