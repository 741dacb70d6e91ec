#include "place/PlaceAnswer.h"

#include "document/Nodes.h"
#include "hosts/common/Chains.h"

#include "Atom.h"
#include "DataMaker.h"
#include "Group.h"

#include <QCoreApplication>
#include <QStringList>

using namespace VARNO;

namespace desktop {

namespace {

struct Words {
    Q_DECLARE_TR_FUNCTIONS(PlaceAnswer)
};

QString Sentence(const std::string &text) {
    QString sentence = QString::fromStdString(text) + '.';
    sentence[0] = sentence[0].toUpper();
    return sentence;
}

QString ProbabilityInWords(double probability) {
    if (probability >= 0.95)
        return Words::tr("sure");
    if (probability >= 0.7)
        return Words::tr("likely");
    if (probability >= 0.3)
        return Words::tr("doubtful");
    return Words::tr("by chance");
}

QString SurenessOf(const placement::PlacementResult &result, const placement::Place &place) {
    using placement::Verdict;
    if (result.verdict == Verdict::Refined)
        return Words::tr("refined");
    if (result.verdict == Verdict::NotJudged)
        return Words::tr("not judged");
    if (place.otherTurn)
        return Words::tr("another turn of the first");
    return ProbabilityInWords(place.probability);
}

QStringList SymmetryInWords(const hosts::SymmetryRecord &symmetry) {
    QStringList sentences;
    for (const std::string &text : hosts::SymmetryTexts(symmetry))
        sentences << Sentence(text);
    sentences.front().prepend(Words::tr("Symmetry: "));
    return sentences;
}

QString RivalsInWords(const hosts::AssemblyRecord &record, const placement::PlacedCopy &copy) {
    QStringList names;
    for (const std::size_t rival : copy.rivals)
        names << QString::fromStdString(record.parts[rival].name);
    return names.isEmpty() ? QString() : Words::tr("as good for %1").arg(names.join(", "));
}

Vertex Moved(const placement::Motion &motion, const Vertex &at) {
    const placement::Point moved = motion * placement::Point{double(at[0]), double(at[1]), double(at[2])};
    return Vertex(float(moved.x), float(moved.y), float(moved.z), at.IsValid());
}

void CopyResidue(Compound *to, const Group &residue, const placement::Motion &motion) {
    Compound *copy = DataMaker::makeGroup(to, residue.GetName(), residue.GetSeqId());
    for (const Compound *node : Below(&residue))
        if (const auto *atom = dynamic_cast<const Atom *>(node))
            DataMaker::makeAtom(copy, atom->GetLabel(), atom->GetName(), atom->GetModelNumber(),
                                Moved(motion, atom->GetPosition()), 1, atom->GetOrbital(), atom->GetCharge(),
                                atom->GetBFactor());
    copy->Complete();
}

} // namespace

void Enter(const hosts::PlaceRecord &record, PlaceAnswer &answer) {
    const placement::PlacementResult &result = record.result;
    for (const placement::Place &place : result.places)
        answer.places.push_back({.number = answer.places.size() + 1,
                                 .motion = {place.pose.rotation, place.translation},
                                 .chainNames = record.chains,
                                 .sureness = SurenessOf(result, place),
                                 .remark = {},
                                 .probability = place.probability,
                                 .score = place.score,
                                 .share = place.inDensity});
    QStringList sentences;
    if (result.cancelled)
        sentences << Words::tr("Cancelled; this is what was found by then.");
    if (record.hand)
        sentences << Sentence(hosts::HandText(*record.hand));
    if (record.symmetry) {
        const QStringList symmetry = SymmetryInWords(*record.symmetry);
        sentences << symmetry.front();
        answer.details = symmetry.join('\n');
    }
    sentences << Sentence(hosts::VerdictText(result));
    if (result.seemsInverted)
        sentences << Words::tr("The map's density seems dark: if it is, say so under More and search again.");
    answer.verdict = sentences.join(' ');
    const bool isSymmetric = record.symmetry && record.symmetry->used;
    answer.together = isSymmetric ? std::max<std::size_t>(1, placement::FoundCopies(result)) : 1;
}

void Enter(const hosts::AssemblyRecord &record, PlaceAnswer &answer) {
    const placement::AssemblyResult &result = record.result;
    for (std::size_t i = 0; i < result.copies.size(); ++i) {
        const placement::PlacedCopy &copy = result.copies[i];
        answer.places.push_back({.model = copy.part,
                                 .number = copy.copy + 1,
                                 .motion = hosts::InPlace(copy).motion,
                                 .chainNames = record.chainNames[i],
                                 .sureness = ProbabilityInWords(copy.probability),
                                 .remark = RivalsInWords(record, copy),
                                 .probability = copy.probability,
                                 .score = copy.score,
                                 .share = copy.explained});
    }
    QStringList sentences, parts;
    if (result.cancelled)
        sentences << Words::tr("Cancelled; this is what was placed by then.");
    sentences << Sentence(hosts::AssemblyText(record));
    for (std::size_t part = 0; part < record.parts.size(); ++part)
        parts << QString::fromStdString(record.parts[part].name + ": " + hosts::PartText(record, part)) + '.';
    answer.verdict = (sentences + parts).join(' ');
    if (!result.copies.empty())
        answer.details =
            Words::tr("Explained: %1.").arg(QString::fromStdString(hosts::ExplainedText(record)));
    answer.together = result.copies.size();
}

std::array<double, 16> MatrixOf(const placement::Motion &motion) {
    const placement::Matrix &r = motion.rotation;
    const placement::Point &t = motion.translation;
    return {r[0], r[1], r[2], t.x, r[3], r[4], r[5], t.y, r[6], r[7], r[8], t.z, 0, 0, 0, 1};
}

void MakePlacedCopy(const PlaceAnswer &answer, const FoundPlace &place) {
    const SoughtModel &model = answer.models[place.model];
    const std::string name = model.name + '-' + std::to_string(place.number);
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump(name), name);
    for (std::size_t i = 0; i < model.chains.size(); ++i) {
        const Chain *chain = model.chains[i];
        Compound *copy = DataMaker::makeChain(molecule, place.chainNames[i], chain->IsPolymer());
        for (const Compound *node : Below(chain))
            if (const auto *residue = dynamic_cast<const Group *>(node))
                CopyResidue(copy, *residue, place.motion);
    }
}

} // namespace desktop
