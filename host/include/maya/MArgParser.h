#pragma once
#include <memory>

#include <maya/MArgList.h>
#include <maya/MSyntax.h>

namespace mirk { struct ParsedArgs; }

/// Arguments read by a command's syntax.
class MArgParser
{
public:
    MArgParser(const MSyntax& syntax, const MArgList& argList, MStatus* ReturnStatus = nullptr);
    virtual ~MArgParser();

    bool     isFlagSet(const char* flag, MStatus* ReturnStatus = nullptr) const;
    bool     isEdit(MStatus* ReturnStatus = nullptr) const;
    bool     isQuery(MStatus* ReturnStatus = nullptr) const;
    unsigned numberOfFlagsUsed() const;
    unsigned numberOfFlagUses(const char* flag) const;

    MStatus getFlagArgument(const char* flag, unsigned index, bool& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, int& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, double& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, MString& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, unsigned& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, MDistance& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, MAngle& result) const;
    MStatus getFlagArgument(const char* flag, unsigned index, MTime& result) const;
    bool    flagArgumentBool(const char* flag, unsigned index, MStatus* ReturnStatus = nullptr) const;
    int     flagArgumentInt(const char* flag, unsigned index, MStatus* ReturnStatus = nullptr) const;
    double  flagArgumentDouble(const char* flag, unsigned index, MStatus* ReturnStatus = nullptr) const;
    MString flagArgumentString(const char* flag, unsigned index, MStatus* ReturnStatus = nullptr) const;
    /// Where a use of a flag stands among the arguments given.
    MStatus getFlagArgumentPosition(const char* flag, unsigned index, unsigned& position) const;
    /// Arguments of one use of a flag that may be given several times.
    MStatus getFlagArgumentList(const char* flag, unsigned index, MArgList& args) const;

    MStatus getCommandArgument(unsigned index, bool& result) const;
    MStatus getCommandArgument(unsigned index, int& result) const;
    MStatus getCommandArgument(unsigned index, double& result) const;
    MStatus getCommandArgument(unsigned index, MString& result) const;
    MStatus getCommandArgument(unsigned index, MDistance& result) const;
    MStatus getCommandArgument(unsigned index, MAngle& result) const;
    MStatus getCommandArgument(unsigned index, MTime& result) const;
    bool    commandArgumentBool(unsigned index, MStatus* ReturnStatus = nullptr) const;
    int     commandArgumentInt(unsigned index, MStatus* ReturnStatus = nullptr) const;
    double  commandArgumentDouble(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MString commandArgumentString(unsigned index, MStatus* ReturnStatus = nullptr) const;

    MStatus getObjects(MStringArray& objects) const;

protected:
    std::shared_ptr<const mirk::ParsedArgs> parsed_;
};
