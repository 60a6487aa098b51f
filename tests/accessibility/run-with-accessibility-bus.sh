#!/usr/bin/env bash
# run-with-accessibility-bus.sh COMMAND [ARGUMENT...]
# Runs a command on a display of its own (Xvfb) in a D-Bus session of its own,
# where the accessibility bus (at-spi2-core) starts on demand and Qt programs
# publish their accessible objects as they would to a running screen reader.
set -euo pipefail
for program in Xvfb dbus-run-session dbus-send; do
    command -v "$program" >/dev/null || { echo "$program is missing: run .ci/install-deps" >&2; exit 1; }
done
scratch=$(mktemp -d)
trap 'kill "$xvfb" 2>/dev/null || true; rm -rf "$scratch"' EXIT
# -displayfd picks a free display and names it; -noreset keeps the server up
# when its last client leaves, between one window and the next.
Xvfb -displayfd 5 -noreset -nolisten tcp -screen 0 1600x1200x24 5>"$scratch/display" 2>"$scratch/xvfb.log" &
xvfb=$!
for _ in $(seq 100); do
    [ -s "$scratch/display" ] && break
    sleep 0.1
done
[ -s "$scratch/display" ] || { cat "$scratch/xvfb.log" >&2; echo "Xvfb did not start" >&2; exit 1; }
export DISPLAY=":$(cat "$scratch/display")"
export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
export XDG_RUNTIME_DIR="$scratch"
# Qt joins the accessibility bus once it is there, but does not start it: a
# screen reader's session would have; asking for its address starts it.
dbus-run-session -- sh -c 'dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus \
    org.a11y.Bus.GetAddress >/dev/null && exec "$@"' sh "$@"
