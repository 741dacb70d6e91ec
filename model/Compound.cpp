#include "Compound.h"

#include "Residue.h"

#include <algorithm>

namespace VARNO {

Compound::~Compound() {
    for (Compound *node : m_below)
        delete node;
}

std::string Compound::GetLabel() const {
    return {};
}
char Compound::GetCode() const {
    return ' ';
}
std::string Compound::GetName() const {
    return {};
}
Vertex Compound::GetPosition() const {
    return {};
}
bool Compound::IsSelected() const {
    return m_selected;
}

bool Compound::HasSelected() const {
    return IsSelected() ||
           std::ranges::any_of(m_below, [](const Compound *node) { return node && node->HasSelected(); });
}

Compound *Compound::FindChild(const std::string &) const {
    return nullptr;
}
Compound::Iterator Compound::ChildBegin() const {
    return m_below.end();
}
Compound::Iterator Compound::ChildEnd() const {
    return m_below.end();
}
bool Compound::IsAttached() const {
    return m_parent && m_parent->IsAttached();
}
void Compound::Complete() {}

Compound::Iterator Compound::PartBegin() const {
    return IsComposite() ? m_below.end() : m_below.begin();
}
Compound::Iterator Compound::PartEnd() const {
    return m_below.end();
}

void Compound::Adopt(std::unique_ptr<Compound> node) {
    m_below.push_back(nullptr);
    node->m_parent = this;
    m_below.back() = node.release();
}

void Compound::AdoptAt(std::size_t place, std::unique_ptr<Compound> node) {
    const auto at = m_below.begin() + std::ptrdiff_t(std::min(place, m_below.size()));
    const auto room = m_below.insert(at, nullptr);
    node->m_parent = this;
    *room = node.release();
}

std::unique_ptr<Compound> Compound::Release(Compound *node) {
    const auto place = std::ranges::find(m_below, node);
    if (!node || place == m_below.end())
        return nullptr;
    m_below.erase(place);
    node->m_parent = nullptr;
    return std::unique_ptr<Compound>(node);
}

Compound *Composite::FindChild(const std::string &name) const {
    const auto found =
        std::ranges::find_if(Below(), [&](const Compound *node) { return node && node->GetName() == name; });
    return found == Below().end() ? nullptr : *found;
}

namespace {

char FirstCharacter(const std::string &text) {
    return text.empty() ? ' ' : text.front();
}

} // namespace

char Molecule::GetCode() const {
    return HoldsResidues() ? FirstCharacter(GetName()) : ' ';
}

bool Molecule::HoldsResidues() const {
    return std::ranges::any_of(Below(),
                               [](const Compound *node) { return dynamic_cast<const Residue *>(node); });
}

char Chain::GetCode() const {
    return FirstCharacter(GetName());
}

} // namespace VARNO
