#!/usr/bin/env bash
# A scan of the raw image of a card for media, beside dd, which only reads it: cold and warm. And the
# most memory that a scan takes.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/card_image.sh"

rounds=$(size 5 1)
# Of the scan alone: the start of a program is a twentieth of it where the file cache has the image.
ours() { carve && awk '{ print $1 }' "$work/figures"; }
peer() { dd if="$work/card.img" of=/dev/null bs=32M status=none; }

for round in $(seq "$rounds"); do
    drop_caches
    a=$(ours)
    drop_caches
    b=$(seconds peer)
    divide "$b" "$a" >>"$work/cold"
    c=$(ours)
    d=$(seconds peer)
    divide "$d" "$c" >>"$work/warm"
    echo "round $round: cold $a s, dd $b s; warm $c s, dd $d s" >&2
done
status=0
verdict "rate of a scan / dd, cold" "$(median <"$work/cold")" 0.95 at-least || status=1
verdict "rate of a scan / dd, warm" "$(median <"$work/warm")" 0.6 at-least || status=1
verdict "peak memory of a scan, MiB" "$(divide "$(median <"$work/peak")" 1024)" 96 at-most || status=1
exit $status
