#pragma once
#include <maya/MFnGeometryData.h>

/// Function set on mesh data; `create` makes the empty object that MFnMesh::create and copy take as owner.
class MFnMeshData : public MFnGeometryData
{
public:
    MFnMeshData() = default;
    explicit MFnMeshData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnMeshData() override;
    MFn::Type type() const override;
    MObject   create(MStatus* ReturnStatus = nullptr);
};
