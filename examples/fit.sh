#!/usr/bin/env bash
# Fits chain D of 1TII, displaced, into the map of the whole complex, and compares the best model with the truth.
#
#   examples/fit.sh [FOLDER [PROGRAM]]
#
# The results go to FOLDER (build/example), PROGRAM is build/release/bin/morvanex.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folder=${1:-build/example}
morvanex=${2:-build/release/bin/morvanex}
mkdir -p "$folder"

rmsd() {
    awk -v chain=D -f examples/rmsd.awk examples/1tii.pdb "$1"
}

"$morvanex" fit \
    --map examples/1tii_8A.mrc \
    --target examples/1tii_D_displaced.pdb \
    --solid examples/1tii.pdb --solid-chains A,C,E,F,G,H \
    --axis 3 --rotation-step 10 --translation-steps 15 --translation-step 2 --keep 100 --inclusion-distance 100 \
    --results "$folder/results.txt" --json "$folder/results.json" \
    --models 3 --model-prefix "$folder/model-"

echo
echo "Chain D, distance from its true place (RMSD of the CA atoms):"
echo "  displaced, before the fit   $(rmsd examples/1tii_D_displaced.pdb) Å"
echo "  best model of the fit       $(rmsd "$folder/model-1.pdb") Å"
