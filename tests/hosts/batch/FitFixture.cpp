#include "FitFixture.h"

#include "Grid.h"
#include "formats/maps/MapFile.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

using VARNO::Grid;

namespace {

struct Point {
    double x, y, z;
};

/// A residue's CA in a helix of 12 residues around the z axis, without any symmetry.
Point HelixPoint(int i) {
    const double angle = i * 100.0 * 3.141592653589793 / 180;
    return {(2.3 + 0.3 * i) * std::cos(angle), 2.3 * std::sin(angle), 1.5 * i - 8};
}

std::string AtomRecord(int serial, const char *atom, char chain, int residue, const Point &p) {
    char record[128];
    std::snprintf(record, sizeof record,
                  "ATOM  %5d  %-3s ALA %c%4d    %8.3f%8.3f%8.3f  1.00 20.00           %c\n", serial, atom,
                  chain, residue, p.x, p.y, p.z, atom[0]);
    return record;
}

std::string ChainRecords(char chain, const Point &centre) {
    std::string records;
    for (int i = 0; i < 12; ++i) {
        const Point p = HelixPoint(i);
        const Point ca{centre.x + p.x, centre.y + p.y, centre.z + p.z};
        records += AtomRecord(3 * i + 1, "N", chain, i + 1, {ca.x - 1.2, ca.y, ca.z - 0.8});
        records += AtomRecord(3 * i + 2, "CA", chain, i + 1, ca);
        records += AtomRecord(3 * i + 3, "C", chain, i + 1, {ca.x + 1.2, ca.y, ca.z + 0.8});
    }
    return records + "TER\n";
}

/// A map of both chains, with A lying along x at its true place.
void WriteTestMap(const std::string &file) {
    Grid grid("map", {24, 24, 24}, {0, 0, 0}, {2, 2, 2}, {90, 90, 90});
    std::vector<Point> places;
    for (int i = 0; i < 12; ++i) {
        const Point p = HelixPoint(i);
        places.push_back({23 + p.z, 18 + p.y, 23 - p.x});
        places.push_back({36 + p.x, 30 + p.y, 22 + p.z});
    }
    for (unsigned i = 0; i < 24; ++i)
        for (unsigned j = 0; j < 24; ++j)
            for (unsigned k = 0; k < 24; ++k)
                for (const Point &p : places) {
                    const double x = 2.0 * i - p.x, y = 2.0 * j - p.y, z = 2.0 * k - p.z;
                    grid.SetValue(i, j, k,
                                  grid.GetValue(i, j, k) + float(std::exp(-(x * x + y * y + z * z) / 9)));
                }
    formats::WriteMap(file, grid, "test");
}

} // namespace

const std::vector<std::string> FitFixture::longSearch{"--axis",
                                                      "3",
                                                      "--rotation-step",
                                                      "0.3",
                                                      "--threads",
                                                      "1",
                                                      "--translation-steps",
                                                      std::to_string(longSteps),
                                                      "--translation-step",
                                                      "0.3"};

FitFixture::FitFixture()
    : m_chainA(ChainRecords('A', {20, 20, 20}))
    , m_chainB(ChainRecords('B', {36, 30, 22})) {
    WriteTestMap(File("map.mrc"));
    Put("model.pdb", m_chainA + m_chainB + "END\n");
}

std::vector<std::string> FitFixture::Words(const std::vector<std::string> &options) const {
    std::vector<std::pair<std::string, std::string>> usual{{"--map", File("map.mrc")},
                                                           {"--target", File("model.pdb")},
                                                           {"--chain", "A"},
                                                           {"--axis", "0"},
                                                           {"--rotation-step", "30"},
                                                           {"--translation-steps", "3"},
                                                           {"--translation-step", "3"},
                                                           {"--keep", "20"}};
    std::vector<std::string> words{"fit"};
    for (const auto &[option, value] : usual)
        if (std::ranges::find(options, option) == options.end())
            words.insert(words.end(), {option, value});
    for (std::size_t i = 0; i < options.size(); ++i)
        if (i + 1 < options.size() && options[i + 1] == "-")
            ++i;
        else
            words.push_back(options[i]);
    return words;
}

void FitFixture::ExpectRefused(const std::vector<std::string> &options, const std::string &error) const {
    const auto before = Contents();
    const Outcome outcome = RunFit(options);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, testing::StartsWith("morvanex fit: error: "));
    EXPECT_THAT(outcome.errors, testing::HasSubstr(error));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_EQ(Contents(), before);
}

std::map<std::string, std::string> FitFixture::Contents() const {
    std::map<std::string, std::string> contents;
    for (const auto &entry : std::filesystem::directory_iterator(m_folder.Path())) {
        std::ostringstream bytes;
        if (entry.is_regular_file())
            bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        contents[entry.path().filename()] = bytes.str();
    }
    return contents;
}
