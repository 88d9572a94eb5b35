#pragma once
#include <maya/MFnDependencyNode.h>

class MDagPath;
class MDagPathArray;
class MPlug;
class MSelectionList;

/// Function set on object sets: whole objects, components of shapes, plugs and other sets as members.
class MFnSet : public MFnDependencyNode
{
public:
    enum Restriction { kNone, kVerticesOnly, kEdgesOnly, kFacetsOnly, kEditPointsOnly, kRenderableOnly };

    MFnSet() = default;
    explicit MFnSet(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnSet() override;
    MFn::Type type() const override;

    MObject create(const MSelectionList& members, Restriction restriction = kNone, MStatus* ReturnStatus = nullptr);
    bool        hasRestrictions(MStatus* ReturnStatus = nullptr) const;
    Restriction restriction(MStatus* ReturnStatus = nullptr) const;
    MString     annotation(MStatus* ReturnStatus = nullptr) const;
    MStatus     setAnnotation(const MString& annotation);

    MStatus clear();
    /// Fails for what the set is restricted against and for what another set of its partition holds.
    MStatus addMember(const MObject& object);
    MStatus addMember(const MDagPath& object, const MObject& component = MObject::kNullObj);
    MStatus addMember(const MPlug& plug);
    MStatus addMembers(const MSelectionList& list);
    MStatus removeMember(const MObject& object);
    MStatus removeMember(const MDagPath& object, const MObject& component = MObject::kNullObj);
    MStatus removeMember(const MPlug& plug);
    MStatus removeMembers(const MSelectionList& list);

    /// With a component: true if all its elements are members.
    bool    isMember(const MObject& object, MStatus* ReturnStatus = nullptr) const;
    bool    isMember(const MDagPath& object, const MObject& component = MObject::kNullObj, MStatus* ReturnStatus = nullptr) const;
    bool    isMember(const MPlug& plug, MStatus* ReturnStatus = nullptr) const;
    /// `flatten` puts the members of sets in place of the sets.
    MStatus getMembers(MSelectionList& members, bool flatten) const;
    MStatus getMemberPaths(MDagPathArray& members, bool shading = false) const;

    MStatus getUnion(const MFnSet& withSet, MSelectionList& result) const;
    MStatus getIntersection(const MFnSet& withSet, MSelectionList& result) const;
    bool    intersectsWith(const MObject& otherSet, MStatus* ReturnStatus = nullptr) const;
};
