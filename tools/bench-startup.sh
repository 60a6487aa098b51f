#!/bin/sh
# Start-up time of the programming software against a bare Qt Widgets
# program, both on the offscreen platform, alternating runs in one session.
#   tools/bench-startup.sh [BUILD_DIR] [RUNS]
# BUILD_DIR should be a Release build with the targets wrpd6t-bench-startup
# and wrpd6t-bench-baseline (default: build). Prints medians of three
# times and their ratios: main() to the first paint of the window (as each
# program measures it), launch to first paint (what a user waits for: loading
# the libraries included), and the whole process with its teardown. The goal
# is at most 1.5 for launch to first paint.
set -eu

build=${1:-build}
runs=${2:-21}
startup="$build/bench/wrpd6t-bench-startup"
baseline="$build/bench/wrpd6t-bench-baseline"
for program in "$startup" "$baseline"; do
    [ -x "$program" ] || { echo "missing $program: build the benchmark targets first" >&2; exit 2; }
done

export QT_QPA_PLATFORM=offscreen
export XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$(mktemp -d)}"
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

run() { # program label
    start=$(date +%s%N)
    set -- "$1" "$2" "$("$1" 2>/dev/null)"
    end=$(date +%s%N)
    echo "$3" | awk '{ print $1 }' >> "$out/$2.paint"
    echo "$3 $start" | awk '{ printf "%.2f\n", ($2 - $3) / 1000000 }' >> "$out/$2.launch"
    echo "$end $start" | awk '{ printf "%.2f\n", ($1 - $2) / 1000000 }' >> "$out/$2.wall"
}

# One warm-up each, so both start from a warm file cache.
"$startup" >/dev/null 2>&1 || true
"$baseline" >/dev/null 2>&1 || true
i=0
while [ "$i" -lt "$runs" ]; do
    run "$startup" program
    run "$baseline" baseline
    i=$((i + 1))
done

median() { sort -n "$1" | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

ratio() { echo "$1 $2" | awk '{ printf "%.2f", $1 / $2 }'; }
p_paint=$(median "$out/program.paint"); b_paint=$(median "$out/baseline.paint")
p_launch=$(median "$out/program.launch"); b_launch=$(median "$out/baseline.launch")
p_wall=$(median "$out/program.wall"); b_wall=$(median "$out/baseline.wall")
echo "runs: $runs each, medians in ms"
echo "                      main() to paint   launch to paint   whole process"
printf "program (128 ch.)     %15.1f %17.1f %15.1f\n" "$p_paint" "$p_launch" "$p_wall"
printf "bare Qt main window   %15.1f %17.1f %15.1f\n" "$b_paint" "$b_launch" "$b_wall"
printf "ratio                 %15s %17s %15s\n" "$(ratio "$p_paint" "$b_paint")" "$(ratio "$p_launch" "$b_launch")" \
    "$(ratio "$p_wall" "$b_wall")"
