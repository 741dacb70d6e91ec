#include "hosts/report/ViewerScript.h"

#include "base/Numbers.h"

#include "hosts/report/Contents.h"
#include "hosts/report/PlacedModels.h"

#include "formats/files/ReplaceFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>

using Json = nlohmann::ordered_json;

namespace report {

namespace {

constexpr std::size_t maxModels = 20;

constexpr std::array<const char *, 8> colours{"#d1495b", "#2e86ab", "#edae49", "#3f8f5f",
                                              "#8e6bbf", "#e07b39", "#4fb3bf", "#b0557f"};

std::string PathOf(const std::string &file) {
    return std::filesystem::absolute(file).lexically_normal().string();
}

/// A model as the viewer is to open it.
struct OpenedModel {
    std::string name, file;
    std::vector<std::string> chains; ///< that are kept
    std::optional<ModelPose> pose;   ///< none for what was in place before
    std::string colour;
    bool isShown = true;
};

struct Scene {
    std::string title;
    std::string map; ///< empty where its file is not the one in which the places lie
    double level = 0;
    std::vector<OpenedModel> models;
};

std::vector<std::string> NamesOf(const std::vector<const VARNO::Chain *> &chains) {
    std::vector<std::string> names;
    for (const VARNO::Chain *chain : chains)
        names.push_back(chain->GetName());
    return names;
}

/// Comments end with their line.
std::string OneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c >= 0 && c < ' '; }, ' ');
    return text;
}

Scene SceneOf(const Contents &contents, const Sources &sources) {
    const PlacedModels placed(contents, sources);
    Scene scene{.title = OneLine(contents.program + ": " + contents.title + ". " + contents.statement),
                .map = contents.isMirrored ? sources.mirroredMap : contents.map,
                .level = contents.isInverted ? -placed.Level() : placed.Level(),
                .models = {}};
    const bool anyFound = std::ranges::any_of(contents.rows, &Row::isFound);
    for (const Row &row : contents.rows) {
        const ReportedModel *model = placed.ModelOf(row);
        if (!model || scene.models.size() == maxModels)
            continue;
        std::string name = row.name;
        std::ranges::replace(name, ' ', '_');
        scene.models.push_back({name, model->file, NamesOf(model->chains), row.pose,
                                colours[scene.models.size() % colours.size()],
                                anyFound ? row.isFound : scene.models.empty()});
    }
    for (const ReportedModel &fixed : sources.fixed)
        scene.models.push_back({"fixed_" + std::to_string(&fixed - sources.fixed.data() + 1), fixed.file,
                                NamesOf(fixed.chains), std::nullopt, "#9aa3ad"});
    return scene;
}

/// With a decimal point: PyMOL takes whole numbers in a matrix for something else.
std::string Number(double number) {
    return base::PlainFixed(number, 6);
}

/// Row by row, three rows of four numbers.
std::string MatrixText(const ModelPose &pose, const char *separator) {
    const placement::Matrix r = MatrixOf(pose.rotation);
    const std::array<double, 3> t{pose.translation.x, pose.translation.y, pose.translation.z};
    std::string text;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            text += Number(r[3 * row + column]) + separator;
        text += Number(t[row]) + (row < 2 ? separator : "");
    }
    return text;
}

bool IsPlain(const std::string &name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

/// The names joined; empty where a viewer's language could not tell one of them.
std::string Joined(const std::vector<std::string> &names, const char *separator) {
    std::string text;
    for (const std::string &name : names) {
        if (!IsPlain(name))
            return {};
        text += (text.empty() ? "" : separator) + name;
    }
    return text;
}

/// A text between quotes as Python, and ChimeraX, read it.
std::string Quoted(const std::string &text) {
    std::string quoted = "'";
    for (const char character : text)
        if (character == '\\' || character == '\'')
            quoted += std::string("\\") + character;
        else if (character == '\n')
            quoted += "\\n";
        else
            quoted += character;
    return quoted + '\'';
}

void WriteChimeraX(std::ostream &out, const Scene &scene) {
    out << "# " << scene.title << '\n';
    if (scene.map.empty())
        out << "# The places lie in the mirrored map, which is in no file: --mirrored-map writes it.\n";
    else
        out << "open " << Quoted(PathOf(scene.map)) << " id 1\nvolume #1 style surface level "
            << Number(scene.level) << " color #9db7d5\ntransparency #1 50\n";
    for (std::size_t i = 0; i < scene.models.size(); ++i) {
        const OpenedModel &model = scene.models[i];
        const std::string id = "#" + std::to_string(i + 2);
        out << "open " << Quoted(PathOf(model.file)) << " id " << i + 2 << " name " << model.name << '\n';
        if (const std::string chains = Joined(model.chains, ","); !chains.empty())
            out << "delete " << id << " & ~" << id << '/' << chains << '\n';
        if (model.pose)
            out << "view matrix models " << id << ',' << MatrixText(*model.pose, ",") << '\n';
        out << "hide " << id << " atoms\ncartoon " << id << "\ncolor " << id << ' ' << model.colour << '\n';
        if (!model.isShown)
            out << "hide " << id << " models\n";
    }
    out << "view\n";
}

void WritePymol(std::ostream &out, const Scene &scene) {
    out << "# " << scene.title << "\npython\n";
    if (scene.map.empty())
        out << "# The places lie in the mirrored map, which is in no file: --mirrored-map writes it.\n";
    else
        out << "cmd.set('normalize_ccp4_maps', 0)\n# This format's reader takes the origin where it is given.\n"
            << "cmd.load(" << Quoted(PathOf(scene.map)) << ", 'map', format='mrc')\n"
            << "cmd.isosurface('density', 'map', " << Number(scene.level)
            << ")\ncmd.color('0x9db7d5', 'density')\ncmd.set('transparency', 0.5, 'density')\n";
    for (const OpenedModel &model : scene.models) {
        const std::string name = Quoted(model.name);
        out << "cmd.load(" << Quoted(PathOf(model.file)) << ", " << name << ")\n";
        if (const std::string chains = Joined(model.chains, "+"); !chains.empty())
            out << "cmd.remove('" << model.name << " and not chain " << chains << "')\n";
        if (model.pose)
            out << "cmd.transform_selection(" << name << ", [" << MatrixText(*model.pose, ", ")
                << ", 0.0, 0.0, 0.0, 1.0], homogenous=1)\n";
        out << "cmd.show_as('cartoon', " << name << ")\ncmd.color('0x" << model.colour.substr(1) << "', "
            << name << ")\n";
        if (!model.isShown)
            out << "cmd.disable(" << name << ")\n";
    }
    out << "cmd.orient()\npython end\n";
}

} // namespace

bool IsViewerScript(const std::string &file) {
    return file.ends_with(".cxc") || file.ends_with(".pml");
}

void WriteViewerScript(const std::string &file, const std::string &record, const Sources &sources) {
    const Scene scene = SceneOf(ContentsOf(Json::parse(record)), sources);
    formats::ReplaceFile(
        file, [&](std::ostream &out) { (file.ends_with(".cxc") ? WriteChimeraX : WritePymol)(out, scene); });
}

} // namespace report
