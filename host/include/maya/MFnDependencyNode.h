#pragma once
#include <maya/MFnBase.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

class MObjectArray;
class MPlug;
class MPlugArray;
class MPxNode;
class MStringArray;
class MUuid;

namespace mirk { class Node; }

/// Function set for dependency nodes.
class MFnDependencyNode : public MFnBase
{
public:
    enum MAttrClass { kLocalDynamicAttr = 1, kNormalAttr, kExtensionAttr, kInvalidAttr };

    MFnDependencyNode() = default;
    explicit MFnDependencyNode(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MTypeId& typeId, MStatus* ReturnStatus = nullptr);
    MObject create(const MTypeId& typeId, const MString& name, MStatus* ReturnStatus = nullptr);
    MObject create(const MString& type, MStatus* ReturnStatus = nullptr);
    MObject create(const MString& type, const MString& name, MStatus* ReturnStatus = nullptr);

    MTypeId  typeId(MStatus* ReturnStatus = nullptr) const;
    MString  typeName(MStatus* ReturnStatus = nullptr) const;
    MString  name(MStatus* ReturnStatus = nullptr) const;
    MString  absoluteName(MStatus* ReturnStatus = nullptr) const;
    MString  setName(const MString& name, bool createNamespace = false, MStatus* ReturnStatus = nullptr);
    bool     hasUniqueName(MStatus* ReturnStatus = nullptr) const;
    MString  parentNamespace(MStatus* ReturnStatus = nullptr) const;
    MString  pluginName(MStatus* ReturnStatus = nullptr) const;
    MPxNode* userNode(MStatus* ReturnStatus = nullptr) const;
    MUuid    uuid(MStatus* ReturnStatus = nullptr) const;
    static MString classification(const MString& nodeTypeName);

    bool     isDefaultNode(MStatus* ReturnStatus = nullptr) const;
    bool     isFromReferencedFile(MStatus* ReturnStatus = nullptr) const;
    bool     isShared(MStatus* ReturnStatus = nullptr) const;
    bool     isLocked(MStatus* ReturnStatus = nullptr) const;
    MStatus  setLocked(bool locked);

    MStatus  getConnections(MPlugArray& array) const;
    unsigned attributeCount(MStatus* ReturnStatus = nullptr) const;
    MObject  attribute(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MObject  attribute(const MString& attrName, MStatus* ReturnStatus = nullptr) const;
    MObject  reorderedAttribute(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MAttrClass attributeClass(const MObject& attr, MStatus* ReturnStatus = nullptr) const;
    MStatus  getAffectedAttributes(const MObject& attr, MObjectArray& affectedAttributes) const;
    MStatus  getAffectedByAttributes(const MObject& attr, MObjectArray& affectedByAttributes) const;
    bool     hasAttribute(const MString& name, MStatus* ReturnStatus = nullptr) const;
    MStatus  addAttribute(const MObject& attr);
    MStatus  removeAttribute(const MObject& attr);

    MPlug    findPlug(const MString& attrName, bool wantNetworkedPlug, MStatus* ReturnStatus = nullptr) const;
    MPlug    findPlug(const MObject& attr, bool wantNetworkedPlug, MStatus* ReturnStatus = nullptr) const;
    MPlug    findPlug(const MString& attrName, MStatus* ReturnStatus = nullptr) const;
    MPlug    findPlug(const MObject& attr, MStatus* ReturnStatus = nullptr) const;

    /// Gives the plug the alias, or takes it away if `add` is false. `name` is the plug's name without its node.
    bool     setAlias(const MString& alias, const MString& name, const MPlug& plug, bool add = true, MStatus* ReturnStatus = nullptr);
    bool     findAlias(const MString& alias, MObject& attrObj, MStatus* ReturnStatus = nullptr) const;
    MString  plugsAlias(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    /// Pairs of alias and attribute name. False if there is none.
    bool     getAliasList(MStringArray& strArray, MStatus* ReturnStatus = nullptr);

protected:
    mirk::Node* node() const;
};
