#!/usr/bin/env bash
# Makes what the example fits from 1tii.pdb, as it is kept here: byte for byte on machines of one kind.
#
#   examples/make.sh [FOLDER [PROGRAM]]
#
# The files go to FOLDER (examples), PROGRAM is build/release/bin/morvanex.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folder=${1:-examples}
morvanex=${2:-build/release/bin/morvanex}

"$morvanex" simulate --model examples/1tii.pdb --resolution 8 --voxel 2.5 --noise 0.5 --seed 1 \
    --out "$folder/1tii_8A.mrc"
"$morvanex" build --results examples/displacement.txt --target examples/1tii.pdb --chain D --rank 1 \
    --out "$folder/1tii_D_displaced.pdb"
