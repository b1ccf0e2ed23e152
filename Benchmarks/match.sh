#!/usr/bin/env bash
# Sound matched to picture on a day of thousands of clips and as many recordings.
. "$(dirname "$0")/common.sh"

"$bin/match-run" "$(size 5000 100)" >"$work/figures"
cat "$work/figures" >&2
verdict "match in seconds" "$(awk '$1 == "day" { print $2 }' "$work/figures")" 0.3 at-most
