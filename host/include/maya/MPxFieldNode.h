#pragma once
#include <maya/M3dView.h>
#include <maya/MPxNode.h>

class MDagPath;
class MDoubleArray;
class MVectorArray;

/// Base of user-defined dynamics fields.
class MPxFieldNode : public MPxNode
{
public:
    MPxFieldNode();
    ~MPxFieldNode() override;
    Type type() const override;

    MStatus compute(const MPlug& plug, MDataBlock& dataBlock) override;
    virtual MStatus getForceAtPoint(const MVectorArray& point, const MVectorArray& velocity, const MDoubleArray& mass,
                                    MVectorArray& force, double deltaTime);
    virtual void    draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status);
    /// Size of the icon in pixels, and the place in it that stands at the field. 0 by 0, the default: no icon.
    virtual MStatus iconSizeAndOrigin(unsigned& width, unsigned& height, unsigned& xbo, unsigned& ybo);
    /// One bit a pixel, rows from the bottom, each of whole bytes, the leftmost pixel highest.
    virtual MStatus iconBitmap(unsigned char* bitmap);
    /// Of a distance from 0 to 1 of maxDistance: 1.
    double falloffCurve(double param);
    bool   isFalloffCurveConstantOne(MStatus* ReturnStatus = nullptr);

    static MObject mInputData, mInputPositions, mInputVelocities, mInputMass, mDeltaTime, mInputPPData, mInputForce;
    static MObject mOutputForce, mMagnitude, mAttenuation, mMaxDistance, mUseMaxDistance, mApplyPerVertex;
    static MObject mOwnerPosData, mOwnerVelData, mOwnerPPData, mOwnerCentroid, mOwnerCentroidX, mOwnerCentroidY,
        mOwnerCentroidZ, mWorldMatrix;
};
