#include "hosts/common/Delivery.h"

#include "hosts/common/SignalHold.h"

#include "formats/files/FileError.h"

namespace hosts {

void DeliveryWriter::Write(const std::string &file, const std::string &what,
                           const std::function<void()> &write) {
    const SignalHold hold;
    try {
        write();
        m_delivery.written.push_back(what + ": " + file);
    } catch (const formats::FileError &error) {
        m_delivery.errors.push_back(error.what());
    }
}

std::vector<std::string> RankedFiles(const std::string &prefix, int count, formats::StructureFormat format) {
    const std::size_t digits = std::to_string(count).size();
    std::vector<std::string> files;
    for (int rank = 1; rank <= count; ++rank) {
        const std::string number = std::to_string(rank);
        files.push_back(prefix + std::string(digits - number.size(), '0') + number +
                        (format == formats::StructureFormat::Mmcif ? ".cif" : ".pdb"));
    }
    return files;
}

} // namespace hosts
