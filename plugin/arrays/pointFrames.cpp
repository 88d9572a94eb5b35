#include "arrays/pointFrames.h"

#include <maya/MMatrix.h>
#include <maya/MTransformationMatrix.h>

namespace {

constexpr double kDegrees = 57.29582;         // not 180/pi: stored scenes were made with it
constexpr double kShortSum = 1e-5;            // a sum below this length has no direction
constexpr double kTinyLengthSq = 1e-20;       // a vector below it is left as it is

MVector unit(const MVector& v)
{
    return v * v > kTinyLengthSq ? v / v.length() : v;
}

} // namespace

PointFrames::PointFrames(const MObject& mesh, const FrameSettings& settings)
    : settings_(settings), mesh_(mesh), fn_(mesh_), iterator_(mesh_),
      uvSet_(settings_.uvSet.length() > 0 ? &settings_.uvSet : nullptr)
{
}

bool PointFrames::moveTo(int vertex)
{
    int previous = 0;
    if (!iterator_.setIndex(vertex, previous))
        return false;
    vertex_ = vertex;
    iterator_.getConnectedFaces(faces_);
    return true;
}

MVector PointFrames::faceVector(FaceVector get, int face) const
{
    MVector v;
    (fn_.*get)(face, vertex_, v, settings_.space, uvSet_);
    return v;
}

/// Adds the vectors of the faces to the live sum and makes it a unit vector; a vanishing sum becomes the first face's
/// vector, or +Y for a vertex without faces.
void PointFrames::accumulate(MVector& sum, FaceVector get, const MIntArray& faces) const
{
    for (unsigned int k = 0; k < faces.length(); ++k)
        sum += faceVector(get, faces[k]);
    if (sum.length() < kShortSum)
        sum = faces.length() > 0 ? faceVector(get, faces[0]) : MVector(0.0, 1.0, 0.0);
    sum = unit(sum);
}

MIntArray PointFrames::chosenFaces(FaceChoice& choice) const
{
    if (choice.averaged || faces_.length() == 0)
        return faces_;
    const int face = faces_[static_cast<unsigned int>(chosenFace(choice, static_cast<int>(faces_.length())))];
    return MIntArray(1, face);
}

MVector PointFrames::rotation()
{
    iterator_.getNormal(normal_, settings_.space);
    accumulate(tangent_, &MFnMesh::getFaceVertexTangent, faces_);
    const float angle = static_cast<float>(normal_.angle(tangent_));
    if (angle >= 0.01 && angle <= 3.13) {
        binormal_ = unit(normal_ ^ tangent_);
        tangent_ = unit(normal_ ^ binormal_);
    } else {   // normal and tangent are nearly parallel
        accumulate(binormal_, &MFnMesh::getFaceVertexBinormal, faces_);
        tangent_ = unit(normal_ ^ binormal_);
        binormal_ = unit(normal_ ^ tangent_);
    }

    const MVector* vectors[3] = {&normal_, &tangent_, &binormal_};
    MMatrix        matrix;
    for (int row = 0; row < 3; ++row) {
        const MVector& v = *vectors[kRotationRows[settings_.rotationOrder][row]];
        matrix(row, 0) = v.x;
        matrix(row, 1) = v.y;
        matrix(row, 2) = v.z;
    }
    double                               angles[3] = {0.0, 0.0, 0.0};
    MTransformationMatrix::RotationOrder order = MTransformationMatrix::kXYZ;
    MTransformationMatrix(matrix).getRotation(angles, order);
    return MVector(angles[0], angles[1], angles[2]) * kDegrees;
}

MVector PointFrames::normal()
{
    if (settings_.normal.averaged) {
        iterator_.getNormal(normal_, settings_.space);
    } else if (faces_.length() > 0) {
        const int face = faces_[static_cast<unsigned int>(
            chosenFace(settings_.normal, static_cast<int>(faces_.length())))];
        fn_.getFaceVertexNormal(face, vertex_, normal_, settings_.space);
    }
    return normal_;
}

MVector PointFrames::binormal()
{
    accumulate(binormal_, &MFnMesh::getFaceVertexBinormal, chosenFaces(settings_.binormal));
    return binormal_;
}

MVector PointFrames::tangent()
{
    accumulate(tangent_, &MFnMesh::getFaceVertexTangent, chosenFaces(settings_.tangent));
    return tangent_;
}
