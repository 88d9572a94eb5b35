#pragma once
#include <maya/MArgList.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>


namespace mirk { struct UserCommandAccess; }

/// Base of user-defined commands. An undoable one lives as long as the undo queue can call it.
class MPxCommand
{
public:
    enum MResultType { kNoArg, kLong, kDouble, kString };

    MPxCommand();
    virtual ~MPxCommand();

    virtual MStatus doIt(const MArgList& args);
    virtual MStatus undoIt();
    virtual MStatus redoIt();
    virtual bool    isUndoable() const;
    virtual bool    hasSyntax() const;
    MSyntax         syntax() const;
    bool            isHistoryOn() const { return history_; }
    MStatus         setHistoryOn(bool state) { history_ = state; return MS::kSuccess; }
    MString         commandString() const { return commandString_; }
    MStatus         setCommandString(const MString& text) { commandString_ = text; return MS::kSuccess; }

    static void    displayInfo(const MString& message);
    static void    displayWarning(const MString& message, bool displayLineNumber = false);
    static void    displayError(const MString& message, bool displayLineNumber = false);
    static void    setResult(bool result);
    static void    setResult(int result);
    static void    setResult(unsigned result);
    static void    setResult(double result);
    static void    setResult(const MString& result);
    static void    setResult(const char* result);
    static void    setResult(const MIntArray& result);
    static void    setResult(const MDoubleArray& result);
    static void    setResult(const MStringArray& result);
    static void    clearResult();
    static void    appendToResult(bool value);
    static void    appendToResult(int value);
    static void    appendToResult(double value);
    static void    appendToResult(const MString& value);
    static void    appendToResult(const char* value);
    static void    appendToResult(const MIntArray& values);
    static void    appendToResult(const MDoubleArray& values);
    static void    appendToResult(const MStringArray& values);
    static bool    isCurrentResultArray();
    static MResultType currentResultType();
    static int     currentIntResult(MStatus* ReturnStatus = nullptr);
    static double  currentDoubleResult(MStatus* ReturnStatus = nullptr);
    static MString currentStringResult(MStatus* ReturnStatus = nullptr);

private:
    friend struct mirk::UserCommandAccess;
    MSyntax syntax_;
    MString commandString_;
    bool    history_ = true;
};
