// Emitters, fields and motion: the node types that are registered and await their work.
#pragma once
#include <maya/MPxEmitterNode.h>
#include <maya/MPxFieldNode.h>
#include <maya/MPxFluidEmitterNode.h>
#include <maya/MPxLocatorNode.h>

#include "core/registered.h"

class computeVelocity : public Registered<computeVelocity, MPxNode, 0x115758> {};
class pointCloudField : public Registered<pointCloudField, MPxFieldNode, 0x115753> {};
class pointCloudFluidEmitter : public Registered<pointCloudFluidEmitter, MPxFluidEmitterNode, 0x115752> {};
class trajectory : public Registered<trajectory, MPxLocatorNode, 0x11575D> {};
class pointCloudParticleEmitter : public Registered<pointCloudParticleEmitter, MPxEmitterNode, 0x115780> {};

class speedometer : public Registered<speedometer, MPxLocatorNode, 0x1157B1>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/speedometer"};
    static inline MString drawRegistrantId{"SpeedometerNodePlugin"};
};
using SpeedometerDrawOverride = RegisteredOverride<speedometer>;

class curlNoiseField : public Registered<curlNoiseField, MPxFieldNode, 0x1157B4>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/curlNoiseField"};
    static inline MString drawRegistrantId{"CurlNoiseFieldNodePlugin"};
};
using CurlNoiseFieldDrawOverride = RegisteredOverride<curlNoiseField>;

class solver : public Registered<solver, MPxLocatorNode, 0x1157C0>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/Solver"};
    static inline MString drawRegistrantId{"SolverNodePlugin"};
};
using SolverDrawOverride = RegisteredOverride<solver>;
