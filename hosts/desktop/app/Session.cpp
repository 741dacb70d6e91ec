#include "app/Session.h"

#include "document/Nodes.h"

#include "formats/files/FileError.h"
#include "formats/files/ReplaceFile.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <ostream>

using namespace VARNO;

namespace desktop {

namespace {

constexpr const char *format = "varno session";

QJsonArray ArrayOf(const std::array<double, 3> &position) {
    return {position[0], position[1], position[2]};
}

std::array<double, 3> PositionOf(const QJsonValue &value, const std::array<double, 3> &otherwise) {
    const QJsonArray numbers = value.toArray();
    if (numbers.size() != 3)
        return otherwise;
    return {numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble()};
}

QJsonObject JsonOf(const MapLook &look) {
    return {{"level", look.level},     {"colour", look.colour.name()}, {"opacity", look.opacity},
            {"surface", look.surface}, {"sliceAxis", look.sliceAxis},  {"slice", look.slice}};
}

MapLook MapLookOf(const QJsonObject &json, MapLook look) {
    look.level = json["level"].toDouble(look.level);
    look.colour = QColor(json["colour"].toString(look.colour.name()));
    look.opacity = std::clamp(json["opacity"].toDouble(look.opacity), 0.0, 1.0);
    look.surface = json["surface"].toBool(look.surface);
    look.sliceAxis = std::clamp(json["sliceAxis"].toInt(look.sliceAxis), -1, 2);
    look.slice = std::clamp(json["slice"].toDouble(look.slice), 0.0, 1.0);
    return look;
}

QJsonObject JsonOf(const ChainLook &look) {
    return {{"style", look.style == ChainLook::Style::Tube ? "tube" : "ball and stick"},
            {"rainbow", look.rainbow},
            {"colour", look.colour.name()}};
}

ChainLook ChainLookOf(const QJsonObject &json, ChainLook look) {
    look.style = json["style"] == "ball and stick" ? ChainLook::Style::BallAndStick : ChainLook::Style::Tube;
    look.rainbow = json["rainbow"].toBool(look.rainbow);
    look.colour = QColor(json["colour"].toString(look.colour.name()));
    return look;
}

QJsonObject JsonOf(const Compound *drawn, const Document &document) {
    const auto *map = dynamic_cast<const Grid *>(drawn);
    QJsonObject json = map ? JsonOf(document.LookOf(map)) : JsonOf(document.LookOfChain(drawn));
    json["shown"] = document.IsShown(drawn);
    return json;
}

/// A node by its entry in the file, and by its number of what is drawn of it; null where it is none of them.
QJsonValue NameOfNode(const Compound *node, const std::vector<Compound *> &tops) {
    for (std::size_t entry = 0; entry < tops.size(); ++entry) {
        if (tops[entry] == node)
            return QJsonArray{qint64(entry)};
        const std::vector<Compound *> drawn = Drawn(tops[entry]);
        if (const auto place = std::ranges::find(drawn, node); place != drawn.end())
            return QJsonArray{qint64(entry), qint64(place - drawn.begin())};
    }
    return {};
}

/// A name that is one of a file, whatever the node is called.
QString FileNameOf(const Compound *top) {
    QString name = NameOf(top);
    for (QChar &c : name)
        if (!c.isLetterOrNumber() && c != '-' && c != '_' && c != '.')
            c = '_';
    return name.isEmpty() ? "unnamed" : name;
}

/// Writes what no file holds into a folder of its own, so that names that occur twice stay apart.
QString WriteBeside(const QString &folder, int number, Compound *top) {
    const QString own = folder + '/' + QString::number(number);
    if (!QDir().mkpath(own))
        throw formats::FileError(own.toStdString(), "", "the folder cannot be made");
    const auto *map = dynamic_cast<const Grid *>(top);
    QString file = own + '/' + FileNameOf(top) + (map ? ".mrc" : ".cif");
    if (map)
        formats::WriteMap(file.toStdString(), *map, top->GetName());
    else
        formats::WriteStructure(file.toStdString(), formats::StructureFormat::Mmcif, top);
    return file;
}

bool CanBeWritten(Compound *top) {
    const std::vector<Compound *> drawn = Drawn(top);
    return std::ranges::any_of(drawn, [](const Compound *one) {
        const auto *map = dynamic_cast<const Grid *>(one);
        return map ? !map->Values().empty() : !Below(one).empty();
    });
}

/// Gives what is drawn of a node, one after the other, the state that it was saved with.
void ApplyStates(const QJsonArray &states, Compound *top, Document &document) {
    const std::vector<Compound *> drawn = Drawn(top);
    for (std::size_t i = 0; i < std::min(drawn.size(), std::size_t(states.size())); ++i) {
        const QJsonObject state = states[qsizetype(i)].toObject();
        if (auto *map = dynamic_cast<Grid *>(drawn[i]))
            document.SetLook(map, MapLookOf(state, document.LookOf(map)));
        else
            document.SetLookOfChain(drawn[i], ChainLookOf(state, document.LookOfChain(drawn[i])));
        document.SetShown({drawn[i]}, state["shown"].toBool(true));
    }
}

QString FolderBeside(const std::string &file) {
    return QString::fromStdString(file) + ".files";
}

} // namespace

void SaveSession(const std::string &file, const Document &document, const SceneView &view,
                 const PlacePanel &place) {
    QJsonArray entries;
    std::vector<Compound *> tops;
    for (Compound *top : document.Tops()) {
        if (!CanBeWritten(top))
            continue;
        const std::string own = document.FileOf(top);
        QJsonArray drawn;
        for (const Compound *one : Drawn(top))
            drawn.append(JsonOf(one, document));
        const QString path = own.empty() ? WriteBeside(FolderBeside(file), int(entries.size()), top)
                                         : QFileInfo(QString::fromStdString(own)).absoluteFilePath();
        tops.push_back(top);
        entries.append(QJsonObject{{"file", path}, {"unsaved", own.empty()}, {"drawn", drawn}});
    }
    const Viewpoint viewpoint = view.GetViewpoint();
    const QJsonObject session{
        {"format", format},
        {"version", 1},
        {"entries", entries},
        {"place", place.State([&](const Compound *node) { return NameOfNode(node, tops); })},
        {"viewpoint", QJsonObject{{"position", ArrayOf(viewpoint.position)},
                                  {"focus", ArrayOf(viewpoint.focus)},
                                  {"up", ArrayOf(viewpoint.up)},
                                  {"scale", viewpoint.scale},
                                  {"perspective", viewpoint.perspective}}}};
    const QByteArray text = QJsonDocument(session).toJson();
    formats::ReplaceFile(file, [&](std::ostream &out) { out.write(text.data(), text.size()); });
}

SavedSession::SavedSession(const std::string &file) {
    QFile device(QString::fromStdString(file));
    if (!device.open(QIODevice::ReadOnly))
        throw formats::FileError(file, "", "cannot be read: " + device.errorString().toStdString());
    QJsonParseError error;
    m_json = QJsonDocument::fromJson(device.readAll(), &error).object();
    if (error.error != QJsonParseError::NoError)
        throw formats::FileError(file, "byte " + std::to_string(error.offset),
                                 error.errorString().toStdString());
    if (m_json["format"] != format)
        throw formats::FileError(file, "\"format\"",
                                 "is no session: \"" + m_json["format"].toString().toStdString() + '"');
    if (m_json["version"] != 1)
        throw formats::FileError(file, "\"version\"",
                                 "is of a later version: " + std::to_string(m_json["version"].toInt()));
    m_tops.resize(std::size_t(m_json["entries"].toArray().size()));
}

QStringList SavedSession::Files() const {
    QStringList files;
    for (const QJsonValue entry : m_json["entries"].toArray())
        files << entry["file"].toString();
    return files;
}

void SavedSession::Apply(Compound *top, Document &document) {
    const QString file = QString::fromStdString(document.FileOf(top));
    const QJsonArray entries = m_json["entries"].toArray();
    for (std::size_t number = 0; number < m_tops.size(); ++number) {
        const QJsonObject entry = entries[qsizetype(number)].toObject();
        if (m_tops[number] || entry["file"].toString() != file)
            continue;
        m_tops[number] = top;
        ApplyStates(entry["drawn"].toArray(), top, document);
        if (entry["unsaved"].toBool())
            document.SetSaved(top, "");
        return;
    }
}

void SavedSession::Apply(PlacePanel &place) const {
    place.Restore(m_json["place"].toObject(), [this](const QJsonValue &name) { return NodeOf(name); });
}

Compound *SavedSession::NodeOf(const QJsonValue &name) const {
    const auto entry = std::size_t(name[0].toInteger(-1));
    Compound *top = entry < m_tops.size() ? m_tops[entry] : nullptr;
    if (!top || name.toArray().size() < 2)
        return top;
    const std::vector<Compound *> drawn = Drawn(top);
    const auto number = std::size_t(name[1].toInteger(-1));
    return number < drawn.size() ? drawn[number] : nullptr;
}

Viewpoint SavedSession::GetViewpoint() const {
    const QJsonObject json = m_json["viewpoint"].toObject();
    Viewpoint viewpoint;
    viewpoint.position = PositionOf(json["position"], viewpoint.position);
    viewpoint.focus = PositionOf(json["focus"], viewpoint.focus);
    viewpoint.up = PositionOf(json["up"], viewpoint.up);
    viewpoint.scale = json["scale"].toDouble(viewpoint.scale);
    viewpoint.perspective = json["perspective"].toBool(viewpoint.perspective);
    return viewpoint;
}

void RemoveSession(const std::string &file) {
    QFile::remove(QString::fromStdString(file));
    QDir(FolderBeside(file)).removeRecursively();
}

} // namespace desktop
