#!/usr/bin/env bash
# A transcode beside the bare ffmpeg command with the same arguments.
. "$(dirname "$0")/common.sh"

rounds=$(size 5 1)
clip=$work/A001.mov
ffmpeg -nostdin -v error -f lavfi -i "testsrc2=size=$(size 1280x720 128x72):rate=25:duration=10" \
    -f lavfi -i "sine=duration=10" -c:v prores_ks -profile:v 0 -pix_fmt yuv422p10le \
    -c:a pcm_s16le "$clip"

ours() { "$bin/transcode-run" "$clip" "$work/out" "$preset"; }
peer() { ffmpeg "${arguments[@]}" </dev/null; }

status=0
for preset in prores_proxy h264_review; do
    mapfile -d '' arguments < <("$bin/transcode-run" --arguments "$clip" "$work/out" "$preset")
    for round in $(seq "$rounds"); do
        rm -rf "$work/out"
        a=$(seconds ours)
        rm -rf "$work/out" && mkdir "$work/out"
        b=$(seconds peer 2>/dev/null)
        divide "$a" "$b" >>"$work/$preset"
        echo "$preset, round $round: $a s, ffmpeg $b s" >&2
    done
    verdict "transcode / ffmpeg, $preset" "$(median <"$work/$preset")" 1.03 at-most || status=1
done
exit $status
