// Evaluation, closest point and arc length of curves. Functions take a view of a checked curve (see buildCurve) and
// work in the space of its CVs.
#pragma once
#include <maya/MPoint.h>

#include "nurbs/basis.h"
#include "nurbs/nurbs_data.h"

namespace mirk::nurbs {

/// What evaluation reads of a curve; valid as long as the buffers are.
struct CurveView
{
    const MPoint* cvs = nullptr;   ///< homogeneous
    Knots         k;
    bool          periodic = false;

    CurveView() = default;
    explicit CurveView(const CurveBody& body)
        : cvs(std::as_const(*body.cvs).data()),
          k{std::as_const(*body.knots).data(), body.cvCount(), body.degree}, periodic(body.form == NurbsForm::periodic) {}
    bool empty() const { return k.cvCount == 0; }
};

/// Position and derivatives by the parameter.
struct CurveDerivatives { MVector p, d1, d2; };

/// Parameters outside the domain are wrapped on a periodic curve, clamped on others.
MVector          pointAt(const CurveView& c, double u);
CurveDerivatives derivativesAt(const CurveView& c, double u, int order = 2);
/// Unit tangent; where the first derivative vanishes, the direction towards the side that has one.
MVector          tangentAt(const CurveView& c, double u);
/// Unit normal: towards the centre of curvature, some direction at a right angle to the tangent where it is straight.
MVector          normalAt(const CurveView& c, double u);

/// Parameter of the nearest point. Sampling of every span, then Newton steps from the best samples, kept in their
/// brackets.
double closestParam(const CurveView& c, const MVector& point);

/// Arc length between two parameters, within the tolerance.
double arcLength(const CurveView& c, double from, double to, double tolerance = 1e-6);
double arcLength(const CurveView& c, double tolerance = 1e-6);
/// Parameter at a distance along the curve from its start, clamped to its ends.
double paramAtLength(const CurveView& c, double length, double tolerance = 1e-6);

/// True if all CVs lie in one plane; a straight curve lies in many, of which one is given.
bool isPlanar(const CurveView& c, MVector* normal);

}  // namespace mirk::nurbs
