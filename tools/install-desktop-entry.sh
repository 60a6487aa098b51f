#!/bin/sh
# Puts the program's desktop entry and icon into the user's data folder so
# that desktop menus list "WR-PD6T Programming Software".
#   tools/install-desktop-entry.sh [BUILD_DIR]
# BUILD_DIR (default: build) holds the wrpd6t executable; the entry starts
# it by its full path unless wrpd6t is on PATH.
set -eu

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-"$here/build"}
data=${XDG_DATA_HOME:-"$HOME/.local/share"}

mkdir -p "$data/applications" "$data/icons/hicolor/256x256/apps" "$data/icons/hicolor/scalable/apps"
cp "$here/resources/wrpd6t.png" "$data/icons/hicolor/256x256/apps/wrpd6t.png"
cp "$here/resources/wrpd6t.svg" "$data/icons/hicolor/scalable/apps/wrpd6t.svg"

exec_line=wrpd6t
if ! command -v wrpd6t >/dev/null 2>&1 && [ -x "$build/wrpd6t" ]; then
    exec_line=$(cd "$build" && pwd)/wrpd6t
fi
sed "s|^Exec=.*|Exec=$exec_line|" "$here/resources/wrpd6t.desktop" > "$data/applications/wrpd6t.desktop"

if command -v update-desktop-database >/dev/null 2>&1; then
    update-desktop-database "$data/applications" >/dev/null 2>&1 || true
fi
echo "Installed $data/applications/wrpd6t.desktop"
