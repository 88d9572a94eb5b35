// Attribute builders of the built-in node types: one line an attribute, made with the public function sets.
#pragma once
#include <initializer_list>
#include <string>

#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MObject.h>

namespace mirk::nodes {

enum AttrFlag : unsigned {
    kIn = 0,             ///< storable, writable
    kKey = 1,            ///< keyable
    kOut = 2,            ///< computed: neither writable nor storable
    kHide = 4,
    kNoStore = 8,
    kMulti = 16,
    kBuilder = 32,       ///< multi that compute builds
    kWorld = 64,         ///< world space: indexed by instance
    kChannel = 128,      ///< shown, not keyable
    kLoose = 256,        ///< multi whose indices do not matter
    kReset = 512,        ///< goes back to its default when disconnected
    kColor = 1024,
};

using Number = MFnNumericData;
using Unit = MFnUnitAttribute;

MObject number(const char* longName, const char* shortName, Number::Type type, double value = 0, unsigned flags = kIn);
MObject number(const char* longName, const char* shortName, Number::Type type, double value, double min, double max,
               unsigned flags = kIn);
MObject unit(const char* longName, const char* shortName, Unit::Type type, double value = 0, unsigned flags = kIn);
/// Three children, named with the letters of `suffix` ("XYZ", or "RGB" for a colour).
MObject triple(const char* longName, const char* shortName, Number::Type child, double value = 0, unsigned flags = kIn,
               const char* suffix = "XYZ");
MObject triple(const char* longName, const char* shortName, Unit::Type child, double value = 0, unsigned flags = kIn);
/// Two to four scalar attributes as one value.
MObject tuple(const char* longName, const char* shortName, std::initializer_list<MObject> children, unsigned flags = kIn);
MObject typed(const char* longName, const char* shortName, MFnData::Type type, unsigned flags = kIn);
MObject matrix(const char* longName, const char* shortName, unsigned flags = kIn);
MObject message(const char* longName, const char* shortName, unsigned flags = kIn);
MObject choice(const char* longName, const char* shortName, int value, std::initializer_list<const char*> fields,
               unsigned flags = kIn);
MObject compound(const char* longName, const char* shortName, std::initializer_list<MObject> children, unsigned flags = kIn);
/// A child of a compound or triple.
MObject childOf(const MObject& parent, unsigned index);

MObject flagged(MObject attribute, unsigned flags);
void    add(std::initializer_list<MObject> attributes);
void    affects(std::initializer_list<MObject> inputs, std::initializer_list<MObject> outputs);

}  // namespace mirk::nodes
