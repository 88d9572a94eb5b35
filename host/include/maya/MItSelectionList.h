#pragma once
#include <maya/MFn.h>
#include <maya/MSelectionList.h>

/// Walks a selection list, or the items of one type in it.
class MItSelectionList
{
public:
    enum itemType { kUnknownItem = -1, kDagSelectionItem, kAnimSelectionItem, kDNselectionItem, kPlugSelectionItem };

    explicit MItSelectionList(const MSelectionList& list, MFn::Type filter = MFn::kInvalid, MStatus* ReturnStatus = nullptr);

    MStatus  reset();
    MStatus  setFilter(MFn::Type filter);
    bool     isDone(MStatus* ReturnStatus = nullptr) const;
    MStatus  next();
    /// The kind of the current item.
    enum itemType itemType(MStatus* ReturnStatus = nullptr) const;
    MStatus  getDependNode(MObject& depNode) const;
    MStatus  getDagPath(MDagPath& dagPath) const;
    MStatus  getDagPath(MDagPath& dagPath, MObject& component) const;
    MStatus  getPlug(MPlug& plug) const;
    bool     hasComponents(MStatus* ReturnStatus = nullptr) const;
    MStatus  getStrings(MStringArray& array) const;

private:
    void skip();
    MSelectionList list_;
    MFn::Type      filter_;
    unsigned       at_ = 0;
};
