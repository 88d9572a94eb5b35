#pragma once
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

class MCommandResult;
class MDagPath;
class MDoubleArray;
class MIntArray;
class MSelectionList;
class MStringArray;
class MTime;
class MVector;

/// The application as a whole: messages, scripts, selection, state.
class MGlobal
{
public:
    enum MMayaState { kInteractive, kBatch, kLibraryApp, kBaseUIMode };
    enum ListAdjustment { kReplaceList, kXORWithList, kAddToList, kRemoveFromList, kAddToHeadOfList };

    static void displayInfo(const MString& message);
    static void displayWarning(const MString& warning, bool showLineNumber = false);
    static void displayError(const MString& error, bool showLineNumber = false);

    /// Runs MEL. With `displayEnabled` the text and its result are shown; with `undoEnabled` it can be undone. A result of
    /// another type than asked for is an error, numbers and text convert.
    static MStatus executeCommand(const MString& command, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MCommandResult& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, int& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, double& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MString& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MIntArray& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MDoubleArray& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MStringArray& result, bool displayEnabled = false, bool undoEnabled = false);
    static MString executeCommandStringResult(const MString& command, bool displayEnabled = false, bool undoEnabled = false, MStatus* ReturnStatus = nullptr);
    /// Runs when the host is idle: before the next file of a session, or at its end.
    static MStatus executeCommandOnIdle(const MString& command, bool displayEnabled = false);

    static MStatus executePythonCommand(const MString& command, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executePythonCommand(const MString& command, int& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executePythonCommand(const MString& command, double& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executePythonCommand(const MString& command, MString& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executePythonCommand(const MString& command, MIntArray& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executePythonCommand(const MString& command, MDoubleArray& result, bool displayEnabled = false, bool undoEnabled = false);
    static MStatus executePythonCommand(const MString& command, MStringArray& result, bool displayEnabled = false, bool undoEnabled = false);
    static MString executePythonCommandStringResult(const MString& command, bool displayEnabled = false, bool undoEnabled = false, MStatus* ReturnStatus = nullptr);
    static MStatus executePythonCommandOnIdle(const MString& command, bool displayEnabled = false);
    static MStatus sourceFile(const MString& fileName);

    static MMayaState mayaState(MStatus* ReturnStatus = nullptr);
    static MString mayaVersion();
    static int     apiVersion();
    static bool    isUndoing();

    static MStatus getActiveSelectionList(MSelectionList& dest, bool orderedSelectionIfAvailable = false);
    static MStatus setActiveSelectionList(const MSelectionList& src, ListAdjustment listAdjustment = kReplaceList);
    static MStatus clearSelectionList();
    static MStatus select(const MObject& object, ListAdjustment listAdjustment = kAddToList);
    static MStatus select(const MDagPath& object, const MObject& component, ListAdjustment listAdjustment = kAddToList);
    static MStatus unselect(const MObject& object);
    static MStatus unselect(const MDagPath& object, const MObject& component);
    static bool    isSelected(const MObject& object);
    static MStatus selectByName(const MString& name, ListAdjustment listAdjustment = kReplaceList);
    static MStatus getSelectionListByName(const MString& name, MSelectionList& list);
    static MStatus getHiliteList(MSelectionList& dest);
    static MStatus setHiliteList(const MSelectionList& src);

    static MStatus deleteNode(MObject& object);
    static MStatus viewFrame(const MTime& time);
    static MStatus viewFrame(double time);
    static bool    isYAxisUp(MStatus* ReturnStatus = nullptr);
    static bool    isZAxisUp(MStatus* ReturnStatus = nullptr);
    static MVector upAxis(MStatus* ReturnStatus = nullptr);
};
