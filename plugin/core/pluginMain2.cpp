// Entry points. Loading registers everything, hands the scripted layer to the host's interpreters and writes the files
// of the scripted tools; unloading takes the registrations back. The order of the steps is part of the interface:
// scripts and scenes rely on it.
#include <cstddef>
#include <fstream>

#include <maya/MDrawRegistry.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

#include "core/nodes.h"
#include "embeddedText.h"

#if defined(_WIN32)
#define MIRK_EXPORT __declspec(dllexport)
#else
#define MIRK_EXPORT __attribute__((visibility("default")))
#endif

namespace {

constexpr const char* kVersion = "Apr 15 2021";

void mel(const MString& text) { MGlobal::executeCommand(text, false, false); }
void python(const MString& text) { MGlobal::executePythonCommand(text, false, false); }
bool interactive() { return MGlobal::mayaState() == MGlobal::kInteractive; }

/// The echo of executed commands: remembers it, silences it, and gives it back if it was on.
class CommandEcho
{
public:
    CommandEcho()
    {
        MGlobal::executeCommand("commandEcho -q -st", state_, false, false);
        mel("commandEcho -st 0");
    }
    void restore() const
    {
        if (state_ == 1)
            mel("commandEcho -st 1");
    }

private:
    int state_ = 0;
};

MStatus checked(MStatus status, const char* operation)
{
    if (!status)
        status.perror(operation);
    return status;
}

MStatus addRow(MFnPlugin& plugin, const RegistryRow& row)
{
    if (!row.id)
        return checked(plugin.registerCommand(row.name, row.creator, row.newSyntax), "registerCommand");
    const MStatus status = checked(
        plugin.registerNode(row.name, *row.id, row.creator, row.initialize, row.kind, row.classification),
        "registerNode");
    if (!status || !row.registrantId)
        return status;
    return checked(MHWRender::MDrawRegistry::registerDrawOverrideCreator(*row.classification, *row.registrantId,
                                                                         row.createOverride),
                   "registerDrawOverrideCreator");
}

MStatus removeOverride(const RegistryRow& row)
{
    if (!row.registrantId)
        return MS::kSuccess;
    return checked(
        MHWRender::MDrawRegistry::deregisterDrawOverrideCreator(*row.classification, *row.registrantId),
        "deregisterDrawOverrideCreator");
}

MStatus removeRow(MFnPlugin& plugin, const RegistryRow& row)
{
    if (!row.id)
        return checked(plugin.deregisterCommand(row.name), "deregisterCommand");
    if (row.unload == Unload::kKeep)
        return MS::kSuccess;
    if (row.unload == Unload::kNodeThenOverride) {
        const MStatus status = checked(plugin.deregisterNode(*row.id), "deregisterNode");
        return status ? removeOverride(row) : status;
    }
    const MStatus status = removeOverride(row);
    return status ? checked(plugin.deregisterNode(*row.id), "deregisterNode") : status;
}

void makeWeightsPaintable()
{
    for (const char* statement : {
             R"(makePaintable -at "multiFloat" -sm "deformer" "peak" "weights")",
             R"(makePaintable -at "multiFloat" -sm "deformer" "smooth" "weights")",
             R"(makePaintable -at "multiFloat" -sm "deformer" "smoothSimple" "weights")",
             R"(makePaintable -at "doubleArray" "tensionMap" "inWeightPP")",
             R"(makePaintable -at "doubleArray" "rayProject" "inWeightPP")",
             R"(makePaintable -at "doubleArray" "timeOffset" "inWeightPP")",
             R"(makePaintable -at "doubleArray" "retarget" "inWeightPP")",
             R"(makePaintable -at "doubleArray" "morphAssembly" "paintMap")",
             R"(makePaintable -at "doubleArray" "morph" "paintWeightMap")",
             R"(makePaintable -at "doubleArray" "collide" "paintWeightMap")",
         })
        mel(statement);
}

/// A file that cannot be written is not reported: the import that follows speaks of it.
void writeFile(const MString& directory, const char* name, const char* bytes, std::size_t count)
{
    std::ofstream file((directory + name).asChar(), std::ios::binary | std::ios::trunc);
    file.write(bytes, static_cast<std::streamsize>(count));
}

/// The module's source is on disk only as long as its import takes.
void importAndRemove(const MString& directory, const MString& module)
{
    python(MString("import ") + module + " as " + module + "; reload(" + module + "); os.remove('" + directory +
           module + ".py')");
}

void deployTools()
{
    python("import os");
    MString directory;
    MGlobal::executePythonCommand("mirk().scriptPath()", directory, false, false);

    writeFile(directory, "iconsDesigner.py", iconsDesigner_py, iconsDesigner_py_size);
    writeFile(directory, "iconsDesigner.ui", iconsDesigner_ui, iconsDesigner_ui_size);
    writeFile(directory, "iconsDesigner.hlp", iconsDesigner_hlp, iconsDesigner_hlp_size);
    writeFile(directory, "icons.cfg", icons_cfg, icons_cfg_size);
    importAndRemove(directory, "iconsDesigner");

    writeFile(directory, "slidersManager.py", slidersManager_py, slidersManager_py_size);
    writeFile(directory, "slidersManager.hlp", slidersManager_hlp, slidersManager_hlp_size);
    importAndRemove(directory, "slidersManager");

    writeFile(directory, "scriptsManager.py", scriptsManager_py, scriptsManager_py_size);
    importAndRemove(directory, "scriptsManager");

    // plugins.py stays: the manager imports it later
    writeFile(directory, "blendShapesManager.py", blendShapesManager_py, blendShapesManager_py_size);
    writeFile(directory, "plugins.py", plugins_py, plugins_py_size);
    importAndRemove(directory, "blendShapesManager");
}

void startTools()
{
    python("msv_Mirk = MorphSchematicView(); msv_Mirk.initialize()");
    python("igpucs_Mirk().activate()");
    python("smartConnect_Mirk().initialize()");
    python("outline_Mirk = Outline_Mirk(); ui_Mirk().initialize()");
}

} // namespace

MIRK_EXPORT MStatus initializePlugin(MObject object)
{
    MFnPlugin plugin(object, "Mirk Labs", kVersion, "any");
    MStatus   status;
    for (const RegistryRow& row : registry()) {
        status = addRow(plugin, row);
        if (!status)
            return status;   // no rollback, and no script has run
    }

    MGlobal::displayInfo("");
    MGlobal::displayInfo(MString("Mirk ") + kVersion);
    MGlobal::displayInfo("");

    const CommandEcho echo;
    mel(charArrMelScripts);
    python(charArrPythonScripts);
    if (interactive()) {
        python("mirk().updateShelfMenus()");
        makeWeightsPaintable();
    }
    deployTools();
    if (interactive())
        startTools();
    echo.restore();
    return status;
}

MIRK_EXPORT MStatus uninitializePlugin(MObject object)
{
    MFnPlugin         plugin(object);
    const CommandEcho echo;
    if (interactive()) {
        python("igpucs_Mirk().deactivate()");
        python("outline_Mirk.deactivate()");
    }
    MStatus status;
    for (const RegistryRow& row : registry()) {
        status = removeRow(plugin, row);
        if (!status)
            return status;   // the echo stays off as well
    }
    // there is no `init`: the error shows, and the main menu keeps standing
    python("ui_Mirk().init()");
    echo.restore();
    return status;
}
