#!/usr/bin/env bash
# One offload of many small files to one folder beside cp, sync, and xxhsum of both with cold caches.
. "$(dirname "$0")/common.sh"

rounds=$(size 3 1)
make_files "$work/CARD" "$(size 20000 100)" 1024

ours() {
    drop_caches
    "$bin/offload-run" "$work/CARD" A001 xxhash64 "$work/ours"
}
by_hand() {
    drop_caches
    cp -r "$work/CARD" "$work/peer"
    sync
    drop_caches
    for folder in "$work/CARD" "$work/peer"; do
        find "$folder" -type f -exec xxhsum -q -H1 {} + >"$work/sums"
    done
}
for round in $(seq "$rounds"); do
    rm -rf "$work/ours" "$work/peer"
    drop_caches
    a=$(seconds ours)
    b=$(seconds by_hand)
    echo "round $round: offload $a s, cp and xxhsum $b s" >&2
    divide "$a" "$b" >>"$work/ratios"
done
verdict "small files: offload / (cp + xxhsum)" "$(median <"$work/ratios")" 1.2 at-most
