// copier: where the copies stand. Matrices are for row vectors, so a factor that comes later in the story stands left.
#include "generators/copier.h"

#include <maya/MDataHandle.h>
#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

namespace {

/// Vectors that are next to nothing stay as they are.
MVector unit(const MVector& v)
{
    return v * v > 1e-20 ? v.normal() : v;
}

MMatrix diagonal(double x, double y, double z)
{
    MMatrix m;
    m.matrix[0][0] = x;
    m.matrix[1][1] = y;
    m.matrix[2][2] = z;
    return m;
}

} // namespace

void copier::positionMatrixArray(const MVectorArray& positions, MMatrixArray& matrices)
{
    for (unsigned int i = 0; i < positions.length(); ++i) {
        MMatrix& m = matrices[i];
        m.setToIdentity();
        m.matrix[3][0] = positions[i].x;
        m.matrix[3][1] = positions[i].y;
        m.matrix[3][2] = positions[i].z;
    }
}

void copier::orientMatrixArrayFromAim(const MVectorArray& aims, MMatrixArray& matrices)
{
    for (unsigned int i = 0; i < aims.length(); ++i)
        matrices[i] = MQuaternion(MVector::xAxis, aims[i]).asMatrix();
}

void copier::orientMatrixArrayFromAimUp(const MVectorArray& aims, const MVectorArray& ups, MMatrixArray& matrices)
{
    for (unsigned int i = 0; i < aims.length(); ++i) {
        const MVector x = unit(aims[i]);
        const MVector z = unit(x ^ ups[i]);
        const MVector y = unit(z ^ x);
        MMatrix&      m = matrices[i];
        m.setToIdentity();
        for (unsigned int k = 0; k < 3; ++k) {
            m.matrix[0][k] = x[k];
            m.matrix[1][k] = y[k];
            m.matrix[2][k] = z[k];
        }
    }
}

void copier::orientMatrixArrayFromRot(const MVectorArray& rotations, short order, short units, MMatrixArray& matrices)
{
    const auto   rotateOrder = static_cast<MEulerRotation::RotationOrder>(order >= 1 && order <= 5 ? order : 0);
    const double toRadians = units == 0 ? 0.017453293 : 1.0;
    for (unsigned int i = 0; i < rotations.length(); ++i)
        matrices[i] = MEulerRotation(rotations[i] * toRadians, rotateOrder).asMatrix();
}

void copier::scalingMatrixArray(const MVectorArray& scales, MMatrixArray& matrices)
{
    for (unsigned int i = 0; i < scales.length(); ++i)
        matrices[i] = diagonal(scales[i].x, scales[i].y, scales[i].z);
}

void copier::uniformScalingMatrixArray(const MDoubleArray& scales, MMatrixArray& matrices)
{
    for (unsigned int i = 0; i < scales.length(); ++i)
        matrices[i] = diagonal(scales[i], scales[i], scales[i]);
}

void copier::multiplyMatrixArray(MMatrixArray& a, const MMatrixArray& b)
{
    for (unsigned int i = 0; i < a.length(); ++i)
        a[i] = b[i] * a[i];
}

/// Scale, then rotation, then translation of each copy. False if there is an aim array but nothing in it.
bool copier::placeCopies(MDataBlock& block, const ArrayView& positions, MMatrixArray& matrices) const
{
    const unsigned int count = positions.length;
    const MObject      node = thisMObject();
    const auto         connected = [&](const MObject& attribute) { return MPlug(node, attribute).isConnected(); };
    MMatrixArray       factor;
    if (!matrices.setLength(count) || !factor.setLength(count))
        return false;

    positionMatrixArray(vectorsOfCopies(block, aPosArray, count), matrices);
    if (block.inputValue(aOrient).asShort() == 0) {
        if (connected(aAimArray)) {
            if (viewArray(block, aAimArray).length == 0)
                return false;
            const MVectorArray aims = vectorsOfCopies(block, aAimArray, count);
            if (connected(aUpArray))
                orientMatrixArrayFromAimUp(aims, vectorsOfCopies(block, aUpArray, count), factor);
            else
                orientMatrixArrayFromAim(aims, factor);
            multiplyMatrixArray(matrices, factor);
        }
    } else if (connected(aRotArray)) {
        orientMatrixArrayFromRot(vectorsOfCopies(block, aRotArray, count), block.inputValue(aRotOrder).asShort(),
                                 block.inputValue(aRotUnits).asShort(), factor);
        multiplyMatrixArray(matrices, factor);
    }
    if (connected(aScaleArray)) {
        scalingMatrixArray(vectorsOfCopies(block, aScaleArray, count), factor);
        multiplyMatrixArray(matrices, factor);
    }
    if (connected(aUniformScaleArray)) {
        uniformScalingMatrixArray(doublesOfCopies(block, aUniformScaleArray, count), factor);
        multiplyMatrixArray(matrices, factor);
    }
    return true;
}
