// Evaluation, closest point and area of surfaces. Functions take a view of a checked surface (see buildSurface) and
// work in the space of its CVs.
#pragma once
#include <maya/MPoint.h>

#include "nurbs/basis.h"
#include "nurbs/nurbs_data.h"

namespace mirk::nurbs {

/// What evaluation reads of a surface; valid as long as the buffers are.
struct SurfaceView
{
    const MPoint* cvs = nullptr;   ///< homogeneous, V running fastest
    Knots         u, v;
    bool          periodicU = false, periodicV = false;

    SurfaceView() = default;
    explicit SurfaceView(const SurfaceBody& b)
        : cvs(std::as_const(*b.cvs).data()), u{std::as_const(*b.knotsU).data(), b.cvsU, b.degreeU},
          v{std::as_const(*b.knotsV).data(), b.cvsV, b.degreeV}, periodicU(b.formU == NurbsForm::periodic),
          periodicV(b.formV == NurbsForm::periodic) {}
    bool empty() const { return u.cvCount == 0; }
};

struct SurfaceDerivatives { MVector p, du, dv, duu, dvv, duv; };

/// Parameters outside the domain are wrapped in a periodic direction, clamped in others.
MVector            pointAt(const SurfaceView& s, double u, double v);
SurfaceDerivatives derivativesAt(const SurfaceView& s, double u, double v, int order = 2);
/// Unit normal, dU x dV; at a pole that of the surface beside it.
MVector            normalAt(const SurfaceView& s, double u, double v);

struct UV { double u, v; };
/// Parameters of the nearest point: sampling of every span pair, then Newton from the best samples.
UV closestParams(const SurfaceView& s, const MVector& point);

/// Surface area, span pair by span pair with the Gauss rule, split until halves agree.
double area(const SurfaceView& s, double tolerance = 1e-4);

}  // namespace mirk::nurbs
