#include "hosts/report/Report.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/report/Assets.h"
#include "hosts/report/Contents.h"
#include "hosts/report/Markup.h"
#include "hosts/report/Packing.h"
#include "hosts/report/Page.h"
#include "hosts/report/SceneMap.h"
#include "hosts/report/Slices.h"

#include "Collect.h"
#include "formats/files/FileError.h"
#include "formats/files/ReplaceFile.h"
#include "formats/structures/StructureFile.h"

#include <nlohmann/json.hpp>

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <map>
#include <ostream>
#include <sstream>

using placement::Point;
using placement::Volume;
using placement::VolumeView;
using Json = nlohmann::ordered_json;

namespace report {

namespace {

constexpr std::size_t maxPictures = 10;
constexpr double aroundModel = 25; ///< Å of the map that are shown around a model
/// A map of so many voxels, and models of so many atoms, leave the page below 15 MB: about one byte for each
/// voxel and 30 for each atom once they are packed.
constexpr std::size_t maxVoxels = 1'500'000, maxAtoms = 250'000;

VolumeView ViewOf(const VARNO::Grid &map) {
    const auto &size = map.Dimensions();
    const auto &voxel = map.Spacing();
    const auto &origin = map.Origin();
    return {{size[0], size[1], size[2]},
            {double(voxel[0]), double(voxel[1]), double(voxel[2])},
            {double(origin[0]), double(origin[1]), double(origin[2])},
            map.Values()};
}

/// A copy with the voxels in the opposite order along x.
Volume Mirrored(const VolumeView &map) {
    Volume mirrored{map.count, map.spacing, map.origin, {}};
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j) {
            const std::span<const float> row = map.Row(j, k);
            mirrored.values.insert(mirrored.values.end(), row.rbegin(), row.rend());
        }
    return mirrored;
}

Trace TraceOf(const VARNO::Chain *chain) {
    std::vector<VARNO::Compound *> residues;
    VARNO::GetResidues(const_cast<VARNO::Chain *>(chain), residues, true);
    Trace trace;
    for (const VARNO::Compound *residue : residues)
        if (const VARNO::Vertex at = residue->GetPosition(); at.IsValid())
            trace.push_back({double(at[0]), double(at[1]), double(at[2])});
    return trace;
}

std::vector<Trace> TracesOf(const ReportedModel &model) {
    std::vector<Trace> traces;
    std::ranges::transform(model.chains, std::back_inserter(traces), TraceOf);
    return traces;
}

std::vector<Trace> Moved(std::vector<Trace> traces, const ModelPose &pose) {
    const placement::Matrix rotation = MatrixOf(pose.rotation);
    for (Trace &trace : traces)
        for (Point &point : trace)
            point = rotation * point + pose.translation;
    return traces;
}

Box BoxOf(const std::vector<Trace> &traces) {
    Box box;
    for (const Trace &trace : traces)
        for (const Point &point : trace)
            box.Include(point, 0);
    return box;
}

std::size_t AtomsOf(const ReportedModel &model) {
    std::vector<VARNO::Compound *> atoms;
    for (const VARNO::Chain *chain : model.chains)
        VARNO::GetAtoms(const_cast<VARNO::Chain *>(chain), atoms, true);
    return atoms.size();
}

struct Statistics {
    double mean = 0, deviation = 0;
};

Statistics StatisticsOf(const VolumeView &map) {
    double sum = 0, squares = 0;
    for (const float value : map.values) {
        sum += double(value);
        squares += double(value) * double(value);
    }
    const double number = double(std::max<std::size_t>(map.values.size(), 1)), mean = sum / number;
    return {mean, std::sqrt(std::max(0.0, squares / number - mean * mean))};
}

/// The value of the nearest voxel; nothing outside of the map.
std::optional<float> ValueNear(const VolumeView &map, const Point &point) {
    const Point from = point - map.origin;
    const std::array<double, 3> at{from.x / map.spacing[0], from.y / map.spacing[1], from.z / map.spacing[2]};
    std::array<std::size_t, 3> voxel{};
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double nearest = std::round(at[axis]);
        if (!(nearest >= 0 && nearest <= double(map.count[axis] - 1)))
            return std::nullopt;
        voxel[axis] = std::size_t(nearest);
    }
    return map.values[map.Index(voxel[0], voxel[1], voxel[2])];
}

