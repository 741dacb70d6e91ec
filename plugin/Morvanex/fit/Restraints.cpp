#include "fit/Restraints.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

using namespace VARNO;

namespace fit {

std::vector<RestraintRecord> ReadRestraints(const QString &file) {
    std::vector<RestraintRecord> records;
    QFile device(file);
    // A pipe or a device may never end.
    if (!QFileInfo(file).isFile() || !device.open(QIODevice::ReadOnly))
        return records;
    QTextStream text(&device);
    while (!text.atEnd()) {
        QString residue;
        float x = 0, y = 0, z = 0;
        text >> residue >> x >> y >> z;
        records.push_back({residue, Vertex(x, y, z, false)});
    }
    return records;
}

} // namespace fit
