// The operations of a component group: each one that is switched on marks components of the kind asked for.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

#include "volumes/componentGeometry.h"

/// The marks of all operations together. `input` is the component that depth grows from, or null; `weights` the node's
/// inWeightPP plug.
Marks runOperations(MDataBlock& block, ComponentGeometry& geometry, const MObject& input, const MPlug& weights);
