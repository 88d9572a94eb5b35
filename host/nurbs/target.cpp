#include "nurbs/target.h"

namespace mirk {

template <>
void OpenNurbs<CurveData, CurveSource>::changed() const
{
    if (source)
        source->curveChanged();
}

template <>
void OpenNurbs<SurfaceData, SurfaceSource>::changed() const
{
    if (source)
        source->surfaceChanged();
}

OpenCurve openCurve(const MObject& object, bool write)
{
    if (auto* data = objectAs<CurveData>(object))
        return {Ref<CurveData>(data), nullptr};
    if (auto* source = dynamic_cast<CurveSource*>(ObjectAccess::get(object)))
        return {write ? source->curveForWrite() : source->curveForRead(), source};
    return {};
}

OpenSurface openSurface(const MObject& object, bool write)
{
    if (auto* data = objectAs<SurfaceData>(object))
        return {Ref<SurfaceData>(data), nullptr};
    if (auto* source = dynamic_cast<SurfaceSource*>(ObjectAccess::get(object)))
        return {write ? source->surfaceForWrite() : source->surfaceForRead(), source};
    return {};
}

bool isCurve(const MObject& object)
{
    return objectAs<CurveData>(object) || dynamic_cast<CurveSource*>(ObjectAccess::get(object));
}

bool isSurface(const MObject& object)
{
    return objectAs<SurfaceData>(object) || dynamic_cast<SurfaceSource*>(ObjectAccess::get(object));
}

NurbsSpace::NurbsSpace(MSpace::Space space, const GeometryData& data, const WorldMatrix* world)
{
    if (space != MSpace::kWorld)
        return;
    const GeometryBody& body = data.geometry();
    double              m[4][4];
    if (world)
        world->get(m);
    else if (data.transformed && !body.identity)
        std::memcpy(m, body.matrix, sizeof m);
    else
        return;
    *this = NurbsSpace(m);
}

NurbsSpace::NurbsSpace(const double matrix[4][4]) : out(matrix)
{
    active = out != MMatrix::identity;
    if (active)
        in = out.inverse();
}

void assignGeometry(CurveBody& to, const CurveBody& from)
{
    to.degree = from.degree;
    to.form = from.form;
    to.is2D = from.is2D;
    to.rational = from.rational;
    to.cvs = from.cvs;
    to.knots = from.knots;
}

void assignGeometry(SurfaceBody& to, const SurfaceBody& from)
{
    to.degreeU = from.degreeU;
    to.degreeV = from.degreeV;
    to.formU = from.formU;
    to.formV = from.formV;
    to.rational = from.rational;
    to.cvsU = from.cvsU;
    to.cvsV = from.cvsV;
    to.cvs = from.cvs;
    to.knotsU = from.knotsU;
    to.knotsV = from.knotsV;
}

}  // namespace mirk
