#include "Commands.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "Collect.h"
#include "cli/CommandLine.h"
#include "cli/Diagnostics.h"
#include "cli/Printable.h"
#include "hosts/common/Chains.h"
#include "hosts/common/Inputs.h"
#include "hosts/common/Outputs.h"
#include "hosts/common/SavedList.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>

using namespace cli;
using namespace hosts;
using namespace VARNO;

namespace batch {

namespace {

std::vector<long> ReadRanks(const Arguments &arguments) {
    const std::vector<std::string> texts = arguments.List("--rank").value();
    std::vector<long> ranks;
    ranks.reserve(texts.size());
    for (const std::string &text : texts)
        ranks.push_back(ReadInteger("--rank", text));
    return ranks;
}

/// One file for each rank: the name given, or with several of them "model-3.pdb" for rank 3 and "model.pdb".
std::vector<std::string> OutputFiles(const std::filesystem::path &out, const std::vector<long> &ranks) {
    if (ranks.size() == 1)
        return {out};
    std::vector<std::string> files;
    for (const long rank : ranks) {
        std::filesystem::path name = out.stem();
        name += "-";
        name += std::to_string(rank);
        name += out.extension();
        files.push_back(out.parent_path() / name);
    }
    return files;
}

/// Distance of the chain's farthest atom from the frame's origin, Å.
double FarthestAtom(Chain *chain) {
    std::vector<Compound *> atoms;
    GetAtoms(chain, atoms, true);
    double farthest = 0;
    for (const Compound *atom : atoms) {
        const Vertex at = atom->GetPosition();
        farthest = std::max(farthest, std::hypot(double(at[0]), double(at[1]), double(at[2])));
    }
    return farthest;
}

void WarnOfSkippedLines(const SavedList &list) {
    constexpr std::size_t shown = 10;
    if (list.skippedLines.empty())
        return;
    std::string lines;
    for (std::size_t i = 0; i < std::min(shown, list.skippedLines.size()); ++i)
        lines += (i > 0 ? ", " : "") + std::to_string(list.skippedLines[i]);
    if (list.skippedLines.size() > shown)
        lines += " ...";
    Warn(list.file + ": skips " + base::Counted(list.skippedLines.size(), "line") +
         " without the eight numbers of a solution: " + lines);
}

void PrintRoundingCost(const SavedList &list, Chain *chain) {
    if (!list.isRounded)
        return;
    const double distance = FarthestAtom(chain);
    std::cout
        << QString(
               "precision: the two decimals of a results file displace atoms by up to %1 Å in this target, "
               "which reaches %2 Å from the origin; the JSON file of a fit has full precision\n")
               .arg(base::FixedNumber(RoundingCost(distance), 0, 2), base::FixedNumber(distance, 0, 1))
               .toStdString();
}

void WriteModel(const std::string &file, const Chain *chain, long rank, const SolutionScore &solution) {
    formats::WriteStructure(file, formats::StructureFormatOf(file), chain,
                            Transform(solution.rotation, solution.translation));
    std::cout << "rank " << rank << ", score " << base::FixedNumber(solution.score, 0, 3).toStdString()
              << ": " << Printable(file) << '\n';
}

int Run(const Arguments &arguments) {
    const std::string target = arguments.Text("--target"), results = arguments.Text("--results");
    const std::vector<long> ranks = ReadRanks(arguments);
    const std::vector<std::string> files = OutputFiles(arguments.Text("--out"), ranks);
    CheckOutputs(files, {target, results});
    const SavedList list = ReadSavedList(results);
    WarnOfSkippedLines(list);
    std::vector<SolutionScore> solutions;
    solutions.reserve(ranks.size());
    for (const long rank : ranks)
        solutions.push_back(list.OfRank(rank));
    Chain *chain = ChooseChain(target, LoadStructure(target, Warn), arguments.GivenText("--chain"));
    std::cout << "target: chain " << Printable(ChainNames({chain})) << " of " << Printable(target) << '\n';
    PrintRoundingCost(list, chain);
    for (std::size_t i = 0; i < files.size(); ++i)
        WriteModel(files[i], chain, ranks[i], solutions[i]);
    return Succeeded;
}

std::vector<Option> Options() {
    return {
        {"--results", Value::File, "FILE", "The saved list: the JSON file of a fit, or its results file", "",
         true},
        {"--target", Value::File, "FILE", "The structure that was fitted, at its start position", "", true},
        {"--chain", Value::Text, "ID", "The chain that was fitted; ' ' is the chain without an identifier",
         "the file's first polymer chain"},
        {"--rank", Value::Text, "N[,N...]",
         "Ranks to build, 1 is the best. In a results file rank 1 is the last line, rank 2 the line "
         "before it",
         "", true},
        {"--out", Value::File, "FILE",
         "The model to write: mmCIF where the name ends in .cif or .mmcif, else PDB. Several ranks "
         "give a file each, with the rank before the extension: model-1.pdb, model-3.pdb",
         "", true},
    };
}

} // namespace

Command BuildCommand() {
    return {
        .name = "build",
        .summary = "write models of solutions from a saved list",
        .description =
            "Moves all atoms of the target by a pose of a saved list and writes them as a structure file. "
            "A results file has two decimals, which matters for a target far from the frame's origin: "
            "the command prints by how much. The JSON file of a fit has full precision.",
        .options = Options(),
        .example = "morvanex build --results fit.json --target in.pdb --rank 1,2 --out out.pdb",
        .run = Run,
    };
}

} // namespace batch
