#!/usr/bin/env bash
# Installs a built tree into a scratch prefix and checks it as a user would meet it: the files are
# where the desktop looks for them, .mzf files belong to Tarabix, and the installed program, started
# through bin/ from another working directory under a virtual display, finds its data and opens its
# start-up piece.
#   packaging/check-install.sh [BUILD_DIR]      (default: build)
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
[[ $build = /* ]] || build=$here/$build

source "$here/scripts/virtual-display.sh"
prefix=$scratch/prefix
failures=0
check() {  # description, command...
    local what=$1; shift
    if "$@" >/dev/null 2>&1; then echo "ok   $what"; else echo "FAIL $what"; failures=$((failures + 1)); fi
}

cmake --install "$build" --prefix "$prefix" >"$scratch/install.log" 2>&1 ||
    { cat "$scratch/install.log"; exit 1; }
layout=$(sed -n 's/^TARABIX_INSTALL_LAYOUT:[A-Z]*=//p' "$build/CMakeCache.txt")
data=$prefix/lib/tarabix
[[ $layout = share ]] && data=$prefix/share/tarabix

for f in bin/tarabix bin/tarabix-cli share/applications/tarabix.desktop share/mime/packages/tarabix-mzf.xml \
         share/icons/hicolor/scalable/apps/tarabix.svg share/icons/hicolor/48x48/apps/tarabix.png; do
    check "$f installed" test -e "$prefix/$f"
done
for f in tunings.ini maqams.ini oud.png marks.png notefont.png help/gereix.htm samples/agam/zoroony.mzf; do
    check "data: $f" test -f "$data/$f"
done
check "desktop entry runs the installed program" grep -qx "Exec=$prefix/[a-z/]*tarabix %f" \
    "$prefix/share/applications/tarabix.desktop"
if command -v desktop-file-validate >/dev/null; then
    check "desktop entry is valid" desktop-file-validate "$prefix/share/applications/tarabix.desktop"
fi
if command -v xdg-mime >/dev/null && command -v update-mime-database >/dev/null; then
    cp "$here/data/samples/kurd/kurd-dance.mzf" "$scratch/piece.mzf"
    export XDG_DATA_DIRS=$prefix/share:/usr/share XDG_DATA_HOME=$scratch/data-home
    check ".mzf is application/x-tarabix-mzf" \
        test "$(xdg-mime query filetype "$scratch/piece.mzf")" = application/x-tarabix-mzf
    check ".mzf opens with Tarabix" \
        test "$(xdg-mime query default application/x-tarabix-mzf)" = tarabix.desktop
fi

start_virtual_display
mkdir -p "$scratch/elsewhere"
report=$(cd "$scratch/elsewhere" && timeout 30 "$prefix/bin/tarabix" --startup-report 2>/dev/null || true)
echo "     $report"
check "installed program opens its start-up piece" grep -q "piece=$data/samples/agam/zoroony.mzf" <<<"$report"

echo "$((failures == 0 ? 1 : 0)) passed, $((failures == 0 ? 0 : 1)) failed"
exit $((failures != 0))
