#!/usr/bin/env bash
# Media found on the raw image of a card, beside photorec looking for the same kinds: cold and warm.
# The image is random bytes with clips in it. photorec also writes out what it finds, which is less
# than a hundredth of the image.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/card_image.sh"

rounds=$(size 5 1)

peer() {
    local wanted=fileopt,everything,disable,mov,enable,mxf,enable,riff,enable
    rm -rf "$work"/found.*
    # It leaves a note of its session where it is started.
    (cd "$work" && TERM=dumb photorec /d found /cmd card.img \
        "partition_none,$wanted,wholespace,search" </dev/null >said) || return
    local found
    found=$(find "$work"/found.* -name 'f*' -type f | wc -l)
    [ "$found" -eq "$clips" ] || { echo "photorec found $found clips" && return 2; }
}

for round in $(seq "$rounds"); do
    drop_caches
    a=$(seconds carve)
    drop_caches
    b=$(seconds peer)
    divide "$a" "$b" >>"$work/cold"
    c=$(seconds carve)
    d=$(seconds peer)
    divide "$c" "$d" >>"$work/warm"
    echo "round $round: cold $a s, photorec $b s; warm $c s, photorec $d s" >&2
done
echo "peak memory: $(median <"$work/peak") KiB" >&2
status=0
verdict "carve / photorec, cold" "$(median <"$work/cold")" 1 at-most || status=1
verdict "carve / photorec, warm" "$(median <"$work/warm")" 1 at-most || status=1
exit $status
