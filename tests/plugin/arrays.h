// Arrays of any kind for tests of the array nodes: made in one line, read back, told apart by a letter.
#pragma once
#include <maya/MFloatArray.h>
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MStringArray.h>

#include <cmath>
#include <initializer_list>
#include <ostream>

#include "scene.h"

namespace scene {

/// An array: d doubles, i ints, f floats, v vectors (three values each), p points (four), 0 no array.
struct Array
{
    char                kind = '0';
    std::vector<double> values;

    bool operator==(const Array& o) const
    {
        if (kind != o.kind || values.size() != o.values.size())
            return false;
        for (std::size_t i = 0; i < values.size(); ++i)
            if (!(std::fabs(values[i] - o.values[i]) <= 1e-12) && values[i] != o.values[i] &&
                !(std::isnan(values[i]) && std::isnan(o.values[i])))
                return false;
        return true;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Array& a)
{
    out << a.kind << " {";
    for (double v : a.values)
        out << ' ' << v;
    return out << " }";
}

inline MObject dataOf(const Array& a)
{
    const auto         n = static_cast<unsigned>(a.values.size());
    const auto&        v = a.values;
    const auto elements = [&](auto array, auto fn, unsigned stride, auto at) {
        array.setLength(n / stride);
        for (unsigned i = 0; i < n / stride; ++i)
            array[i] = at(i * stride);
        return fn.create(array);
    };
    switch (a.kind) {
    case 'd': return elements(MDoubleArray(), MFnDoubleArrayData(), 1, [&](unsigned i) { return v[i]; });
    case 'i': return elements(MIntArray(), MFnIntArrayData(), 1, [&](unsigned i) { return int(v[i]); });
    case 'f': return elements(MFloatArray(), MFnFloatArrayData(), 1, [&](unsigned i) { return float(v[i]); });
    case 'v': return elements(MVectorArray(), MFnVectorArrayData(), 3, [&](unsigned i) { return MVector(v[i], v[i + 1], v[i + 2]); });
    case 'p': return elements(MPointArray(), MFnPointArrayData(), 4, [&](unsigned i) { return MPoint(v[i], v[i + 1], v[i + 2], v[i + 3]); });
    default:  return MObject::kNullObj;
    }
}

inline Array arrayOf(MObject data)
{
    Array      a;
    const auto elements = [&](char kind, auto fn, auto put) {
        a.kind = kind;
        for (unsigned i = 0; i < fn.length(); ++i)
            put(fn[i]);
    };
    const auto put = [&](double v) { a.values.push_back(v); };
    switch (data.apiType()) {
    case MFn::kDoubleArrayData: elements('d', MFnDoubleArrayData(data), put); break;
    case MFn::kIntArrayData:    elements('i', MFnIntArrayData(data), put); break;
    case MFn::kFloatArrayData:  elements('f', MFnFloatArrayData(data), put); break;
    case MFn::kVectorArrayData:
        elements('v', MFnVectorArrayData(data), [&](const MVector& p) { put(p.x), put(p.y), put(p.z); });
        break;
    case MFn::kPointArrayData:
        elements('p', MFnPointArrayData(data), [&](const MPoint& p) { put(p.x), put(p.y), put(p.z), put(p.w); });
        break;
    default: break;
    }
    return a;
}

inline Array read(const std::string& name) { return arrayOf(plug(name).asMObject()); }

/// Connects an array to an input. Each call has a source of its own, so that kinds may change.
inline void give(const std::string& input, const Array& array)
{
    static int        count = 0;
    const std::string name = "source" + std::to_string(++count);
    const char* type = array.kind == 'd' ? "doubleArray" : array.kind == 'i' ? "Int32Array" : array.kind == 'f' ? "floatArray"
                     : array.kind == 'v' ? "vectorArray" : "pointArray";
    run("createNode network -name " + name + "; addAttr -longName a -dataType \"" + type + "\" " + name);
    EXPECT_TRUE(plug(name + ".a").setMObject(dataOf(array)));
    run("connectAttr -force " + name + ".a " + input);
}

/// What a node makes of its inputs: a fresh node `n` of the type for each case.
struct ArrayCase
{
    const char*                                when;
    const char*                                type;
    const char*                                settings;   ///< MEL on the node n
    std::vector<std::pair<const char*, Array>> inputs;
    Array                                      expected;   ///< of `output`
    const char*                                warning = "";
    const char*                                output = "outArray";
};

inline void expectArrays(const std::vector<ArrayCase>& cases)
{
    for (const ArrayCase& c : cases) {
        run("file -force -new; createNode " + std::string(c.type) + " -name n;" + c.settings);
        for (const auto& [input, array] : c.inputs)
            give("n." + std::string(input), array);
        Warnings warnings;
        EXPECT_EQ(read("n." + std::string(c.output)), c.expected) << c.type << ": " << c.when;
        const std::string said = warnings.texts.empty() ? "" : warnings.texts[0];
        EXPECT_EQ(said, *c.warning ? "n: " + std::string(c.warning) : "") << c.type << ": " << c.when;
    }
}

} // namespace scene
