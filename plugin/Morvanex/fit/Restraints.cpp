#include "fit/Restraints.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <cmath>
#include <span>

using namespace VARNO;

namespace fit {

namespace {

constexpr std::size_t wordsOfARecord = 4;

struct Word {
    QStringView text;
    std::size_t line; ///< from 1
};

bool IsControl(QChar c) {
    return c.category() == QChar::Other_Control && !c.isSpace();
}

QString Decode(QByteArrayView bytes, const RestraintsFault &fault) {
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    // A decoder with a memory would keep an unfinished character at the end to itself.
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (fault && (decoder.hasError() || std::ranges::any_of(text, IsControl)))
        fault(0, "is not a text file");
    return text;
}

std::vector<Word> SplitIntoWords(QStringView text) {
    std::vector<Word> words;
    std::size_t line = 1;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype begin = i;
        while (i < text.size() && !text[i].isSpace())
            ++i;
        if (i > begin)
            words.push_back({text.sliced(begin, i - begin), line});
        else
            line += text[i++] == u'\n';
    }
    return words;
}

/// The record of up to four words.
RestraintRecord ToRecord(std::span<const Word> words, const RestraintsFault &fault) {
    RestraintRecord record{words.front().text.toString(), {}};
    if (fault && words.size() < wordsOfARecord)
        fault(words.front().line,
              QString("the record of '%1' has fewer than three coordinates").arg(record.residue));
    for (unsigned i = 0; i + 1 < words.size(); ++i) {
        const auto &[text, line] = words[i + 1];
        bool ok = false;
        record.position[i] = text.toFloat(&ok);
        if (fault && !(ok && std::isfinite(record.position[i])))
            fault(line, QString("'%1', a coordinate of '%2', is not a number").arg(text, record.residue));
    }
    return record;
}

} // namespace

std::vector<RestraintRecord> ParseRestraints(QByteArrayView bytes, const RestraintsFault &fault) {
    const QString text = Decode(bytes, fault);
    const std::vector<Word> words = SplitIntoWords(text);
    if (fault && words.empty())
        fault(0, "holds no restraint");
    std::vector<RestraintRecord> records;
    for (std::span<const Word> rest = words; !rest.empty();) {
        const std::size_t count = std::min(rest.size(), wordsOfARecord);
        records.push_back(ToRecord(rest.first(count), fault));
        rest = rest.subspan(count);
    }
    if (words.size() % wordsOfARecord == 0 && !text.isEmpty() && text.back().isSpace())
        records.emplace_back();
    return records;
}

std::vector<RestraintRecord> ReadRestraints(const QString &file) {
    QFile device(file);
    // A pipe or a device may never end.
    if (!QFileInfo(file).isFile() || !device.open(QIODevice::ReadOnly))
        return {};
    return ParseRestraints(device.readAll());
}

} // namespace fit
