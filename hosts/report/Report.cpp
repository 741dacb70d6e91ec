#include "hosts/report/Report.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/report/Assets.h"
#include "hosts/report/Markup.h"
#include "hosts/report/Packing.h"
#include "hosts/report/Page.h"
#include "hosts/report/PlacedModels.h"
#include "hosts/report/SceneMap.h"
#include "hosts/report/Slices.h"
#include "hosts/report/ViewData.h"

#include "formats/files/ReplaceFile.h"

#include <nlohmann/json.hpp>

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <ostream>

using placement::Point;

namespace report {

namespace {

constexpr std::size_t maxPictures = 10;

/// The smallest box that holds all of the traces.
struct Extent {
    Point centre;
    double reach = -1; ///< Å along every axis; negative where there is no trace
};

Extent ExtentOf(const std::vector<Trace> &traces) {
    Box box;
    for (const Trace &trace : traces)
        for (const Point &point : trace)
            box.Include(point, 0);
    if (box.IsEmpty())
        return {};
    const Point centre = 0.5 * (box.low + box.high), half = box.high - centre;
    return {centre, std::max({half.x, half.y, half.z})};
}

std::string ClassOf(Cells cells) {
    return cells == Cells::Numbers ? "number" : cells == Cells::Words ? "words" : "confidence";
}

std::string LevelText(double level) {
    return QString::number(level, 'g', 3).toStdString();
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
        , m_viewer(viewer)
        , m_placed(contents, sources) {}

    std::string Html() {
        Page page{.title = m_contents.title + " – Morvanex report", .body = {}, .data = {}, .scripts = {}};
        const bool hasView = m_viewer.has_value();
        page.scripts.push_back({tableScript, {}});
        if (hasView) {
            page.scripts.push_back({m_viewer->script, m_viewer->notices});
            page.scripts.push_back({viewScript, {}});
        }
        if (hasView)
            m_view = MakeViewData(m_contents, m_sources, m_placed);
        page.data = hasView ? m_view.json : "{}";
        page.body =
            Head() + "<main>\n" + Table() + View() + Pictures() + Scores() + Done() + "</main>\n" + Foot();
        return HtmlOf(page);
    }

private:
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
        std::string html =
            std::string("<tr") + (row.isFound ? " class=\"found\"" : "") + " data-row=\"" +
            std::to_string(index) + "\" data-name=\"" + Escaped(row.name) + "\"><th scope=\"row\">" +
            (IsShown(index) ? "<button type=\"button\" aria-pressed=\"false\" aria-label=\"Show " +
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
        return "<section id=\"scene\">\n<h2>3D view</h2>\n<div id=\"view\" role=\"application\" tabindex=\"0\" "
               "aria-label=\"3D view of the map and the chosen place. The arrow keys turn it.\"></div>\n"
               "<div class=\"controls\"><label>Level <input type=\"range\" id=\"level\" min=\"" +
               LevelText(m_view.lowest) + "\" max=\"" + LevelText(m_view.highest) +
               "\" step=\"any\" value=\"" + LevelText(m_placed.Level()) +
               "\"></label><output id=\"level-text\" for=\"level\">" + LevelText(m_placed.Level()) + " (" +
               Figure((m_placed.Level() - m_placed.Mean()) / m_placed.Deviation(), 1) +
               " SD above mean)</output> <button type=\"button\" id=\"close\">Close-up</button> "
               "<button type=\"button\" id=\"whole\">Whole view</button></div>\n" +
               "<p class=\"hint\">" + Escaped(m_view.remarks) + "</p>\n</section>\n";
    }

    /// Whether there is something to be seen of a row.
    bool IsShown(std::size_t index) const {
        return m_placed.ModelOf(m_contents.rows[index]) || (index == 0 && m_sources.movedMap);
    }

    /// The slices through a row's place; empty where it has none.
    std::string Picture(std::size_t index) const {
        const Row &row = m_contents.rows[index];
        SlicedModels models{m_placed.TracesAt(row), m_placed.FixedTraces(), {}};
        const Extent extent = ExtentOf(models.placed);
        if (extent.reach < 0)
            return index == 0 && m_placed.MovedMap() ? MovedPicture() : "";
        if (m_contents.isTogether)
            for (const Row &other : m_contents.rows)
                if (&other != &row)
                    std::ranges::copy(m_placed.TracesAt(other), std::back_inserter(models.others));
        return PictureOf(index, models, extent.centre, extent.reach + aroundModel, "the model");
    }

    /// Both maps, through the middle of the first.
    std::string MovedPicture() const {
        const placement::VolumeView map = m_placed.Map();
        Box box;
        box.Include(map.origin, 0);
        box.Include(map.origin + Point{double(map.count[0] - 1) * map.spacing[0],
                                       double(map.count[1] - 1) * map.spacing[1],
                                       double(map.count[2] - 1) * map.spacing[2]},
                    0);
        const Point centre = 0.5 * (box.low + box.high), half = box.high - centre;
        return PictureOf(0, {{}, {}, m_placed.MovedMap()}, centre, std::max({half.x, half.y, half.z}),
                         "the map");
    }

    std::string PictureOf(std::size_t index, const SlicedModels &models, const Point &centre, double reach,
                          const std::string &what) const {
        return "<figure data-picture=\"" + std::to_string(index) + "\">\n" +
               SlicesSvg(m_placed.Map(), m_placed.Level(), models, centre, reach) + "\n<figcaption>" +
               Escaped(m_contents.rows[index].name) + ": slices through the middle of " + what + ", " +
               Figure(2 * reach, 0) + " Å wide.</figcaption>\n</figure>\n";
    }

    std::string Pictures() const {
        std::string figures;
        std::size_t number = 0;
        for (std::size_t i = 0; i < m_contents.rows.size() && number < maxPictures; ++i)
            if (const std::string picture = Picture(i); !picture.empty()) {
                figures += picture;
                ++number;
            }
        if (figures.empty())
            return {};
        const auto key = [](const std::string &colour, const std::string &text) {
            return "<span class=\"key\" style=\"background:var(--" + colour + ")\"></span>" + text;
        };
        return "<section id=\"pictures\">\n<h2>Slices</h2>\n<p class=\"hint\">Grey: density." +
               key("contour", "contour at " + LevelText(m_placed.Level())) +
               key("trace", m_sources.movedMap ? "contour of the second map in its place"
                                               : "the model's residues within 5 Å of the plane") +
               (m_contents.isTogether || !m_sources.fixed.empty() ? key("around", "what stands beside it")
                                                                  : "") +
               "</p>\n" + figures + "</section>\n";
    }

    std::string Scores() const {
        if (!m_contents.ranking.empty())
            return Ranking();
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

    std::string Ranking() const {
        return "<section id=\"scores\">\n<h2>Ranking</h2>\n<figure>\n" + RankingSvg(m_contents.ranking) +
               "\n<figcaption>E, the wrong places that are expected to score as well, as a power of ten, of the "
               "models in the order of the ranking, at most a thousand; green: found.</figcaption>\n</figure>\n"
               "</section>\n";
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
    PlacedModels m_placed;
    ViewData m_view;
};

} // namespace

void WriteReport(const std::string &file, const std::string &record, const Sources &sources,
                 const std::optional<Viewer> &viewer) {
    const Contents contents = ContentsOf(nlohmann::ordered_json::parse(record));
    const std::string html = Composer(contents, sources, viewer).Html();
    formats::ReplaceFile(file, [&](std::ostream &out) { out << html; });
}

} // namespace report
