#pragma once

#include <cstddef>

/// Every fixed number of the method, each with its reason. What follows from theory stands where it is used;
/// docs/placement.md tells what half and twice these values do. Lengths in units of the resolution are
/// written as such: "resolutions".

namespace placement {

// The map's spectrum and the filter

/// Padding between opposite faces of the box, resolutions: farther than the filter's kernel reaches.
constexpr double padding = 0.8;
/// Part of the strongest shell's power that is added to all before whitening: 50 dB, below which a shell
/// holds rounding, not density.
constexpr double powerFloor = 1e-5;
/// SSNR 1/3 at the stated resolution is FSC 0.143: C = 1 / (1 + 3) there (Rosenthal & Henderson 2003).
constexpr double noisePerSignal = 3;
/// How steeply the signal falls off about the stated resolution, in the exponent of C: a Gaussian envelope.
constexpr double signalFallOff = 3;
/// Wavenumbers, in 1/resolution, between which the filter is let down to 0. Real maps hold information beyond
/// the resolution that they state.
constexpr double cutBegin = 1.3, cutEnd = 1.6;
/// Where the map itself is let down to 0 before its faces are joined, in 1/resolution: beyond the filter, so
/// that noise of cut faces stays out.
constexpr double bandBegin = 1.6, bandEnd = 1.8;
/// Voxels that hold the band, resolutions: 1 / (2 · 1.8), and a little to spare.
constexpr double bandVoxel = 0.27;
/// Part of the Nyquist frequency up to which a map's waves are used: interpolation of whoever made the map
/// spoils the last ones.
constexpr double usableNyquist = 0.93;
/// Least power of a model's points in a shell, of that of independent points: a sum over few points may
/// vanish by chance.
constexpr double minModelPower = 0.05;
/// A map is sharpened without a low-pass, and nothing is said of confidence, where more than this share of
/// its power lies beyond the filter's end, and waves there are this many times stronger than those just
/// before it: those of white noise are as strong, those of a map grow weaker.
constexpr double maxSharpShare = 0.5, maxSharpness = 2;

// The levels of the search

/// Width (standard deviation) of the finest level, resolutions: the filter as it is.
constexpr double finestWidth = 0.3;
/// Width of the coarse level and its voxels, scan resolutions: the widest that still tells poses apart.
constexpr double coarseWidth = 0.45, coarseVoxel = 0.45;
/// Voxels of the levels in between and of the finest one, of the level's width: linear interpolation between
/// them costs the finest no hundredth of its score.
constexpr double levelVoxel = 1, finestVoxel = 0.83;
/// Maps of more voxels than this are searched in voxels that are no finer than their own: what places score
/// then differs by a few percent, and the search takes three times the map's memory instead of four.
constexpr std::size_t largeMap = 1 << 20;
/// Voxels need not be finer than this part of the shortest wave that the map has.
constexpr double voxelPerWave = 0.33;
/// Levels wider than this, Å, see no more than the scan's points; residues are 3.8 Å apart.
constexpr double pointWidth = 1.6;
/// Each level is this much narrower than the one before: a maximum stays within the next one's reach.
constexpr double levelRatio = 0.6;
/// A scan at a resolution r costs r^-6, so that it is never finer than this, Å …
constexpr double finestScan = 10;
/// … nor than this part of the radius of gyration (large models are found by their shape) …
constexpr double scanPerRadius = 0.25;
/// … but small models need more than a handful of cells: at least 100 in the volume of a protein, of 135 Å³
/// for each residue.
constexpr double scanCells = 100, residueVolume = 135;

// What is kept for the next model

/// Bytes of filtered maps and of spectra that are kept: those of a box of 300 Å at 6 Å.
constexpr std::size_t keptFiltered = std::size_t(64) << 20, keptSpectra = std::size_t(64) << 20;

// The scan

/// Step of the rotation set: a point at the radius of gyration moves by this many widths of the level.
constexpr double rotationStep = 1.8;
/// Its bounds, degrees: small models still need every turn, and long thin ones, which alone would need more
/// than the first, are capped in cost.
constexpr double minRotationStep = 6, maxRotationStep = 30;
/// Points that the scan sums, at most; 25 lose cases, 50 do not.
constexpr std::size_t scanPoints = 80;
/// Levels of a voxel, and the deviations from the mean at which they end: 17 of them fit a byte.
constexpr unsigned scanLevels = 15;
constexpr double scanClip = 2;
/// Centres lie where the map, smoothed by the larger of these (scan resolutions, radii of gyration), …
constexpr double maskWidth = 0.3, maskWidthPerRadius = 0.4;
/// … lies this part of the way from its lowest tenth to its maximum. True ones lie at 0.58 and above.
constexpr double maskHeight = 0.15, maskBase = 0.1;
/// Pairs of rotation and place that the scan keeps, and distinct poses that are refined.
constexpr std::size_t keptCandidates = 30000, refinedPoses = 1000;

// Distinct places and the refinement

/// Turns of a model of several chains are equal where they lay its chains upon one another with less than
/// this RMSD, Å: copies of a chain in one structure differ by half as much.
constexpr double equalTurnRmsd = 2;
/// A place overlaps a better one where more than this part of its points lies in cells of 4 Å that the
/// better one's points lie in as well. Of two turns in one place a third and more do, of neighbours in
/// contact a few hundredths.
constexpr double maxOverlap = 0.2;
/// Edge of those cells, Å: about half of those inside a protein hold one of its points.
constexpr double overlapCell = 4;

/// Two poses are the same where their RMSD is below this, resolutions.
constexpr double samePlace = 0.5;
/// Poses that fell into one another while they were refined, widths of the level and resolutions.
constexpr double mergedAtLevel = 0.5, mergedAtEnd = 0.25;
/// Part of the poses that outlives each level.
constexpr double survivors = 0.6;
/// Steps of the minimiser on a level, and at the end.
constexpr int levelSteps = 8, finalSteps = 25;
/// Length of the first step and of the longest one, of the width of the level before; at the end,
/// resolutions.
constexpr double firstLevelStep = 0.35, longestLevelStep = 1;
constexpr double firstFinalStep = 0.05, longestFinalStep = 0.3;
/// Poses that are refined to the end; the distinct ones of them make the background.
constexpr std::size_t finalPoses = 150;

// Known neighbours

/// Width of the Gaussian that an atom of a neighbour becomes, resolutions: that of a map of this resolution
/// by its usual definition, 1 / (π·√2). The fitted amplitude mends what is different, so that at half of it
/// as many places are found.
constexpr double neighbourWidth = 0.225;
/// Where that Gaussian ends, in its widths: it has fallen to 0.0003.
constexpr double neighbourReach = 4;
/// Within this distance of a neighbour's residues no place is rewarded, Å: nearer than the backbones of two
/// chains come. At half of it 164 of 165 runs find their place as well, but 73 instead of 75 are sure of it;
/// at twice it 158 and 61, since true places lie in what is kept free.
constexpr double keptFree = 4;

// Assemblies

/// Residues whose centres are nearer than these touch, or clash, Å: the centres of two chains' backbones come
/// no nearer than 3.5 Å to one another.
constexpr double contactDistance = 8, clashDistance = 3;
/// Two places exclude one another where more than this part of one's residues clash: true neighbours that are
/// placed 1 Å off, or bent by 1.5 Å, have a few percent, of two models in one place half the residues clash.
constexpr double maxClashShare = 0.1;

/// ln of what a connection that holds adds to the odds of a set of places: more than two sure places of one
/// part mostly differ by, less than a part that is placed.
constexpr double connectionOdds = 20;
/// Another part fits a place as well where the odds are more than this that it is the one: 1 to 19, as
/// `declared` has it.
constexpr double rivalOdds = 1.0 / 19;
/// A copy of which less than this part lies in the map's box is not placed: what is cut off cannot be seen.
constexpr double minInBox = 0.75;
/// Places found beside other parts that are judged once more among all places of the map.
constexpr std::size_t unsurePlaces = 5;
/// Residues nearer than this to one of another body are pushed apart while bodies are refined together, Å, by
/// a penalty of this many standard deviations of the filtered map at each of their electrons where they meet.
constexpr double softDistance = 4, clashStrength = 30;
/// How often each body is refined among the others.
constexpr std::size_t jointSweeps = 2;

// A model that stands nearly right

/// How far from its own place other starts are tried: Å (or half the model's radius) and degrees.
constexpr double nearbyShift = 10, nearbyTurn = 30;
/// Step between the shifts, widths of the coarse level, and the starts that are refined.
constexpr double nearbyStep = 1;
constexpr std::size_t nearbyPoses = 30;

// A map as the model

/// Voxels whose density becomes points, resolutions of the map: fine enough that the waves that they stand
/// for beside their own lie behind the filter's end. And the number of points, at most.
constexpr double mapPointVoxel = 0.31;
constexpr std::size_t mapPoints = 10000;
/// Voxels of both maps where they are compared as a whole, resolutions. Values below this part of the largest
/// are left out: most of a box is empty. Of the moved one the voxels are larger where they would be more than
/// this many: over many, what single ones are off evens out.
constexpr double mapVoxel = 0.08, emptyVoxel = 0.002;
constexpr double comparedVoxels = 1e6;
/// A map is sampled at other places from a lattice this much finer than its own: linear interpolation takes
/// less than a hundredth of waves of three voxels then.
constexpr double resampledVoxel = 0.6;

// A map of dark density

/// Extremes below the median this many times as far off as those above it tell of inverted contrast; noise
/// alone has them equally far.
constexpr double invertedRatio = 2;

// The resolution, where it is estimated

/// Bounds of the estimate, Å.
constexpr double finestEstimate = 2, coarsestEstimate = 60;
/// What trimming and padding go by meanwhile, Å.
constexpr double resolutionGuess = 10;
/// Waves longer than this, Å, tell of the shape of what stands in the map.
constexpr double longestSpectralWave = 25;
/// e^-3: a Gaussian density whose transform has fallen to 1/e at the resolution reaches e^-2 there, and a
/// search loses less by noise beyond the resolution than by signal that it leaves out.
constexpr double spectralFallOff = 0.05;

// Trimming

/// A Gaussian of the width 1 has fallen to 0.0001 at this wavenumber; of the width of the mask it is sampled
/// this finely.
constexpr double gaussianEnd = 0.68, trimVoxel = 0.7;
/// A map is trimmed to the part that matters where that is less than this share of it.
constexpr double maxTrimmedShare = 0.67;

// A map's own symmetry

/// Density lies where the map, smoothed by this many resolutions, stands out.
constexpr double selfMaskWidth = 0.3;
/// Points that a map is laid upon itself by, at most about, and those that the scan sums.
constexpr double selfPoints = 2500;
constexpr std::size_t selfScanPoints = 300;
/// Poses that are refined: the best of the scan, and even ones, which show what chance does.
constexpr std::size_t selfPoses = 500, selfSpread = 300;
/// Motions that remain: those of the largest group, and as many wrong ones as a tail is fitted to.
constexpr std::size_t selfMotions = 60 + 150;
/// The best motions that lead to guesses.
constexpr std::size_t guessingMotions = 40;
/// The highest fold and the longest way along a helix that are guessed from one motion.
constexpr unsigned maxGuessedFold = 24;
constexpr int maxGuessedSteps = 4;
/// How far an angle may be from that of an operator, radians.
constexpr double maxGuessAngle = 0.2;
/// A guess is worth a look where its operators' mean score is this part of the best motion's.
constexpr double minSupport = 0.5;
/// Guesses of one kind that are refined.
constexpr std::size_t guessesOfKind = 3;
/// The weakest operator of a group is at least this strong, of its strongest one: those of a group are equal
/// but for noise, and a group that is too large has some that are none.
constexpr double weakestOperator = 0.75;
/// Correlations above this are equal: what is left is noise and the lattice.
constexpr double surelyEqual = 0.9;
/// A map is correlated with itself over at least this part of it.
constexpr double minOverlap = 0.5;
/// A helix climbs at least this much in a turn, resolutions.
constexpr double minPitch = 0.5;
/// How far an axis that was found may be from one that is held, radians, and its twist, degrees; the step of
/// turns about a held one.
constexpr double heldAxis = 0.17, heldTwist = 8, heldStep = 0.05;
/// Motions between places that are looked at, and the part of a symmetry's copies that are among the places.
constexpr std::size_t maxPlaceMotions = 400;
constexpr double minPlaceShare = 0.7;
/// Voxels in which a map is averaged over its copies, resolutions, and how many of them there may be, 800 MB.
/// Linear interpolation between them leaves less than a hundredth of a wave as long as the resolution.
constexpr double averageVoxel = 0.16, maxAverageVoxels = 2e8;
/// What a map shows with this probability is used where sure places say the same.
constexpr double likelySymmetry = 0.5;
/// Steps along a helix between places that say the same.
constexpr int farthestSteps = 20;
/// A copy lies in the map where this part of its points does.
constexpr double wholeCopy = 0.95;
/// Steps along a helix that are correlated, to either side.
constexpr int helixReach = 2;

// The confidence

/// Distinct places that the tail of the wrong ones is fitted to: all that are refined to the end but the
/// first fifth, so that up to 29 equal copies do no harm. Fits to fewer places extrapolate worse.
constexpr std::size_t backgroundPlaces = finalPoses, tailFrom = 30;
/// p = 1 / (1 + 8·E): 0.95 at ln E = -5. In 1468 searches in made maps, two in five for models that were not
/// there, right answers are as frequent as 1 / (1 + 3·E) says, with no other exponent of E than 1. Of the
/// models that people try, fewer belong to their map, and real maps differ from made ones.
constexpr double wrongPerExpected = 8;
/// Of the two hands likewise, q = 3E / (1 + 3E): here the tail as it is, since the question has two answers,
/// one of which is right. At 60 a tenth of the hands of right places stayed untold, at 1 as many were told as
/// at 3; none was told wrongly.
constexpr double handWrongPerExpected = 3;
/// Centres of other turns in the same hole lie within this many radii of gyration.
constexpr double sameHole = 0.7;
/// The probability from which a place is called found.
constexpr double declared = 0.95;
/// The place alone, without a turn, is called sure from here on: that names no pose, and has to be worth it.
constexpr double declaredPlace = 0.99;
/// A model is ruled out by the filter without it where its best place has so many wrong ones expected to
/// score as well: 150 times as many as a sure one. Of 972 places that the matched filter found none had less
/// than a tenth of that number by the other filter.
constexpr double ruledOut = 1;
/// Other turns weigh this much while the place itself is sure: the place is told, the turn is not.
constexpr double unsureTurn = 0.05;

} // namespace placement
