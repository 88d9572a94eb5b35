#pragma once
#include <maya/MFnComponent.h>

class MIntArray;

/// Function set on components of three indices (lattice points). Elements are kept unique and ascending.
class MFnTripleIndexedComponent : public MFnComponent
{
public:
    MFnTripleIndexedComponent() = default;
    explicit MFnTripleIndexedComponent(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnTripleIndexedComponent() override;
    MFn::Type type() const override;

    MObject create(MFn::Type compType, MStatus* ReturnStatus = nullptr);
    MStatus addElement(int sIndex, int tIndex, int uIndex);
    /// The arrays are parallel; unequal lengths are kInvalidParameter.
    MStatus addElements(const MIntArray& s, const MIntArray& t, const MIntArray& u);
    MStatus getElement(int index, int& sIndex, int& tIndex, int& uIndex) const;
    MStatus getElements(MIntArray& s, MIntArray& t, MIntArray& u) const;
    MStatus setCompleteData(int maxS, int maxT, int maxU);
    MStatus getCompleteData(int& maxS, int& maxT, int& maxU) const;

protected:
    bool acceptsObject(const MObject& object) const override;
};
