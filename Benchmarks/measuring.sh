# Functions of the scripts that measure. Sourced by them.

milliseconds() {
    local start=$EPOCHREALTIME
    "$@" >/dev/null 2>&1 || true
    local end=$EPOCHREALTIME
    echo "$(((${end/./} - ${start/./})))"
}

middle() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }

# median COUNT COMMAND…: in microseconds
median() {
    local count=$1
    shift
    for ((i = 0; i < count; i++)); do milliseconds "$@"; done | sort -n | sed -n "$(((count + 1) / 2))p"
}

row() { # what, figure µs, yardstick, figure µs, bar; no bar is for a figure that only informs
    awk -v what="$1" -v figure="$2" -v yardstick="$3" -v other="$4" -v bar="${5:-}" 'BEGIN {
        ratio = figure / other
        printf "%-34s %9.1f ms   %-30s %9.1f ms   %5.2f x", what, figure / 1000, yardstick, other / 1000, ratio
        if (bar != "") printf "   (at most %s x)%s", bar, (ratio > bar ? "   MISSED" : "")
        printf "\n" }'
}

limit() { # what, figure, bar, unit
    awk -v what="$1" -v figure="$2" -v bar="$3" -v unit="$4" 'BEGIN {
        printf "%-48s %9.3f %s   (at most %s %s)%s\n", what, figure, unit, bar, unit, (figure > bar ? "   MISSED" : "") }'
}

peak() { # KiB
    /usr/bin/time -f '%M' "$@" 2>&1 >/dev/null | tail -n 1
}
