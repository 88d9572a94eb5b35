#pragma once
#include <maya/MArgParser.h>

class MSelectionList;

/// Arguments read by a command's syntax; checks types and objects, and knows nodes.
class MArgDatabase : public MArgParser
{
public:
    MArgDatabase(const MSyntax& syntax, const MArgList& argList, MStatus* ReturnStatus = nullptr);

    using MArgParser::getFlagArgument;
    using MArgParser::getCommandArgument;
    using MArgParser::getObjects;
    MStatus getFlagArgument(const char* flag, unsigned index, MSelectionList& result) const;
    MStatus getCommandArgument(unsigned index, MSelectionList& result) const;
    MStatus getObjects(MSelectionList& objects) const;
};
