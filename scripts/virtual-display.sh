# Sourced by the scripts that start the window without a screen (start-up timing, screenshot,
# install check). start_virtual_display DIR starts an Xvfb of its own on a free display, sets
# xvfb_pid, and gives the program a fresh per-user environment inside DIR.
start_virtual_display() {
    local dir=$1
    local display=:$((90 + RANDOM % 400))
    while [[ -e /tmp/.X11-unix/X${display#:} ]]; do display=:$((90 + RANDOM % 400)); done
    Xvfb "$display" -screen 0 1280x800x24 -nolisten tcp >"$dir/xvfb.log" 2>&1 &
    xvfb_pid=$!
    for _ in $(seq 50); do [[ -e /tmp/.X11-unix/X${display#:} ]] && break; sleep 0.1; done
    export DISPLAY=$display QT_QPA_PLATFORM=xcb
    export XDG_CONFIG_HOME=$dir/config XDG_RUNTIME_DIR=$dir/run
    mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
}
