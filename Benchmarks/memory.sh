#!/usr/bin/env bash
# The most memory that an offload takes: for one long file, and for each file of a large card.
. "$(dirname "$0")/common.sh"

few=$(size 10000 100)
many=$(size 50000 300)

# peak CARD: in KiB
peak() {
    "$bin/offload-run" "$1" A001 xxhash64 "$work/copy" | awk '{ print $4 }'
    rm -rf "$work/copy"
}

mkdir "$work/LONG"
truncate -s "$(size 4G 100M)" "$work/LONG/C0001.MXF"
long=$(peak "$work/LONG")
rm -rf "$work/LONG"

make_files "$work/FEW" "$few" 16
make_files "$work/MANY" "$many" 16
a=$(peak "$work/FEW")
b=$(peak "$work/MANY")
status=0
verdict "peak for one long file in MiB" "$(divide "$long" 1024)" 64 at-most || status=1
verdict "bytes of memory a file" "$(divide $(((b - a) * 1024)) $((many - few)))" 1160 at-most || status=1
exit $status
