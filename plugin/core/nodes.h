// The registry: every node type and command of the plug-in, in the order of registration. Loading and unloading both
// walk it, and nothing is listed a second time.
#pragma once
#include <vector>

#include <maya/MObject.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxNode.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>
#include <maya/MTypeId.h>

/// What unloading does with a row.
enum class Unload {
    kOverrideThenNode,   ///< the draw override first, then the node type: all but two
    kNodeThenOverride,
    kKeep,               ///< stays registered
};

/// A node type, or a command at its place among them. Type ids and names are stored in scenes and never change.
struct RegistryRow
{
    const char*    name;
    const MTypeId* id;                    ///< null: a command
    void* (*creator)();
    MStatus (*initialize)();              ///< nodes only
    MSyntax (*newSyntax)();               ///< commands only
    MPxNode::Type  kind;
    const MString* classification;        ///< null for none; of a drawn node its draw-database string
    const MString* registrantId;          ///< null: no draw override
    MHWRender::MPxDrawOverride* (*createOverride)(const MObject&);
    Unload         unload;
};

const std::vector<RegistryRow>& registry();
