#!/usr/bin/env bash
# One offload of a card to two folders beside a bare loop of the same reads, writes and read-backs,
# without names, checksums and bookkeeping: the limit that this machine gives. Cold caches, in turns.
. "$(dirname "$0")/common.sh"

rounds=$(size 5 1)
mkdir "$work/CARD"
for clip in 1 2 3; do make_noise "$work/CARD/C000$clip.MXF" "$(size 300 3)"; done

ours() {
    drop_caches
    "$bin/offload-run" "$work/CARD" A001 xxhash64 "$work/ours/1" "$work/ours/2"
}
loop() {
    drop_caches
    "$bin/offload-loop" "$work/CARD" "$work/loop/1" "$work/loop/2"
}
for round in $(seq "$rounds"); do
    rm -rf "$work/ours" "$work/loop"
    a=$(ours | awk '{ print $1 }')
    b=$(loop)
    echo "round $round: offload $a s, bare loop $b s" >&2
    divide "$a" "$b" >>"$work/ratios"
done
verdict "offload / bare loop" "$(median <"$work/ratios")" 1.15 at-most
