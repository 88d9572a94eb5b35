// Curves through points and near curves: interpolation and least squares on given knots.
#pragma once
#include <string>
#include <vector>

#include "nurbs/curve.h"

namespace mirk::nurbs {

/// The curve through the points, of which a periodic one gets each point once. Degree 1 joins them; degree 3 is the
/// natural spline (no curvature at its ends); other degrees need more points than the degree and take averaged knots.
/// Parameters are chord lengths, or 0, 1, 2 ... if `uniform`. Returns null and says why if the points do not allow it.
Ref<CurveBody> interpolate(const std::vector<MPoint>& points, int degree, bool periodic, bool uniform, std::string& why);

/// Least-squares approximation of a curve on a new knot vector over [start, end] of the given knots, on which the old
/// domain is mapped linearly. Open results keep the end points. The new curve is not rational. A curve that the new knots
/// can represent comes back exactly.
Ref<CurveBody> fitCurve(const CurveView& curve, const std::vector<double>& knots, int degree, bool periodic);

/// Largest distance between two curves at corresponding parameters (domains mapped linearly), by sampling.
double deviation(const CurveView& a, const CurveView& b);

/// Solves the CV rows whose sections stand at the Greville parameters: `sections` is n rows of `width` points, one a CV.
/// Returns the CVs in the same layout; the sections themselves if the collocation matrix is singular.
std::vector<MVector> interpolateSections(const Knots& k, const std::vector<MVector>& sections, size_t width);

/// Greville abscissa of a CV: the mean of its `degree` knots.
double greville(const Knots& k, int cv);

}  // namespace mirk::nurbs
