#include "volumes/groupOperations.h"

#include <maya/MDataHandle.h>
#include <maya/MString.h>

#include "volumes/componentGrowth.h"
#include "volumes/componentNormals.h"
#include "volumes/componentPattern.h"
#include "volumes/componentSizes.h"
#include "volumes/group.h"

namespace {

bool        on(MDataBlock& block, const MObject& attribute) { return block.inputValue(attribute).asBool(); }
int         integer(MDataBlock& block, const MObject& attribute) { return block.inputValue(attribute).asInt(); }
double      real(MDataBlock& block, const MObject& attribute) { return block.inputValue(attribute).asDouble(); }
short       choice(MDataBlock& block, const MObject& attribute) { return block.inputValue(attribute).asShort(); }
std::string text(MDataBlock& block, const MObject& attribute) { return block.inputValue(attribute).asString().asChar(); }

/// Degrees as an angle attribute holds them in the radians that go with kComponentDegrees.
float radians(MDataBlock& block, const MObject& attribute)
{
    return block.inputValue(attribute).asFloat() * kComponentDegrees;
}

Marks noMarks(const ComponentGeometry& geometry) { return Marks(static_cast<std::size_t>(geometry.count()), 0); }

void range(MDataBlock& block, Marks& marks)
{
    markRange(marks, {integer(block, group::aRangeStart), integer(block, group::aRangeEnd),
                      integer(block, group::aStepA), integer(block, group::aStepB)});
}

Marks inBetween(ComponentGeometry& geometry, float angle)
{
    switch (geometry.kind()) {
    case ComponentKind::kFace:
        return inBetweenFaces(geometry.withEdges(), geometry.faceNormals(), angle);
    case ComponentKind::kCurveCV:   // the ribbon has two vertices a CV
        return inBetweenRow(geometry.vertexVectors(), geometry.count(), 2, angle);
    default:
        return geometry.ofVertices(inBetweenVertices(geometry.withEdges(), geometry.vertexVectors(), angle));
    }
}

Marks byDirection(MDataBlock& block, ComponentGeometry& geometry)
{
    if (choice(block, group::aMode) != 0)
        return inBetween(geometry, radians(block, group::aInBetweenAngle));
    const double     direction[3] = {real(block, group::aDirectionX), real(block, group::aDirectionY),
                                     real(block, group::aDirectionZ)};
    const AngleRange spread{radians(block, group::aSpreadAngleMin), radians(block, group::aSpreadAngleMax)};
    if (geometry.kind() == ComponentKind::kFace)
        return alongDirection(geometry.faceNormals(), direction, spread);
    return geometry.ofVertices(alongDirection(geometry.vertexVectors(), direction, spread));
}

Marks grown(MDataBlock& block, ComponentGeometry& geometry, const MObject& input)
{
    const int depth = integer(block, group::aDepth);
    Marks     seeds = noMarks(geometry);
    if (on(block, group::aUseInComp))
        seeds = marksOf(input, geometry.components());
    else
        markPattern(seeds, text(block, group::aInitialComp));
    switch (geometry.kind()) {
    case ComponentKind::kEdge:    return grownEdges(geometry.withEdges(), seeds, depth);
    case ComponentKind::kFace:    return grownFaces(geometry.withEdges(), seeds, depth);
    case ComponentKind::kCurveCV: return grownRow(seeds, depth);
    case ComponentKind::kMap:     // by way of the vertices
        return geometry.ofVertices(
            grownVertices(geometry.withEdges(), verticesOfUVs(geometry.withUVs(), seeds), depth));
    default:                      return grownVertices(geometry.withEdges(), seeds, depth);
    }
}

Marks byEdgeLength(MDataBlock& block, ComponentGeometry& geometry)
{
    const double threshold = real(block, group::aLengthThreshold);
    if (geometry.kind() == ComponentKind::kCurveCV)
        return shortRow(geometry.points(), threshold);
    const MeshTables& mesh = geometry.withEdges();
    Marks             missing;
    if (choice(block, group::aSpace) == 0)
        return geometry.ofEdges(shortEdges(mesh, geometry.vertexPoints(), 3, missing, threshold));
    const std::vector<double> uvs = geometry.vertexUVs(missing);
    return geometry.ofEdges(shortEdges(mesh, uvs, 2, missing, threshold));
}

/// Weights by point of a double array; without a connection all are 0.
Marks weighted(MDataBlock& block, const ComponentGeometry& geometry, const MPlug& plug)
{
    const ArrayView weights = plug.isConnected() ? viewArray(block, group::aInWgtPP) : ArrayView();
    const bool      any = weights.kind == MFn::kDoubleArrayData;
    return byWeight(weights.doubles, any ? weights.length : 0, geometry.count(), real(block, group::aWeightThreshold));
}

Marks byAngle(MDataBlock& block, ComponentGeometry& geometry)
{
    return edgesByAngle(geometry.withEdges(), geometry.faceNormals(),
                        {radians(block, group::aAngleMin), radians(block, group::aAngleMax)});
}

Marks byPolygon(MDataBlock& block, ComponentGeometry& geometry)
{
    return facesByCount(geometry.faces(),
                        {integer(block, group::aMinVertexCount), integer(block, group::aMaxVertexCount),
                         integer(block, group::aMinEdgeCount), integer(block, group::aMaxEdgeCount)});
}

} // namespace

Marks runOperations(MDataBlock& block, ComponentGeometry& geometry, const MObject& input, const MPlug& weights)
{
    Marks marks = noMarks(geometry);
    if (geometry.count() == 0)
        return marks;
    if (on(block, group::aOpPattern))
        markPattern(marks, text(block, group::aPattern));
    if (on(block, group::aOpRange))
        range(block, marks);
    if (on(block, group::aOpNormalVelocity))
        addMarks(marks, byDirection(block, geometry));
    if (on(block, group::aOpDepth))
        addMarks(marks, grown(block, geometry, input));
    if (on(block, group::aOpEdgeLength))
        addMarks(marks, byEdgeLength(block, geometry));
    if (on(block, group::aOpFaceArea))
        addMarks(marks, geometry.ofFaces(upTo(geometry.faceAreas(), real(block, group::aAreaThreshold))));
    if (on(block, group::aOpFacePerimeter))
        addMarks(marks, geometry.ofFaces(facesByPerimeter(geometry.withEdges(), geometry.vertexPoints(),
                                                          real(block, group::aPerimeterThreshold))));
    if (on(block, group::aOpWeightMap))
        addMarks(marks, weighted(block, geometry, weights));
    if (on(block, group::aOpAngle) && geometry.kind() == ComponentKind::kEdge)
        addMarks(marks, byAngle(block, geometry));
    if (on(block, group::aOpNgons) && geometry.kind() == ComponentKind::kFace)
        addMarks(marks, byPolygon(block, geometry));
    return marks;
}
