#!/usr/bin/env bash
# A scan of many files beside find, which tells the same facts of each: cold and warm.
. "$(dirname "$0")/common.sh"

rounds=$(size 3 1)
make_files "$work/CARD" "$(size 100000 1000)" 1024

ours() { "$bin/scan-run" "$work/CARD"; }
peer() { find "$work/CARD" -type f -printf '%s %T@ %p\n' >"$work/found"; }

for round in $(seq "$rounds"); do
    drop_caches
    a=$(seconds ours)
    drop_caches
    b=$(seconds peer)
    divide "$a" "$b" >>"$work/cold"
    peer
    c=$(seconds ours)
    d=$(seconds peer)
    divide "$c" "$d" >>"$work/warm"
    echo "round $round: cold $a s, find $b s; warm $c s, find $d s" >&2
done
status=0
verdict "scan / find, cold" "$(median <"$work/cold")" 2 at-most || status=1
verdict "scan / find, warm" "$(median <"$work/warm")" 2 at-most || status=1
exit $status
