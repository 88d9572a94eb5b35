// Fields, emitters and manipulator containers.
#include <cmath>
#include <cstdlib>
#include <unordered_map>

#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDynamicsUtil.h>
#include <maya/MPxFieldNode.h>
#include <maya/MPxFluidEmitterNode.h>
#include <maya/MPxManipContainer.h>
#include <maya/MVector.h>

#include "api/playback.h"
#include "dag/dag.h"
#include "graph/access.h"

using namespace mirk;

// ---- fields ------------------------------------------------------------------------------------------------------

MObject MPxFieldNode::mInputData, MPxFieldNode::mInputPositions, MPxFieldNode::mInputVelocities, MPxFieldNode::mInputMass,
    MPxFieldNode::mDeltaTime, MPxFieldNode::mInputPPData, MPxFieldNode::mInputForce;
MObject MPxFieldNode::mOutputForce, MPxFieldNode::mMagnitude, MPxFieldNode::mAttenuation, MPxFieldNode::mMaxDistance,
    MPxFieldNode::mUseMaxDistance, MPxFieldNode::mApplyPerVertex;
MObject MPxFieldNode::mOwnerPosData, MPxFieldNode::mOwnerVelData, MPxFieldNode::mOwnerPPData, MPxFieldNode::mOwnerCentroid,
    MPxFieldNode::mOwnerCentroidX, MPxFieldNode::mOwnerCentroidY, MPxFieldNode::mOwnerCentroidZ, MPxFieldNode::mWorldMatrix;

MPxFieldNode::MPxFieldNode() = default;
MPxFieldNode::~MPxFieldNode() = default;
MPxNode::Type MPxFieldNode::type() const { return kFieldNode; }
MStatus MPxFieldNode::compute(const MPlug&, MDataBlock&) { return MS::kUnknownParameter; }
MStatus MPxFieldNode::getForceAtPoint(const MVectorArray&, const MVectorArray&, const MDoubleArray&, MVectorArray&, double) { return MS::kUnknownParameter; }
void    MPxFieldNode::draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {}
MStatus MPxFieldNode::iconSizeAndOrigin(unsigned& width, unsigned& height, unsigned& xbo, unsigned& ybo)
{
    width = height = xbo = ybo = 0;
    return MS::kSuccess;
}
MStatus MPxFieldNode::iconBitmap(unsigned char*) { return MS::kSuccess; }
double  MPxFieldNode::falloffCurve(double) { return 1; }
bool    MPxFieldNode::isFalloffCurveConstantOne(MStatus* s)
{
    if (s)
        *s = MS::kSuccess;
    return true;
}

// ---- emitters ----------------------------------------------------------------------------------------------------

using E = MPxEmitterNode;
MObject E::mOutput, E::mEmitterType, E::mRate, E::mSpeed, E::mMinDistance, E::mMaxDistance, E::mInheritFactor, E::mIsFull, E::mStartTime,
    E::mSeed, E::mRandState, E::mRandState0, E::mRandState1, E::mRandState2, E::mSweptGeometry, E::mOwnerPosData, E::mOwnerVelData,
    E::mOwnerCentroid, E::mOwnerCentroidX, E::mOwnerCentroidY, E::mOwnerCentroidZ, E::mWorldMatrix, E::mCurrentTime, E::mDeltaTime,
    E::mDirection, E::mDirectionX, E::mDirectionY, E::mDirectionZ;

MPxEmitterNode::MPxEmitterNode() = default;
MPxEmitterNode::~MPxEmitterNode() = default;
MPxNode::Type MPxEmitterNode::type() const { return kEmitterNode; }
MStatus MPxEmitterNode::compute(const MPlug&, MDataBlock&) { return MS::kUnknownParameter; }
void    MPxEmitterNode::draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {}

