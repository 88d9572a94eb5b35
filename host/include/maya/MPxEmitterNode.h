#pragma once
#include <maya/M3dView.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MPxNode.h>
#include <maya/MTime.h>

class MDagPath;
class MDoubleArray;
class MVectorArray;

/// Base of user-defined particle emitters.
class MPxEmitterNode : public MPxNode
{
public:
    enum MEmitterType { kOmni, kDirectional, kSurface, kCurve, kVolume };

    MPxEmitterNode();
    ~MPxEmitterNode() override;
    Type type() const override;

    MStatus compute(const MPlug& plug, MDataBlock& dataBlock) override;
    virtual void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status);

    MEmitterType getEmitterType(MDataBlock& block);
    MObject getOwnerShape() const;
    MTime   getCurrentTime(MDataBlock& block) const;
    /// `plugIndex` is the logical index of the particle system in mOutput.
    MTime   getStartTime(int plugIndex, MDataBlock& block);
    MTime   getDeltaTime(int plugIndex, MDataBlock& block);
    int     getRandomSeed(int plugIndex, MDataBlock& block);
    void    getRandomState(int plugIndex, MDataBlock& block);
    void    setRandomState(int plugIndex, MDataBlock& block);
    void    resetRandomState(int plugIndex, MDataBlock& block);
    /// The next number of the node's generator, in [0, 1].
    double  randgen();
    double  getRate(MDataBlock& block);
    double  getMinDistance(MDataBlock& block);
    double  getMaxDistance(MDataBlock& block);
    MPoint  getWorldPosition() const;
    MMatrix getWorldMatrix() const;
    /// What drives the node's attribute at each (u, v), as MDynamicsUtil::evalDynamics2dTexture gives it.
    MStatus evalEmission2dTexture(const MObject& texAttr, MDoubleArray& uCoords, MDoubleArray& vCoords,
                                  MVectorArray* resultColors, MDoubleArray* resultAlphas);

    static MObject mOutput, mEmitterType, mRate, mSpeed, mMinDistance, mMaxDistance, mInheritFactor, mIsFull, mStartTime,
        mSeed, mRandState, mRandState0, mRandState1, mRandState2, mSweptGeometry, mOwnerPosData, mOwnerVelData,
        mOwnerCentroid, mOwnerCentroidX, mOwnerCentroidY, mOwnerCentroidZ, mWorldMatrix, mCurrentTime, mDeltaTime,
        mDirection, mDirectionX, mDirectionY, mDirectionZ;

private:
    unsigned short random_[3] = {0x330e, 0, 0};
};
