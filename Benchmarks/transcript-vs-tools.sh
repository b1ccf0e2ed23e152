#!/usr/bin/env bash
# A transcript of a talk of three voices beside the bare tools with the same arguments: ffmpeg for
# the sound and for each still, python for the voices, whisper-cli for the words. Needs what
# Scripts/install-transcript sets up; ends with 77 without it.
. "$(dirname "$0")/common.sh"

tools=${KELDO_TEST_TRANSCRIPT:-${XDG_CACHE_HOME:-$HOME/.cache}/keldobay-transcript}
[ -x "$tools/keldobay/bin/whisper-cli" ] || { echo "no speech tools in $tools" >&2; exit 77; }
export XDG_DATA_HOME=$tools
rounds=$(size 3 1)

talk() {
    ffmpeg -nostdin -v error \
        -f lavfi -i "flite=text='Good morning. The generator is running and the lights are ready.':voice=slt" \
        -f lavfi -i "flite=text='Then we can start with the first shot before the sun comes up.':voice=rms" \
        -f lavfi -i "flite=text='Please wait for me. I still have to change the battery of the camera.':voice=awb" \
        -filter_complex "[0]apad=pad_dur=0.7[a];[1]apad=pad_dur=0.7[b];[2]apad=pad_dur=0.7[c];[a][b][c]concat=n=3:v=0:a=1,aresample=48000" \
        "$work/talk.wav"
    ffmpeg -nostdin -v error -f lavfi -i "testsrc2=size=1280x720:rate=25" -stream_loop -1 \
        -i "$work/talk.wav" -t "$(size 300 14)" -c:v mpeg4 -c:a pcm_s16le "$work/Talk.mov"
}

# A stand-in that notes each call of a tool, keeps the script that python is given, and does it.
stand_in() {
    cat >"$work/$1" <<SCRIPT
#!/usr/bin/env bash
printf '%s\0' "$2" "\$@" >"$work/calls/\$(date +%s%N)"
[ "$1" != python ] || cp "\$1" "$work/script.py"
exec "$2" "\$@"
SCRIPT
    chmod +x "$work/$1"
}

ours() { "$bin/example-transcript" "$work/Talk.mov" "$work/out" 3; }

noted() {
    FFMPEG_PATH=$work/ffmpeg KELDO_WHISPER_CLI=$work/whisper KELDO_PYTHON=$work/python ours
}

# The same calls again. Their files were temporary: the folders are made anew.
peer() {
    local call argument
    for call in "$work"/calls/*; do
        mapfile -d '' argument <"$call"
        case "${argument[0]}" in
            */python3) argument[1]=$work/script.py ;;
            *) mkdir -p "$(dirname "${argument[-1]}")" ;;
        esac
        "${argument[@]}" </dev/null
    done
}

mkdir "$work/calls" "$work/tmp"
export TMPDIR=$work/tmp
talk
stand_in ffmpeg "$(command -v ffmpeg)"
stand_in whisper "$tools/keldobay/bin/whisper-cli"
stand_in python "$tools/keldobay/python/bin/python3"
noted >/dev/null 2>&1
export KELDO_WHISPER_CLI=$tools/keldobay/bin/whisper-cli KELDO_PYTHON=$tools/keldobay/python/bin/python3
for round in $(seq "$rounds"); do
    a=$(seconds ours 2>/dev/null)
    b=$(seconds peer 2>/dev/null)
    divide "$a" "$b" >>"$work/ratios"
    echo "round $round: $a s, the bare tools $b s in $(ls "$work/calls" | wc -l) calls" >&2
done
verdict "transcript / bare tools" "$(median <"$work/ratios")" 1.05 at-most
