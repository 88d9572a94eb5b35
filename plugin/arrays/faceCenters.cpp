#include "arrays/faceCenters.h"

#include <maya/MDataHandle.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

/// The mean of each polygon's vertices, three values a polygon.
void centers(const MFloatPointArray& points, const MIntArray& counts, const MIntArray& vertices, double* out)
{
    for (unsigned int face = 0, corner = 0; face < counts.length(); ++face, out += 3) {
        const int count = counts[face];
        double    x = 0.0, y = 0.0, z = 0.0;
        for (int k = 0; k < count; ++k, ++corner) {
            const MFloatPoint& p = points[unsigned(vertices[corner])];
            x += p.x;
            y += p.y;
            z += p.z;
        }
        const auto divisor = static_cast<float>(count);
        out[0] = x / divisor;
        out[1] = y / divisor;
        out[2] = z / divisor;
    }
}

} // namespace

MStatus faceCenters::initialize()
{
    const attr::Row rows[] = {
        attr::typed(aInGeo, "inGeometry", "ig", MFnData::kMesh, attr::kInput),
        attr::typed(aOutPosPP, "outPositionPP", "oppp", MFnData::kVectorArray, attr::kOutput),
    };
    MFnTypedAttribute(aInGeo).setDisconnectBehavior(MFnAttribute::kReset);
    return attr::declare(rows);
}

MStatus faceCenters::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state: the old value stays
        return MS::kSuccess;
    if (plug != aOutPosPP)                                               // plug test
        return MS::kUnknownParameter;

    MObject          object = block.inputValue(aInGeo).asMeshTransformed();   // work
    MFloatPointArray points;
    MIntArray        counts, vertices;
    if (!object.isNull()) {
        MFnMesh mesh(object);
        mesh.getPoints(points, MSpace::kWorld);
        mesh.getVertices(counts, vertices);
    }
    OutArray out(OutArray::kVectors);
    centers(points, counts, vertices, out.resize(counts.length()));
    return out.publish(block, aOutPosPP);                                // write
}
