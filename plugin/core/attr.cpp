#include "core/attr.h"

#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPxNode.h>
#include <maya/MRampAttribute.h>

namespace attr {

const std::initializer_list<Field> kSubsetFields = {
    {"None", 0}, {"Input Component List", 1}, {"Input Object Group", 2}};
const std::initializer_list<Field> kSpaceFields = {{"World", 0}, {"Object", 1}};

namespace {

/// The flags of the role on an attribute just made.
Row row(MObject& attribute, MFnAttribute& fn, Role role)
{
    switch (role) {
    case kInput:   fn.setStorable(false); break;
    case kControl: fn.setKeyable(true); break;
    case kStored:  break;
    case kOutput:  fn.setWritable(false); fn.setStorable(false); break;
    }
    return {&attribute, role};
}

} // namespace

Row numeric(MObject& attribute, const char* longName, const char* shortName, MFnNumericData::Type type, double value,
            Role role)
{
    MFnNumericAttribute fn;
    attribute = fn.create(longName, shortName, type, value);
    return row(attribute, fn, role);
}

Row typed(MObject& attribute, const char* longName, const char* shortName, MFnData::Type type, Role role)
{
    MFnTypedAttribute fn;
    attribute = fn.create(longName, shortName, type);
    return row(attribute, fn, role);
}

Row text(MObject& attribute, const char* longName, const char* shortName, Role role)
{
    return typed(attribute, longName, shortName, MFnData::kString, role);
}

Row text(MObject& attribute, const char* longName, const char* shortName, const std::string& value, Role role)
{
    MFnTypedAttribute fn;
    MFnStringData     data;
    attribute = fn.create(longName, shortName, MFnData::kString, data.create(value.c_str()));
    return row(attribute, fn, role);
}

Row enumeration(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Field> fields,
                short value, Role role)
{
    MFnEnumAttribute fn;
    attribute = fn.create(longName, shortName);
    for (const Field& field : fields)
        fn.addField(field.name, field.value);
    fn.setDefault(value);
    return row(attribute, fn, role);
}

Row generic(MObject& attribute, const char* longName, const char* shortName,
            std::initializer_list<MFnData::Type> accepts, Role role)
{
    MFnGenericAttribute fn;
    attribute = fn.create(longName, shortName);
    for (const MFnData::Type type : accepts)
        fn.addDataAccept(type);
    return row(attribute, fn, role);
}

Row matrix(MObject& attribute, const char* longName, const char* shortName, Role role)
{
    MFnMatrixAttribute fn;
    attribute = fn.create(longName, shortName);
    return row(attribute, fn, role);
}

Row message(MObject& attribute, const char* longName, const char* shortName, Role role)
{
    MFnMessageAttribute fn;
    attribute = fn.create(longName, shortName);
    return row(attribute, fn, role);
}

Row compound(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Row> children,
             Role role)
{
    MFnCompoundAttribute fn;
    attribute = fn.create(longName, shortName);
    for (const Row& child : children)
        fn.addChild(*child.attribute);
    return row(attribute, fn, role);
}

Row tuple(MObject& attribute, const char* longName, const char* shortName, std::initializer_list<Row> children,
          Role role)
{
    MObject part[4];
    int     count = 0;
    for (const Row& child : children)
        if (count < 4)
            part[count++] = *child.attribute;
    MFnNumericAttribute fn;
    attribute = fn.create(longName, shortName, part[0], part[1], part[2], part[3]);
    return row(attribute, fn, role);
}

Row curveRamp(MObject& attribute, const char* longName, const char* shortName, Role role)
{
    attribute = MRampAttribute::createCurveRamp(longName, shortName);
    MFnAttribute fn(attribute);
    return row(attribute, fn, role);
}

Row colorRamp(MObject& attribute, const char* longName, const char* shortName, Role role)
{
    attribute = MRampAttribute::createColorRamp(longName, shortName);
    MFnAttribute fn(attribute);
    return row(attribute, fn, role);
}

Row multi(Row of)
{
    MFnAttribute fn(*of.attribute);
    fn.setArray(true);
    if (of.role == kOutput)
        fn.setUsesArrayDataBuilder(true);
    return of;
}

Row atLeast(Row of, double min)
{
    MFnNumericAttribute(*of.attribute).setMin(min);
    return of;
}

Row within(Row of, double min, double max)
{
    MFnNumericAttribute fn(*of.attribute);
    fn.setMin(min);
    fn.setMax(max);
    return of;
}

Row softRange(Row of, double min, double max)
{
    MFnNumericAttribute fn(*of.attribute);
    fn.setSoftMin(min);
    fn.setSoftMax(max);
    return of;
}

Row softMax(Row of, double max)
{
    MFnNumericAttribute(*of.attribute).setSoftMax(max);
    return of;
}

Row hidden(Row of)
{
    MFnAttribute(*of.attribute).setHidden(true);
    return of;
}

Row notConnectable(Row of)
{
    MFnAttribute(*of.attribute).setConnectable(false);
    return of;
}

MStatus declare(const Row* rows, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const MStatus status = MPxNode::addAttribute(*rows[i].attribute);
        if (!status)
            return status;
    }
    for (std::size_t in = 0; in < count; ++in) {
        if (rows[in].role == kOutput)
            continue;
        for (std::size_t out = 0; out < count; ++out) {
            if (rows[out].role != kOutput)
                continue;
            const MStatus status = MPxNode::attributeAffects(*rows[in].attribute, *rows[out].attribute);
            if (!status)
                return status;
        }
    }
    return MS::kSuccess;
}

} // namespace attr
