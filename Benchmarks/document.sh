#!/usr/bin/env bash
# A Word document of ten thousand lines of dialogue, zip included.
. "$(dirname "$0")/common.sh"

"$bin/document-run" "$(size 10000 100)" "$work/transcript.docx" >"$work/figures"
cat "$work/figures" >&2
verdict "document in seconds" "$(cut -d' ' -f1 "$work/figures")" 1 at-most
