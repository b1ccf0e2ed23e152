#!/usr/bin/env bash
# A clip read beside the same ffprobe runs by a bare loop, in turns.
. "$(dirname "$0")/common.sh"

clip() {
    ffmpeg -nostdin -v error -f lavfi -i testsrc2=size=320x180:rate=25:duration=2 \
        -f lavfi -i sine=duration=2 "${@:2}" "$work/$1"
}
clip tagged.mov -c:v prores_ks -c:a pcm_s16le -timecode 10:00:00:00
clip untagged.mp4 -c:v mpeg4 -c:a aac

"$bin/probe-run" "$(size 40 1)" "$work/tagged.mov" "$work/untagged.mp4" >"$work/figures"
read=$(awk '$1 == "read" { print $2 }' "$work/figures" | median)
loop=$(awk '$1 == "loop" { print $2 }' "$work/figures" | median)
echo "read $read s, loop $loop s" >&2
verdict "clip read / bare ffprobe runs" "$(divide "$read" "$loop")" 1.05 at-most
