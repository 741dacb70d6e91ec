#include "document/Document.h"

#include "document/Nodes.h"
#include "document/UndoSteps.h"

#include "DataAdder.h"
#include "DataMaker.h"

#include <algorithm>
#include <iterator>

using namespace VARNO;

namespace desktop {

namespace {

constexpr int maxUndoSteps = 50;

} // namespace

Document::Document() {
    m_undo.setUndoLimit(maxUndoSteps);
    Space::instance()->Changes().Subscribe(this);
    TakeIn(Tops());
}

Document::~Document() {
    Select({});
    Space::instance()->Changes().Unsubscribe(this);
}

QString Document::Add(FileContent file) {
    const DataAdder<Space> batch(Space::instance());
    if (!batch.MayAdd())
        return QString::fromStdString(file.file) + ": the model accepts no additions at present; try again";
    Compound *top = nullptr;
    if (file.structure)
        top = DataMaker::addClump(std::move(file.structure));
    else
        top = DataMaker::addGrid(nullptr, std::move(file.map));
    m_files[top] = {file.file};
    if (auto *map = dynamic_cast<Grid *>(top)) {
        m_maps[map] = {{.colour = DistinctColour(m_colours++)}, file.statistics};
        m_shown[map] = true;
    }
    return {};
}

bool Document::Make(const QString &what, const std::function<void()> &make) {
    const Nodes before = Tops();
    {
        const DataAdder<Space> batch(Space::instance());
        if (!batch.MayAdd())
            return false;
        make();
    }
    Nodes made = Tops();
    std::erase_if(made, [&](Compound *node) { return std::ranges::count(before, node) > 0; });
    m_undo.push(new AdditionStep(what, made));
    return true;
}

void Document::Remove(const Nodes &nodes) {
    Nodes attached = Uppermost(nodes);
    std::erase_if(attached, [](const Compound *node) { return !node->IsAttached(); });
    if (!attached.empty())
        m_undo.push(new RemovalStep(attached.size() == 1
                                        ? "remove " + NameOf(attached.front())
                                        : "remove " + Counted(qsizetype(attached.size()), "item"),
                                    attached, RemovalCount(attached)));
}

std::function<void(int)> Document::RemovalCount(const Nodes &removed) {
    Nodes changed;
    for (Compound *node : removed)
        if (Compound *top = TopOf(node); top != node)
            changed.push_back(top);
    return [this, changed](int by) {
        for (const Compound *top : changed)
            if (const auto file = m_files.find(top); file != m_files.end())
                file->second.removals += by;
    };
}

void Document::Clear() {
    m_undo.clear();
    for (Compound *top : Tops())
        Space::instance()->Remove(top);
}

Document::Nodes Document::Tops() const {
    return Below(Space::instance());
}

bool Document::IsShown(const Compound *drawn) const {
    const auto found = m_shown.find(drawn);
    return found != m_shown.end() && found->second;
}

void Document::SetShown(const Nodes &nodes, bool shown) {
    Nodes changed;
    for (Compound *node : nodes)
        for (Compound *drawn : Drawn(node))
            if (std::exchange(m_shown[drawn], shown) != shown)
                changed.push_back(drawn);
    if (!changed.empty())
        emit shownChanged(changed);
}

MapLook Document::LookOf(const Grid *map) const {
    const auto found = m_maps.find(map);
    return found == m_maps.end() ? MapLook() : found->second.look;
}

void Document::SetLook(Grid *map, const MapLook &look) {
    if (std::exchange(m_maps[map].look, look) != look)
        emit lookChanged(map);
}

formats::MapStatistics Document::StatisticsOf(const Grid *map) const {
    const auto found = m_maps.find(map);
    if (found == m_maps.end())
        return {};
    auto &statistics = found->second.statistics;
    if (!statistics)
        statistics = formats::StatisticsOf(map->Values());
    return *statistics;
}

ChainLook Document::LookOfChain(const Compound *chain) const {
    const auto found = m_chains.find(chain);
    return found == m_chains.end() ? ChainLook() : found->second;
}

void Document::SetLookOfChain(Compound *chain, const ChainLook &look) {
    if (std::exchange(m_chains[chain], look) != look)
        emit lookChanged(chain);
}

void Document::Select(const Nodes &nodes) {
    for (Compound *node : m_flagged)
        node->SetSelected(false);
    m_flagged = nodes;
    m_selection = nodes;
    for (Compound *node : nodes)
        if (dynamic_cast<Clump *>(node) || dynamic_cast<Molecule *>(node)) {
            const Nodes drawn = Drawn(node);
            m_flagged.insert(m_flagged.end(), drawn.begin(), drawn.end());
        }
    for (Compound *node : m_flagged)
        node->SetSelected(true);
    emit selectionChanged();
}

std::string Document::FileOf(const Compound *top) const {
    const auto found = m_files.find(top);
    return found == m_files.end() || found->second.removals != 0 ? std::string() : found->second.name;
}

void Document::SetSaved(const Compound *top, const std::string &file) {
    m_files[top] = {file};
}

Document::Nodes Document::Unsaved() const {
    Nodes unsaved = Tops();
    std::erase_if(unsaved, [&](const Compound *top) {
        return !dynamic_cast<const Clump *>(top) || !FileOf(top).empty();
    });
    return unsaved;
}

void Document::Notify(const DataPointBase &notice) {
    if (notice.GetActionState() == Publisher::Removal) {
        for (Compound *node : notice.GetNodes())
            LetGo(node);
        return;
    }
    const Nodes uppermost = Uppermost(notice.GetNodes());
    TakeIn(uppermost);
    emit added(uppermost);
    Nodes fresh;
    std::ranges::copy_if(uppermost, std::back_inserter(fresh),
                         [this](const Compound *node) { return m_known.insert(node).second; });
    if (!fresh.empty())
        emit arrived(fresh);
}

void Document::TakeIn(const Nodes &nodes) {
    for (Compound *node : nodes)
        for (Compound *drawn : Drawn(node))
            if (auto *map = dynamic_cast<Grid *>(drawn))
                TakeIn(map);
            else
                m_shown.try_emplace(drawn, true);
}

/// A map that no file holds is an aid of a plug-in, hidden at first.
void Document::TakeIn(Grid *map) {
    m_shown.try_emplace(map, false);
    const auto [place, isNew] = m_maps.try_emplace(map);
    if (isNew)
        place->second.look = {.level = 1, .colour = DistinctColour(m_colours++)};
}

void Document::LetGo(Compound *node) {
    DropFromSelection();
    emit removed(node);
}

void Document::DropFromSelection() {
    Nodes left = m_selection;
    if (std::erase_if(left, [](const Compound *node) { return !node->IsAttached(); }) > 0)
        Select(left);
}

} // namespace desktop
