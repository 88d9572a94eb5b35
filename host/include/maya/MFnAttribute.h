#pragma once
#include <maya/MFnBase.h>
#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

class MStringArray;

namespace mirk { class Attribute; }

/// Function set for all attributes. Setters belong in a node's initialize: they fail once the attribute is in use.
class MFnAttribute : public MFnBase
{
public:
    enum DisconnectBehavior { kDelete = 0, kReset = 1, kNothing = 2 };

    MFnAttribute() = default;
    explicit MFnAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    bool isReadable(MStatus* ReturnStatus = nullptr) const;
    bool isWritable(MStatus* ReturnStatus = nullptr) const;
    bool isConnectable(MStatus* ReturnStatus = nullptr) const;
    bool isStorable(MStatus* ReturnStatus = nullptr) const;
    bool isCached(MStatus* ReturnStatus = nullptr) const;
    bool isArray(MStatus* ReturnStatus = nullptr) const;
    bool indexMatters(MStatus* ReturnStatus = nullptr) const;
    bool isKeyable(MStatus* ReturnStatus = nullptr) const;
    bool isChannelBoxFlagSet(MStatus* ReturnStatus = nullptr) const;
    bool isHidden(MStatus* ReturnStatus = nullptr) const;
    bool isUsedAsColor(MStatus* ReturnStatus = nullptr) const;
    bool isUsedAsFilename(MStatus* ReturnStatus = nullptr) const;
    bool isWorldSpace(MStatus* ReturnStatus = nullptr) const;
    bool isInternal(MStatus* ReturnStatus = nullptr) const;
    bool isIndeterminant(MStatus* ReturnStatus = nullptr) const;
    bool isRenderSource(MStatus* ReturnStatus = nullptr) const;
    bool isDynamic(MStatus* ReturnStatus = nullptr) const;
    bool isAffectsAppearance(MStatus* ReturnStatus = nullptr) const;
    bool usesArrayDataBuilder(MStatus* ReturnStatus = nullptr) const;
    DisconnectBehavior disconnectBehavior(MStatus* ReturnStatus = nullptr) const;

    MStatus setReadable(bool state);
    MStatus setWritable(bool state);
    MStatus setConnectable(bool state);
    MStatus setStorable(bool state);
    MStatus setCached(bool state);
    MStatus setArray(bool state);
    MStatus setIndexMatters(bool state);
    MStatus setKeyable(bool state);
    MStatus setChannelBox(bool state);
    MStatus setHidden(bool state);
    MStatus setUsedAsColor(bool state);
    MStatus setUsedAsFilename(bool state);
    MStatus setWorldSpace(bool state);
    MStatus setInternal(bool state);
    MStatus setIndeterminant(bool state);
    MStatus setRenderSource(bool state);
    MStatus setAffectsAppearance(bool state);
    MStatus setUsesArrayDataBuilder(bool state);
    MStatus setDisconnectBehavior(DisconnectBehavior behavior);
    MStatus setNiceNameOverride(const MString& niceName);
    MStatus addToCategory(const MString& category);
    bool    hasCategory(const MString& category, MStatus* ReturnStatus = nullptr) const;

    MObject parent(MStatus* ReturnStatus = nullptr) const;
    MStatus setParent(const MObject& parent);
    MString name(MStatus* ReturnStatus = nullptr) const;
    MString shortName(MStatus* ReturnStatus = nullptr) const;
    bool    accepts(MFnData::Type type, MStatus* ReturnStatus = nullptr) const;
    bool    accepts(MFnNumericData::Type type, MStatus* ReturnStatus = nullptr) const;
    bool    accepts(const MTypeId& id, MStatus* ReturnStatus = nullptr) const;

protected:
    mirk::Attribute* attr() const;
    MObject          adopt(mirk::Attribute* attribute, MStatus* ReturnStatus);
    bool             acceptsObject(const MObject& object) const override;
};
