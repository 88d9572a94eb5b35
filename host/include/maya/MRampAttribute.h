#pragma once
#include <maya/MDGContext.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>

class MColor;
class MColorArray;
class MFloatArray;
class MIntArray;
class MObject;
class MString;

/// A ramp attribute of one node: a multi of entries, each with a position, a value or colour, and the interpolation up
/// to the next entry.
///
/// The attribute `name` (`n`) is a multi compound with the children `name_Position` (`np`), `name_FloatValue` (`nfv`) or
/// `name_Color` (`nc`), and `name_Interp` (`ni`). Entries count in order of position, whatever their indices. Positions
/// before the first and after the last entry take the value of that entry; a ramp without entries is 0 or black.
class MRampAttribute
{
public:
    enum MInterpolation { kNone = 0, kLinear, kSmooth, kSpline };

    MRampAttribute() = default;
    /// Attribute of a ramp on a node; anything else gives kInvalidParameter and a ramp without entries.
    MRampAttribute(const MObject& node, const MObject& attribute, MStatus* ReturnStatus = nullptr);
    explicit MRampAttribute(const MPlug& plug, MStatus* ReturnStatus = nullptr);

    static MObject createCurveRamp(const MString& longName, const MString& shortName, MStatus* ReturnStatus = nullptr);
    static MObject createColorRamp(const MString& longName, const MString& shortName, MStatus* ReturnStatus = nullptr);

    bool     isCurveRamp(MStatus* ReturnStatus = nullptr) const;
    bool     isColorRamp(MStatus* ReturnStatus = nullptr) const;
    unsigned getNumEntries(MStatus* ReturnStatus = nullptr) const;
    /// In order of index. Fails for a ramp of the other kind.
    void     getEntries(MIntArray& indices, MFloatArray& positions, MFloatArray& values, MIntArray& interps,
                        MStatus* ReturnStatus = nullptr) const;
    void     getEntries(MIntArray& indices, MFloatArray& positions, MColorArray& colors, MIntArray& interps,
                        MStatus* ReturnStatus = nullptr) const;
    bool     hasIndex(unsigned index, MStatus* ReturnStatus = nullptr) const;

    void getValueAtPosition(float position, float& value, MStatus* ReturnStatus = nullptr,
                            MDGContext& context = MDGContext::fsNormal) const;
    void getColorAtPosition(float position, MColor& color, MStatus* ReturnStatus = nullptr,
                            MDGContext& context = MDGContext::fsNormal) const;
    /// `count` values at equal steps from position 0 to 1.
    MStatus sampleValueRamp(unsigned count, MFloatArray& values) const;
    MStatus sampleColorRamp(unsigned count, MColorArray& colors) const;

    /// New entries after those that exist. The arrays must be of one length.
    void addEntries(const MFloatArray& positions, const MFloatArray& values, const MIntArray& interps,
                    MStatus* ReturnStatus = nullptr);
    void addEntries(const MFloatArray& positions, const MColorArray& colors, const MIntArray& interps,
                    MStatus* ReturnStatus = nullptr);
    /// Takes all of them out or, if one does not exist, none.
    void deleteEntries(const MIntArray& indices, MStatus* ReturnStatus = nullptr);

    /// These put the entries that are given in place of all that exist.
    MStatus setRamp(float value, float position = 1, MInterpolation interpolation = kLinear);
    MStatus setRamp(const MColor& color, float position = 1, MInterpolation interpolation = kLinear);
    MStatus setRamp(const MFloatArray& values, const MFloatArray& positions, const MIntArray& interps);
    MStatus setRamp(const MColorArray& colors, const MFloatArray& positions, const MIntArray& interps);

    /// These change an entry that exists.
    void setValueAtIndex(float value, unsigned index, MStatus* ReturnStatus = nullptr);
    void setColorAtIndex(const MColor& color, unsigned index, MStatus* ReturnStatus = nullptr);
    void setPositionAtIndex(float position, unsigned index, MStatus* ReturnStatus = nullptr);
    void setInterpolationAtIndex(MInterpolation interpolation, unsigned index, MStatus* ReturnStatus = nullptr);

    /// Puts the entries on their indices in order of position. Fails if an entry is driven.
    void sort(bool ascending = true, MStatus* ReturnStatus = nullptr);
    /// Moves the entries to the indices from 0 on, in their order. Fails if an entry is driven.
    void pack(MStatus* ReturnStatus = nullptr);

private:
    MPlug plug_;
};
