#include "hosts/common/SymmetryOptions.h"

#include "hosts/common/ParameterError.h"

#include "formats/files/FileError.h"
#include "formats/structures/AssemblyOperators.h"
#include "placement/PlaceSymmetry.h"

using namespace placement;

namespace hosts {

namespace {

/// Three points in general position: what stands for the part of a structure that its operators copy.
PointModel MarkerModel() {
    return MakePointModel(
        {{{31, 12, 7}, 1, 0, 0, true}, {{38, 17, 9}, 1, 1, 0, true}, {{33, 21, 16}, 1, 2, 0, true}});
}

} // namespace

std::optional<Symmetry> ReadAskedSymmetry(const std::string &text) {
    if (text == "auto")
        return std::nullopt;
    if (text == "H" || text == "h")
        return Symmetry{SymmetryKind::Helical, 1};
    const std::optional<Symmetry> symmetry = ReadSymmetry(text);
    if (!symmetry || symmetry->IsNone())
        throw ParameterError(
            "symmetry",
            text + " is not auto, Cn or Dn with n from 2 to 60, T, O, I, H or H:RISE,TWIST in Å and degrees");
    return symmetry;
}

SymmetryRequest ReadSymmetryRequest(const SymmetryOptions &options) {
    SymmetryRequest request = options.request;
    if (!options.file)
        return request;
    const PointModel marker = MarkerModel();
    std::vector<Pose> places;
    for (const formats::AssemblyOperator &op : formats::ReadAssemblyOperators(*options.file)) {
        const auto &t = op.translation;
        places.push_back(Moved({op.rotation, {t[0], t[1], t[2]}}, {RotationBy({}), marker.centre}));
    }
    // Files have their operators to a thousandth of an Å and more.
    constexpr double resolution = 1;
    const PlaceSymmetry found = FindPlaceSymmetry(marker, places, resolution);
    const std::string number = std::to_string(places.size());
    if (places.size() == 1)
        throw formats::FileError(*options.file, "_pdbx_struct_assembly_gen",
                                 "the first assembly has one operator, and so no symmetry");
    if (found.symmetry.IsNone() || found.share < 0.999 ||
        (!found.symmetry.IsHelical() && OperatorsOf(found.symmetry).size() != places.size()))
        throw formats::FileError(*options.file, "_pdbx_struct_assembly_gen",
                                 "the " + number +
                                     " operators of the first assembly are no Cn, Dn, T, O or I "
                                     "and no helix");
    request.symmetry = found.symmetry;
    request.frame = found.frame;
    return request;
}

} // namespace hosts
