#!/usr/bin/env bash
# People counted in a clip of an hour beside the same grabs and looks by a bare loop, in turns; and
# the most memory that counting takes, for clips of three sizes. With the nets if they are set up.
. "$(dirname "$0")/common.sh"

models=${KELDO_TEST_TRANSCRIPT:-$HOME/.cache/keldobay-transcript}/keldobay/models/vision
[ -e "$models/nanodet.onnx" ] || echo "without the nets: OpenCV's own detectors" >&2

# clip NAME SIZE SECONDS LOOPS
clip() {
    ffmpeg -nostdin -v error -f lavfi -i "testsrc2=size=$2:rate=25:duration=$3" \
        -c:v libx264 -preset ultrafast -pix_fmt yuv420p "$work/once.mp4"
    ffmpeg -nostdin -v error -stream_loop $(($4 - 1)) -i "$work/once.mp4" -c copy "$work/$1"
    rm "$work/once.mp4"
}

status=0
clip hour.mp4 1280x720 "$(size 10 1)" "$(size 360 2)"
"$bin/people-run" "$(size 3 1)" "$(size 40 3)" "$work/hour.mp4" "$models" >"$work/figures"
count=$(awk '$1 == "count" { print $2 }' "$work/figures" | median)
bare=$(awk '$1 == "bare" { print $2 }' "$work/figures" | median)
echo "count $count s, bare $bare s" >&2
verdict "40 frames counted / bare grabs and looks" "$(divide "$count" "$bare")" 1.1 at-most || status=1

for frame in 1920x1080 3840x2160 7680x4320; do
    clip "$frame.mp4" "$frame" 1 1
    peak=$("$bin/people-run" 0 1 "$work/$frame.mp4" "$models" | awk '$1 == "peak" { print $2 }')
    verdict "peak for $frame in MiB" "$(divide "$peak" 1024)" 100 at-most || status=1
    $brief && break
done
exit $status
