#pragma once
#include <maya/MObject.h>
#include <maya/MStatus.h>

class MDagPath;
class MPlug;
class MString;
class MStringArray;

namespace mirk { class HeldItems; struct SelectionAccess; }

/// A list of nodes, paths, plugs and components.
class MSelectionList
{
public:
    enum MergeStrategy { kMergeNormal = 0, kXORWithList, kRemoveFromList };

    MSelectionList();
    MSelectionList(const MSelectionList& src);
    MSelectionList& operator=(const MSelectionList& other);
    ~MSelectionList();

    MStatus  clear();
    bool     isEmpty(MStatus* ReturnStatus = nullptr) const;
    unsigned length(MStatus* ReturnStatus = nullptr) const;

    MStatus  getDependNode(unsigned index, MObject& depNode) const;
    MStatus  getDagPath(unsigned index, MDagPath& dagPath, MObject* component = nullptr) const;
    MStatus  getDagPath(unsigned index, MDagPath& dagPath, MObject& component) const { return getDagPath(index, dagPath, &component); }
    MStatus  getPlug(unsigned index, MPlug& plug) const;

    MStatus  add(const MObject& object, bool mergeWithExisting = false);
    MStatus  add(const MDagPath& object, const MObject& component = MObject::kNullObj, bool mergeWithExisting = false);
    MStatus  add(const MPlug& plug, bool mergeWithExisting = false);
    /// All that the name, which may have wildcards and components, stands for. kInvalidParameter if that is nothing.
    MStatus  add(const MString& matchString, bool searchChildNamespaces = false);
    MStatus  add(const char* matchString);
    MStatus  remove(unsigned index);
    MStatus  replace(unsigned index, const MObject& item);
    MStatus  replace(unsigned index, const MDagPath& item, const MObject& component = MObject::kNullObj);
    MStatus  replace(unsigned index, const MPlug& plug);

    bool     hasItem(const MObject& item, MStatus* ReturnStatus = nullptr) const;
    bool     hasItem(const MDagPath& item, const MObject& component = MObject::kNullObj, MStatus* ReturnStatus = nullptr) const;
    bool     hasItem(const MPlug& plug, MStatus* ReturnStatus = nullptr) const;
    bool     hasItemPartly(const MDagPath& item, const MObject& component, MStatus* ReturnStatus = nullptr) const;
    MStatus  toggle(const MDagPath& item, const MObject& component = MObject::kNullObj);
    MStatus  merge(const MSelectionList& other, MergeStrategy strategy = kMergeNormal);
    MStatus  merge(const MDagPath& object, const MObject& component = MObject::kNullObj, MergeStrategy strategy = kMergeNormal);

    MStatus  getSelectionStrings(MStringArray& array) const;
    MStatus  getSelectionStrings(unsigned index, MStringArray& array) const;

private:
    friend struct mirk::SelectionAccess;
    mirk::HeldItems* items_;
};
