# What the benchmark scripts share. They are started as: SCRIPT [--brief] [FOLDER].
#
# --brief takes a small size, to see that everything still runs: its figures mean nothing and no
# limit is checked. FOLDER is where the work is done, best on the drive to be measured; it is
# cleaned up on every way out. The programs come from $KELDO_BIN, by default build/release/bin.

set -euo pipefail
shopt -s inherit_errexit
export LC_ALL=C
brief=false
[ "${1:-}" = --brief ] && brief=true && shift
bin=${KELDO_BIN:-$(cd "$(dirname "$0")/.." && pwd)/build/release/bin}
work=$(mktemp -d "${1:-${TMPDIR:-/tmp}}/keldo-benchmark-XXXXXX")
trap 'rm -rf "$work"' EXIT

# size FULL BRIEF
size() { if $brief; then echo "$2"; else echo "$1"; fi; }

# Lets the system forget what it has read; only root may. A brief run stands beside others, whom
# that would slow down, and does without.
drop_caches() {
    $brief && return
    sync
    if ! echo 3 2>/dev/null >/proc/sys/vm/drop_caches; then
        echo "needs root, to drop the file cache" >&2
        exit 2
    fi
}

# seconds COMMAND...: how long a command takes; what it prints goes to standard error.
seconds() {
    local start=$EPOCHREALTIME
    "$@" >&2 || return
    awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.3f\n", b - a }'
}

median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
divide() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f\n", a / b }'; }

# make_noise FILE MIB / make_files FOLDER COUNT BYTES
make_noise() { head -c "$2"M /dev/urandom >"$1"; }
make_files() {
    python3 - "$@" <<'PYTHON'
import os, sys
folder, count, size = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
for i in range(count):
    if i % 1000 == 0:
        below = f"{folder}/{i // 1000:03}"
        os.makedirs(below)
    with open(f"{below}/C{i:06}.XML", "wb") as file:
        file.write(os.urandom(size))
PYTHON
}

# verdict NAME RATIO LIMIT at-most|at-least: one line, and the script's end.
verdict() {
    local holds
    holds=$(awk -v r="$2" -v l="$3" -v s="$4" \
        'BEGIN { print (s == "at-most" ? r <= l : r >= l) ? "met" : "MISSED" }')
    $brief && holds="brief run, not checked"
    echo "$1: $2 (target: ${4/-/ } $3, $holds)"
    [ "$holds" != MISSED ]
}
