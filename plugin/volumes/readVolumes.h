// All bounding objects of a consumer with their clouds and falloffs.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPlug.h>

#include "volumes/boundElement.h"
#include "volumes/transfer.h"

/// Which falloffs to read; a switch that is off costs nothing.
struct FalloffWishes
{
    bool position = false, weight = false, color = false, normal = false, radius = false;
};

/// One volume an existing element, in the order of the array.
void readVolumes(MDataBlock& block, const MPlug& multi, const BoundAttributes& at, CloudUse use,
                 const FalloffWishes& wishes, TransferVolumes& out);

/// True if a volume that is on is a cloud.
bool hasCloud(const std::vector<volume::Volume>& volumes);
