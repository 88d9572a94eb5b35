// Argument lists to plugs: the kinds of `setAttr -type`.
#include <maya/MString.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MEulerRotation.h>

#include "command/attr_value.h"
#include "command/geometry_text.h"
#include "dag/component_text.h"
#include "data/component.h"

namespace mirk::command {

namespace {

template <class D, class T>
Ref<Data> arrayOf(const std::vector<double>& numbers, size_t perElement)
{
    auto data = make<D>();
    auto buffer = make<Buffer<std::remove_reference_t<decltype((*data->buffer)[0])>>>(numbers.size() / perElement);
    T* out = reinterpret_cast<T*>(buffer->data());
    for (size_t i = 0; i < numbers.size(); ++i)
        out[i] = T(numbers[i]);
    data->buffer = buffer;
    return data;
}

Ref<Data> matrixFrom(Arguments& args)
{
    auto data = make<MatrixData>();
    if (!args.nextIs("xform"))
    {
        const std::vector<double> m = args.numbers(16);
        std::copy(m.begin(), m.end(), &data->value[0][0]);
        return data;
    }
    // "xform": scale, rotate, rotation order, translate, shear, scale pivot and its translation, rotate pivot and its
    // translation, rotation orientation, joint orientation, inverse parent scale, compensation
    args.text();
    const std::vector<double> s = args.numbers(3), r = args.numbers(3);
    const int                 order = args.integer();
    const std::vector<double> t = args.numbers(3), shear = args.numbers(3), sp = args.numbers(3), spt = args.numbers(3),
                              rp = args.numbers(3), rpt = args.numbers(3);
    if (order < 0 || order > 5)
        fail("Invalid rotation order: " + std::to_string(order));
    MTransformationMatrix m;
    m.setScale(s.data(), MSpace::kTransform);
    m.setRotation(r.data(), MTransformationMatrix::RotationOrder(order + 1));
    m.setShear(shear.data(), MSpace::kTransform);
    m.setScalePivot(MPoint(sp[0], sp[1], sp[2]), MSpace::kTransform, false);
    m.setScalePivotTranslation(MVector(spt[0], spt[1], spt[2]), MSpace::kTransform);
    m.setRotatePivot(MPoint(rp[0], rp[1], rp[2]), MSpace::kTransform, false);
    m.setRotatePivotTranslation(MVector(rpt[0], rpt[1], rpt[2]), MSpace::kTransform);
    m.setTranslation(MVector(t[0], t[1], t[2]), MSpace::kTransform);
    args.numbers(args.left() >= 12 ? 12 : 0);
    const MMatrix result = m.asMatrix();
    for (int i = 0; i < 16; ++i)
        data->value[i / 4][i % 4] = result(unsigned(i / 4), unsigned(i % 4));
    return data;
}

Ref<Data> componentsFrom(Arguments& args)
{
    auto      data = make<ComponentListData>();
    const int count = args.integer();
    for (int i = 0; i < count; ++i)
    {
        const std::string text = args.text();
        std::string       why;
        Ref<Component>    c = parseComponent(text, ComponentOf::any, nullptr, &why);
        if (!c)
            fail("Invalid component '" + text + "': " + why);
        mergeInto(*data, *c);
    }
    return data;
}

struct NumericType { const char* name; MFnNumericData::Type type; int count; };
constexpr NumericType kNumericTypes[] = {
    {"short2", MFnNumericData::k2Short, 2}, {"short3", MFnNumericData::k3Short, 3}, {"long2", MFnNumericData::k2Int, 2},
    {"long3", MFnNumericData::k3Int, 3}, {"Int32Array2", MFnNumericData::k2Int, 2}, {"float2", MFnNumericData::k2Float, 2},
    {"float3", MFnNumericData::k3Float, 3}, {"double2", MFnNumericData::k2Double, 2}, {"double3", MFnNumericData::k3Double, 3},
    {"double4", MFnNumericData::k4Double, 4}, {"reflectanceRGB", MFnNumericData::k3Float, 3}, {"spectrumRGB", MFnNumericData::k3Float, 3},
    {"double", MFnNumericData::kDouble, 1}, {"float", MFnNumericData::kFloat, 1}, {"long", MFnNumericData::kInt, 1},
    {"short", MFnNumericData::kShort, 1}, {"bool", MFnNumericData::kBoolean, 1},
};

void checkRange(const Cell& cell, double& value, bool clamp)
{
    const Attribute& a = *cell.attr;
    const bool under = (a.limits & Attribute::kMin) && value < a.min, over = (a.limits & Attribute::kMax) && value > a.max;
    if (!under && !over)
        return;
    if (!clamp)
        fail("Cannot set the attribute '" + plugText(cell) + "' past its " + (under ? "minimum" : "maximum") + " value of " +
             numberText(toUi(a, under ? a.min : a.max)) + ".");
    value = under ? a.min : a.max;
}

}  // namespace

size_t numbersOf(const Attribute& a)
{
    if (a.store == Store::kMatrix || a.store == Store::kFloatMatrix)
        return 16;
    if (const int n = storeDimension(a.store))
        return size_t(n);
    size_t sum = 0;   // a plain compound of numbers
    for (const auto& c : a.children)
    {
        if (c->isArray() || !numbersOf(*c))
            return 0;
        sum += numbersOf(*c);
    }
    return sum;
}

void writeNumbers(Cell& cell, Arguments& args, bool clamp)
{
    const Attribute& a = *cell.attr;
    if (a.store == Store::kMatrix || a.store == Store::kFloatMatrix)
    {
        const Ref<Data> data = matrixFrom(args);
        const double*   m = &static_cast<MatrixData*>(data.get())->value[0][0];
        edit::change(cell, [&] {
            for (int i = 0; i < 16; ++i)
                if (a.store == Store::kMatrix)
                    cell.own.matrix[i] = m[i];
                else
                    cell.own.floatMatrix[i] = float(m[i]);
        });
        return;
    }
    if (a.isTuple())
    {
        double values[4];
        const int n = storeDimension(a.store);
        for (int i = 0; i < n; ++i)
        {
            const Attribute* child = a.child(size_t(i));
            values[i] = fromUi(child ? *child : a, args.number());
            if (child)
                checkRange(*cell.child(size_t(i)), values[i], clamp);
        }
        edit::change(cell, [&] {
            for (int i = 0; i < n; ++i)
                cell.setNumber(values[i], i);
        });
        return;
    }
    if (!a.children.empty())
    {
        for (size_t i = 0; i < a.children.size(); ++i)
            writeNumbers(*cell.child(i), args, clamp);
        return;
    }
    if (a.kind == AttrKind::kEnum && args.left() && args.peek().kind() == Value::kString)
        if (const int index = a.enumIndex(args.peek().get<std::string>()); index >= 0)
        {
            args.text();
            return edit::setNumber(cell, index);
        }
    double value = fromUi(a, args.number());
    checkRange(cell, value, clamp);
    edit::setNumber(cell, value);
}

Ref<Data> dataFromArguments(const std::string& type, Arguments& args)
{
    if (type == "string")
        return make<StringData>(args.text());
    if (type == "stringArray")
    {
        const int count = args.integer();
        if (count < 0 || size_t(count) > args.left())
            fail("Error reading data: " + std::to_string(count) + " strings expected, " + std::to_string(args.left()) + " given");
        auto buffer = make<ElementBuffer<MString>>(size_t(count));
        for (MString& s : *buffer)
            s = args.text().c_str();
        return make<StringArrayData>(buffer);
    }
    if (type == "doubleArray")
        return arrayOf<DoubleArrayData, double>(args.counted(1), 1);
    if (type == "floatArray")
        return arrayOf<FloatArrayData, float>(args.counted(1), 1);
    if (type == "Int32Array")
        return arrayOf<IntArrayData, int>(args.counted(1), 1);
    if (type == "vectorArray")
        return arrayOf<VectorArrayData, double>(args.counted(3), 3);
    if (type == "matrixArray")
        return arrayOf<MatrixArrayData, double>(args.counted(16), 16);
    if (type == "pointArray")
    {
        // four numbers a point; files of older date have three
        const int count = args.integer();
        if (count < 0)
            fail("Invalid count: " + std::to_string(count));
        const size_t width = args.left() == size_t(count) * 3 ? 3 : 4;
        const std::vector<double> n = args.numbers(size_t(count) * width);
        std::vector<double> points;
        for (size_t i = 0; i < size_t(count); ++i)
            points.insert(points.end(), {n[i * width], n[i * width + 1], n[i * width + 2], width == 4 ? n[i * width + 3] : 1.0});
        return arrayOf<PointArrayData, double>(points, 4);
    }
    if (type == "matrix")
        return matrixFrom(args);
    if (type == "componentList")
        return componentsFrom(args);
    if (type == "mesh")
        return meshFromArguments(args);
    if (type == "nurbsCurve")
        return curveFromArguments(args);
    if (type == "nurbsSurface")
        return surfaceFromArguments(args);
    for (const NumericType& t : kNumericTypes)
        if (type == t.name)
        {
            auto data = make<NumericData>(t.type);
            const std::vector<double> n = args.numbers(size_t(t.count));
            std::copy(n.begin(), n.end(), data->value);
            return data;
        }
    return {};
}

}  // namespace mirk::command
