#include "hosts/common/RestraintsCheck.h"

#include "Collect.h"
#include "Group.h"
#include "formats/files/FileError.h"
#include "formats/files/ReadBytes.h"

#include <QSet>
#include <QStringDecoder>

#include <algorithm>
#include <cmath>

using namespace VARNO;

namespace hosts {

namespace {

using formats::FileError;

constexpr std::size_t largestFile = std::size_t(64) << 20;
constexpr std::size_t wordsOfARecord = 4;

/// A word and the line it stands on, from 1.
struct Word {
    QString text;
    std::size_t line;
};

std::string ReadPlainBytes(const std::string &file) {
    // The engine reads the file once more.
    formats::CheckIsRegular(file);
    formats::ByteSource source(file);
    if (source.GetPacking() != formats::Packing::None)
        throw FileError(file, "", "is packed; restraints are read as plain text");
    return formats::ReadBytes(source, largestFile);
}

QString ReadText(const std::string &file) {
    const std::string bytes = ReadPlainBytes(file);
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder.decode(QByteArrayView(bytes));
    const bool binary = std::ranges::any_of(
        text, [](QChar c) { return c.category() == QChar::Other_Control && !c.isSpace(); });
    if (decoder.hasError() || binary)
        throw FileError(file, "", "is no text file");
    return text;
}

std::vector<Word> SplitIntoWords(const QString &text) {
    std::vector<Word> words;
    std::size_t line = 1;
    bool inside = false;
    for (const QChar character : text) {
        if (!character.isSpace() && !inside)
            words.push_back({{}, line});
        inside = !character.isSpace();
        if (inside)
            words.back().text += character;
        line += character == '\n';
    }
    return words;
}

void CheckRecord(const std::string &file, const Word *word, std::size_t count) {
    const std::string place = "line " + std::to_string(word->line);
    const std::string residue = word->text.toStdString();
    if (count < wordsOfARecord)
        throw FileError(file, place, "the record of '" + residue + "' has fewer than three coordinates");
    for (std::size_t i = 1; i < wordsOfARecord; ++i) {
        bool ok = false;
        if (!std::isfinite(word[i].text.toFloat(&ok)) || !ok)
            throw FileError(file, "line " + std::to_string(word[i].line),
                            "'" + word[i].text.toStdString() + "', a coordinate of '" + residue +
                                "', is not a number");
    }
}

} // namespace

void CheckRestraintsFile(const std::string &file) {
    const std::vector<Word> words = SplitIntoWords(ReadText(file));
    if (words.empty())
        throw FileError(file, "", "holds no restraint");
    for (std::size_t i = 0; i < words.size(); i += wordsOfARecord)
        CheckRecord(file, &words[i], words.size() - i);
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
