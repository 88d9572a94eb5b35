// Normals, tangents, binormals and rotations of mesh vertices, one vertex after the other.
#pragma once
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshVertex.h>
#include <maya/MObject.h>
#include <maya/MSpace.h>
#include <maya/MString.h>
#include <maya/MVector.h>

/// Which of a vertex's faces counts where a quantity is not averaged over all of them.
struct FaceChoice
{
    bool averaged = true;
    int  offset = 0;        ///< not below 0
};

struct FrameSettings
{
    MSpace::Space space = MSpace::kWorld;
    MString       uvSet;            ///< empty: the mesh's current one
    int           rotationOrder = 0;
    FaceChoice    normal, binormal, tangent;
};

/// Index of the face that counts among `faceCount` (at least 1) faces of a vertex. The choice is sticky: an offset past
/// the end becomes the last face and stays so for all vertices after, which saved scenes rely on.
inline int chosenFace(FaceChoice& choice, int faceCount)
{
    if (choice.offset >= faceCount)
        choice.offset = faceCount - 1;
    return choice.offset;
}

/// Which of normal (0), tangent (1) and binormal (2) stands in each row of the rotation matrix, by rotationOrder.
inline constexpr int kRotationRows[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

/// Walks the vertices of a mesh with one live frame. The three vectors are never reset: each sum starts from the unit
/// result of the vertex before, and results depend on the order of the walk. That is intended.
class PointFrames
{
public:
    PointFrames(const MObject& mesh, const FrameSettings& settings);

    /// The vertex that the next calls ask for; false if the mesh has no such vertex.
    bool moveTo(int vertex);

    /// Euler angles in degrees of the frame whose rows are the three vectors in the order of rotationOrder.
    MVector rotation();
    MVector normal();
    MVector binormal();
    MVector tangent();

private:
    using FaceVector = MStatus (MFnMesh::*)(int, int, MVector&, MSpace::Space, const MString*) const;

    MVector faceVector(FaceVector get, int face) const;
    void    accumulate(MVector& sum, FaceVector get, const MIntArray& faces) const;
    MIntArray chosenFaces(FaceChoice& choice) const;

    FrameSettings  settings_;
    MObject        mesh_;
    MFnMesh        fn_;
    MItMeshVertex  iterator_;
    const MString* uvSet_;
    int            vertex_ = 0;
    MIntArray      faces_;
    MVector        normal_, tangent_, binormal_;
};
