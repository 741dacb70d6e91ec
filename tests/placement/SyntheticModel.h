#pragma once

#include "placement/PointModel.h"
#include "placement/Volume.h"

#include <random>

/// A compact chain of residues 3.8 Å apart, as a random walk that is drawn back to its middle: four backbone
/// atoms and up to four of a side chain for each. The same seed gives the same model.
std::vector<placement::ModelAtom> RandomModel(std::size_t residues, unsigned seed);

/// The atoms after x' = rotation·x + translation.
std::vector<placement::ModelAtom> Moved(std::vector<placement::ModelAtom> atoms,
                                        const placement::Matrix &rotation,
                                        const placement::Point &translation);

/// The density of the atoms at a resolution (Gaussians of 0.225 resolutions, electrons as weights) in a box
/// that reaches beyond them by `margin` Å; voxels in Å along x, y, z.
placement::Volume DensityOf(const std::vector<placement::ModelAtom> &atoms, double resolution,
                            const std::array<double, 3> &voxel, double margin);

/// Adds that density to a map; what lies outside of it is left out.
void AddDensity(const std::vector<placement::ModelAtom> &atoms, double resolution, placement::Volume &map);

/// Adds normally distributed noise, of the deviation of the map's values times `part`.
void AddNoise(placement::Volume &map, double part, unsigned seed);

/// A rotation drawn evenly from all.
placement::Matrix RandomRotation(std::mt19937 &random);
