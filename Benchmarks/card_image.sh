# The raw image of a card for the carving benchmarks: random bytes with $clips clips in it, 4 GiB in
# all. Made when this file is read; carve() scans it.

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

carve() {
    "$bin/carve-run" "$work/card.img" >"$work/figures" || return
    awk -v n="$clips" '$3 != n { print "found " $3 " clips"; exit 2 }' "$work/figures" || return
    awk '{ print $4 }' "$work/figures" >>"$work/peak"
}

make_clips
make_image
