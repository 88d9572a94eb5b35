#pragma once
#include <maya/MFnComponent.h>

class MIntArray;

/// Function set on components of one index. Elements are kept ascending and unique, whatever the order they come in.
class MFnSingleIndexedComponent : public MFnComponent
{
public:
    MFnSingleIndexedComponent() = default;
    explicit MFnSingleIndexedComponent(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnSingleIndexedComponent() override;
    MFn::Type type() const override;

    MObject create(MFn::Type compType, MStatus* ReturnStatus = nullptr);
    MStatus addElement(int element);
    MStatus addElements(const MIntArray& elements);
    /// The element at a position; -1 past the end.
    int     element(int index, MStatus* ReturnStatus = nullptr) const;
    /// All elements; of a complete component 0 to its count.
    MStatus getElements(MIntArray& elements) const;
    MStatus setCompleteData(int numElements);
    MStatus getCompleteData(int& numElements) const;

protected:
    bool acceptsObject(const MObject& object) const override;
};
