#!/usr/bin/env bash
# One offload of a card to two folders beside what a person would type for the same proof: rsync to
# each folder, then xxhsum of the card and of both copies. All with cold caches, in turns.
. "$(dirname "$0")/common.sh"

rounds=$(size 3 1)
mkdir "$work/CARD"
for clip in 1 2 3; do make_noise "$work/CARD/C000$clip.MXF" "$(size 300 3)"; done
make_files "$work/CARD/SIDECARS" "$(size 300 30)" 20480

ours() {
    drop_caches
    "$bin/offload-run" "$work/CARD" A001 xxhash64 "$work/ours/1" "$work/ours/2"
}
by_hand() {
    drop_caches
    rsync -a "$work/CARD/" "$work/peer/1/"
    rsync -a "$work/CARD/" "$work/peer/2/"
    drop_caches
    for folder in "$work/CARD" "$work/peer/1" "$work/peer/2"; do
        find "$folder" -type f -exec xxhsum -q -H1 {} + >"$work/sums"
    done
}
for round in $(seq "$rounds"); do
    rm -rf "$work/ours" "$work/peer"
    mkdir "$work/peer"
    drop_caches
    a=$(seconds ours)
    b=$(seconds by_hand)
    echo "round $round: offload $a s, rsync and xxhsum $b s" >&2
    divide "$a" "$b" >>"$work/ratios"
done
verdict "offload / (rsync + xxhsum)" "$(median <"$work/ratios")" 0.50 at-most
