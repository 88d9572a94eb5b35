#pragma once
#include <maya/MPxNode.h>

class MDagModifier;
class MDataBlock;
class MItGeometry;
class MMatrix;

/// Base of user-defined deformers without weights.
class MPxGeometryFilter : public MPxNode
{
public:
    MPxGeometryFilter();
    ~MPxGeometryFilter() override;
    Type type() const override;

    /// Answers outputGeometry: copies the input, then calls deform() on the points of its group, unless the node's
    /// state or an envelope of 0 says that nothing is to be done.
    MStatus compute(const MPlug& plug, MDataBlock& dataBlock) override;
    virtual MStatus  deform(MDataBlock& block, MItGeometry& iter, const MMatrix& mat, unsigned multiIndex);
    virtual MObject& accessoryAttribute() const;
    virtual MStatus  accessoryNodeSetup(MDagModifier& cmd);
    void     setUseExistingConnectionWhenSetEditing(bool state) { useExisting_ = state; }
    MStatus  setDeformationDetails(unsigned flags);
    unsigned getDeformationDetails(MStatus* ReturnStatus = nullptr) const;

    enum DeformationDetails { kDeformsUVs = 1, kDeformsColors = 2, kDeformsAll = kDeformsUVs | kDeformsColors };

    static MObject input, inputGeom, groupId, outputGeom, envelope;

private:
    bool     useExisting_ = false;
    unsigned details_ = 0;
};
