#include "StructureFixture.h"

#include "Atom.h"
#include "Collect.h"
#include "Residue.h"
#include "Space.h"
#include "formats/files/FileError.h"

#include <cstdio>

using namespace formats;
using namespace VARNO;

namespace {

std::string Joined(const Compound *node, const std::string &separator,
                   const std::function<std::string(const Compound *)> &text) {
    std::string joined;
    for (auto it = node->ChildBegin(); it != node->ChildEnd(); ++it)
        joined += (it == node->ChildBegin() ? "" : separator) + text(*it);
    return joined;
}

std::string OutlineOfResidue(const Compound *residue) {
    return residue->GetLabel() + '(' + Joined(residue, " ", [](const Compound *a) { return a->GetName(); }) +
           ')';
}

std::string OutlineOfChain(const Compound *node) {
    const auto *chain = dynamic_cast<const Chain *>(node);
    if (!chain)
        return OutlineOfResidue(node);
    return chain->GetName() + (chain->IsPolymer() ? ": " : " other: ") + Joined(chain, " ", OutlineOfResidue);
}

} // namespace

Clump *StructureFixture::Read(const std::string &text, const std::string &name) {
    m_report = {};
    return ReadStructure(m_folder.Write(name, text), &m_report);
}

std::string StructureFixture::Outlined(const std::string &text, const std::string &name) {
    return Outline(Read(text, name));
}

std::string StructureFixture::ErrorOf(const std::string &text, const std::string &name) {
    const auto before = Space::instance()->PartEnd() - Space::instance()->PartBegin();
    std::string error = "none";
    try {
        Read(text, name);
    } catch (const FileError &thrown) {
        error = thrown.what();
        EXPECT_EQ(Space::instance()->PartEnd() - Space::instance()->PartBegin(), before);
        EXPECT_TRUE(error.starts_with(m_folder.Path() + '/')) << error;
        error.erase(0, m_folder.Path().size() + 1);
    }
    return error;
}

std::string Outline(const Compound *node) {
    if (dynamic_cast<const Chain *>(node))
        return OutlineOfChain(node);
    if (dynamic_cast<const Clump *>(node))
        return Joined(node, " | ", Outline);
    return Joined(node, "; ", OutlineOfChain);
}

std::string AtomList(Compound *node) {
    std::vector<Compound *> atoms;
    GetAtoms(node, atoms, true);
    std::string list;
    for (Compound *compound : atoms) {
        const auto *atom = dynamic_cast<Atom *>(compound);
        const Vertex p = atom->GetPosition();
        char line[200];
        std::snprintf(line, sizeof line, "%s|%s|%s|%s|%a %a %a|%d|%g|%g|%s\n",
                      atom->GetParent()->GetParent()->GetLabel().c_str(),
                      atom->GetParent()->GetLabel().c_str(), atom->GetName().c_str(),
                      atom->GetLabel().c_str(), double(p[0]), double(p[1]), double(p[2]), p.IsValid(),
                      double(atom->GetCharge()), double(atom->GetBFactor()), atom->GetModelNumber().c_str());
        list += line;
    }
    return list;
}

Compound *At(Compound *node, std::initializer_list<std::string> path) {
    for (const std::string &name : path) {
        node = node->FindChild(name);
        if (!node)
            throw std::runtime_error("no " + name);
    }
    return node;
}
