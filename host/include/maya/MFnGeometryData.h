#pragma once
#include <maya/MFnData.h>

class MMatrix;

/// Function set on geometry data: the matrix that travels with it and its object groups.
///
/// An object group is an integer id that holds one component of the geometry; ids are kept in the order added.
class MFnGeometryData : public MFnData
{
public:
    MFnGeometryData() = default;
    explicit MFnGeometryData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnGeometryData() override;
    MFn::Type type() const override;

    bool    matrixIsIdentity(MStatus* ReturnStatus = nullptr) const;
    bool    matrixIsNotIdentity(MStatus* ReturnStatus = nullptr) const;
    MStatus getMatrix(MMatrix& matrix) const;
    MStatus setMatrix(const MMatrix& matrix);

    bool         hasObjectGroup(unsigned int id, MStatus* ReturnStatus = nullptr) const;
    unsigned int objectGroupCount(MStatus* ReturnStatus = nullptr) const;
    /// The id of the group at a position.
    unsigned int objectGroup(unsigned int index, MStatus* ReturnStatus = nullptr) const;
    /// The type of the group's component; kInvalid for a group without one.
    MFn::Type    objectGroupType(unsigned int id, MStatus* ReturnStatus = nullptr) const;
    /// A component of its own, which later changes of the group do not touch.
    MObject      objectGroupComponent(unsigned int id, MStatus* ReturnStatus = nullptr) const;
    MStatus      addObjectGroup(unsigned int id);
    MStatus      removeObjectGroup(unsigned int id);
    MStatus      changeObjectGroupId(unsigned int sourceId, unsigned int destId);
    /// Adds the elements to the group's component.
    MStatus      addObjectGroupComponent(unsigned int id, MObject& component);
    MStatus      setObjectGroupComponent(unsigned int id, MObject& component);
    /// Takes the elements out of the group's component.
    MStatus      removeObjectGroupComponent(unsigned int id, MObject& component);
    /// Adds the groups of another geometry; a group of the same id is replaced.
    MStatus      copyObjectGroups(MObject& sourceGeometry);
};
