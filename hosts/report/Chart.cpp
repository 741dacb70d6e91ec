#include "hosts/report/Chart.h"

#include "hosts/report/Markup.h"

#include "base/Numbers.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr double width = 640, height = 240, left = 48, right = 12, top = 22, bottom = 36;
constexpr double plotWidth = width - left - right, plotHeight = height - top - bottom;

/// A range of numbers along a side of the picture.
struct Scale {
    double low, high, from, to;

    double operator()(double value) const { return from + (value - low) / (high - low) * (to - from); }
};

/// About five round numbers within the range.
std::vector<double> Ticks(double low, double high) {
    const double raw = (high - low) / 5, power = std::pow(10, std::floor(std::log10(raw)));
    const double step = power * (raw / power < 1.5 ? 1 : raw / power < 3.5 ? 2 : raw / power < 7.5 ? 5 : 10);
    std::vector<double> ticks;
    for (double tick = std::ceil(low / step) * step; tick <= high + 1e-9 * step; tick += step)
        ticks.push_back(std::abs(tick) < 1e-9 * step ? 0 : tick);
    return ticks;
}

std::string TextAt(double x, double y, const std::string &anchor, const std::string &text) {
    return "<text x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" text-anchor=\"" + anchor + "\">" +
           Escaped(text) + "</text>";
}

std::string LineFrom(double x1, double y1, double x2, double y2, const std::string &kind) {
    return "<path class=\"" + kind + "\" d=\"M" + Coordinate(x1) + ' ' + Coordinate(y1) + 'L' +
           Coordinate(x2) + ' ' + Coordinate(y2) + "\"/>";
}

std::string Chart(const std::string &label, const std::string &body) {
    return "<svg class=\"chart\" viewBox=\"0 0 " + Coordinate(width) + ' ' + Coordinate(height) +
           "\" role=\"img\" aria-label=\"" + Escaped(label) + "\">" + body + "</svg>";
}

std::string AcrossAxis(const Scale &x, const std::vector<double> &ticks, const std::string &name) {
    std::string axis = LineFrom(left, height - bottom, width - right, height - bottom, "axis");
    for (const double tick : ticks)
        axis += LineFrom(x(tick), height - bottom, x(tick), height - bottom + 4, "axis") +
                TextAt(x(tick), height - bottom + 16, "middle", base::GeneralNumber(tick).toStdString());
    return axis + TextAt(width - right, height - 4, "end", name);
}

std::string UpAxis(const Scale &y, const std::vector<double> &ticks, const std::string &name) {
    std::string axis;
    for (const double tick : ticks)
        axis += LineFrom(left, y(tick), width - right, y(tick), "grid") +
                TextAt(left - 6, y(tick) + 4, "end", base::GeneralNumber(tick).toStdString());
    return axis + TextAt(0, 12, "start", name);
}

/// The normal distribution as a line as high as the bars.
std::string Bell(const ScoreList &list, const Scale &x, double highest) {
    std::string path;
    for (int i = 0; i <= 120; ++i) {
        const double score = x.low + (x.high - x.low) * i / 120, z = (score - *list.mean) / *list.deviation;
        path += (path.empty() ? 'M' : 'L') + Coordinate(x(score)) + ' ' +
                Coordinate(height - bottom - highest * std::exp(-z * z / 2));
    }
    return "<path class=\"all\" d=\"" + path + "\"/>";
}

} // namespace

