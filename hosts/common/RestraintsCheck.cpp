#include "hosts/common/RestraintsCheck.h"

#include "Collect.h"
#include "Residue.h"
#include "fit/Target.h"
#include "formats/files/FileError.h"
#include "formats/files/ReadBytes.h"

#include <QSet>

using namespace VARNO;

namespace hosts {

namespace {

using formats::FileError;

constexpr std::size_t largestFile = std::size_t(64) << 20;

std::string ReadPlainBytes(const std::string &file) {
    // As the plug-in takes them.
    formats::CheckIsRegular(file);
    formats::ByteSource source(file);
    if (source.GetCompression() != formats::Compression::None)
        throw FileError(file, "", "is compressed; restraints are read as plain text");
    return formats::ReadBytes(source, largestFile);
}

} // namespace

std::vector<fit::RestraintRecord> LoadRestraints(const std::string &file) {
    return fit::ParseRestraints(ReadPlainBytes(file), [&](std::size_t line, const QString &fault) {
        const std::string place = line > 0 ? "line " + std::to_string(line) : "";
        throw FileError(file, place, fault.toStdString());
    });
}

std::vector<std::string> UnknownResidues(const std::vector<fit::RestraintRecord> &records, Compound *target) {
    std::vector<Compound *> nodes;
    GetResidues(target, nodes, true);
    QSet<QString> keys;
    for (const Compound *node : nodes)
        if (const auto *residue = dynamic_cast<const Residue *>(node);
            residue && residue->GetPosition().IsValid())
            keys.insert(fit::RestraintKey(*residue));
    std::vector<std::string> unknown;
    for (const fit::RestraintRecord &record : records)
        // White space at the end of the file reads as one more record without a key.
        if (!record.residue.isEmpty() && !keys.contains(record.residue))
            unknown.push_back(record.residue.toStdString());
    return unknown;
}

} // namespace hosts
