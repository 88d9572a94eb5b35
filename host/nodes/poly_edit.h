// Edits of a mesh's shading and mapping: soft edges, colours, normals, UVs, their sets. Each is a step on a mesh, which
// commands apply to stored meshes, and a history node that applies it to its input.
#pragma once
#include <span>
#include <string>

#include "mesh/mesh.h"

namespace mirk::nodes {

/// What a step is told, beside the components it works on.
struct PolyParameters
{
    double      number[8] = {};
    std::string text[2];
};

/// A kind of edit. `numbers` and `texts` name its parameters; they are the attributes of the node.
struct PolyEdit
{
    struct Number { const char* longName; const char* shortName; double value; bool angle = false; };
    struct Text { const char* longName; const char* shortName; };

    const char*             type;   ///< node type
    unsigned                id;
    std::span<const Number> numbers;
    std::span<const Text>   texts;
    /// `components` null means all. What does not exist is passed over.
    void (*apply)(MeshBody& mesh, const ComponentListData* components, const PolyParameters& parameters);
};

// places of the numbers
enum SoftEdge { kAngle };
enum PolyColor { kColorR, kColorG, kColorB, kColorA, kChannels /*bits r g b a*/, kRelativeColor, kRemoveColor };
enum PolyNormal { kNormalX, kNormalY, kNormalZ, kNormalMode /*0 set, 1 freeze, 2 unfreeze*/, kRelativeNormal };
enum PolyUV { kU, kV, kRelativeUV, kPivotU, kPivotV, kScaleU, kScaleV, kAngleUV };
enum PolySet { kSetOperation, kSetRepresentation, kSetClamped };
enum SetOperation { kCreateColorSet, kDeleteColorSet, kRenameColorSet, kCurrentColorSet, kCopyColorSet,
                    kCreateUVSet, kDeleteUVSet, kRenameUVSet, kCurrentUVSet, kCopyUVSet };

const PolyEdit& softEdgeEdit();
const PolyEdit& colorEdit();
const PolyEdit& normalEdit();
const PolyEdit& uvEdit();
const PolyEdit& setEdit();

/// Registers the history nodes; once, after the built-in types.
void registerPolyEdits();
/// transformGeometry and polyTweak, of which registerPolyEdits takes care.
void registerGeometryEdits();
/// polyMergeVert, polyUnite and the others that change vertices and faces, of which registerPolyEdits takes care.
void registerPolyOperations();

}  // namespace mirk::nodes
