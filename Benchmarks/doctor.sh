#!/usr/bin/env bash
# The diagnosis of a card of clips of 100 MB, half of them damaged: cold and warm, and how much of
# them it reads. Headers are whole, so that they are walked from end to end; the media is a hole.
# MXF clips hold their essence in pieces of a second, and on a second card frame by frame. How long
# the device takes for the first bytes of each clip alone is told beside.
. "$(dirname "$0")/common.sh"

count=$(size 2000 60)
rounds=$(size 5 1)
kinds=mov.whole,mov.open,wav.whole,wav.open,mxf.whole,mxf.open,mov.whole,mov.cut
healthy=$((count / 2))

# make_clips FOLDER COUNT KINDS PIECES
make_clips() {
    python3 - "$@" <<'PYTHON'
import os, struct, sys
folder, count, kinds, pieces = sys.argv[1], int(sys.argv[2]), sys.argv[3].split(","), int(sys.argv[4])
size = 100_000_000

def box(type, payload): return struct.pack(">I4s", 8 + len(payload), type) + payload
def chunk(id, payload): return struct.pack("<4sI", id, len(payload)) + payload
def partition(kind): return bytes.fromhex("060e2b34020501010d01020101") + bytes([kind, 4, 0])
def head(key, length): return key + b"\x83" + length.to_bytes(3, "big")
head_of_movie = box(b"ftyp", b"qt  " + bytes(12)) + box(b"wide", b"")
index = box(b"moov", bytes(20_000))

def movie(file, kind):
    if kind == "cut":
        file.write(head_of_movie + index + struct.pack(">I4s", 2 * size, b"mdat"))
        return
    media = size - len(head_of_movie) - (len(index) if kind == "whole" else 0)
    file.write(head_of_movie + struct.pack(">I4s", media, b"mdat"))
    if kind == "whole":
        file.seek(size - len(index))
        file.write(index)

def recording(file, kind):
    form = struct.pack("<HHIIHH", 1, 1, 48000, 144000, 3, 24)
    front = chunk(b"fmt ", form) + chunk(b"bext", bytes(602)) + chunk(b"iXML", bytes(4000))
    sizes = (size - 8, size - 20 - len(front)) if kind == "whole" else (0, 0)
    file.write(struct.pack("<4sI4s", b"RIFF", sizes[0], b"WAVE") + front)
    file.write(struct.pack("<4sI", b"data", sizes[1]))

def mxf(file, kind):
    item = bytes.fromhex("060e2b34025301010d01010101010100")
    essence = bytes.fromhex("060e2b34010201010d01030115010500")
    file.write(head(partition(2), 100) + bytes(100))
    for _ in range(40):
        file.write(head(item, 180) + bytes(180))
    footer = head(partition(4), 100) + bytes(100)
    room = size - file.tell() - len(footer)
    for i in range(pieces):
        end = room // pieces if i < pieces - 1 else room - room // pieces * (pieces - 1)
        file.write(head(essence, end - 20))
        file.seek(end - 20, os.SEEK_CUR)
    if kind == "whole":
        file.write(footer)

makers = {"mov": movie, "wav": recording, "mxf": mxf}
for i in range(count):
    below = f"{folder}/{i // 100:03}"
    os.makedirs(below, exist_ok=True)
    extension, kind = kinds[i % len(kinds)].split(".")
    with open(f"{below}/C{i:05}.{extension}", "wb") as file:
        makers[extension](file, kind)
        file.truncate(size)
PYTHON
}

# took FOLDER COUNT HEALTHY: seconds; fails unless every clip was judged as it was made.
took() {
    "$bin/doctor-run" "$1" >"$work/figures"
    awk -v n="$2" -v h="$3" '$2 != n || $3 != h || $4 != n - h { exit 2 } { print $1 }' "$work/figures"
}

make_clips "$work/CARD" "$count" "$kinds" 8
make_clips "$work/FRAMES" 10 mxf.whole 1200
first_bytes() { find "$work/CARD" -type f -exec head -qc 16 {} + >"$work/first"; }

for round in $(seq "$rounds"); do
    drop_caches
    first=$(seconds first_bytes)
    drop_caches
    a=$(took "$work/CARD" "$count" "$healthy")
    b=$(took "$work/CARD" "$count" "$healthy")
    echo "$a" >>"$work/cold"
    echo "$b" >>"$work/warm"
    bytes=$(awk '{ print $5 }' "$work/figures")
    drop_caches
    c=$(took "$work/FRAMES" 10 10)
    d=$(took "$work/FRAMES" 10 10)
    echo "round $round: first bytes alone $first s, cold $a s, warm $b s, $bytes bytes;" \
        "10 clips of 1,200 pieces: cold $c s, warm $d s, $(awk '{ print $5 }' "$work/figures") bytes" >&2
done
status=0
verdict "$count clips in seconds, cold" "$(median <"$work/cold")" 2 at-most || status=1
verdict "$count clips in seconds, warm" "$(median <"$work/warm")" 2 at-most || status=1
verdict "bytes read of a thousand clips" "$((bytes * 1000 / count))" 1000000 at-most || status=1
exit $status