std::string HistogramSvg(const ScoreList &list) {
    std::vector<double> scores;
    std::ranges::copy_if(list.scores, std::back_inserter(scores),
                         [](double score) { return std::isfinite(score); });
    const bool hasBell = list.mean && list.deviation && std::isfinite(*list.mean) && *list.deviation > 0;
    if (scores.size() < (hasBell ? 1 : 2))
        return {};
    auto [low, high] = std::ranges::minmax(scores);
    if (hasBell) {
        low = std::min(low, *list.mean - 3 * *list.deviation);
        high = std::max(high, *list.mean + 3 * *list.deviation);
    }
    const double margin = high > low ? 0.04 * (high - low) : 0.5 + 0.01 * std::abs(low);
    const Scale x{low - margin, high + margin, left, width - right};

    const std::size_t bins = std::clamp<std::size_t>(scores.size() / 2, 12, 48);
    std::vector<std::size_t> counts(bins), found(bins);
    const auto binOf = [&](double score) {
        return std::min(bins - 1, std::size_t((score - x.low) / (x.high - x.low) * double(bins)));
    };
    for (std::size_t i = 0; i < list.scores.size(); ++i)
        if (std::isfinite(list.scores[i]))
            ++(i < list.found ? found : counts)[binOf(list.scores[i])];
    std::size_t highest = 1;
    for (std::size_t i = 0; i < bins; ++i)
        highest = std::max(highest, counts[i] + found[i]);
    const Scale y{0, double(highest), height - bottom, top};

    std::vector<double> ticks = Ticks(0, double(highest));
    std::erase_if(ticks, [](double tick) { return tick != std::floor(tick); });
    std::string body = UpAxis(y, ticks, "number");
    if (hasBell)
        body += Bell(list, x, plotHeight);
    const double binWidth = plotWidth / double(bins);
    const auto bar = [&](std::size_t bin, double from, std::size_t count, const char *kind) {
        if (count > 0)
            body += std::string("<rect class=\"") + kind + "\" x=\"" +
                    Coordinate(left + double(bin) * binWidth + 0.5) + "\" width=\"" +
                    Coordinate(binWidth - 1) + "\" y=\"" + Coordinate(y(from + double(count))) +
                    "\" height=\"" + Coordinate(y(0) - y(double(count))) + "\"/>";
    };
    for (std::size_t i = 0; i < bins; ++i) {
        bar(i, 0, counts[i], "bar");
        bar(i, double(counts[i]), found[i], "found");
    }
    for (std::size_t i = 0; i < std::min(list.found, list.scores.size()); ++i)
        if (std::isfinite(list.scores[i]))
            body += "<path class=\"mark\" d=\"M" + Coordinate(x(list.scores[i])) + ' ' + Coordinate(top - 6) +
                    "l-4 -7h8z\"/>";
    return Chart("Histogram of " + std::to_string(scores.size()) + " scores from " +
                     base::GeneralNumber(std::ranges::min(scores)).toStdString() + " to " +
                     base::GeneralNumber(std::ranges::max(scores)).toStdString() + ", " +
                     std::to_string(std::min(list.found, scores.size())) + " of them marked",
                 body + AcrossAxis(x, Ticks(x.low, x.high), "score"));
}

std::string RankingSvg(const std::vector<RankedModel> &models) {
    if (models.empty())
        return {};
    static constexpr double least = -40, most = 4; // of lg E; what lies beyond is drawn at the border
    const auto lg = [](double expected) {
        const double exponent = std::log10(expected);
        return std::isnan(exponent) ? most : std::clamp(exponent, least, most);
    };
    double low = -2;
    for (const RankedModel &model : models)
        low = std::min(low, lg(model.expected));
    const Scale x{0.5, double(models.size()) + 0.5, left, width - right},
        y{low - 1, most, height - bottom, top};
    std::string body = UpAxis(y, Ticks(y.low, y.high), "lg E");
    for (std::size_t i = 0; i < models.size(); ++i)
        body += std::string("<circle class=\"") + (models[i].isFound ? "found" : "bar") + "\" cx=\"" +
                Coordinate(x(double(i + 1))) + "\" cy=\"" + Coordinate(y(lg(models[i].expected))) +
                "\" r=\"" + (models[i].isFound ? "4" : "2.5") + "\"/>";
    const auto found = std::ranges::count_if(models, &RankedModel::isFound);
    return Chart("Expected wrong places E of " + std::to_string(models.size()) + " models by rank, " +
                     std::to_string(found) + " of them found",
                 body + AcrossAxis(x, Ticks(1, double(std::max<std::size_t>(models.size(), 2))), "rank"));
}

} // namespace report
