#pragma once
#include <maya/MFnGeometryData.h>

/// Function set on NURBS surface data; `create` makes the empty object that MFnNurbsSurface::create takes as owner.
class MFnNurbsSurfaceData : public MFnGeometryData
{
public:
    MFnNurbsSurfaceData() = default;
    explicit MFnNurbsSurfaceData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnNurbsSurfaceData() override;
    MFn::Type type() const override;
    MObject   create(MStatus* ReturnStatus = nullptr);
};
