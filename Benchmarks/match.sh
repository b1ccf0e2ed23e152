#!/usr/bin/env bash
# Sound matched to picture on a day of thousands of clips and as many recordings, and the memory
# that it takes where none of them has a time.
. "$(dirname "$0")/common.sh"

"$bin/match-run" "$(size 5000 100)" >"$work/figures"
cat "$work/figures" >&2
status=0
verdict "match in seconds" "$(awk '$1 == "day" { print $2 }' "$work/figures")" 0.3 at-most ||
    status=1
verdict "peak without times in MiB" "$(awk '$1 == "untimed" { print $4 }' "$work/figures")" 1024 \
    at-most || status=1
exit $status
