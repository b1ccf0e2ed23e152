#!/usr/bin/env bash
# MD5 and SHA-256 in blocks of 1 MiB beside OpenSSL's own measurement of the same, in turns.
. "$(dirname "$0")/common.sh"

time=$(size 3 1)
status=0
for algorithm in md5 sha256; do
    for _ in $(seq "$(size 3 1)"); do
        ours=$("$bin/hash-speed" "$algorithm" "$time" 1048576)
        peer=$(openssl speed -mr -seconds "$time" -bytes 1048576 -evp "$algorithm" 2>"$work/said" |
            awk -F: '/^\+F:/ { print $NF }')
        divide "$ours" "$peer" >>"$work/$algorithm"
    done
    verdict "$algorithm / openssl speed" "$(median <"$work/$algorithm")" 0.95 at-least || status=1
done
exit $status
