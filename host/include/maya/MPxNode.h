#pragma once
#include <maya/MDGContext.h>
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

class MCacheSchema;
class MDataBlock;
class MDataHandle;
class MEvaluationNode;
class MPlug;
class MPlugArray;

namespace mirk { class Node; struct UserNodeAccess; }

/// Base of user-defined dependency nodes.
class MPxNode
{
public:
    enum Type {
        kDependNode, kLocatorNode, kDeformerNode, kManipContainer, kSurfaceShape, kFieldNode, kEmitterNode,
        kSpringNode, kIkSolverNode, kHardwareShader, kHwShaderNode, kTransformNode, kObjectSet, kFluidEmitterNode,
        kImagePlaneNode, kParticleAttributeMapperNode, kCameraSetNode, kConstraintNode, kManipulatorNode,
        kMotionPathNode, kClientDeviceNode, kThreadedDeviceNode, kAssembly, kSkinCluster, kGeometryFilter,
        kBlendShape, kLast
    };
    enum SchedulingType {
        kParallel, kSerial, kGloballySerial, kUntrusted, kDefaultScheduling = kSerial
    };
    enum PostEvaluationEnum { kEvaluatedIndirectly, kEvaluatedDirectly, kLeaveDirty };
    using PostEvaluationType = PostEvaluationEnum;

    MPxNode();
    virtual ~MPxNode();

    virtual void           postConstructor();
    virtual MStatus        compute(const MPlug& plug, MDataBlock& dataBlock);
    virtual MStatus        setDependentsDirty(const MPlug& plug, MPlugArray& plugArray);
    /// The next four are asked by evaluation that is scheduled ahead (`evaluationManager -mode "parallel"` or "serial"),
    /// where preEvaluation takes the place of setDependentsDirty, and by caches of whole frames. This host has the mode
    /// "off" alone: values are pulled on demand, setDependentsDirty tells of dirt, and none of the four is called.
    virtual MStatus        preEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode);
    virtual MStatus        postEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode,
                                          PostEvaluationType evalType);
    virtual MStatus        configCache(const MEvaluationNode& evaluationNode, MCacheSchema& schema) const;
    virtual SchedulingType schedulingType() const;
    virtual MStatus        connectionMade(const MPlug& plug, const MPlug& otherPlug, bool asSrc);
    virtual MStatus        connectionBroken(const MPlug& plug, const MPlug& otherPlug, bool asSrc);
    virtual MStatus        legalConnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc, bool& isLegal) const;
    virtual MStatus        legalDisconnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc, bool& isLegal) const;
    /// Whether `plug` of this node depends on `otherPlug` of it. kUnknownParameter leaves it to attributeAffects. Asked
    /// in cycle checks and by walks from plug to plug.
    virtual MStatus        dependsOn(const MPlug& plug, const MPlug& otherPlug, bool& depends) const;
    virtual bool           getInternalValue(const MPlug& plug, MDataHandle& dataHandle);
    virtual bool           setInternalValue(const MPlug& plug, const MDataHandle& dataHandle);
    virtual void           copyInternalData(MPxNode* node);
    /// What takes the place of `plug` when the node goes: for an input the output, for an output the input that stands
    /// for the same thing. Commands that delete a node of a history join its neighbours by it.
    virtual MPlug          passThroughToOne(const MPlug& plug) const;
    virtual bool           passThroughToMany(const MPlug& plug, MPlugArray& plugArray) const;
    /// True for an output that drives its destinations without locking them: they may be set by hand, and keep that
    /// until the output changes next.
    virtual bool           isPassiveOutput(const MPlug& plug) const;
    virtual Type           type() const;
    virtual bool           isAbstractClass() const;

    MObject thisMObject() const;
    virtual MString name() const;
    MTypeId typeId() const;
    MString typeName() const;
    void    setMPSafe(bool flag);
    void    setExistWithoutInConnections(bool flag);
    bool    existWithoutInConnections(MStatus* ReturnStatus = nullptr) const;
    void    setExistWithoutOutConnections(bool flag);
    bool    existWithoutOutConnections(MStatus* ReturnStatus = nullptr) const;

    static MStatus addAttribute(const MObject& attr);
    static MStatus inheritAttributesFrom(const MString& parentClassName);
    static MStatus attributeAffects(const MObject& whenChanges, const MObject& isAffected);
    static MStatus attributeAffects(const MObject& whenChanges, const MObject& isAffected, bool affectsTopology);

    static MObject message;
    static MObject caching;
    static MObject state;
    static MObject frozen;
    static MObject isHistoricallyInteresting;

protected:
    MDataBlock forceCache();

private:
    friend struct mirk::UserNodeAccess;
    mirk::Node* node_ = nullptr;
    bool        mpSafe_ = false, aloneIn_ = true, aloneOut_ = true;
};
