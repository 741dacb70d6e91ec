# Root of the mean squared distance, in Å, between the CA atoms that one chain has in two PDB files, residue by residue;
# nothing is superposed.
#
#   awk -v chain=D -f rmsd.awk first.pdb second.pdb

substr($0, 1, 6) == "ATOM  " && substr($0, 13, 4) == " CA " && substr($0, 22, 1) == chain {
    residue = substr($0, 23, 5)
    if (FNR == NR) {
        x[residue] = substr($0, 31, 8)
        y[residue] = substr($0, 39, 8)
        z[residue] = substr($0, 47, 8)
    } else if (residue in x) {
        sum += (substr($0, 31, 8) - x[residue]) ^ 2 + (substr($0, 39, 8) - y[residue]) ^ 2 + \
               (substr($0, 47, 8) - z[residue]) ^ 2
        ++pairs
    }
}

END {
    if (!pairs) {
        print "rmsd.awk: no residue of chain " chain " is in both files" > "/dev/stderr"
        exit 1
    }
    printf "%.2f\n", sqrt(sum / pairs)
}
