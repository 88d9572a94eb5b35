// Node types, draw overrides and commands of which only the registration exists so far. They stand together in the
// registered.h of their family. A node that gets its work moves out: its line goes, a header and a source of its name
// come, and the registry includes that header.
#pragma once
#include <maya/MDagPath.h>
#include <maya/MPxCommand.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>
#include <maya/MTypeId.h>
#include <maya/MUserData.h>

/// A node type with its persistent id and no attribute of its own: scenes that hold it load, connect and save.
template <class Node, class Base, unsigned int Id>
class Registered : public Base
{
public:
    static inline MTypeId id{Id};
    static void*   creator() { return new Node; }
    static MStatus initialize() { return MS::kSuccess; }
};

/// The draw override of such a node: it draws nothing.
template <class Node>
class RegisteredOverride : public MHWRender::MPxDrawOverride
{
public:
    static MHWRender::MPxDrawOverride* Creator(const MObject& node) { return new RegisteredOverride(node); }
    explicit RegisteredOverride(const MObject& node) : MPxDrawOverride(node, nullptr, false) {}

    MHWRender::DrawAPI supportedDrawAPIs() const override { return MHWRender::kAllDevices; }
    MUserData* prepareForDraw(const MDagPath&, const MDagPath&, const MHWRender::MFrameContext&,
                              MUserData*) override { return nullptr; }
};

/// A command that has its name only. Running it says so and fails, so that no script takes silence for success.
template <class Command>
class RegisteredCommand : public MPxCommand
{
public:
    static void*   creator() { return new Command; }
    static MSyntax newSyntax() { return MSyntax(); }
    MStatus doIt(const MArgList&) override
    {
        displayError(MString(Command::name) + ": this build registers the command but does not carry its work yet.");
        return MS::kFailure;
    }
};
