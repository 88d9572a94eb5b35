#pragma once
#include <memory>

#include <maya/MStatus.h>

class MArrayDataHandle;
class MDataBlock;
class MDataHandle;
class MObject;

namespace mirk { struct Cell; struct HandleAccess; }

/// Grows and shrinks the elements of a multi whose attribute has `setUsesArrayDataBuilder(true)`. A builder from
/// `MArrayDataHandle::builder` works on the present elements; one made from a data block starts empty, and elements
/// that are not added to it go when it is set.
class MArrayDataBuilder
{
public:
    MArrayDataBuilder() = default;
    MArrayDataBuilder(MDataBlock* block, const MObject& attribute, unsigned count, MStatus* ReturnStatus = nullptr);
    MArrayDataBuilder(const MObject& attribute, unsigned count, MStatus* ReturnStatus = nullptr);

    MDataHandle      addElement(unsigned index, MStatus* ReturnStatus = nullptr);
    MArrayDataHandle addElementArray(unsigned index, MStatus* ReturnStatus = nullptr);
    MDataHandle      addLast(MStatus* ReturnStatus = nullptr);
    MDataHandle      addLast(unsigned* index, MStatus* ReturnStatus = nullptr);
    MArrayDataHandle addLastArray(MStatus* ReturnStatus = nullptr);
    MStatus          removeElement(unsigned index);
    unsigned         elementCount(MStatus* ReturnStatus = nullptr) const;
    MStatus          growArray(unsigned amount);
    MStatus          setGrowSize(unsigned size);

private:
    friend struct mirk::HandleAccess;
    friend class MArrayDataHandle;
    mirk::Cell* cell_ = nullptr;              // the multi itself, or `fresh_`
    std::shared_ptr<mirk::Cell> fresh_;
};
