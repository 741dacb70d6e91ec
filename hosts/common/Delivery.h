#pragma once

#include "formats/structures/StructureFile.h"

#include <functional>
#include <string>
#include <vector>

namespace hosts {

/// The outcome of writing the files that were asked for.
struct Delivery {
    std::vector<std::string> written; ///< what was written and where, one line each
    std::vector<std::string> errors;
};

/// Writes files one after the other, also after one that fails.
class DeliveryWriter {
public:
    /// Runs `write`, which writes the file as a whole or throws FileError. `what` describes the content.
    void Write(const std::string &file, const std::string &what, const std::function<void()> &write);
    const Delivery &Result() const { return m_delivery; }

private:
    Delivery m_delivery;
};

/// Names of `count` models, the best first: the prefix, the rank with as many digits as the last one has, and
/// the format's extension.
std::vector<std::string> RankedFiles(const std::string &prefix, int count, formats::StructureFormat format);

} // namespace hosts
