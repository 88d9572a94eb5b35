// Which points of a geometry a node works on: the trio useComponents, inComponents, groupId.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFnComponentListData.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

enum class SubsetMode : short { kAll = 0, kComponentList = 1, kObjectGroup = 2 };

/// The attributes and data that a subset is read from.
struct SubsetSource
{
    MPlug   components;       ///< the node's inComponents
    MObject geometry;         ///< the geometry's data object, for object groups
    int     groupId = -1;
};

/// A subset. Only the first component of a list counts. A mode other than kAll without anything to select selects
/// nothing: an object group that the geometry does not have, a list that is empty or of another kind of data.
class Subset
{
public:
    Subset(MDataBlock& block, SubsetMode mode, const SubsetSource& source);

    bool all() const { return mode_ == SubsetMode::kAll; }
    /// What was found to select by; null for nothing.
    const MObject& component() const { return component_; }
    /// True if the component that an iterator stands on is selected. Always true for kAll.
    bool has(const MObject& item) const { return all() || list_.has(item); }
    /// Indices of a single-indexed component in its own order up to the first one outside the geometry, which ends the
    /// list even if good ones follow. 0 to pointCount - 1 for kAll and for a complete component.
    MIntArray indices(unsigned int pointCount) const;
    /// Elements of the component, points of the geometry or not. pointCount for kAll, a complete component, and none.
    unsigned int componentCount(unsigned int pointCount) const;

private:
    SubsetMode           mode_;
    MObject              component_;
    MObject              listData_;
    MFnComponentListData list_;
};
