#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Components of a mesh from components of another kind: the edges of vertices, the vertices of faces and so on, all that
/// touch the given ones or only those made of nothing else.
class componentToComponent : public MPxNode
{
public:
    static inline MTypeId id{0x115776};
    static void*   creator() { return new componentToComponent; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInMesh, aInComp, aOutComp, aEnvelope, aUseComp, aGroupId, aOutCompType, aUvSet, aContained;

private:
    MObject inputComponent(MDataBlock& block, const MObject& mesh) const;
};