/// A level that encloses nine residues in ten, where that stands out of the background at all.
double LevelFor(const VolumeView &map, const Statistics &statistics, const std::vector<Trace> &traces) {
    std::vector<float> values;
    for (const Trace &trace : traces)
        for (const Point &point : trace)
            if (const std::optional<float> value = ValueNear(map, point))
                values.push_back(*value);
    const double low = statistics.mean + statistics.deviation;
    if (values.empty())
        return low + statistics.deviation;
    const auto tenth = values.begin() + std::ptrdiff_t(values.size() / 10);
    std::ranges::nth_element(values, tenth);
    return std::max(double(*tenth), low);
}

std::string ClassOf(Cells cells) {
    return cells == Cells::Numbers ? "number" : cells == Cells::Words ? "words" : "confidence";
}

std::string LevelText(double level) {
    return QString::number(level, 'g', 3).toStdString();
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

std::string Tag(const std::string &name, const std::string &content) {
    return '<' + name + '>' + content + "</" + name + ">\n";
}

/// A report in the making: the contents, and what they speak of.
class Composer {
public:
    Composer(const Contents &contents, const Sources &sources, const std::optional<Viewer> &viewer)
        : m_contents(contents)
        , m_sources(sources)
        , m_viewer(viewer) {
        if (contents.isMirrored && !sources.movedMap)
            m_mirrored = Mirrored(ViewOf(*sources.map));
        m_statistics = StatisticsOf(Map());
        m_level = LevelFor(Map(), m_statistics, TracesAt(FirstPlace()));
    }

    std::string Html() {
        Page page{.title = m_contents.title + " – Morvanex report", .body = {}, .data = {}, .scripts = {}};
        const bool hasView = m_viewer.has_value();
        page.scripts.push_back({tableScript, {}});
        if (hasView) {
            page.scripts.push_back({m_viewer->script, m_viewer->notices});
            page.scripts.push_back({viewScript, {}});
        }
        const Json scene = hasView ? SceneJson() : Json::object();
        page.data = scene.dump(-1, ' ', false, Json::error_handler_t::replace);
        page.body =
            Head() + "<main>\n" + Table() + View() + Pictures() + Scores() + Done() + "</main>\n" + Foot();
        return HtmlOf(page);
    }

private:
    VolumeView Map() const { return m_mirrored ? VolumeView(*m_mirrored) : ViewOf(*m_sources.map); }

    const ReportedModel *ModelOf(const Row &row) const {
        const auto found = std::ranges::find(m_sources.models, row.model, &ReportedModel::file);
        return found == m_sources.models.end() ? nullptr : &*found;
    }

    std::vector<Trace> TracesAt(const Row *row) const {
        const ReportedModel *model = row && row->pose ? ModelOf(*row) : nullptr;
        return model ? Moved(TracesOf(*model), *row->pose) : std::vector<Trace>();
    }

    const Row *FirstPlace() const {
        const auto found =
            std::ranges::find_if(m_contents.rows, [](const Row &row) { return row.pose.has_value(); });
        return found == m_contents.rows.end() ? nullptr : &*found;
    }

    std::string Head() const {
        const char *kind = m_contents.tone == Tone::Sure     ? "sure"
                           : m_contents.tone == Tone::Unsure ? "unsure"
                                                             : "plain";
        const char *mark = m_contents.tone == Tone::Sure     ? "<b aria-hidden=\"true\">✓</b> "
                           : m_contents.tone == Tone::Unsure ? "<b aria-hidden=\"true\">?</b> "
                                                             : "";
        std::string head = "<p class=\"kind\">Morvanex report</p>\n" + Tag("h1", Escaped(m_contents.title)) +
                           "<p class=\"verdict " + kind + "\">" + mark + "<span>" +
                           Escaped(m_contents.statement) + "</span></p>\n";
        if (!m_contents.remarks.empty()) {
            head += "<ul class=\"remarks\">\n";
            for (const std::string &remark : m_contents.remarks)
                head += Tag("li", Escaped(remark));
            head += "</ul>\n";
        }
        return "<header>\n" + head + "</header>\n";
    }

    std::string Table() const {
        if (m_contents.rows.empty())
            return "<section id=\"places\">\n<h2>Places</h2>\n<p>There is none to show.</p>\n</section>\n";
        std::string table =
            "<section id=\"places\">\n<h2>Places</h2>\n"
            "<div class=\"scroll\" role=\"region\" aria-label=\"Table of places\" tabindex=\"0\">\n"
            "<table>\n<thead><tr><th scope=\"col\">";
        std::string word = m_contents.rowWord;
        word[0] = char(word[0] - 'a' + 'A');
        table += word + "</th>";
        for (const Column &column : m_contents.columns)
            table += "<th scope=\"col\"" +
                     std::string(column.cells == Cells::Numbers ? " class=\"number\"" : "") + '>' +
                     Escaped(column.head) + "</th>";
        table += "</tr></thead>\n<tbody>\n";
        for (std::size_t i = 0; i < m_contents.rows.size(); ++i)
            table += TableRow(i);
        table += "</tbody>\n</table>\n</div>\n<p id=\"shown\" class=\"hint\" role=\"status\"></p>\n";
        if (m_contents.rowsLeftOut > 0)
            table +=
                Tag("p", base::Grouped(m_contents.rowsLeftOut) +
                             " more, of lower rank, are left out here; the command's JSON file holds all.");
        return table + "</section>\n";
    }

    std::string TableRow(std::size_t index) const {
        const Row &row = m_contents.rows[index];
        const std::string number = std::to_string(index + 1);
        std::string html = std::string("<tr") + (row.isFound ? " class=\"found\"" : "") + " data-row=\"" +
                           std::to_string(index) + "\" data-name=\"" + Escaped(row.name) +
                           "\"><th scope=\"row\">" +
                           (row.pose ? "<button type=\"button\" aria-pressed=\"false\" aria-label=\"Show " +
                                           Escaped(row.name) + "\">" + number + "</button>"
                                     : number) +
                           "</th>";
        for (std::size_t i = 0; i < row.cells.size(); ++i)
            html += "<td class=\"" + ClassOf(m_contents.columns[i].cells) + "\">" + Escaped(row.cells[i]) +
                    "</td>";
        return html + "</tr>\n";
    }

    std::string View() const {
        if (!m_viewer)
            return "<section id=\"scene\">\n<h2>3D view</h2>\n<p class=\"hint\">The 3D view is not installed here. "
                   "<code>./run report</code> in Morvanex's sources adds it; reports that are written then have "
                   "it.</p>\n</section>\n";
        const double most = std::max(m_most, m_level), least = std::min(m_statistics.mean, m_level);
        return "<section id=\"scene\">\n<h2>3D view</h2>\n<div id=\"view\" role=\"application\" tabindex=\"0\" "
               "aria-label=\"3D view of the map and the chosen place. The arrow keys turn it.\"></div>\n"
               "<div class=\"controls\"><label>Level <input type=\"range\" id=\"level\" min=\"" +
               LevelText(least) + "\" max=\"" + LevelText(most) + "\" step=\"any\" value=\"" +
               LevelText(m_level) + "\"></label><output id=\"level-text\" for=\"level\">" +
               LevelText(m_level) + " (" + Figure((m_level - m_statistics.mean) / m_statistics.deviation, 1) +
               " SD above mean)</output> <button type=\"button\" id=\"close\">Close-up</button> "
               "<button type=\"button\" id=\"whole\">Whole view</button></div>\n" +
               "<p class=\"hint\">" + Escaped(m_sceneText) + "</p>\n</section>\n";
    }

    Json SceneJson() {
        Box box;
        for (const Row &row : m_contents.rows)
            for (const Trace &trace : TracesAt(&row))
                for (const Point &point : trace)
                    box.Include(point, aroundModel);
        const SceneMap scene = ReduceMap(Map(), box, maxVoxels);
        m_most = double(std::ranges::max(scene.volume.values));
        m_sceneText = SceneText(scene);
        Json models = Json::array(), fixed = Json::array(), rows = Json::array();
        std::size_t atoms = 0;
        // The number of the model in the view; null where it is left out.
        const auto add = [&](const ReportedModel &model, std::size_t copies) -> Json {
            atoms += copies * AtomsOf(model);
            try {
                if (atoms > maxAtoms)
                    throw formats::FileError(model.file, "", "is too large for the 3D view");
                models.push_back({{"name", model.file}, {"structure", Base64(Gzip(StructureText(model)))}});
                return models.size() - 1;
            } catch (const formats::FileError &error) {
                m_sceneText += std::string(" Left out: ") + error.what() + '.';
                return nullptr;
            }
        };
        std::map<std::string, Json> numbers;
        for (const ReportedModel &model : m_sources.models)
            if (const auto copies = std::ranges::count(m_contents.rows, model.file, &Row::model); copies > 0)
                numbers[model.file] = add(model, m_contents.isTogether ? std::size_t(copies) : 1);
        for (const ReportedModel &model : m_sources.fixed)
            if (const Json number = add(model, 1); !number.is_null())
                fixed.push_back(number);
        for (const Row &row : m_contents.rows)
            rows.push_back({{"model", numbers[row.model]},
                            {"matrix", row.pose ? MatrixJson(*row.pose) : Json(nullptr)}});
        return {{"map", Base64(Gzip(ByteMap(scene.volume)))},
                {"level", m_level},
                {"mean", m_statistics.mean},
                {"deviation", m_statistics.deviation},
                {"together", m_contents.isTogether},
                {"models", models},
                {"fixed", fixed},
                {"rows", rows}};
    }

    std::string SceneText(const SceneMap &scene) const {
        const auto size = [](const std::array<std::size_t, 3> &count) {
            return std::to_string(count[0]) + " × " + std::to_string(count[1]) + " × " +
                   std::to_string(count[2]);
        };
        const VolumeView map = Map();
        std::string text;
        if (scene.cropped != map.count)
            text += "Of the map's " + size(map.count) + " voxels the " + size(scene.cropped) +
                    " around the places are shown. ";
        if (scene.step > 1) {
            const std::string step = std::to_string(scene.step);
            text += "Every " + step + " × " + step + " × " + step +
                    " voxels are averaged to one, so that the page stays small. ";
        }
        return text + "Density is kept in 255 steps. Drag to turn, wheel to zoom.";
    }

    std::string Pictures() const {
        std::string figures;
        std::size_t number = 0;
        std::vector<Trace> fixed;
        for (const ReportedModel &model : m_sources.fixed)
            for (const Trace &trace : TracesOf(model))
                fixed.push_back(trace);
        for (std::size_t i = 0; i < m_contents.rows.size() && number < maxPictures; ++i) {
            const Row &row = m_contents.rows[i];
            SlicedModels models{TracesAt(&row), fixed};
            const Box box = BoxOf(models.placed);
            if (box.IsEmpty())
                continue;
            if (m_contents.isTogether)
                for (const Row &other : m_contents.rows)
                    if (&other != &row)
                        for (const Trace &trace : TracesAt(&other))
                            models.others.push_back(trace);
            const Point centre = 0.5 * (box.low + box.high), half = box.high - centre;
            const double reach = std::max({half.x, half.y, half.z}) + aroundModel;
            figures += "<figure data-picture=\"" + std::to_string(i) + "\"" + ">\n" +
                       SlicesSvg(Map(), m_level, models, centre, reach) + "\n<figcaption>" +
                       Escaped(row.name) + ": slices through the middle of the model, " +
                       Figure(2 * reach, 0) + " Å wide.</figcaption>\n</figure>\n";
            ++number;
        }
        if (figures.empty())
            return {};
        return "<section id=\"pictures\">\n<h2>Slices</h2>\n<p class=\"hint\">Grey: density."
               "<span class=\"key\" style=\"background:var(--contour)\"></span>contour at " +
               LevelText(m_level) +
               "<span class=\"key\" style=\"background:var(--trace)\"></span>the model's residues within 5 Å of the "
               "plane" +
               (fixed.empty() && !m_contents.isTogether
                    ? std::string()
                    : "<span class=\"key\" style=\"background:var(--around)\"></span>what stands beside it") +
               "</p>\n" + figures + "</section>\n";
    }

    std::string Scores() const {
        const std::string chart = HistogramSvg(m_contents.scores);
        if (chart.empty())
            return {};
        std::string caption = "How the scores are distributed";
        if (m_contents.scores.found > 0)
            caption += "; the green ones, with a mark above, are " +
                       std::string(m_contents.scores.mean ? "the best" : "those that are found");
        if (m_contents.scores.mean)
            caption += ". Dashed: scores of all poses, as a normal distribution of their mean and deviation";
        return "<section id=\"scores\">\n<h2>Scores</h2>\n<figure>\n" + chart + "\n<figcaption>" +
               Escaped(caption) + ".</figcaption>\n</figure>\n</section>\n";
    }

    std::string Done() const {
        std::string facts;
        for (const auto &[name, value] : m_contents.facts)
            facts += Tag("dt", Escaped(name)) + Tag("dd", Escaped(value));
        const auto &size = m_sources.map->Dimensions();
        const auto &voxel = m_sources.map->Spacing();
        facts += Tag("dt", "Map's voxels") +
                 Tag("dd", std::to_string(size[0]) + " × " + std::to_string(size[1]) + " × " +
                               std::to_string(size[2]) + " of " + Figure(double(voxel[0]), 3) + " × " +
                               Figure(double(voxel[1]), 3) + " × " + Figure(double(voxel[2]), 3) + " Å");
        for (const auto &[what, file] : m_contents.inputs) {
            const std::string checksum = ChecksumOf(file);
            facts +=
                Tag("dt", "Input: " + Escaped(what)) +
                Tag("dd", Escaped(file) + "<code class=\"checksum\">" +
                              (checksum.empty() ? "no file to take a checksum of" : "SHA-256 " + checksum) +
                              "</code>");
        }
        const QDateTime now = QDateTime::currentDateTime();
        facts += Tag("dt", "Program") + Tag("dd", Escaped(m_contents.program)) + Tag("dt", "Written") +
                 Tag("dd", now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate).toStdString());
        std::string command;
        if (!m_sources.command.empty())
            command = "<h3>Command</h3>\n" + Tag("pre", Escaped(m_sources.command));
        return "<section id=\"done\">\n<h2>What was done</h2>\n<dl class=\"facts\">\n" + facts + "</dl>\n" +
               command + "</section>\n";
    }

    static std::string Foot() {
        return "<footer>This page holds all that it shows: it needs no network, and asks nobody for "
               "anything.</footer>\n";
    }

    const Contents &m_contents;
    const Sources &m_sources;
    const std::optional<Viewer> &m_viewer;
    std::optional<Volume> m_mirrored;
    Statistics m_statistics;
    double m_level = 0;
    double m_most = 0;       ///< largest value that the 3D view shows
    std::string m_sceneText; ///< what the 3D view leaves out
};

} // namespace

void WriteReport(const std::string &file, const std::string &record, const Sources &sources,
                 const std::optional<Viewer> &viewer) {
    const Contents contents = ContentsOf(Json::parse(record));
    const std::string html = Composer(contents, sources, viewer).Html();
    formats::ReplaceFile(file, [&](std::ostream &out) { out << html; });
}

} // namespace report
