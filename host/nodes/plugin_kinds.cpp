// The types that classes of plug-ins are built on: one for each kind that can be registered.
#include <maya/MPxDeformerNode.h>
#include <maya/MPxFieldNode.h>
#include <maya/MPxFluidEmitterNode.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxManipContainer.h>

#include "data/mobject.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"

namespace mirk::nodes {
namespace {

MStatus initGeometryFilter()
{
    using F = MPxGeometryFilter;
    F::inputGeom = typed("inputGeometry", "ig", MFnData::kAny);
    F::groupId = number("groupId", "gi", Number::kInt);
    F::input = compound("input", "ip", {F::inputGeom, F::groupId, typed("componentTagExpression", "gtg", MFnData::kString)},
                        kMulti | kBuilder);
    F::outputGeom = typed("outputGeometry", "og", MFnData::kAny, kOut | kMulti | kBuilder);
    F::envelope = number("envelope", "en", Number::kFloat, 1, -2, 2, kKey);
    add({F::input, F::outputGeom, F::envelope, number("function", "fn", Number::kShort, 0, kHide), number("map64BitIndices", "m64", Number::kBoolean, 0, kHide)});
    affects({F::input, F::inputGeom, F::groupId, F::envelope}, {F::outputGeom});
    return MS::kSuccess;
}

MStatus initWeights()
{
    using D = MPxDeformerNode;
    D::weights = number("weights", "w", Number::kFloat, 1, kMulti | kBuilder);
    D::weightList = compound("weightList", "wl", {D::weights}, kMulti | kBuilder);
    add({D::weightList});
    affects({D::weightList, D::weights}, {MPxGeometryFilter::outputGeom});
    return MS::kSuccess;
}

/// What fields and emitters know of the object they belong to.
void ownerAttributes(MObject& positions, MObject& velocities, MObject& perPoint, MObject& centroid, MObject (&centroidParts)[3])
{
    positions = typed("ownerPosData", "opd", MFnData::kVectorArray, kHide | kNoStore);
    velocities = typed("ownerVelData", "ovd", MFnData::kVectorArray, kHide | kNoStore);
    perPoint = typed("ownerPPData", "oppd", MFnData::kDynArrayAttrs, kHide | kNoStore);
    centroid = triple("ownerCentroid", "ocd", Unit::kDistance, 0, kHide | kNoStore);
    for (unsigned i = 0; i < 3; ++i)
        centroidParts[i] = childOf(centroid, i);
}

MStatus initField()
{
    using F = MPxFieldNode;
    F::mInputPositions = typed("inputPositions", "inp", MFnData::kVectorArray);
    F::mInputVelocities = typed("inputVelocities", "inv", MFnData::kVectorArray);
    F::mInputMass = typed("inputMass", "inm", MFnData::kDoubleArray);
    F::mDeltaTime = unit("deltaTime", "dt", Unit::kTime);
    F::mInputData = compound("inputData", "ind", {F::mInputPositions, F::mInputVelocities, F::mInputMass, F::mDeltaTime}, kMulti | kBuilder | kHide | kNoStore);
    F::mInputPPData = typed("inputPPData", "ippd", MFnData::kDynArrayAttrs, kMulti | kBuilder | kHide | kNoStore);
    F::mInputForce = typed("inputForce", "inf", MFnData::kVectorArray, kMulti | kBuilder | kHide | kNoStore);
    F::mOutputForce = typed("outputForce", "of", MFnData::kVectorArray, kOut | kMulti | kBuilder);
    F::mMagnitude = number("magnitude", "mag", Number::kDouble, 1, kKey);
    F::mAttenuation = number("attenuation", "att", Number::kDouble, 1, kKey);
    F::mMaxDistance = unit("maxDistance", "max", Unit::kDistance, 20, kKey);
    F::mUseMaxDistance = number("useMaxDistance", "umd", Number::kBoolean, 0, kKey);
    F::mApplyPerVertex = number("applyPerVertex", "apv", Number::kBoolean, 0, kKey);
    MObject parts[3];
    ownerAttributes(F::mOwnerPosData, F::mOwnerVelData, F::mOwnerPPData, F::mOwnerCentroid, parts);
    F::mOwnerCentroidX = parts[0];
    F::mOwnerCentroidY = parts[1];
    F::mOwnerCentroidZ = parts[2];
    F::mWorldMatrix = MPxLocatorNode::worldMatrix;
    add({F::mInputData, F::mInputPPData, F::mInputForce, F::mOutputForce, F::mMagnitude, F::mAttenuation, F::mMaxDistance, F::mUseMaxDistance,
         F::mApplyPerVertex, F::mOwnerPosData, F::mOwnerVelData, F::mOwnerPPData, F::mOwnerCentroid});
    affects({F::mInputData, F::mInputPositions, F::mInputVelocities, F::mInputMass, F::mDeltaTime, F::mInputPPData, F::mInputForce,
             F::mMagnitude, F::mAttenuation, F::mMaxDistance, F::mUseMaxDistance, F::mApplyPerVertex, F::mOwnerPosData,
             F::mOwnerVelData, F::mOwnerPPData, F::mOwnerCentroid, F::mWorldMatrix},
            {F::mOutputForce});
    return MS::kSuccess;
}

MStatus initEmitter()
{
    using E = MPxEmitterNode;
    E::mEmitterType = choice("emitterType", "emt", 1, {"Directional", "Omni", "Surface", "Curve", "Volume"}, kChannel);
    E::mRate = number("rate", "rat", Number::kDouble, 100, kKey);
    E::mSpeed = number("speed", "spd", Number::kDouble, 1, kKey);
    E::mMinDistance = unit("minDistance", "mnd", Unit::kDistance, 0, kKey);
    E::mMaxDistance = unit("maxDistance", "mxd", Unit::kDistance, 0, kKey);
    E::mDirection = triple("direction", "d", Number::kDouble, 0, kKey);
    E::mDirectionX = childOf(E::mDirection, 0);
    E::mDirectionY = childOf(E::mDirection, 1);
    E::mDirectionZ = childOf(E::mDirection, 2);
    E::mInheritFactor = number("inheritFactor", "inh", Number::kDouble, 0, kMulti | kHide);
    E::mIsFull = number("isFull", "full", Number::kBoolean, 0, kMulti | kHide | kNoStore);
    E::mStartTime = unit("startTime", "stt", Unit::kTime, 0, kMulti | kHide);
    E::mDeltaTime = unit("deltaTime", "dt", Unit::kTime, 0, kMulti | kHide | kNoStore);
    E::mCurrentTime = unit("currentTime", "cti", Unit::kTime, 0, kHide);
    E::mSeed = number("seed", "sd", Number::kInt, 0, kMulti);
    E::mRandState0 = number("randState0", "rs0", Number::kInt);
    E::mRandState1 = number("randState1", "rs1", Number::kInt);
    E::mRandState2 = number("randState2", "rs2", Number::kInt);
    E::mRandState = compound("randState", "rst", {E::mRandState0, E::mRandState1, E::mRandState2}, kMulti | kHide);
    E::mSweptGeometry = typed("sweptGeometry", "sge", MFnData::kDynSweptGeometry, kHide | kNoStore);
    MObject perPoint, parts[3];
    ownerAttributes(E::mOwnerPosData, E::mOwnerVelData, perPoint, E::mOwnerCentroid, parts);
    E::mOwnerCentroidX = parts[0];
    E::mOwnerCentroidY = parts[1];
    E::mOwnerCentroidZ = parts[2];
    E::mWorldMatrix = MPxLocatorNode::worldMatrix;
    E::mOutput = typed("output", "out", MFnData::kDynArrayAttrs, kOut | kMulti | kBuilder);
    add({E::mEmitterType, E::mRate, E::mSpeed, E::mMinDistance, E::mMaxDistance, E::mDirection, E::mInheritFactor, E::mIsFull, E::mStartTime,
         E::mDeltaTime, E::mCurrentTime, E::mSeed, E::mRandState, E::mSweptGeometry, E::mOwnerPosData, E::mOwnerVelData, perPoint,
         E::mOwnerCentroid, E::mOutput});
    affects({E::mEmitterType, E::mRate, E::mSpeed, E::mMinDistance, E::mMaxDistance, E::mDirection, E::mInheritFactor, E::mIsFull,
             E::mStartTime, E::mDeltaTime, E::mCurrentTime, E::mSeed, E::mSweptGeometry, E::mOwnerPosData, E::mOwnerVelData,
             E::mOwnerCentroid, E::mWorldMatrix},
            {E::mOutput});
    return MS::kSuccess;
}

MStatus initFluidEmitter()
{
    using E = MPxFluidEmitterNode;
    E::mFluidDensityEmission = number("fluidDensityEmission", "fde", Number::kDouble, 1, kKey);
    E::mFluidHeatEmission = number("fluidHeatEmission", "fhe", Number::kDouble, 1, kKey);
    E::mFluidFuelEmission = number("fluidFuelEmission", "ffe", Number::kDouble, 1, kKey);
    E::mEmitFluidColor = number("emitFluidColor", "efc", Number::kBoolean, 0, kKey);
    E::mFluidColor = triple("fluidColor", "fc", Number::kFloat, 0, kKey | kColor, "RGB");
    E::mFluidDropoff = number("fluidDropoff", "fdr", Number::kDouble, 2, kKey);
    E::mTurbulence = number("turbulence", "turb", Number::kDouble, 0, kKey);
    E::mTurbulenceSpeed = number("turbulenceSpeed", "tspd", Number::kDouble, 0.2, kKey);
    E::mDetailTurbulence = number("detailTurbulence", "dtr", Number::kDouble, 0, kKey);
    E::mEmissionFunction = typed("emissionFunction", "emfn", MFnData::kDynArrayAttrs, kOut | kMulti | kBuilder);
    add({E::mFluidDensityEmission, E::mFluidHeatEmission, E::mFluidFuelEmission, E::mEmitFluidColor, E::mFluidColor, E::mFluidDropoff,
         E::mTurbulence, E::mTurbulenceSpeed, E::mDetailTurbulence, E::mEmissionFunction});
    affects({E::mFluidDensityEmission, E::mFluidHeatEmission, E::mFluidFuelEmission, E::mEmitFluidColor, E::mFluidColor, E::mFluidDropoff,
             E::mTurbulence, E::mTurbulenceSpeed, E::mDetailTurbulence, E::mRate, E::mCurrentTime, E::mDeltaTime, E::mStartTime},
            {E::mEmissionFunction});
    return MS::kSuccess;
}

struct Kind { MPxNode::Type kind; const char* base; };

const Kind kKinds[] = {
    {MPxNode::kDependNode, "THdependNode"},   {MPxNode::kLocatorNode, "THlocatorShape"},
    {MPxNode::kDeformerNode, "THdeformer"},   {MPxNode::kGeometryFilter, "THgeometryFilter"},
    {MPxNode::kManipContainer, "THmanipContainer"}, {MPxNode::kFieldNode, "THdynField"},
    {MPxNode::kEmitterNode, "THdynEmitter"},  {MPxNode::kFluidEmitterNode, "THfluidEmitter"},
};

}  // namespace

void registerPluginKinds()
{
    const Row plain[] = {
        {"geometryFilter", "node", 0, MFn::kGeometryFilt, nullptr, initGeometryFilter},
        {"weightGeometryFilter", "geometryFilter", 0, MFn::kWeightGeometryFilt, nullptr, initWeights},
        {"THdependNode", "node", 0, MFn::kPluginDependNode, nullptr, nullptr},
        {"THgeometryFilter", "geometryFilter", 0, MFn::kPluginGeometryFilter, nullptr, nullptr},
        {"THdeformer", "weightGeometryFilter", 0, MFn::kPluginDeformerNode, nullptr, nullptr},
    };
    for (const Row& row : plain)
        registerRow(row);
    const Row dag[] = {
        {"dynBase", "transform", 0, MFn::kDynBase, nullptr, nullptr},
        {"field", "dynBase", 0, MFn::kField, nullptr, initField},
        {"THdynField", "field", 0, MFn::kPluginFieldNode, nullptr, nullptr},
        {"pointEmitter", "dynBase", 0, MFn::kEmitter, nullptr, initEmitter},
        {"THdynEmitter", "pointEmitter", 0, MFn::kPluginEmitterNode, nullptr, nullptr},
        {"fluidEmitter", "pointEmitter", 0, MFn::kFluidEmitter, nullptr, initFluidEmitter},
        {"THfluidEmitter", "fluidEmitter", 0, MFn::kPluginEmitterNode, nullptr, nullptr},
        {"manip3D", "transform", 0, MFn::kManipulator3D, nullptr, nullptr},
        {"THmanipContainer", "manip3D", 0, MFn::kPluginManipContainer, nullptr, nullptr},
    };
    for (const Row& row : dag)
        registerRow(row, Role::dag);
    registerRow({"THlocatorShape", "locator", 0, MFn::kPluginLocatorNode, nullptr, nullptr}, Role::shape);
}

NodeType* baseOfKind(MPxNode::Type kind)
{
    for (const Kind& k : kKinds)
        if (k.kind == kind)
            return findNodeType(k.base);
    return nullptr;
}

}  // namespace mirk::nodes
