#pragma once
#include <maya/MFnData.h>

class MPxData;
class MTypeId;

/// Function set on data whose type a plug-in registered.
class MFnPluginData : public MFnData
{
public:
    MFnPluginData() = default;
    explicit MFnPluginData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnPluginData() override;
    MFn::Type type() const override;

    MTypeId        typeId(MStatus* ReturnStatus = nullptr) const;
    const MPxData* constData(MStatus* ReturnStatus = nullptr) const;
    MPxData*       data(MStatus* ReturnStatus = nullptr);
    /// Fails for an id that nobody registered.
    MObject        create(const MTypeId& id, MStatus* ReturnStatus = nullptr);
};
