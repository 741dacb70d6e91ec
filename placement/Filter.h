#pragma once

#include "placement/Spectrum.h"

namespace placement {

/// The filters under which a model's score is a sum over its points.
///
/// For a map F = a·F_model + background with the power spectrum S, the log-likelihood ratio of a pose against
/// "something else is here" is the whitened matched filter, the sum of conj(F_model)·a·F/S over all waves
/// (Turin 1960; for electron density Read 2001 and McCoy et al. 2007 weigh by the same ratio). Where a
/// model is a sum of points with the radial power Pm and the map's share of signal is C, the amplitude is
/// a = sqrt(C·S/Pm), so that
///
///     score(R, t) = sum over the points of w_j·f(R·r_j + t),   f = inverse transform of h·F,
///     h(k) = c·sqrt(C / (S·Pm)).
///
/// C is not measured but assumed, so that masks and post-processing do no harm: SSNR 1/3 at the stated
/// resolution, with a Gaussian fall-off.

/// C(x), the share of signal in the map's power at x = k·resolution: 1/(1 + 3·exp(3·(x² - 1))).
double SignalShare(double x);

/// c(x): 1 up to 1.3, then half a cosine down to 0 at 1.6.
double CutOff(double x);

/// h(k), for a model whose points have the radial power `modelPower`.
RadialCurve MatchedFilter(const Spectrum &spectrum, const RadialCurve &modelPower);

/// The form without the model, k·sqrt(C/S): one filtered map serves every model. For a level of the search of
/// the width sigma (Å) it is narrowed by exp(-(sigma² - sigma0²)·(2πk)²/2), sigma0 = 0.3 resolutions.
RadialCurve LevelFilter(const Spectrum &spectrum, double sigma);

/// The form in which every wave is as strong as its share of signal, sqrt(C/S), narrowed likewise: under it a
/// map is laid upon itself.
RadialCurve WhiteFilter(const Spectrum &spectrum, double sigma);
/// exp(-sigma²·(2πk)²/2): a Gaussian of the width sigma (Å), up to the wavenumber `end` (1/Å) and 0 from
/// there.
RadialCurve GaussianFilter(double sigma, double end);

/// Voxels of about `wanted` Å, or as coarse as the shortest waves of a filtered map allow.
double LevelVoxel(const Spectrum &spectrum, double wanted);

/// Scales the values so that their mean square is 1; all zeros stay.
void ScaleToUnitPower(Volume &volume, unsigned threads);

} // namespace placement
