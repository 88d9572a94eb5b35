#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include <vector>

#include "generators/meshParts.h"
#include "generators/pieces.h"

/// One of several meshes, or one piece of a mesh, by a number that copier sets for each of its copies.
class extractor : public MPxNode
{
public:
    static inline MTypeId id{0x1157A5};
    static void*   creator() { return new extractor; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aIndex, aMode, aOutOfRange, aInMesh, aOutMesh, aOutCount;

private:
    enum Mode { kMesh = 0, kShell = 1, kFace = 2 };

    std::vector<unsigned int> connectedElements() const;
    const pieces::Shells&     shellsOf(const MeshParts& mesh);

    // the shells of the faces that were last read; they outlast changes of the index
    std::vector<int> counts_, connects_;
    std::size_t      pointCount_ = 0;
    pieces::Shells   shells_;
};
