#pragma once
#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MObject.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

class MDataBlock;
class MFloatMatrix;
class MFloatVector;
class MMatrix;
class MPlug;
class MPxData;
class MString;
class MTypeId;
class MVector;

namespace mirk { struct Cell; struct HandleAccess; }

/// A smart pointer to one value in a data block. Reading a kind that the value does not have converts where numbers
/// allow it, else gives a neutral value; it never reads out of bounds.
class MDataHandle
{
public:
    MDataHandle();
    MDataHandle(const MDataHandle&) = default;
    MDataHandle& operator=(const MDataHandle&) = default;
    ~MDataHandle() = default;

    MFnData::Type        type(MStatus* ReturnStatus = nullptr) const;
    MTypeId              typeId() const;
    bool                 isNumeric(MStatus* ReturnStatus = nullptr) const;
    bool                 isGeneric(bool& isNumeric, bool& isNull, MStatus* ReturnStatus = nullptr) const;
    MFnNumericData::Type numericType(MStatus* ReturnStatus = nullptr) const;
    MDataBlock           datablock(MStatus* ReturnStatus = nullptr) const;
    void                 setClean();

    MDataHandle child(const MPlug& plug);
    MDataHandle child(const MObject& attribute);
    MObject     data();
    MStatus     copy(const MDataHandle& source);
    MStatus     copyWritable(const MDataHandle& source);

    bool&          asBool() const;
    char&          asChar() const;
    unsigned char& asUChar() const;
    short&         asShort() const;
    unsigned short& asUShort() const;
    int&           asInt() const;
    int&           asLong() const;
    MInt64&        asInt64() const;
    float&         asFloat() const;
    double&        asDouble() const;
    float2&        asFloat2() const;
    float3&        asFloat3() const;
    double2&       asDouble2() const;
    double3&       asDouble3() const;
    double4&       asDouble4() const;
    int2&          asInt2() const;
    int3&          asInt3() const;
    int2&          asLong2() const;
    int3&          asLong3() const;
    short2&        asShort2() const;
    short3&        asShort3() const;
    MVector&       asVector() const;
    MFloatVector&  asFloatVector() const;
    MMatrix&       asMatrix() const;
    MFloatMatrix&  asFloatMatrix() const;
    MString&       asString() const;
    MTime          asTime() const;
    MAngle         asAngle() const;
    MDistance      asDistance() const;
    void*          asAddr() const;
    // The number in a generic attribute; 0 where it holds none.
    bool   asGenericBool() const;
    char   asGenericChar() const;
    short  asGenericShort() const;
    int    asGenericInt() const;
    MInt64 asGenericInt64() const;
    float  asGenericFloat() const;
    double asGenericDouble() const;
    MPxData*       asPluginData() const;
    MObject        asMesh() const;
    MObject        asMeshTransformed() const;
    MObject        asNurbsCurve() const;
    MObject        asNurbsCurveTransformed() const;
    MObject        asNurbsSurface() const;
    MObject        asNurbsSurfaceTransformed() const;
    const MMatrix& geometryTransformMatrix() const;

    void set(bool value);
    void set(char value);
    void set(short value);
    void set(int value);
    void set(MInt64 value);
    void set(float value);
    void set(double value);
    void set(const MMatrix& value);
    void set(const MFloatMatrix& value);
    void set(const MVector& value);
    void set(const MFloatVector& value);
    void set(const MTime& value);
    void set(const MAngle& value);
    void set(const MDistance& value);
    void set(const MString& value);
    MStatus set(MPxData* value);
    MStatus set(const MObject& value);
    void set(short a, short b);
    void set(int a, int b);
    void set(float a, float b);
    void set(double a, double b);
    void set(short a, short b, short c);
    void set(int a, int b, int c);
    void set(float a, float b, float c);
    void set(double a, double b, double c);

    void setBool(bool value);
    void setChar(char value);
    void setShort(short value);
    void setInt(int value);
    void setInt64(MInt64 value);
    void setFloat(float value);
    void setDouble(double value);
    void setMMatrix(const MMatrix& value);
    void setMFloatMatrix(const MFloatMatrix& value);
    void setMVector(const MVector& value);
    void setMFloatVector(const MFloatVector& value);
    void setMTime(const MTime& value);
    void setMAngle(const MAngle& value);
    void setMDistance(const MDistance& value);
    void setString(const MString& value);
    void setMPxData(MPxData* value);
    void setMObject(const MObject& value);
    void set2Short(short a, short b);
    void set2Int(int a, int b);
    void set2Float(float a, float b);
    void set2Double(double a, double b);
    void set3Short(short a, short b, short c);
    void set3Int(int a, int b, int c);
    void set3Float(float a, float b, float c);
    void set3Double(double a, double b, double c);
    void set4Double(double a, double b, double c, double d);

    // A number of this kind for a generic attribute. Connected attributes follow in every case: `propagate` changes nothing.
    void setGenericBool(bool value, bool propagate);
    void setGenericChar(char value, bool propagate);
    void setGenericShort(short value, bool propagate);
    void setGenericInt(int value, bool propagate);
    void setGenericInt64(MInt64 value, bool propagate);
    void setGenericFloat(float value, bool propagate);
    void setGenericDouble(double value, bool propagate);

private:
    friend struct mirk::HandleAccess;
    mirk::Cell* cell_ = nullptr;
    bool        input_ = false;   // children are evaluated when asked for
};
