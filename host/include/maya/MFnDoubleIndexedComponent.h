#pragma once
#include <maya/MFnComponent.h>

class MIntArray;

/// Function set on components of two indices. Elements are kept unique and ascending, the first index first.
class MFnDoubleIndexedComponent : public MFnComponent
{
public:
    MFnDoubleIndexedComponent() = default;
    explicit MFnDoubleIndexedComponent(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnDoubleIndexedComponent() override;
    MFn::Type type() const override;

    MObject create(MFn::Type compType, MStatus* ReturnStatus = nullptr);
    MStatus addElement(int uIndex, int vIndex);
    /// The arrays are parallel; unequal lengths are kInvalidParameter.
    MStatus addElements(const MIntArray& uIndices, const MIntArray& vIndices);
    MStatus getElement(int index, int& uIndex, int& vIndex) const;
    /// All elements; of a complete component the whole grid, second index fastest.
    MStatus getElements(MIntArray& uIndices, MIntArray& vIndices) const;
    MStatus setCompleteData(int maxU, int maxV);
    MStatus getCompleteData(int& maxU, int& maxV) const;

protected:
    bool acceptsObject(const MObject& object) const override;
};
