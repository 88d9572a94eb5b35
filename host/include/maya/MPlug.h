#pragma once
#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>

class MDGContext;
class MDGModifier;
class MDataBlock;
class MDataHandle;
class MIntArray;
class MPlugArray;

namespace mirk { class Node; class Attribute; struct Cell; struct PlugAccess; }

/// A reference to one attribute of one node, elements and children of compounds included.
class MPlug
{
public:
    MPlug() = default;
    MPlug(const MObject& node, const MObject& attribute);
    MPlug(const MPlug& other);
    MPlug(MPlug&& other) noexcept;
    MPlug& operator=(const MPlug& other);
    ~MPlug();

    MStatus setAttribute(const MObject& attribute);
    MObject attribute(MStatus* ReturnStatus = nullptr) const;
    MObject node(MStatus* ReturnStatus = nullptr) const;
    MString name(MStatus* ReturnStatus = nullptr) const;
    MString partialName(bool includeNodeName = false, bool includeNonMandatoryIndices = false,
                        bool includeInstancedIndices = false, bool useAlias = false, bool useFullAttributePath = false,
                        bool useLongNames = false, MStatus* ReturnStatus = nullptr) const;
    MString info(MStatus* ReturnStatus = nullptr) const;

    bool isNull(MStatus* ReturnStatus = nullptr) const;
    bool isArray(MStatus* ReturnStatus = nullptr) const;
    bool isElement(MStatus* ReturnStatus = nullptr) const;
    bool isCompound(MStatus* ReturnStatus = nullptr) const;
    bool isChild(MStatus* ReturnStatus = nullptr) const;
    bool isNetworked(MStatus* ReturnStatus = nullptr) const;
    bool isConnected(MStatus* ReturnStatus = nullptr) const;
    bool isSource(MStatus* ReturnStatus = nullptr) const;
    bool isDestination(MStatus* ReturnStatus = nullptr) const;
    bool isDynamic(MStatus* ReturnStatus = nullptr) const;
    bool isProcedural(MStatus* ReturnStatus = nullptr) const;
    bool isDefaultValue(MStatus* ReturnStatus = nullptr) const;
    bool isLocked(MStatus* ReturnStatus = nullptr) const;
    MStatus setLocked(bool locked);
    bool isKeyable(MStatus* ReturnStatus = nullptr) const;
    MStatus setKeyable(bool keyable);
    bool isChannelBoxFlagSet(MStatus* ReturnStatus = nullptr) const;
    MStatus setChannelBox(bool inChannelBox);

