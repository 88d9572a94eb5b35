#pragma once
#include <string>
#include <vector>

#include <maya/MStatus.h>

class MString;

namespace mirk { struct SyntaxAccess; }

/// What flags, arguments and objects a command takes. Flag names are given with the dash.
class MSyntax
{
public:
    enum MArgType { kInvalidArgType, kNoArg, kBoolean, kLong, kDouble, kString, kUnsigned, kDistance, kAngle, kTime, kSelectionItem, kLastArgType };
    enum MObjectFormat { kInvalidObjectFormat, kNone, kStringObjects, kSelectionList, kLastObjectFormat };

    MSyntax() = default;

    MStatus addFlag(const char* shortName, const char* longName, MArgType argType1 = kNoArg, MArgType argType2 = kNoArg,
                    MArgType argType3 = kNoArg, MArgType argType4 = kNoArg, MArgType argType5 = kNoArg, MArgType argType6 = kNoArg);
    MStatus makeFlagMultiUse(const char* flag);
    /// In query mode the flag takes its arguments too.
    MStatus makeFlagQueryWithFullArgs(const char* flag, bool argsOptional);
    bool    canQueryFlagWithFullArgs(const char* flag) const;
    MStatus addArg(MArgType type);
    void    useSelectionAsDefault(bool state) { selectionAsDefault_ = state; }
    bool    selectionAsDefault() const { return selectionAsDefault_; }
    MStatus setObjectType(MObjectFormat format, unsigned minimumObjects = 0);
    MStatus setObjectType(MObjectFormat format, unsigned minimumObjects, unsigned maximumObjects);
    MObjectFormat objectFormat() const { return format_; }
    MStatus setMinObjects(unsigned minimumObjects) { min_ = minimumObjects; return MS::kSuccess; }
    unsigned minObjects() const { return min_; }
    MStatus setMaxObjects(unsigned maximumObjects) { max_ = maximumObjects; return MS::kSuccess; }
    unsigned maxObjects() const { return max_; }
    void    enableQuery(bool supportsQuery = true) { query_ = supportsQuery; }
    bool    canQuery() const { return query_; }
    void    enableEdit(bool supportsEdit = true) { edit_ = supportsEdit; }
    bool    canEdit() const { return edit_; }

private:
    friend struct mirk::SyntaxAccess;
    struct Flag { std::string shortName, longName; std::vector<MArgType> args; bool multi = false, queryArgs = false, queryOptional = false; };
    Flag* find(const char* flag);

    std::vector<Flag>     flags_;
    std::vector<MArgType> args_;
    MObjectFormat         format_ = kNone;
    unsigned              min_ = 0, max_ = 0xFFFFFFFF;
    bool                  selectionAsDefault_ = false, query_ = false, edit_ = false;
};
