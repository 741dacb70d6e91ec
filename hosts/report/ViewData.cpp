#include "hosts/report/ViewData.h"

#include "hosts/report/Packing.h"
#include "hosts/report/SceneMap.h"

#include "Collect.h"
#include "formats/files/FileError.h"
#include "formats/structures/StructureFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <sstream>

using placement::Point;
using placement::VolumeView;
using Json = nlohmann::ordered_json;

namespace report {

namespace {

/// A map of so many voxels, and models of so many atoms, leave the page below 15 MB: about one byte for each
/// voxel and 30 for each atom once they are packed.
constexpr std::size_t maxVoxels = 1'500'000, maxAtoms = 250'000;

std::size_t AtomsOf(const ReportedModel &model) {
    std::vector<VARNO::Compound *> atoms;
    for (const VARNO::Chain *chain : model.chains)
        VARNO::GetAtoms(const_cast<VARNO::Chain *>(chain), atoms, true);
    return atoms.size();
}

/// The chains' atoms as mmCIF.
std::string StructureText(const ReportedModel &model) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    formats::PrintMmcif(text, model.file, {model.chains.begin(), model.chains.end()});
    return text.str();
}

/// Row by row, as the 3D view takes it.
Json MatrixJson(const ModelPose &pose) {
    const placement::Matrix r = MatrixOf(pose.rotation);
    const Point &t = pose.translation;
    return {r[0], r[1], r[2], t.x, r[3], r[4], r[5], t.y, r[6], r[7], r[8], t.z, 0, 0, 0, 1};
}

std::string SizeText(const std::array<std::size_t, 3> &count) {
    return std::to_string(count[0]) + " × " + std::to_string(count[1]) + " × " + std::to_string(count[2]);
}

std::string MapText(const SceneMap &scene, const VolumeView &map) {
    std::string text;
    if (scene.cropped != map.count)
        text += "Of the map's " + SizeText(map.count) + " voxels the " + SizeText(scene.cropped) +
                " around the places are shown. ";
    if (scene.step > 1)
        text += "Every " + SizeText({scene.step, scene.step, scene.step}) +
                " voxels are averaged to one, so that the page stays small. ";
    return text + "Density is kept in 255 steps. Drag to turn, wheel to zoom.";
}

/// The models of a view, each packed once.
class PackedModels {
public:
    /// The number of the model in the view, of which so many copies stand there; null where it is left out.
    Json Add(const ReportedModel &model, std::size_t copies) {
        m_atoms += copies * AtomsOf(model);
        try {
            if (m_atoms > maxAtoms)
                throw formats::FileError(model.file, "", "is too large for the 3D view");
            m_models.push_back({{"name", model.file}, {"structure", Base64(Gzip(StructureText(model)))}});
            return m_models.size() - 1;
        } catch (const formats::FileError &error) {
            m_leftOut += std::string(" Left out: ") + error.what() + '.';
            return nullptr;
        }
    }

    const Json &Models() const { return m_models; }
    const std::string &LeftOut() const { return m_leftOut; }

private:
    Json m_models = Json::array();
    std::size_t m_atoms = 0;
    std::string m_leftOut;
};

Box BoxAround(const Contents &contents, const PlacedModels &placed) {
    Box box;
    for (const Row &row : contents.rows)
        for (const Trace &trace : placed.TracesAt(row))
            for (const Point &point : trace)
                box.Include(point, aroundModel);
    return box;
}

} // namespace

ViewData MakeViewData(const Contents &contents, const Sources &sources, const PlacedModels &placed) {
    const SceneMap scene = ReduceMap(placed.Map(), BoxAround(contents, placed), maxVoxels);
    PackedModels models;
    std::map<std::string, Json> numbers;
    for (const ReportedModel &model : sources.models)
        if (const auto copies = std::ranges::count(contents.rows, model.file, &Row::model); copies > 0)
            numbers[model.file] = models.Add(model, contents.isTogether ? std::size_t(copies) : 1);
    Json fixed = Json::array(), rows = Json::array();
    for (const ReportedModel &model : sources.fixed)
        if (const Json number = models.Add(model, 1); !number.is_null())
            fixed.push_back(number);
    for (const Row &row : contents.rows)
        rows.push_back(
            {{"model", numbers[row.model]}, {"matrix", row.pose ? MatrixJson(*row.pose) : Json(nullptr)}});
    Json moved = nullptr;
    if (const auto map = placed.MovedMap())
        moved = {{"map", Base64(Gzip(ByteMap(ReduceMap(map->first, {}, maxVoxels).volume)))},
                 {"level", map->second}};
    const Json data{{"map", Base64(Gzip(ByteMap(scene.volume)))},
                    {"moved", moved},
                    {"level", placed.Level()},
                    {"mean", placed.Mean()},
                    {"deviation", placed.Deviation()},
                    {"together", contents.isTogether},
                    {"models", models.Models()},
                    {"fixed", fixed},
                    {"rows", rows}};
    return {.json = data.dump(-1, ' ', false, Json::error_handler_t::replace),
            .lowest = std::min(placed.Mean(), placed.Level()),
            .highest = std::max(double(std::ranges::max(scene.volume.values)), placed.Level()),
            .remarks = MapText(scene, placed.Map()) + models.LeftOut()};
}

} // namespace report
