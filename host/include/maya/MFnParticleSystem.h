#pragma once
#include <maya/MFnDagNode.h>

class MDoubleArray;
class MIntArray;
class MPoint;
class MPointArray;
class MVector;
class MVectorArray;

/// Function set on particle shapes: arrays with a value a particle, in object space.
class MFnParticleSystem : public MFnDagNode
{
public:
    enum RenderType { kCloud, kTube, kBlobby, kMultiPoint, kMultiStreak, kNumeric, kPoints, kSpheres, kSprites, kStreak };

    MFnParticleSystem() = default;
    explicit MFnParticleSystem(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnParticleSystem(const MDagPath& path, MStatus* ReturnStatus = nullptr);
    ~MFnParticleSystem() override;
    MFn::Type type() const override;

    /// An empty particle object; the transform is returned, the function set works on the shape.
    MObject create(MStatus* ReturnStatus = nullptr);
    /// The shape under a transform, which is then returned itself.
    MObject create(MObject parent, MStatus* ReturnStatus = nullptr);

    bool     isValid() const;
    unsigned count() const;
    void position(MVectorArray& positions) const;
    void velocity(MVectorArray& velocities) const;
    void acceleration(MVectorArray& accelerations) const;
    void position0(MVectorArray& positions) const;
    void velocity0(MVectorArray& velocities) const;
    void mass(MDoubleArray& masses) const;
    void mass0(MDoubleArray& masses) const;
    void particleIds(MIntArray& ids) const;
    /// From the per-particle attribute; without one the array comes back empty.
    void rgb(MVectorArray& colors) const;        ///< rgbPP
    void opacity(MDoubleArray& opacities) const; ///< opacityPP
    void radius(MDoubleArray& radii) const;      ///< radiusPP
    void lifespan(MDoubleArray& lifespans) const; ///< lifespanPP
    bool hasRgb() const;
    bool hasOpacity() const;
    bool hasRadius() const;
    bool hasLifespan() const;
    RenderType renderType() const;

    bool     isPerParticleVectorAttribute(const MString& attrName, MStatus* ReturnStatus = nullptr) const;
    bool     isPerParticleDoubleAttribute(const MString& attrName, MStatus* ReturnStatus = nullptr) const;
    bool     isPerParticleIntAttribute(const MString& attrName, MStatus* ReturnStatus = nullptr) const;
    /// Number of values; 0 and kFailure if there is no such attribute.
    unsigned getPerParticleAttribute(const MString& attrName, MVectorArray& values, MStatus* ReturnStatus = nullptr) const;
    unsigned getPerParticleAttribute(const MString& attrName, MDoubleArray& values, MStatus* ReturnStatus = nullptr) const;
    unsigned getPerParticleAttribute(const MString& attrName, MIntArray& values, MStatus* ReturnStatus = nullptr) const;
    void     setPerParticleAttribute(const MString& attrName, const MVectorArray& values, MStatus* ReturnStatus = nullptr);
    void     setPerParticleAttribute(const MString& attrName, const MDoubleArray& values, MStatus* ReturnStatus = nullptr);

    /// New particles at rest, or with velocities.
    MStatus emit(const MPoint& position);
    MStatus emit(const MPoint& position, const MVector& velocity);
    MStatus emit(const MPointArray& positions);
    MStatus emit(const MPointArray& positions, const MVectorArray& velocities);
    /// The present state becomes that at the start.
    MStatus saveInitialState();
};