    bool     connectedTo(MPlugArray& array, bool asDst, bool asSrc, MStatus* ReturnStatus = nullptr) const;
    MPlug    source(MStatus* ReturnStatus = nullptr) const;
    bool     destinations(MPlugArray& destinations, MStatus* ReturnStatus = nullptr) const;
    MPlug    child(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MPlug    child(const MObject& attribute, MStatus* ReturnStatus = nullptr) const;
    unsigned numChildren(MStatus* ReturnStatus = nullptr) const;
    MPlug    parent(MStatus* ReturnStatus = nullptr) const;
    MPlug    array(MStatus* ReturnStatus = nullptr) const;
    MPlug    elementByLogicalIndex(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MPlug    elementByPhysicalIndex(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MPlug    connectionByPhysicalIndex(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MPlug    operator[](unsigned index) const { return elementByPhysicalIndex(index); }
    unsigned logicalIndex(MStatus* ReturnStatus = nullptr) const;
    MStatus  selectAncestorLogicalIndex(unsigned index, const MObject& attribute = MObject::kNullObj);
    unsigned getExistingArrayAttributeIndices(MIntArray& indices, MStatus* ReturnStatus = nullptr) const;
    unsigned numElements(MStatus* ReturnStatus = nullptr) const;
    unsigned evaluateNumElements(MStatus* ReturnStatus = nullptr);
    unsigned numConnectedElements(MStatus* ReturnStatus = nullptr) const;
    unsigned numConnectedChildren(MStatus* ReturnStatus = nullptr) const;
    MStatus  setNumElements(unsigned elements);

    MStatus getValue(bool& value) const;
    MStatus getValue(char& value) const;
    MStatus getValue(short& value) const;
    MStatus getValue(int& value) const;
    MStatus getValue(MInt64& value) const;
    MStatus getValue(float& value) const;
    MStatus getValue(double& value) const;
    MStatus getValue(MString& value) const;
    MStatus getValue(MObject& value) const;
    MStatus getValue(MTime& value) const;
    MStatus getValue(MAngle& value) const;
    MStatus getValue(MDistance& value) const;
    bool      asBool(MStatus* ReturnStatus = nullptr) const;
    char      asChar(MStatus* ReturnStatus = nullptr) const;
    short     asShort(MStatus* ReturnStatus = nullptr) const;
    int       asInt(MStatus* ReturnStatus = nullptr) const;
    MInt64    asInt64(MStatus* ReturnStatus = nullptr) const;
    float     asFloat(MStatus* ReturnStatus = nullptr) const;
    double    asDouble(MStatus* ReturnStatus = nullptr) const;
    MString   asString(MStatus* ReturnStatus = nullptr) const;
    MObject   asMObject(MStatus* ReturnStatus = nullptr) const;
    MTime     asMTime(MStatus* ReturnStatus = nullptr) const;
    MAngle    asMAngle(MStatus* ReturnStatus = nullptr) const;
    MDistance asMDistance(MStatus* ReturnStatus = nullptr) const;
    MDataHandle asMDataHandle(MStatus* ReturnStatus = nullptr) const;

    // the same in another context
    MStatus getValue(bool& value, const MDGContext& context) const;
    MStatus getValue(char& value, const MDGContext& context) const;
    MStatus getValue(short& value, const MDGContext& context) const;
    MStatus getValue(int& value, const MDGContext& context) const;
    MStatus getValue(MInt64& value, const MDGContext& context) const;
    MStatus getValue(float& value, const MDGContext& context) const;
    MStatus getValue(double& value, const MDGContext& context) const;
    MStatus getValue(MString& value, const MDGContext& context) const;
    MStatus getValue(MObject& value, const MDGContext& context) const;
    MStatus getValue(MTime& value, const MDGContext& context) const;
    MStatus getValue(MAngle& value, const MDGContext& context) const;
    MStatus getValue(MDistance& value, const MDGContext& context) const;
    bool      asBool(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    char      asChar(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    short     asShort(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    int       asInt(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    MInt64    asInt64(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    float     asFloat(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    double    asDouble(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    MString   asString(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    MObject   asMObject(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    MTime     asMTime(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    MAngle    asMAngle(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    MDistance asMDistance(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;
    /// To be given to destructHandle.
    MDataHandle asMDataHandle(const MDGContext& context, MStatus* ReturnStatus = nullptr) const;

    MStatus setValue(bool value);
    MStatus setValue(char value);
    MStatus setValue(short value);
    MStatus setValue(int value);
    MStatus setValue(MInt64 value);
    MStatus setValue(float value);
    MStatus setValue(double value);
    MStatus setValue(const MString& value);
    MStatus setValue(const char* value);
    MStatus setValue(const MObject& value);
    MStatus setValue(const MTime& value);
    MStatus setValue(const MAngle& value);
    MStatus setValue(const MDistance& value);
    MStatus setValue(MDataHandle& value);
    MStatus setBool(bool value);
    MStatus setChar(char value);
    MStatus setShort(short value);
    MStatus setInt(int value);
    MStatus setInt64(MInt64 value);
    MStatus setFloat(float value);
    MStatus setDouble(double value);
    MStatus setString(const MString& value);
    MStatus setMObject(const MObject& value);
    MStatus setMTime(const MTime& value);
    MStatus setMAngle(const MAngle& value);
    MStatus setMDistance(const MDistance& value);
    MStatus setMDataHandle(const MDataHandle& value);

    MDataHandle constructHandle(MDataBlock& block) const;
    void        destructHandle(MDataHandle& handle) const;

    bool operator==(const MPlug& other) const;
    bool operator!=(const MPlug& other) const { return !(*this == other); }
    /// True for the attribute itself and for an element of it.
    bool operator==(const MObject& attribute) const;
    bool operator!=(const MObject& attribute) const { return !(*this == attribute); }

private:
    friend struct mirk::PlugAccess;
    mirk::Node*            node_ = nullptr;
    const mirk::Attribute* attr_ = nullptr;
    mirk::Cell*            cell_ = nullptr;   // may stand at an ancestor while indices are still open
    bool                   owns_ = false;     // a plug that the evaluator lends to compute counts nothing
};
