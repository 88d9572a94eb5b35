#pragma once
#include <maya/MFnGeometryData.h>

/// Function set on NURBS curve data; `create` makes the empty object that MFnNurbsCurve::create takes as owner.
class MFnNurbsCurveData : public MFnGeometryData
{
public:
    MFnNurbsCurveData() = default;
    explicit MFnNurbsCurveData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnNurbsCurveData() override;
    MFn::Type type() const override;
    MObject   create(MStatus* ReturnStatus = nullptr);
};
