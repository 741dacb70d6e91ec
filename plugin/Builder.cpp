#include "Builder.h"

#include "Parameters.h"

#include "Collect.h"
#include "DataMaker.h"

using namespace VARNO;

namespace {

constexpr float copiedBFactor = 100.0f;
constexpr char bondKind = 'N';

void CopyAtom(const Atom &atom, const Transform &pose, Compound *residue) {
    Vertex position = pose * atom.GetPosition();
    position.setValue(position[0], position[1], position[2], true);
    DataMaker::makeAtom(residue, atom.GetLabel(), atom.GetName(), atom.GetModelNumber(), position, 1,
                        atom.GetOrbital(), atom.GetCharge(), copiedBFactor);
}

Compound *CopyResidue(Residue &residue, const Transform &pose, Compound *molecule) {
    Compound *copy = DataMaker::makeGroup(molecule, residue.GetName(), residue.GetSeqId());
    std::vector<Compound *> atoms;
    GetAtoms(&residue, atoms, true);
    for (const Compound *atom : atoms)
        CopyAtom(dynamic_cast<const Atom &>(*atom), pose, copy);
    copy->Complete();
    return copy;
}

void AddBond(const Compound *previous, const Compound *next) {
    Compound *c = previous->FindChild("C"), *n = next->FindChild("N");
    if (c && n)
        DataMaker::makeBond(c, n, bondKind);
}

} // namespace

bool HasTarget() {
    const bool has = m_Target && m_Target->IsAttached();
    if (!has)
        qWarning(m_Target ? "The target is no longer in the model; nothing is built."
                          : "No target is chosen; nothing is built.");
    return has;
}

void BuildSolution(const SolutionScore &solution, int number) {
    const Transform pose(solution.rotation, solution.translation);
    Compound *clump =
        DataMaker::makeClump("MVX_" + m_Target->GetParent()->GetLabel() + "_" + std::to_string(number));
    Compound *molecule = DataMaker::makeMolecule(clump, m_Target->GetLabel());
    std::vector<Compound *> residues;
    GetResidues(m_Target, residues, true);
    const Compound *previous = nullptr;
    for (Compound *node : residues) {
        auto *residue = dynamic_cast<Residue *>(node);
        if (!residue)
            continue;
        const Compound *copy = CopyResidue(*residue, pose, molecule);
        if (previous)
            AddBond(previous, copy);
        previous = copy;
    }
    qDebug("Built solution %d.", number);
}
