#!/usr/bin/env bash
# The index of a clip of 4 GB rebuilt, beside cp of the same file: cold, in turns. The clip is real
# ProRes HQ in HD with sound of 24 bits, whose media is repeated up to its size; its header says
# what it says where the power was cut.
. "$(dirname "$0")/common.sh"

mebibytes=$(size 4096 32)
rounds=$(size 5 1)
ffmpeg -nostdin -v error -f lavfi -i "testsrc2=size=1920x1080:rate=25:duration=0.4" \
    -f lavfi -i "sine=sample_rate=48000:duration=0.4" -vf noise=alls=20:allf=t -ac 2 \
    -c:v prores_ks -profile:v hq -pix_fmt yuv422p10le -c:a pcm_s24le "$work/reference.mov"
frames=$(python3 - "$work" "$mebibytes" <<'PYTHON'
import struct, sys
folder, size = sys.argv[1], int(sys.argv[2]) << 20
clip = open(f"{folder}/reference.mov", "rb").read()
at = 0
while clip[at + 4:at + 8] != b"mdat":
    at += struct.unpack(">I", clip[at:at + 4])[0]
media = clip[at + 8:at + struct.unpack(">I", clip[at:at + 4])[0]]
times = size // len(media)
with open(f"{folder}/damaged.mov", "wb") as file:
    file.write(clip[:at] + struct.pack(">I4s", 0, b"mdat"))
    for _ in range(times):
        file.write(media)
print(10 * times)
PYTHON
)

# rebuilt: seconds; notes the peak memory, and fails unless every frame was found.
rebuilt() {
    "$bin/rebuild-run" "$work/damaged.mov" "$work/reference.mov" "$work/rebuilt.mov" >"$work/figures"
    awk -v n="$frames" '$1 != n { exit 2 } { print $2 }' "$work/figures"
    awk '{ print $3 }' "$work/figures" >>"$work/peak"
    rm "$work/rebuilt.mov"
}
copied() {
    seconds cp "$work/damaged.mov" "$work/copy.mov"
    rm "$work/copy.mov"
}

# Who comes second has a fuller drive to write to, so they take turns.
for round in $(seq "$rounds"); do
    if ((round % 2)); then
        drop_caches
        a=$(rebuilt)
    fi
    drop_caches
    b=$(copied)
    if ((round % 2 == 0)); then
        drop_caches
        a=$(rebuilt)
    fi
    divide "$a" "$b" >>"$work/ratios"
    echo "round $round: rebuilt in $a s, copied in $b s" >&2
done
status=0
verdict "rebuild / cp, cold" "$(median <"$work/ratios")" 1.3 at-most || status=1
verdict "peak of a rebuild in MiB" "$(divide "$(median <"$work/peak")" 1024)" 64 at-most || status=1
exit $status
