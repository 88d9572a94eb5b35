#include "spatial/geometryPoints.h"

#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "core/arrays.h"

namespace {

bool isShape(const MDataHandle& geometry)
{
    const MFnData::Type type = geometry.type();
    return type == MFnData::kMesh || type == MFnData::kNurbsCurve || type == MFnData::kNurbsSurface;
}

} // namespace

std::vector<double> worldPoints(MDataHandle& geometry)
{
    if (geometry.type() == MFnData::kVectorArray) {
        const ArrayView view = viewArray(geometry.data());
        return {view.doubles, view.doubles + 3 * static_cast<std::size_t>(view.length)};
    }
    std::vector<double> xyz;
    MPointArray         points;
    if (!isShape(geometry) || !MItGeometry(geometry).allPositions(points, MSpace::kWorld))
        return xyz;
    xyz.resize(3 * static_cast<std::size_t>(points.length()));
    double* to = xyz.data();
    for (unsigned int i = 0; i < points.length(); ++i) {
        const MPoint& p = points[i];
        *to++ = p.x;
        *to++ = p.y;
        *to++ = p.z;
    }
    return xyz;
}

void setWorldPoints(MDataHandle& geometry, const std::vector<double>& xyz)
{
    const auto    count = static_cast<unsigned int>(xyz.size() / 3);
    const double* from = xyz.data();
    if (geometry.type() == MFnData::kVectorArray) {
        MVectorArray vectors;
        vectors.setLength(count);
        for (unsigned int i = 0; i < count; ++i, from += 3)
            vectors[i] = MVector(from[0], from[1], from[2]);
        geometry.set(MFnVectorArrayData().create(vectors));
    } else if (isShape(geometry)) {
        MPointArray points;
        points.setLength(count);
        for (unsigned int i = 0; i < count; ++i, from += 3)
            points[i] = MPoint(from[0], from[1], from[2]);
        MItGeometry(geometry, false).setAllPositions(points, MSpace::kWorld);
    }
}

bool appendIndices(const MObject& component, int pointCount, std::vector<int>& indices)
{
    MFnSingleIndexedComponent fn;
    MObject                   object = component;
    if (component.isNull() || !fn.setObject(object))
        return false;
    if (fn.isComplete()) {   // counted here: the component itself may claim any number
        for (int i = 0; i < pointCount; ++i)
            indices.push_back(i);
        return true;
    }
    MIntArray elements;
    fn.getElements(elements);
    for (unsigned int i = 0; i < elements.length(); ++i)
        indices.push_back(elements[i]);
    return true;
}
