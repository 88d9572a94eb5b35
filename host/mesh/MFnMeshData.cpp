#include <maya/MFnMeshData.h>

#include "data/mobject.h"
#include "mesh/mesh.h"

MFnMeshData::MFnMeshData(const MObject& object, MStatus* ReturnStatus)
{
    const MStatus status = setObject(object);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MFnMeshData::~MFnMeshData() = default;

MFn::Type MFnMeshData::type() const { return MFn::kMeshData; }

MObject MFnMeshData::create(MStatus* ReturnStatus)
{
    object_ = mirk::wrap(mirk::make<mirk::MeshData>());
    if (ReturnStatus)
        *ReturnStatus = MS::kSuccess;
    return object_;
}
