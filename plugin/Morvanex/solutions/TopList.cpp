#include "solutions/TopList.h"

#include <algorithm>
#include <iterator>

namespace {

std::size_t Kept(int size) {
    return std::size_t(std::max(size, 0));
}

} // namespace

void weed(std::list<SolutionScore> &list, int size) {
    const std::size_t kept = Kept(size);
    if (list.size() < kept) {
        qDebug("Solutions list is shorter than requested size, not weeding.");
        return;
    }
    list.sort();
    list.erase(list.begin(), std::prev(list.end(), std::ptrdiff_t(kept)));
}

bool solutions::NeedsWeeding(const std::list<SolutionScore> &list, int size) {
    return list.size() > 2 * Kept(size);
}
