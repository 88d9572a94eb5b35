#pragma once
#include <maya/MFnBase.h>

/// Base of the function sets on components: sets of indices into a geometry.
class MFnComponent : public MFnBase
{
public:
    MFnComponent() = default;
    explicit MFnComponent(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnComponent() override;
    MFn::Type type() const override;

    /// Elements held; of a complete component the count given with setCompleteData.
    int       elementCount(MStatus* ReturnStatus = nullptr) const;
    MFn::Type componentType(MStatus* ReturnStatus = nullptr) const;
    bool      isEmpty(MStatus* ReturnStatus = nullptr) const;
    bool      isEqual(MObject& other, MStatus* ReturnStatus = nullptr) const;
    bool      isComplete(MStatus* ReturnStatus = nullptr) const;
    MStatus   setComplete(bool complete);
    /// Components carry no weights here: always false.
    bool      hasWeights(MStatus* ReturnStatus = nullptr) const;
};
