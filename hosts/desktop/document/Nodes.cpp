#include "document/Nodes.h"

#include "Atom.h"
#include "Collect.h"
#include "Group.h"
#include "Space.h"

#include <QLocale>
#include <QStringList>

#include <unordered_set>

using namespace VARNO;

namespace desktop {

std::vector<Compound *> Below(const Compound *node) {
    std::vector<Compound *> nodes;
    const auto take = [&](auto begin, auto end) {
        std::copy_if(begin, end, std::back_inserter(nodes), [](const Compound *one) { return one; });
    };
    take(node->ChildBegin(), node->ChildEnd());
    take(node->PartBegin(), node->PartEnd());
    return nodes;
}

bool IsDrawnAsChain(const Compound *node) {
    const auto *molecule = dynamic_cast<const Molecule *>(node);
    return dynamic_cast<const Chain *>(node) || (molecule && molecule->HoldsResidues());
}

std::vector<Compound *> Drawn(Compound *node) {
    if (IsDrawnAsChain(node) || dynamic_cast<Grid *>(node))
        return {node};
    std::vector<Compound *> drawn;
    if (!dynamic_cast<Group *>(node) && !dynamic_cast<Atom *>(node))
        for (Compound *below : Below(node)) {
            const std::vector<Compound *> some = Drawn(below);
            drawn.insert(drawn.end(), some.begin(), some.end());
        }
    return drawn;
}

Compound *TopOf(Compound *node) {
    while (node && node->GetParent() != Space::instance())
        node = node->GetParent();
    return node;
}

std::vector<Compound *> Uppermost(const std::vector<Compound *> &nodes) {
    const std::unordered_set<const Compound *> given(nodes.begin(), nodes.end());
    std::unordered_set<const Compound *> taken;
    std::vector<Compound *> uppermost;
    for (Compound *node : nodes) {
        const Compound *above = node->GetParent();
        while (above && !given.contains(above))
            above = above->GetParent();
        if (!above && taken.insert(node).second)
            uppermost.push_back(node);
    }
    return uppermost;
}

QString NameOf(const Compound *node) {
    QString label = QString::fromStdString(node->GetLabel());
    const auto *chain = dynamic_cast<const Chain *>(node);
    if (!chain)
        return label;
    const QString name = label.trimmed().isEmpty() ? QString("chain without a name") : "chain " + label;
    return chain->IsPolymer() ? name : name + ", ligands and water";
}

namespace {

QString Short(double number) {
    return QString::number(number, 'g', 4);
}

QString ContentOfGrid(const Grid &grid) {
    const auto &n = grid.Dimensions();
    const auto &s = grid.Spacing();
    const QString size = QString("%1 × %2 × %3").arg(n[0]).arg(n[1]).arg(n[2]);
    if (s[0] == s[1] && s[1] == s[2])
        return size + ", " + Short(double(s[0])) + " Å";
    return size +
           QString(", %1 × %2 × %3 Å").arg(Short(double(s[0])), Short(double(s[1])), Short(double(s[2])));
}

} // namespace

QString ContentOf(const Compound *node) {
    if (const auto *grid = dynamic_cast<const Grid *>(node))
        return ContentOfGrid(*grid);
    if (IsDrawnAsChain(node))
        return Counted(qsizetype(Below(node).size()), "residue");
    if (dynamic_cast<const Molecule *>(node))
        return Counted(qsizetype(Below(node).size()), "chain");
    return {};
}

QString PathOf(const Compound *node) {
    QStringList names;
    for (; node && node != Space::instance(); node = node->GetParent())
        // A file's only molecule has the file's name.
        if (names.isEmpty() || NameOf(node) != names.front())
            names.prepend(NameOf(node));
    return names.join(", ");
}

QString Counted(qsizetype count, const QString &noun) {
    return QLocale::c().toString(count) + ' ' + noun + (count == 1 ? "" : "s");
}

} // namespace desktop
