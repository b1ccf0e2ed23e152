#!/usr/bin/env bash
# What recorders wrote about their files beside a bare loop that opens each file and reads its first
# 4 KB: cold and warm, in turns. The recordings are of 1 MB, with the slate behind the sound, which
# is the dearest place for it. Their sound is a hole; neither side reads it.
. "$(dirname "$0")/common.sh"

count=$(size 10000 100)
rounds=$(size 5 1)
mkdir "$work/DAY"
python3 - "$work/DAY" "$count" <<'PYTHON'
import struct, sys
folder, count = sys.argv[1], int(sys.argv[2])
def chunk(id, payload): return id + struct.pack("<I", len(payload)) + payload + b"\0" * (len(payload) % 2)
sound = 999_000
form = chunk(b"fmt ", struct.pack("<HHIIHH", 1, 1, 48000, 144000, 3, 24))
bext = chunk(b"bext", bytes(338) + struct.pack("<Q", 172800000) + bytes(256))
tracks = "".join(f"<TRACK><CHANNEL_INDEX>{i}</CHANNEL_INDEX><NAME>Track {i}</NAME></TRACK>" for i in range(1, 9))
front = b"WAVE" + form + bext + b"data" + struct.pack("<I", sound)
for i in range(count):
    slate = chunk(b"iXML", f"<?xml version=\"1.0\"?><BWFXML><SCENE>{i}</SCENE><TAKE>1</TAKE><TAPE>R1</TAPE>"
                  f"<NOTE>none</NOTE><TRACK_LIST>{tracks}</TRACK_LIST></BWFXML>".encode())
    with open(f"{folder}/T{i:05}.WAV", "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", len(front) + sound + len(slate)) + front)
        file.seek(8 + len(front) + sound)
        file.write(slate)
PYTHON

# took read|bare: seconds; fails unless every file was read and, by us, its scene found.
took() {
    local figures
    figures=$("$bin/recordings-run" "$1" "$work/DAY")
    awk -v n="$count" -v way="$1" \
        '$2 != n || $3 != (way == "read" ? n : n * 4096) { exit 2 } { print $1 }' <<<"$figures"
}

for round in $(seq "$rounds"); do
    drop_caches
    a=$(took read)
    drop_caches
    b=$(took bare)
    divide "$a" "$b" >>"$work/cold"
    took read >/dev/null
    for turn in 1 2 3 4 5; do
        c=$(took read)
        d=$(took bare)
        divide "$c" "$d" >>"$work/warm"
    done
    echo "round $round: cold $a s, bare $b s; warm, turn $turn: $c s, bare $d s" >&2
done
status=0
verdict "recordings / bare opens, cold" "$(median <"$work/cold")" 2.5 at-most || status=1
verdict "recordings / bare opens, warm" "$(median <"$work/warm")" 2.5 at-most || status=1
exit $status
