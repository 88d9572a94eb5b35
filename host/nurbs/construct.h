// Curves and surfaces made from others: rebuilt curves and extruded surfaces. Pure functions on bodies; what they return
// has no matrix and no object groups. Errors are null and a text that says why.
#pragma once
#include <string>

#include "nurbs/curve.h"

namespace mirk::nurbs {

enum class Rebuild { uniform = 0, reduceSpans = 1, matchKnots = 2, noMultipleKnots = 3, curvature = 4 };

struct RebuildOptions
{
    Rebuild          type = Rebuild::uniform;
    int              spans = 4;            ///< uniform only; 0 keeps the number
    int              degree = 3;           ///< uniform, reduceSpans and curvature; 0 keeps the degree
    bool             multipleEndKnots = false;   ///< ends of noMultipleKnots; a periodic curve becomes an open one with them
    bool             keepControlPoints = false;  ///< uniform only: the CVs stay and get uniform knots
    int              keepRange = 1;        ///< parameters: 0 from 0 to 1, 1 those of the curve, 2 from 0 to the spans
    double           tolerance = 0.01;     ///< reduceSpans and curvature
    const CurveBody* match = nullptr;      ///< matchKnots: takes its degree, knots and form
};

/// noMultipleKnots keeps degree and CVs of a curve whose inner knots are simple already and whose ends are as asked; a
/// periodic curve opened by multiple end knots has as many CVs as it had with the repeated ones.
Ref<CurveBody> rebuildCurve(const CurveBody& curve, const RebuildOptions& options, std::string& why);

enum class Extrude { distance = 0, flat = 1, tube = 2 };

struct ExtrudeOptions
{
    Extrude type = Extrude::tube;
    MVector direction{0, 1, 0};   ///< distance; need not be of length 1, must not be zero
    double  length = 1;           ///< distance
    int     degreeAlongLength = 1;///< distance: 1 or 3
    bool    fixedPath = true;     ///< the surface stands at the path; else at the profile
    MVector pivot;                ///< point of the profile that goes along the path if fixedPath
    bool    useProfileNormal = false;   ///< tube with fixedPath: the profile's plane is turned square to the path's start
    double  rotation = 0;         ///< tube: turn about the path over its whole length, in radians
    double  scale = 1;            ///< tube: size at the end of the path
};

/// U runs along the profile, V along the distance or path; a ribbon of degree 1 has two CVs for each of the profile's, in
/// sequence. `path` is needed by flat and tube.
Ref<SurfaceBody> extrude(const CurveBody& profile, const CurveBody* path, const ExtrudeOptions& options, std::string& why);

/// The curve turned round: last CV first, the same domain.
void reverse(CurveBody& curve);

}  // namespace mirk::nurbs
