#pragma once
#include <maya/MFnBase.h>

/// Base of the function sets on data objects.
class MFnData : public MFnBase
{
public:
    enum Type {
        kInvalid, kNumeric, kPlugin, kPluginGeometry, kString, kMatrix, kStringArray, kDoubleArray, kFloatArray,
        kIntArray, kPointArray, kVectorArray, kMatrixArray, kComponentList, kMesh, kLattice, kNurbsCurve,
        kNurbsSurface, kSphere, kDynArrayAttrs, kDynSweptGeometry, kSubdSurface, kNObject, kNId, kAny, kLast
    };

    MFnData() = default;
    explicit MFnData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnData() override;
    MFn::Type type() const override;
};
