#pragma once
#include <maya/MStatus.h>

class MArrayDataBuilder;
class MDataBlock;
class MDataHandle;

namespace mirk { struct Cell; struct HandleAccess; }

/// A cursor over the elements of a multi in a data block. A fresh handle stands on the first element.
class MArrayDataHandle
{
public:
    MArrayDataHandle() = default;
    explicit MArrayDataHandle(const MDataHandle& handle, MStatus* ReturnStatus = nullptr);

    MDataHandle      inputValue(MStatus* ReturnStatus = nullptr);
    MDataHandle      outputValue(MStatus* ReturnStatus = nullptr);
    MArrayDataHandle inputArrayValue(MStatus* ReturnStatus = nullptr);
    MArrayDataHandle outputArrayValue(MStatus* ReturnStatus = nullptr);

    MStatus  next();
    unsigned elementCount(MStatus* ReturnStatus = nullptr);
    unsigned elementIndex(MStatus* ReturnStatus = nullptr);
    MStatus  jumpToElement(unsigned logicalIndex);
    MStatus  jumpToArrayElement(unsigned physicalIndex);

    MArrayDataBuilder builder(MStatus* ReturnStatus = nullptr);
    MStatus  set(const MArrayDataBuilder& builder);
    MStatus  copy(const MArrayDataHandle& source);
    MStatus  setClean();
    MStatus  setAllClean();

private:
    friend struct mirk::HandleAccess;
    mirk::Cell* cell_ = nullptr;
    unsigned    cursor_ = 0;
    bool        input_ = false;
};
