// An element of `boundingObjects`: the attributes under which a consumer takes a bounding object in, and what it reads
// there. The children stand in the order of the bounding object's outData, so that one connection fills them all.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

#include "core/arrays.h"
#include "core/attr.h"
#include "volumes/volume.h"

/// The attribute tree; a node type has one as a static member.
struct BoundAttributes
{
    MObject elements, matrix, control, envelope, type, contained, topOffset, topScale, topScaleX, topScaleY, topScaleZ,
        bottomOffset, bottomScale, bottomScaleX, bottomScaleY, bottomScaleZ, normal, radius, data, positionPP, normalPP,
        radiusPP, weightPP, rgbaPP;

    /// The multi `boundingObjects` with all its children. `withRadius` adds boundRadius as the last of boundControlData.
    attr::Row row(bool withRadius = false);
};

/// One element while its node computes.
struct BoundElement
{
    MPlug          plug;     ///< boundingObjects[i]
    MDataHandle    handle;
    volume::Volume volume;   ///< all but its cloud; its box if it is no cloud
};

/// Reads element number `physical` of the multi, on which `elements` then stands. An element without a connection, and
/// one whose envelope is not above 0, are switched off, and no more than that is read of them.
BoundElement readBound(MArrayDataHandle& elements, unsigned int physical, const MPlug& multi, const BoundAttributes&);

/// Which arrays of a cloud a consumer takes beside positions and radii.
enum class CloudUse { kWeights, kAll };

/// Appends the element's cloud to those before it and sets the volume's range and box. Arrays whose length is not that of
/// the positions give a warning each; missing entries are 0.
void appendCloud(BoundElement& element, const BoundAttributes&, CloudUse use, volume::Cloud& cloud);

volume::Matrix toMatrix(const MMatrix& matrix);
