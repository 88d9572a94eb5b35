#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFnComponentListData.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include "volumes/boundElement.h"

class ComponentGeometry;
struct ComponentBounds;

/// Selects components of a geometry: by pattern, range, direction, growth, size, weight, angle or polygon shape, then by
/// bounding objects, then mirrored, reduced to a boundary or inverted, and over time added up. Gives a component list, and
/// an object group in the geometry on request. Registered as componentGroup.
///
/// Curves and surfaces are tessellated by host nodes during the compute, which therefore belongs to the main thread.
class group : public MPxNode
{
public:
    static inline MTypeId id{0x115742};
    static void*   creator() { return new group; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInMessage, aOutMessage, aInGeo, aOutGeo, aInComp, aOutComp, aInVelocityPP, aInWgtPP,
        aInitStateComp, aCompType, aFilterInput, aCombine;
    static inline MObject aOperation, aOpPattern, aOpRange, aOpNormalVelocity, aOpDepth, aOpEdgeLength, aOpFaceArea,
        aOpFacePerimeter, aOpWeightMap, aOpAngle, aOpNgons;
    static inline MObject aCoordSystem, aUvSet, aCurrentTime, aStartFrames, aResetFrames, aOutputObjGroup, aGroupId;
    static inline MObject aPattern, aRange, aRangeStart, aRangeEnd, aStep, aStepA, aStepB, aMode, aDirection, aDirectionX,
        aDirectionY, aDirectionZ, aSpreadAngleMin, aSpreadAngleMax, aInBetweenAngle, aUseInComp, aInitialComp, aDepth,
        aSpace, aLengthThreshold, aAreaThreshold, aPerimeterThreshold, aWeightThreshold, aAngleMin, aAngleMax,
        aMinVertexCount, aMaxVertexCount, aMinEdgeCount, aMaxEdgeCount;
    static inline MObject aMirror, aMirrorDirection, aRadius, aMirrorMatrix, aOutputMirrorData, aOutMirrorIds, aBoundary,
        aInvert;
    static inline BoundAttributes aBounds;

private:
    /// The list of step by step changes, from the input components and the geometry.
    MObject select(MDataBlock& block, ComponentGeometry& geometry, const MObject& input);
    void    addBounded(MDataBlock& block, ComponentGeometry& geometry, short combine, MFnComponentListData& list);
    bool    readBounds(MDataBlock& block, ComponentBounds& bounds);
    void    mirror(MDataBlock& block, ComponentGeometry& geometry, MFnComponentListData& list);
    void    accumulate(MDataBlock& block, const ComponentGeometry& geometry, MFnComponentListData& list);
    MStatus publish(MDataBlock& block, const ComponentGeometry& geometry, const MObject& list);
};
