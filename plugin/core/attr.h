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
Row text(MObject& attribute, const char* longName, const char* shortName, const std::string& value, Role);
Row enumeration(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Field> fields,
                short value, Role);
Row generic(MObject& attribute, const char* longName, const char* shortName,
            std::initializer_list<MFnData::Type> accepts, Role);

/// A 4x4 matrix of doubles.
Row matrix(MObject& attribute, const char* longName, const char* shortName, Role);
Row message(MObject& attribute, const char* longName, const char* shortName, Role);
/// A group of attributes. The children are rows as well and come in braces, in their order.
Row compound(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Row> children, Role);
/// Two to four scalar attributes of one kind as one value: a vector, a range, a scale.
Row tuple(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Row> children, Role);

/// A ramp over positions 0 to 1. It starts without entries: `fillRamp` in postConstructor gives them.
Row curveRamp(MObject& attribute, const char* longName, const char* shortName, Role);
Row colorRamp(MObject& attribute, const char* longName, const char* shortName, Role);

/// Rows around a row: the same attribute with more set on it.
/// Any number of elements, sparse. Outputs can be filled with a data builder.
Row multi(Row);
Row atLeast(Row, double min);
Row within(Row, double min, double max);
Row softRange(Row, double min, double max);
Row softMax(Row, double max);
Row hidden(Row);
Row notConnectable(Row);

/// Adds the rows to the node type that is being initialised, in order; then every row that is no output affects every
/// output. Stops at the first status that is no success and returns it.
MStatus declare(const Row* rows, std::size_t count);

template <std::size_t N>
MStatus declare(const Row (&rows)[N])
{
    return declare(rows, N);
}

} // namespace attr
