#!/usr/bin/env bash
# The index of a clip of 4 GB rebuilt, beside cp of the same file: both in a file system in memory,
# in turns, by the processor time that they take (their own and the kernel's for them) and by the
# bytes that they have the kernel move. Drives, their caches and who else uses them are not in it:
# over drives both sides spread by a factor of seven. FOLDER, by default /dev/shm, must lie in
# memory and have room for the clip twice.
#
# The clip is real ProRes HQ in HD with sound of 24 bits, whose media is repeated up to its size; its
# header says what it says where the power was cut.
export TMPDIR=/dev/shm
. "$(dirname "$0")/common.sh"

if [ "$(stat -f -c %T "$work")" != tmpfs ]; then
    echo "needs a folder in a tmpfs, as /dev/shm is" >&2
    exit 2
fi
mebibytes=$(size 4096 32)
rounds=$(size 11 1)
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

# cost NAME COMMAND...: appends to $work/NAME its seconds of processor time, its bytes read and
# written by the kernel's count, and its seconds by the clock.
cost() {
    local name=$1 start=$EPOCHREALTIME
    shift
    bash -c '"$@" >&2 || exit
        times
        grep -h char /proc/$$/io' - "$@" >"$work/told"
    awk -v from="$start" -v to="$EPOCHREALTIME" '
        NR == 2 { split($1 "m" $2, t, /[ms]+/); seconds = 60 * (t[1] + t[3]) + t[2] + t[4] }
        NR > 2 { bytes += $2 }
        END { printf "%.3f %.0f %.3f\n", seconds, bytes, to - from }' "$work/told" >>"$work/$name"
}
rebuilt() {
    cost "$1" "$bin/rebuild-run" "$work/damaged.mov" "$work/reference.mov" "$work/rebuilt.mov" \
        2>"$work/figures"
    awk -v n="$frames" '$1 != n { exit 2 }' "$work/figures"
    awk '{ print $3 }' "$work/figures" >>"$work/peak"
    rm "$work/rebuilt.mov"
}
copied() {
    cost "$1" cp "$work/damaged.mov" "$work/copy.mov"
    rm "$work/copy.mov"
}

# The first of each gets memory from the host that the others find there.
rebuilt first
copied first
for round in $(seq "$rounds"); do
    if ((round % 2)); then
        rebuilt rebuilds
        copied copies
    else
        copied copies
        rebuilt rebuilds
    fi
    echo "round $round: rebuilt $(tail -1 "$work/rebuilds"), copied $(tail -1 "$work/copies")" >&2
done

# of FILE COLUMN: the median.
of() { awk -v c="$2" '{ print $c }' "$work/$1" | median; }
ratio() { divide "$(of rebuilds "$1")" "$(of copies "$1")"; }
status=0
verdict "processor time of a rebuild / of cp, medians" "$(ratio 1)" 1.3 at-most || status=1
verdict "bytes moved for a rebuild / for cp, medians" "$(ratio 2)" 1.3 at-most || status=1
echo "time by the clock, of a rebuild / of cp, medians: $(ratio 3)"
verdict "peak of a rebuild in MiB" "$(divide "$(median <"$work/peak")" 1024)" 64 at-most || status=1
exit $status
