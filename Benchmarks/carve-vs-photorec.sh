#!/usr/bin/env bash
# Media found on the raw image of a card, beside photorec looking for the same kinds: cold and warm.
# The image is random bytes with clips in it. photorec also writes out what it finds, which is less
# than a hundredth of the image.
. "$(dirname "$0")/common.sh"

rounds=$(size 5 1)
clips=$(size 40 4)
gap=$(($(size 4096 64) / clips))

make_clips() {
    local picture=(-f lavfi -i testsrc2=size=128x72:rate=25:duration=2)
    local sound=(-f lavfi -i "aevalsrc=sin(2000*t)|sin(3000*t):s=48000:d=2")
    local ffmpeg=(ffmpeg -nostdin -v error)
    mkdir "$work/clips"
    "${ffmpeg[@]}" "${picture[@]}" "${sound[@]}" -c:v prores_ks -c:a pcm_s16le "$work/clips/0.mov"
    "${ffmpeg[@]}" "${picture[@]}" -c:v mpeg2video -q:v 2 "$work/clips/1.mxf"
    "${ffmpeg[@]}" "${sound[@]}" -write_bext 1 "$work/clips/2.wav"
    "${ffmpeg[@]}" "${picture[@]}" -c:v libx264 "$work/clips/3.mp4"
}

make_image() {
    local files=("$work"/clips/*)
    for i in $(seq "$clips"); do
        head -c "${gap}M" /dev/urandom >>"$work/card.img"
        cat "${files[i % 4]}" >>"$work/card.img"
        # The next begins on a sector, as on any card.
        truncate --size %512 "$work/card.img"
    done
}

ours() {
    "$bin/carve-run" "$work/card.img" >"$work/figures" || return
    awk -v n="$clips" '$3 != n { print "found " $3 " clips"; exit 2 }' "$work/figures" || return
    awk '{ print $4 }' "$work/figures" >>"$work/peak"
}
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

make_clips
make_image
for round in $(seq "$rounds"); do
    drop_caches
    a=$(seconds ours)
    drop_caches
    b=$(seconds peer)
    divide "$a" "$b" >>"$work/cold"
    c=$(seconds ours)
    d=$(seconds peer)
    divide "$c" "$d" >>"$work/warm"
    echo "round $round: cold $a s, photorec $b s; warm $c s, photorec $d s" >&2
done
echo "peak memory: $(median <"$work/peak") KiB" >&2
status=0
verdict "carve / photorec, cold" "$(median <"$work/cold")" 1 at-most || status=1
verdict "carve / photorec, warm" "$(median <"$work/warm")" 1 at-most || status=1
exit $status
