#pragma once
#include <iosfwd>

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

class MArgList;
namespace mirk { class PluginData; }

/// Base of the data types that a plug-in defines.
class MPxData
{
public:
    enum Type { kData, kGeometryData, kLast };

    MPxData();
    MPxData(const MPxData&);
    MPxData& operator=(const MPxData&);
    virtual ~MPxData();

    virtual MStatus readASCII(const MArgList& argList, unsigned int& endOfTheLastParsedElement);
    virtual MStatus readBinary(std::istream& in, unsigned int length);
    virtual MStatus writeASCII(std::ostream& out);
    virtual MStatus writeBinary(std::ostream& out);
    /// Takes over the contents of another object of the same type.
    virtual void    copy(const MPxData& other) = 0;
    virtual MTypeId typeId() const = 0;
    virtual MString name() const = 0;

private:
    friend class mirk::PluginData;
    mirk::PluginData* holder_ = nullptr;   // stays with the object when its contents are copied
};
