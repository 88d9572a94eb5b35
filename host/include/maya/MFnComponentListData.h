#pragma once
#include <maya/MFnData.h>

/// Function set on component list data. `add` merges into a present element of the same kind; `has` costs constant time.
class MFnComponentListData : public MFnData
{
public:
    MFnComponentListData() = default;
    explicit MFnComponentListData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnComponentListData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// True if all elements of the component are in the list.
    bool         has(const MObject& component, MStatus* ReturnStatus = nullptr) const;
    MObject      operator[](unsigned int index) const;
    MStatus      add(MObject& component);
    /// Takes the component's elements out of the list; an element that becomes empty goes.
    MStatus      remove(const MObject& component);
    MStatus      remove(unsigned int index);
    MStatus      clear();
    MObject      create(MStatus* ReturnStatus = nullptr);
};