namespace {

/// The element of a multi for one particle system; an element that does not exist gives the default.
MDataHandle elementOf(MDataBlock& block, const MObject& multi, int index, bool& found)
{
    MArrayDataHandle array = block.inputArrayValue(multi);
    found = index >= 0 && array.jumpToElement(unsigned(index));
    return found ? array.inputValue() : MDataHandle();
}

}  // namespace

MPxEmitterNode::MEmitterType MPxEmitterNode::getEmitterType(MDataBlock& block)
{
    // the attribute counts directional first, the enumeration omni
    switch (block.inputValue(mEmitterType).asShort()) {
    case 0: return kDirectional;
    case 2: return kSurface;
    case 3: return kCurve;
    case 4: return kVolume;
    default: return kOmni;
    }
}

MObject MPxEmitterNode::getOwnerShape() const
{
    // an emitter that sits on an object stands below it
    const Node* node = UserNodeAccess::node(*this);
    const Node* parent = node && node->dag && !node->dag->parents.empty() ? node->dag->parents.front() : nullptr;
    for (Node* c : parent && parent != &dag::world() ? parent->dag->children : std::vector<Node*>())
        if (c->type->shape)
            return wrap(c);
    return MObject();
}

MTime MPxEmitterNode::getCurrentTime(MDataBlock& block) const
{
    const Node* node = UserNodeAccess::node(*this);
    const auto* attr = objectAs<Attribute>(mCurrentTime);
    const Cell* cell = node ? node->cellIfAny(attr) : nullptr;
    if (cell && (cell->source || cell->is(Cell::kSet)))
        return block.inputValue(mCurrentTime).asTime();
    return MTime(playback::currentTime(), MTime::kSeconds);
}

MTime MPxEmitterNode::getStartTime(int plugIndex, MDataBlock& block)
{
    bool        found;
    MDataHandle h = elementOf(block, mStartTime, plugIndex, found);
    return found ? h.asTime() : MTime(0, MTime::kSeconds);
}

MTime MPxEmitterNode::getDeltaTime(int plugIndex, MDataBlock& block)
{
    bool        found;
    MDataHandle h = elementOf(block, mDeltaTime, plugIndex, found);
    return found ? h.asTime() : MTime(0, MTime::kSeconds);
}

int MPxEmitterNode::getRandomSeed(int plugIndex, MDataBlock& block)
{
    bool        found;
    MDataHandle h = elementOf(block, mSeed, plugIndex, found);
    return found ? h.asInt() : 0;
}

void MPxEmitterNode::getRandomState(int plugIndex, MDataBlock& block)
{
    bool        found;
    MDataHandle h = elementOf(block, mRandState, plugIndex, found);
    if (!found)
        return resetRandomState(plugIndex, block);
    const MObject* parts[] = {&mRandState0, &mRandState1, &mRandState2};
    for (int i = 0; i < 3; ++i)
        random_[i] = static_cast<unsigned short>(h.child(*parts[i]).asInt());
}

void MPxEmitterNode::setRandomState(int plugIndex, MDataBlock& block)
{
    if (plugIndex < 0)
        return;
    MArrayDataHandle array = block.outputArrayValue(mRandState);
    MStatus          status = array.jumpToElement(unsigned(plugIndex));
    if (!status) {
        MPlug(thisMObject(), mRandState).elementByLogicalIndex(unsigned(plugIndex));
        array = block.outputArrayValue(mRandState);
        status = array.jumpToElement(unsigned(plugIndex));
    }
    if (!status)
        return;
    MDataHandle    h = array.outputValue();
    const MObject* parts[] = {&mRandState0, &mRandState1, &mRandState2};
    for (int i = 0; i < 3; ++i)
        h.child(*parts[i]).setInt(random_[i]);
}

void MPxEmitterNode::resetRandomState(int plugIndex, MDataBlock& block)
{
    const int seed = getRandomSeed(plugIndex, block);
    random_[0] = 0x330e;
    random_[1] = static_cast<unsigned short>(seed & 0xffff);
    random_[2] = static_cast<unsigned short>((seed >> 16) & 0xffff);
}

