// Attributes as a table: a row makes one attribute with the host's function set of its kind and gives it the flags of
// its role; `declare` adds the rows in order and lets every input affect every output.
#pragma once
#include <initializer_list>
#include <string>

#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

namespace attr {

enum Role {
    kInput,     ///< connection only: not stored
    kControl,   ///< keyable and stored
    kStored,    ///< stored, not keyable: names and numbers that no curve drives
    kOutput,    ///< not writable, not stored
};

struct Row
{
    MObject* attribute;
    Role     role;
};

/// One choice of an enum attribute.
struct Field
{
    const char* name;
    short       value;
};

/// The shared choices of `useComponents` and `coordinateSystem`.
extern const std::initializer_list<Field> kSubsetFields, kSpaceFields;

Row numeric(MObject& attribute, const char* longName, const char* shortName, MFnNumericData::Type, double value, Role);
Row typed(MObject& attribute, const char* longName, const char* shortName, MFnData::Type, Role);
Row text(MObject& attribute, const char* longName, const char* shortName, Role);
Row enumeration(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Field> fields,
                short value, Role);
Row generic(MObject& attribute, const char* longName, const char* shortName,
            std::initializer_list<MFnData::Type> accepts, Role);

/// Adds the rows to the node type that is being initialised, in order; then every row that is no output affects every
/// output. Stops at the first status that is no success and returns it.
MStatus declare(const Row* rows, std::size_t count);

template <std::size_t N>
MStatus declare(const Row (&rows)[N])
{
    return declare(rows, N);
}

} // namespace attr
