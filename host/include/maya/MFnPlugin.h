#pragma once
#include <maya/MApiVersion.h>
#include <maya/MFnBase.h>
#include <maya/MPxData.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

class MPxCommand;
class MSyntax;

typedef void*   (*MCreatorFunction)();
typedef MStatus (*MInitializeFunction)();
typedef MSyntax (*MCreateSyntaxFunction)();

/// What a plug-in registers itself with; made on the object that its entry points are given.
class MFnPlugin : public MFnBase
{
public:
    MFnPlugin();
    explicit MFnPlugin(MObject& object, const char* vendor = "Unknown", const char* version = "Unknown",
                       const char* requiredApiVersion = "Any", MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MString vendor(MStatus* ReturnStatus = nullptr) const;
    MString version(MStatus* ReturnStatus = nullptr) const;
    MString apiVersion(MStatus* ReturnStatus = nullptr) const;
    MString name(MStatus* ReturnStatus = nullptr) const;
    /// The folder that the plug-in was loaded from.
    MString loadPath(MStatus* ReturnStatus = nullptr) const;
    MStatus setName(const MString& newName, bool allowLocking = true);
    MStatus setVersion(const MString& newVersion);

    MStatus registerNode(const MString& typeName, const MTypeId& typeId, MCreatorFunction creatorFunction,
                         MInitializeFunction initFunction, MPxNode::Type type = MPxNode::kDependNode,
                         const MString* classification = nullptr);
    MStatus deregisterNode(const MTypeId& typeId);
    MStatus registerCommand(const MString& commandName, MCreatorFunction creatorFunction,
                            MCreateSyntaxFunction createSyntaxFunction = nullptr);
    MStatus deregisterCommand(const MString& commandName);
    MStatus registerData(const MString& typeName, const MTypeId& typeId, MCreatorFunction creatorFunction,
                         MPxData::Type type = MPxData::kData);
    MStatus deregisterData(const MTypeId& typeId);

    static MObject findPlugin(const MString& pluginName);
};