double MPxEmitterNode::randgen() { return erand48(random_); }

double  MPxEmitterNode::getRate(MDataBlock& block) { return block.inputValue(mRate).asDouble(); }
double  MPxEmitterNode::getMinDistance(MDataBlock& block) { return block.inputValue(mMinDistance).asDouble(); }
double  MPxEmitterNode::getMaxDistance(MDataBlock& block) { return block.inputValue(mMaxDistance).asDouble(); }

MMatrix MPxEmitterNode::getWorldMatrix() const
{
    MMatrix m;
    if (Node* node = UserNodeAccess::node(*this); node && node->dag)
        dag::inclusiveMatrix(dag::firstPath(*node), m.matrix);
    return m;
}

MPoint MPxEmitterNode::getWorldPosition() const
{
    const MMatrix m = getWorldMatrix();
    return MPoint(m[3][0], m[3][1], m[3][2]);
}

MStatus MPxEmitterNode::evalEmission2dTexture(const MObject& texAttr, MDoubleArray& uCoords, MDoubleArray& vCoords,
                                              MVectorArray* resultColors, MDoubleArray* resultAlphas)
{
    return MDynamicsUtil::evalDynamics2dTexture(thisMObject(), texAttr, uCoords, vCoords, resultColors, resultAlphas);
}

// ---- fluid emitters ----------------------------------------------------------------------------------------------

using F = MPxFluidEmitterNode;
MObject F::mFluidDensityEmission, F::mFluidHeatEmission, F::mFluidFuelEmission, F::mEmitFluidColor, F::mFluidColor, F::mFluidDropoff,
    F::mTurbulence, F::mTurbulenceSpeed, F::mDetailTurbulence, F::mEmissionFunction;

MPxFluidEmitterNode::MPxFluidEmitterNode() = default;
MPxFluidEmitterNode::~MPxFluidEmitterNode() = default;
MPxNode::Type MPxFluidEmitterNode::type() const { return kFluidEmitterNode; }
double MPxFluidEmitterNode::fluidDensityEmission(MDataBlock& block) { return block.inputValue(mFluidDensityEmission).asDouble(); }
double MPxFluidEmitterNode::fluidHeatEmission(MDataBlock& block) { return block.inputValue(mFluidHeatEmission).asDouble(); }
double MPxFluidEmitterNode::fluidFuelEmission(MDataBlock& block) { return block.inputValue(mFluidFuelEmission).asDouble(); }
bool   MPxFluidEmitterNode::fluidEmitColor(MDataBlock& block) { return block.inputValue(mEmitFluidColor).asBool(); }
double MPxFluidEmitterNode::fluidDropoff(MDataBlock& block) { return block.inputValue(mFluidDropoff).asDouble(); }

// ---- manipulators ------------------------------------------------------------------------------------------------

namespace {

std::unordered_map<unsigned, bool>& manipTypes()
{
    static auto* types = new std::unordered_map<unsigned, bool>;
    return *types;
}

}  // namespace

MPxManipContainer::MPxManipContainer() = default;
MPxManipContainer::~MPxManipContainer() = default;
MPxNode::Type MPxManipContainer::type() const { return kManipContainer; }
MStatus MPxManipContainer::createChildren() { return MS::kSuccess; }
MStatus MPxManipContainer::connectToDependNode(const MObject& node) { return node.isNull() ? MS::kInvalidParameter : MS::kSuccess; }
MStatus MPxManipContainer::initialize() { return MS::kSuccess; }

MStatus MPxManipContainer::addToManipConnectTable(MTypeId& id)
{
    manipTypes()[id.id()] = true;
    return MS::kSuccess;
}

MStatus MPxManipContainer::removeFromManipConnectTable(MTypeId& id)
{
    return manipTypes().erase(id.id()) ? MS::kSuccess : MS::kInvalidParameter;
}
