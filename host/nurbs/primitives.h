// The standard curves and surfaces. Sizes in scene units; no matrix, no groups. Null with a text for sizes and counts that
// make no geometry.
#pragma once
#include <string>

#include <maya/MVector.h>

#include "nurbs/nurbs_data.h"

namespace mirk::nurbs {

struct Placement
{
    MVector center;
    MVector axis{0, 1, 0};
};

/// A circle about the axis through cubic spans (degree 3, which meets it at the span ends) or straight ones. A sweep of a
/// full turn, 2 pi, gives a periodic curve, less an open one.
Ref<CurveBody> circle(const Placement& at, double radius, double sweep, int degree, int sections, std::string& why);

/// A curve on CVs: with given knots, or even ones when there are none. A periodic curve that does not repeat its first CVs
/// gets them added.
Ref<CurveBody> curveFromCvs(std::vector<MPoint> cvs, std::vector<double> knots, int degree, bool periodic, bool rational,
                            std::string& why);

/// A profile turned about an axis through a point; U runs along the profile, V about the axis.
Ref<SurfaceBody> revolve(const CurveBody& profile, const MVector& pivot, const MVector& axis, double startAngle, double sweep,
                         int degree, int sections, std::string& why);

Ref<SurfaceBody> plane(const Placement& at, double width, double lengthRatio, int degree, int patchesU, int patchesV,
                       std::string& why);
/// One side of a box, outward: top, bottom, left, right, front, back as the axis points up. Ratios to the width.
Ref<SurfaceBody> boxSide(const Placement& at, double width, double lengthRatio, double heightRatio, int degree, int patchesU, int patchesV,
                         int side, std::string& why);
Ref<SurfaceBody> sphere(const Placement& at, double radius, double startAngle, double sweep, int degree, int sections,
                        int spans, std::string& why);
Ref<SurfaceBody> cylinder(const Placement& at, double radius, double heightRatio, double sweep, int degree, int sections,
                          int spans, std::string& why);
Ref<SurfaceBody> cone(const Placement& at, double radius, double heightRatio, double sweep, int degree, int sections, int spans,
                      std::string& why);
/// `heightRatio` is that of the small radius to the large one.
Ref<SurfaceBody> torus(const Placement& at, double radius, double heightRatio, double sweep, double minorSweep, int degree,
                       int sections, int spans, std::string& why);

}  // namespace mirk::nurbs
