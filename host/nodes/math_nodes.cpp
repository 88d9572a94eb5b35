// The small nodes that networks are wired with: arithmetic, ranges, conditions, vectors, matrices, curve readings.
#include <cmath>

#include <maya/MAngle.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MEulerRotation.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPxNode.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include "nodes/attr.h"
#include "nodes/builtin.h"

namespace mirk::nodes {

namespace {

/// A node whose outputs are all written by one `run`: `Derived::declare` adds the attributes and says what affects what.
template <class Derived>
class MathNode : public MPxNode
{
public:
    static void*   creator() { return new Derived; }
    static MStatus initialize()
    {
        Derived::declare();
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (!answers(plug))
            return MS::kUnknownParameter;
        static_cast<Derived*>(this)->run(block);
        block.setClean(plug);
        return MS::kSuccess;
    }

protected:
    static inline MObject aOut[4];

    /// The outputs of one run, each affected by all inputs.
    static void outputs(std::initializer_list<MObject> inputs, std::initializer_list<MObject> outs)
    {
        int i = 0;
        for (const MObject& out : outs)
            aOut[i++] = out;
        affects(inputs, outs);
    }

private:
    static bool answers(const MPlug& plug)
    {
        for (const MObject& out : aOut)
            if (!out.isNull() && (plug == out || (plug.isChild() && plug.parent() == out)))
                return true;
        return false;
    }
};

MVector vectorAt(MDataBlock& block, const MObject& attribute)
{
    const float3& v = block.inputValue(attribute).asFloat3();
    return MVector(v[0], v[1], v[2]);
}

void setVector(MDataBlock& block, const MObject& attribute, const MVector& v)
{
    block.outputValue(attribute).set3Float(float(v.x), float(v.y), float(v.z));
}

constexpr double kTiny = 1e-12;   // below this a length cannot be divided by

class MultiplyDivide : public MathNode<MultiplyDivide>
{
public:
    static void declare()
    {
        aOperation = choice("operation", "op", 1, {"No operation", "Multiply", "Divide", "Power"}, kKey);
        a1 = triple("input1", "i1", Number::kFloat, 0, kKey);
        a2 = triple("input2", "i2", Number::kFloat, 1, kKey);
        aO = triple("output", "o", Number::kFloat, 0, kOut);
        add({aOperation, a1, a2, aO});
        outputs({aOperation, a1, a2}, {aO});
    }
    void run(MDataBlock& block)
    {
        const MVector a = vectorAt(block, a1), b = vectorAt(block, a2);
        const short   operation = block.inputValue(aOperation).asShort();
        MVector       out;
        for (unsigned i = 0; i < 3; ++i)
            out[i] = value(operation, a[i], b[i]);
        setVector(block, aO, out);
    }
    static double value(short operation, double a, double b)
    {
        switch (operation) {
        case 1:  return a * b;
        case 2:  return b == 0 ? (a == 0 ? 0 : std::copysign(100000.0, a)) : a / b;   // large, never infinite
        case 3:  return std::pow(a, b);
        default: return a;
        }
    }
    static inline MObject aOperation, a1, a2, aO;
};

class PlusMinusAverage : public MathNode<PlusMinusAverage>
{
public:
    static void declare()
    {
        aOperation = choice("operation", "op", 1, {"No operation", "Sum", "Subtract", "Average"}, kKey);
        aIn[0] = number("input1D", "i1", Number::kFloat, 0, kKey | kMulti);
        aIn[1] = tuple("input2D", "i2", {number("input2Dx", "i2x", Number::kFloat, 0, kKey),
                                         number("input2Dy", "i2y", Number::kFloat, 0, kKey)}, kKey | kMulti);
        aIn[2] = tuple("input3D", "i3", {number("input3Dx", "i3x", Number::kFloat, 0, kKey),
                                         number("input3Dy", "i3y", Number::kFloat, 0, kKey),
                                         number("input3Dz", "i3z", Number::kFloat, 0, kKey)}, kKey | kMulti);
        aO1 = number("output1D", "o1", Number::kFloat, 0, kOut);
        aO2 = tuple("output2D", "o2", {number("output2Dx", "o2x", Number::kFloat, 0, kOut),
                                       number("output2Dy", "o2y", Number::kFloat, 0, kOut)}, kOut);
        aO3 = tuple("output3D", "o3", {number("output3Dx", "o3x", Number::kFloat, 0, kOut),
                                       number("output3Dy", "o3y", Number::kFloat, 0, kOut),
                                       number("output3Dz", "o3z", Number::kFloat, 0, kOut)}, kOut);
        add({aOperation, aIn[0], aIn[1], aIn[2], aO1, aO2, aO3});
        outputs({aOperation, aIn[0], aIn[1], aIn[2]}, {aO1, aO2, aO3});
    }
    void run(MDataBlock& block)
    {
        const MVector one = folded(block, 0), two = folded(block, 1), three = folded(block, 2);
        block.outputValue(aO1).setFloat(float(one.x));
        block.outputValue(aO2).set2Float(float(two.x), float(two.y));
        setVector(block, aO3, three);
    }
    static inline MObject aOperation, aIn[3], aO1, aO2, aO3;

private:
    /// All elements in order: the first stands, the others are added or taken away.
    static MVector folded(MDataBlock& block, int dimension)
    {
        const short      operation = block.inputValue(aOperation).asShort();
        MArrayDataHandle elements = block.inputArrayValue(aIn[dimension]);
        const unsigned   count = elements.elementCount();
        MVector          sum;
        for (unsigned i = 0; i < count; ++i) {
            elements.jumpToArrayElement(i);
            const MVector v = element(elements.inputValue(), dimension);
            if (i > 0 && operation == 0)
                break;
            sum += i > 0 && operation == 2 ? -v : v;
        }
        return operation == 3 && count > 0 ? sum / double(count) : sum;
    }
    static MVector element(MDataHandle handle, int dimension)
    {
        if (dimension == 0)
            return MVector(handle.asFloat(), 0, 0);
        if (dimension == 1)
            return MVector(handle.asFloat2()[0], handle.asFloat2()[1], 0);
        return MVector(handle.asFloat3()[0], handle.asFloat3()[1], handle.asFloat3()[2]);
    }
};

class Condition : public MathNode<Condition>
{
public:
    static void declare()
    {
        aOperation = choice("operation", "op", 0,
                            {"Equal", "Not Equal", "Greater Than", "Greater or Equal", "Less Than", "Less or Equal"}, kKey);
        aFirst = number("firstTerm", "ft", Number::kFloat, 0, kKey);
        aSecond = number("secondTerm", "st", Number::kFloat, 0, kKey);
        aTrue = triple("colorIfTrue", "ct", Number::kFloat, 0, kKey, "RGB");
        aFalse = triple("colorIfFalse", "cf", Number::kFloat, 1, kKey, "RGB");
        aO = triple("outColor", "oc", Number::kFloat, 0, kOut, "RGB");
        add({aOperation, aFirst, aSecond, aTrue, aFalse, aO});
        outputs({aOperation, aFirst, aSecond, aTrue, aFalse}, {aO});
    }
    void run(MDataBlock& block)
    {
        const float a = block.inputValue(aFirst).asFloat(), b = block.inputValue(aSecond).asFloat();
        const bool  holds[] = {a == b, a != b, a > b, a >= b, a < b, a <= b};
        const short operation = block.inputValue(aOperation).asShort();
        // only the colour that is chosen is pulled
        setVector(block, aO, vectorAt(block, operation >= 0 && operation < 6 && holds[operation] ? aTrue : aFalse));
    }
    static inline MObject aOperation, aFirst, aSecond, aTrue, aFalse, aO;
};

class Reverse : public MathNode<Reverse>
{
public:
    static void declare()
    {
        aI = triple("input", "i", Number::kFloat, 0, kKey);
        aO = triple("output", "o", Number::kFloat, 0, kOut);
        add({aI, aO});
        outputs({aI}, {aO});
    }
    void run(MDataBlock& block) { setVector(block, aO, MVector(1, 1, 1) - vectorAt(block, aI)); }
    static inline MObject aI, aO;
};

MObject colorWithDefault(const char* longName, const char* shortName, double r, double g, double b)
{
    const std::string l = longName, s = shortName;
    return tuple(longName, shortName, {number((l + "R").c_str(), (s + "r").c_str(), Number::kFloat, r, kKey),
                                       number((l + "G").c_str(), (s + "g").c_str(), Number::kFloat, g, kKey),
                                       number((l + "B").c_str(), (s + "b").c_str(), Number::kFloat, b, kKey)}, kKey | kColor);
}

class BlendColors : public MathNode<BlendColors>
{
public:
    static void declare()
    {
        aBlender = number("blender", "b", Number::kFloat, 0.5, 0, 1, kKey);
        a1 = colorWithDefault("color1", "c1", 1, 0, 0);
        a2 = colorWithDefault("color2", "c2", 0, 0, 1);
        aO = triple("output", "op", Number::kFloat, 0, kOut, "RGB");
        add({aBlender, a1, a2, aO});
        outputs({aBlender, a1, a2}, {aO});
    }
    void run(MDataBlock& block)
    {
        const double b = block.inputValue(aBlender).asFloat();
        setVector(block, aO, vectorAt(block, a1) * b + vectorAt(block, a2) * (1 - b));
    }
    static inline MObject aBlender, a1, a2, aO;
};

class Clamp : public MathNode<Clamp>
{
public:
    static void declare()
    {
        aMin = triple("min", "mn", Number::kFloat, 0, kKey, "RGB");
        aMax = triple("max", "mx", Number::kFloat, 0, kKey, "RGB");
        aI = triple("input", "ip", Number::kFloat, 0, kKey, "RGB");
        aO = triple("output", "op", Number::kFloat, 0, kOut, "RGB");
        add({aMin, aMax, aI, aO});
        outputs({aMin, aMax, aI}, {aO});
    }
    void run(MDataBlock& block)
    {
        const MVector low = vectorAt(block, aMin), high = vectorAt(block, aMax);
        MVector       v = vectorAt(block, aI);
        for (unsigned i = 0; i < 3; ++i)
            v[i] = v[i] < low[i] ? low[i] : v[i] > high[i] ? high[i] : v[i];
        setVector(block, aO, v);
    }
    static inline MObject aMin, aMax, aI, aO;
};

class SetRange : public MathNode<SetRange>
{
public:
    static void declare()
    {
        aValue = triple("value", "v", Number::kFloat, 0, kKey);
        aMin = triple("min", "n", Number::kFloat, 0, kKey);
        aMax = triple("max", "m", Number::kFloat, 0, kKey);
        aOldMin = triple("oldMin", "on", Number::kFloat, 0, kKey);
        aOldMax = triple("oldMax", "om", Number::kFloat, 0, kKey);
        aO = triple("outValue", "o", Number::kFloat, 0, kOut);
        add({aValue, aMin, aMax, aOldMin, aOldMax, aO});
        outputs({aValue, aMin, aMax, aOldMin, aOldMax}, {aO});
    }
    void run(MDataBlock& block)
    {
        const MVector low = vectorAt(block, aMin), high = vectorAt(block, aMax);
        const MVector from = vectorAt(block, aOldMin), to = vectorAt(block, aOldMax);
        MVector       v = vectorAt(block, aValue);
        for (unsigned i = 0; i < 3; ++i) {
            if (v[i] <= from[i])
                v[i] = low[i];
            else if (v[i] >= to[i])
                v[i] = high[i];
            else
                v[i] = low[i] + (v[i] - from[i]) / (to[i] - from[i]) * (high[i] - low[i]);
        }
        setVector(block, aO, v);
    }
    static inline MObject aValue, aMin, aMax, aOldMin, aOldMax, aO;
};

/// addDoubleLinear and multDoubleLinear.
template <bool product>
class DoubleLinear : public MathNode<DoubleLinear<product>>
{
public:
    static void declare()
    {
        a1 = number("input1", "i1", Number::kDouble, 0, kKey);
        a2 = number("input2", "i2", Number::kDouble, 0, kKey);
        aO = number("output", "o", Number::kDouble, 0, kOut);
        add({a1, a2, aO});
        MathNode<DoubleLinear>::outputs({a1, a2}, {aO});
    }
    void run(MDataBlock& block)
    {
        const double a = block.inputValue(a1).asDouble(), b = block.inputValue(a2).asDouble();
        block.outputValue(aO).setDouble(product ? a * b : a + b);
    }
    static inline MObject a1, a2, aO;
};

class DistanceBetween : public MathNode<DistanceBetween>
{
public:
    static void declare()
    {
        aP1 = triple("point1", "p1", Unit::kDistance, 0, kKey);
        aP2 = triple("point2", "p2", Unit::kDistance, 0, kKey);
        aM1 = matrix("inMatrix1", "im1");
        aM2 = matrix("inMatrix2", "im2");
        aO = unit("distance", "d", Unit::kDistance, 0, kOut);
        add({aP1, aP2, aM1, aM2, aO});
        outputs({aP1, aP2, aM1, aM2}, {aO});
    }
    void run(MDataBlock& block)
    {
        const MPoint a = MPoint(block.inputValue(aP1).asVector()) * block.inputValue(aM1).asMatrix();
        const MPoint b = MPoint(block.inputValue(aP2).asVector()) * block.inputValue(aM2).asMatrix();
        block.outputValue(aO).setDouble(a.distanceTo(b));
    }
    static inline MObject aP1, aP2, aM1, aM2, aO;
};

class VectorProduct : public MathNode<VectorProduct>
{
public:
    static void declare()
    {
        aOperation = choice("operation", "op", 1, {"No operation", "Dot Product", "Cross Product", "Vector Matrix Product",
                                                    "Point Matrix Product"}, kKey);
        a1 = triple("input1", "i1", Number::kFloat, 0, kKey);
        a2 = triple("input2", "i2", Number::kFloat, 0, kKey);
        aMatrix = matrix("matrix", "m");
        aNormalize = number("normalizeOutput", "no", Number::kBoolean, 0, kKey);
        aO = triple("output", "o", Number::kFloat, 0, kOut);
        add({aOperation, a1, a2, aMatrix, aNormalize, aO});
        outputs({aOperation, a1, a2, aMatrix, aNormalize}, {aO});
    }
    void run(MDataBlock& block)
    {
        const MVector a = vectorAt(block, a1);
        const bool    unitLength = block.inputValue(aNormalize).asBool();
        MVector       out = a;
        switch (block.inputValue(aOperation).asShort()) {
        case 1: {
            const MVector b = vectorAt(block, a2);
            const double  lengths = unitLength ? a.length() * b.length() : 1;
            const double  dot = lengths > kTiny ? (a * b) / lengths : 0;
            setVector(block, aO, MVector(dot, dot, dot));
            return;
        }
        case 2: out = a ^ vectorAt(block, a2); break;
        case 3: out = a * block.inputValue(aMatrix).asMatrix(); break;
        case 4: out = MVector(MPoint(a) * block.inputValue(aMatrix).asMatrix()); break;
        default: break;
        }
        if (unitLength && out.length() > kTiny)
            out.normalize();
        setVector(block, aO, out);
    }
    static inline MObject aOperation, a1, a2, aMatrix, aNormalize, aO;
};

class AngleBetween : public MathNode<AngleBetween>
{
public:
    static void declare()
    {
        a1 = unitX("vector1", "v1", {1, 0, 0});
        a2 = unitX("vector2", "v2", {0, 1, 0});
        aAngle = unit("angle", "a", Unit::kAngle, 0, kOut);
        aAxis = triple("axis", "ax", Number::kDouble, 0, kOut);
        aEuler = triple("euler", "eu", Unit::kAngle, 0, kOut);
        add({a1, a2, aAngle, aAxis, aEuler});
        outputs({a1, a2}, {aAngle, aAxis, aEuler});
    }
    void run(MDataBlock& block)
    {
        const MVector a = block.inputValue(a1).asVector(), b = block.inputValue(a2).asVector();
        MVector       axis = a ^ b;
        if (axis.length() > kTiny)
            axis.normalize();
        const MEulerRotation euler = MQuaternion(a, b).asEulerRotation();
        block.outputValue(aAngle).setMAngle(MAngle(a.angle(b)));
        block.outputValue(aAxis).set3Double(axis.x, axis.y, axis.z);
        block.outputValue(aEuler).set3Double(euler.x, euler.y, euler.z);
    }
    static inline MObject a1, a2, aAngle, aAxis, aEuler;

private:
    static MObject unitX(const std::string& l, const std::string& s, const MVector& value)
    {
        return tuple(l.c_str(), s.c_str(), {number((l + "X").c_str(), (s + "x").c_str(), Number::kDouble, value.x, kKey),
                                            number((l + "Y").c_str(), (s + "y").c_str(), Number::kDouble, value.y, kKey),
                                            number((l + "Z").c_str(), (s + "z").c_str(), Number::kDouble, value.z, kKey)}, kKey);
    }
};

class MultMatrix : public MathNode<MultMatrix>
{
public:
    static void declare()
    {
        aIn = matrix("matrixIn", "i", kMulti);
        aO = matrix("matrixSum", "o", kOut);
        add({aIn, aO});
        outputs({aIn}, {aO});
    }
    void run(MDataBlock& block)
    {
        MArrayDataHandle elements = block.inputArrayValue(aIn);
        MMatrix          product;
        for (unsigned i = 0; i < elements.elementCount(); ++i) {
            elements.jumpToArrayElement(i);
            product = product * elements.inputValue().asMatrix();
        }
        block.outputValue(aO).setMMatrix(product);
    }
    static inline MObject aIn, aO;
};

// rotation orders of attributes count from 0, those of the matrix class from 1
MTransformationMatrix::RotationOrder rotationOrder(short attribute)
{
    return MTransformationMatrix::RotationOrder((attribute < 0 || attribute > 5 ? 0 : attribute) + 1);
}

MObject rotateOrderChoice(const char* longName, const char* shortName)
{
    return choice(longName, shortName, 0, {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"}, kKey);
}

MObject quaternion(const std::string& l, const std::string& s, double w, unsigned flags)
{
    const auto part = [&](const char* L, const char* S, double v) {
        return number((l + L).c_str(), (s + S).c_str(), Number::kDouble, v, flags);
    };
    return compound(l.c_str(), s.c_str(), {part("X", "x", 0), part("Y", "y", 0), part("Z", "z", 0), part("W", "w", w)}, flags);
}

class DecomposeMatrix : public MathNode<DecomposeMatrix>
{
public:
    static void declare()
    {
        aIn = matrix("inputMatrix", "imat");
        aOrder = rotateOrderChoice("inputRotateOrder", "ro");
        aTranslate = triple("outputTranslate", "ot", Unit::kDistance, 0, kOut);
        aRotate = triple("outputRotate", "or", Unit::kAngle, 0, kOut);
        aScale = triple("outputScale", "os", Number::kDouble, 1, kOut);
        aShear = triple("outputShear", "osh", Number::kDouble, 0, kOut);
        aQuat = quaternion("outputQuat", "oq", 1, kOut);
        add({aIn, aOrder, aTranslate, aRotate, aScale, aShear, aQuat});
        outputs({aIn, aOrder}, {aTranslate, aRotate, aScale, aShear});
        affects({aIn}, {aQuat});
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug == aQuat || (plug.isChild() && plug.parent() == aQuat)) {
            run(block);
            return MS::kSuccess;
        }
        return MathNode::compute(plug, block);
    }
    void run(MDataBlock& block)
    {
        const MTransformationMatrix m(block.inputValue(aIn).asMatrix());
        const MVector               t = m.getTranslation(MSpace::kTransform);
        double                      rotate[3] = {}, scale[3] = {1, 1, 1}, shear[3] = {}, q[4] = {0, 0, 0, 1};
        auto                        order = rotationOrder(block.inputValue(aOrder).asShort());
        MTransformationMatrix       turned(m);
        turned.reorderRotation(order);
        turned.getRotation(rotate, order);
        m.getScale(scale, MSpace::kTransform);
        m.getShear(shear, MSpace::kTransform);
        m.getRotationQuaternion(q[0], q[1], q[2], q[3]);
        block.outputValue(aTranslate).set3Double(t.x, t.y, t.z);
        block.outputValue(aRotate).set3Double(rotate[0], rotate[1], rotate[2]);
        block.outputValue(aScale).set3Double(scale[0], scale[1], scale[2]);
        block.outputValue(aShear).set3Double(shear[0], shear[1], shear[2]);
        MDataHandle quat = block.outputValue(aQuat);
        for (unsigned i = 0; i < 4; ++i)
            quat.child(childOf(aQuat, i)).setDouble(q[i]);
    }
    static inline MObject aIn, aOrder, aTranslate, aRotate, aScale, aShear, aQuat;
};

class ComposeMatrix : public MathNode<ComposeMatrix>
{
public:
    static void declare()
    {
        aTranslate = triple("inputTranslate", "it", Unit::kDistance, 0, kKey);
        aRotate = triple("inputRotate", "ir", Unit::kAngle, 0, kKey);
        aScale = triple("inputScale", "is", Number::kDouble, 1, kKey);
        aShear = triple("inputShear", "ish", Number::kDouble, 0, kKey);
        aOrder = rotateOrderChoice("inputRotateOrder", "iro");
        aUseEuler = number("useEulerRotation", "uer", Number::kBoolean, 1, kKey);
        aQuat = quaternion("inputQuat", "iq", 1, kKey);
        aO = matrix("outputMatrix", "omat", kOut);
        add({aTranslate, aRotate, aScale, aShear, aOrder, aUseEuler, aQuat, aO});
        outputs({aTranslate, aRotate, aScale, aShear, aOrder, aUseEuler, aQuat}, {aO});
    }
    void run(MDataBlock& block)
    {
        const MVector         r = block.inputValue(aRotate).asVector();
        const MVector         s = block.inputValue(aScale).asVector();
        const MVector         h = block.inputValue(aShear).asVector();
        const double          rotate[3] = {r.x, r.y, r.z}, scale[3] = {s.x, s.y, s.z}, shear[3] = {h.x, h.y, h.z};
        MTransformationMatrix m;
        m.setTranslation(block.inputValue(aTranslate).asVector(), MSpace::kTransform);
        m.setScale(scale, MSpace::kTransform);
        m.setShear(shear, MSpace::kTransform);
        if (block.inputValue(aUseEuler).asBool()) {
            m.setRotation(rotate, rotationOrder(block.inputValue(aOrder).asShort()));
        } else {
            double      q[4];
            MDataHandle quat = block.inputValue(aQuat);
            for (unsigned i = 0; i < 4; ++i)
                q[i] = quat.child(childOf(aQuat, i)).asDouble();
            m.setRotationQuaternion(q[0], q[1], q[2], q[3]);
        }
        block.outputValue(aO).setMMatrix(m.asMatrix());
    }
    static inline MObject aTranslate, aRotate, aScale, aShear, aOrder, aUseEuler, aQuat, aO;
};

class CurveInfo : public MathNode<CurveInfo>
{
public:
    static void declare()
    {
        aIn = typed("inputCurve", "ic", MFnData::kNurbsCurve, kNoStore | kReset);
        aLength = unit("arcLength", "al", Unit::kDistance, 0, kOut);
        add({aIn, aLength});
        outputs({aIn}, {aLength});
    }
    void run(MDataBlock& block)
    {
        const MObject curve = block.inputValue(aIn).asNurbsCurveTransformed();
        double        length = 0;
        if (!curve.isNull()) {   // a copy has its matrix baked in: lengths are in world space
            MFnNurbsCurve world;
            world.copy(curve, MFnNurbsCurveData().create());
            length = world.length();
        }
        block.outputValue(aLength).setDouble(length);
    }
    static inline MObject aIn, aLength;
};

class PointOnCurveInfo : public MathNode<PointOnCurveInfo>
{
public:
    static void declare()
    {
        aIn = typed("inputCurve", "ic", MFnData::kNurbsCurve, kNoStore | kReset);
        aParameter = number("parameter", "pr", Number::kDouble, 0, kKey);
        aPercentage = number("turnOnPercentage", "top", Number::kBoolean, 0, kKey);
        aPosition = triple("position", "p", Unit::kDistance, 0, kOut);
        aTangent = triple("tangent", "t", Number::kDouble, 0, kOut);
        aUnitTangent = triple("normalizedTangent", "nt", Number::kDouble, 0, kOut);
        aNormal = triple("normal", "n", Number::kDouble, 0, kOut);
        add({aIn, aParameter, aPercentage, aPosition, aTangent, aUnitTangent, aNormal});
        outputs({aIn, aParameter, aPercentage}, {aPosition, aTangent, aUnitTangent, aNormal});
    }
    void run(MDataBlock& block)
    {
        MPoint        position;
        MVector       tangent, normal;
        const MObject data = block.inputValue(aIn).asNurbsCurveTransformed();
        if (!data.isNull()) {
            const MFnNurbsCurve curve(data);
            const double        u = parameter(curve, block);
            curve.getPointAtParam(u, position, MSpace::kWorld);
            tangent = curve.tangent(u, MSpace::kWorld);
            normal = curve.normal(u, MSpace::kWorld);
        }
        const MVector direction = tangent.length() > kTiny ? tangent.normal() : MVector();
        block.outputValue(aPosition).set3Double(position.x, position.y, position.z);
        block.outputValue(aTangent).set3Double(tangent.x, tangent.y, tangent.z);
        block.outputValue(aUnitTangent).set3Double(direction.x, direction.y, direction.z);
        block.outputValue(aNormal).set3Double(normal.x, normal.y, normal.z);
    }
    static inline MObject aIn, aParameter, aPercentage, aPosition, aTangent, aUnitTangent, aNormal;

private:
    /// Inside the curve's own range.
    static double parameter(const MFnNurbsCurve& curve, MDataBlock& block)
    {
        double first = 0, last = 1;
        curve.getKnotDomain(first, last);
        double u = block.inputValue(aParameter).asDouble();
        if (block.inputValue(aPercentage).asBool())
            u = first + u * (last - first);
        return u > first ? (u < last ? u : last) : first;
    }
};

}  // namespace

void registerMathTypes()
{
    using AddLinear = DoubleLinear<false>;
    using MultLinear = DoubleLinear<true>;
#define MIRK_MATH(name, id, type, Class) {name, "node", id, type, Class::creator, Class::initialize}
    const Row rows[] = {
        MIRK_MATH("multiplyDivide", 0x524D4449, MFn::kMultiplyDivide, MultiplyDivide),
        MIRK_MATH("plusMinusAverage", 0x52504D41, MFn::kPlusMinusAverage, PlusMinusAverage),
        MIRK_MATH("condition", 0x52434E44, MFn::kCondition, Condition),
        MIRK_MATH("reverse", 0x52525653, MFn::kReverse, Reverse),
        MIRK_MATH("blendColors", 0x52424C32, MFn::kBlendColors, BlendColors),
        MIRK_MATH("clamp", 0x52434C33, MFn::kClampColor, Clamp),
        MIRK_MATH("setRange", 0x5252414E, MFn::kSetRange, SetRange),
        MIRK_MATH("addDoubleLinear", 0x4441444C, MFn::kAddDoubleLinear, AddLinear),
        MIRK_MATH("multDoubleLinear", 0x444D444C, MFn::kDependencyNode, MultLinear),
        MIRK_MATH("distanceBetween", 0x44444254, MFn::kDistanceBetween, DistanceBetween),
        MIRK_MATH("vectorProduct", 0x52564543, MFn::kDependencyNode, VectorProduct),
        MIRK_MATH("angleBetween", 0x4441474C, MFn::kAngleBetween, AngleBetween),
        MIRK_MATH("multMatrix", 0x444D544D, MFn::kMatrixMult, MultMatrix),
        MIRK_MATH("decomposeMatrix", 0x4444434D, MFn::kDecomposeMatrix, DecomposeMatrix),
        MIRK_MATH("composeMatrix", 0x44434F4D, MFn::kComposeMatrix, ComposeMatrix),
        MIRK_MATH("curveInfo", 0x4E43494E, MFn::kCurveInfo, CurveInfo),
        MIRK_MATH("pointOnCurveInfo", 0x4E504349, MFn::kPointOnCurveInfo, PointOnCurveInfo),
    };
#undef MIRK_MATH
    for (const Row& row : rows)
        registerRow(row);
}

}  // namespace mirk::nodes
