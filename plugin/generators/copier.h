#pragma once
#include <maya/MDataBlock.h>
#include <maya/MDoubleArray.h>
#include <maya/MMatrixArray.h>
#include <maya/MPlugArray.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>
#include <maya/MVectorArray.h>

#include <unordered_map>
#include <vector>

#include "core/arrays.h"

class MComputation;

namespace copying {
struct Look;
struct Gathered;
} // namespace copying

/// Copies of one or several meshes on the points of an array, merged into one mesh: each with its own orientation, scale,
/// source, time, UVs and colour, and with per-copy data that come out per point. The same placement as instancer data.
class copier : public MPxNode
{
public:
    static inline MTypeId id{0x1157A0};
    static void*   creator() { return new copier; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aCount, aInstancerData, aOutMesh, aComponentList, aEnvelope, aInMesh, aIndexArray, aPosArray,
        aOrient, aAimArray, aUpArray, aRotArray, aRotOrder, aRotUnits, aUvArray, aScaleArray, aUniformScaleArray, aTime,
        aToggleTimeShift, aTimeShift, aOriginalVertexColor, aInheritVertexColor, aRgbArray, aInDataPP, aOutDataPP,
        aToggleUV, aToggleSoftHard, aOverride, aSeed, aMinimum, aMaximum, aSkipElementsWithZeroSurfaceArea;

private:
    /// Four values a copy, by logical index of inDataPP.
    using DataOfCopies = std::unordered_map<unsigned int, std::vector<double>>;

    // copierMatrices.cpp: a matrix for each entry
    static void positionMatrixArray(const MVectorArray& positions, MMatrixArray& matrices);
    static void orientMatrixArrayFromAim(const MVectorArray& aims, MMatrixArray& matrices);
    static void orientMatrixArrayFromAimUp(const MVectorArray& aims, const MVectorArray& ups, MMatrixArray& matrices);
    static void orientMatrixArrayFromRot(const MVectorArray& rotations, short order, short units, MMatrixArray& matrices);
    static void scalingMatrixArray(const MVectorArray& scales, MMatrixArray& matrices);
    static void uniformScalingMatrixArray(const MDoubleArray& scales, MMatrixArray& matrices);
    static void multiplyMatrixArray(MMatrixArray& a, const MMatrixArray& b);   ///< a = b * a
    bool        placeCopies(MDataBlock& block, const ArrayView& positions, MMatrixArray& matrices) const;

    // copier.cpp
    ArrayView      connectedArray(MDataBlock& block, const MObject& attribute, std::initializer_list<MFn::Type> kinds) const;
    MVectorArray   vectorsOfCopies(MDataBlock& block, const MObject& attribute, unsigned int count) const;
    MDoubleArray   doublesOfCopies(MDataBlock& block, const MObject& attribute, unsigned int count) const;
    void           randomTimeShift(MDoubleArray& shifts, MDataBlock& block) const;
    MStatus        createEmptyMesh(MDataBlock& block);
    MStatus        writeInstancer(MDataBlock& block);
    copying::Look  readLook(MDataBlock& block, unsigned int count) const;
    DataOfCopies   readData(MDataBlock& block, unsigned int count) const;
    MPlugArray     extractorIndices() const;
    bool           gather(const MPlug& plug, MDataBlock& block, const MMatrixArray& matrices, const copying::Look& look,
                          MComputation& computation, copying::Gathered& gathered) const;
    void           writeData(const DataOfCopies& data, const copying::Gathered& gathered) const;
};
