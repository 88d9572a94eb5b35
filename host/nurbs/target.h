// How function sets and iterators reach a curve or surface: data objects, or shape nodes, perhaps seen along a path.
#pragma once
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>

#include "data/mobject.h"
#include "mesh/target.h"
#include "nurbs/nurbs_data.h"

namespace mirk {

/// A curve or surface opened for one call, by `openCurve` or `openSurface`. After writing call changed().
template <class DataType, class Source>
struct OpenNurbs
{
    Ref<DataType> data;
    Source*       source = nullptr;

    explicit operator bool() const { return bool(data); }
    auto&         body() const { return *data->body; }
    void          changed() const;
};
using OpenCurve = OpenNurbs<CurveData, CurveSource>;
using OpenSurface = OpenNurbs<SurfaceData, SurfaceSource>;

OpenCurve   openCurve(const MObject& object, bool write = false);
OpenSurface openSurface(const MObject& object, bool write = false);
/// True if the object holds or offers a curve (surface), be it empty.
bool isCurve(const MObject& object);
bool isSurface(const MObject& object);

/// From object space to another and back. Homogeneous points go through as they are.
struct NurbsSpace
{
    bool    active = false;
    MMatrix out, in;

    NurbsSpace() = default;
    /// The matrix of the path, or that of a transformed shell, for world space; nothing for other spaces.
    NurbsSpace(MSpace::Space space, const GeometryData& data, const WorldMatrix* world);
    explicit NurbsSpace(const double matrix[4][4]);

    MPoint  pointOut(const MPoint& p) const { return active ? p * out : p; }
    MPoint  pointIn(const MPoint& p) const { return active ? p * in : p; }
    MVector positionOut(const MVector& p) const { return active ? MVector(MPoint(p) * out) : p; }
    MVector positionIn(const MVector& p) const { return active ? MVector(MPoint(p) * in) : p; }
    MVector vectorOut(const MVector& v) const { return active ? v * out : v; }
};

/// The geometry of a body in place of another's; groups and matrix of the target stay.
void assignGeometry(CurveBody& to, const CurveBody& from);
void assignGeometry(SurfaceBody& to, const SurfaceBody& from);

}  // namespace mirk
