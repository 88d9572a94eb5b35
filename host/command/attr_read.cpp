// Plugs to language values.
#include <cmath>

#include <maya/MString.h>

#include "command/attr_value.h"
#include "command/lend.h"
#include "dag/component_text.h"
#include "dag/dag.h"
#include "graph/evaluate.h"

namespace mirk::command {

std::string enumFields(const Attribute& attr)
{
    std::string out;
    int         next = 0;
    for (const auto& [name, value] : attr.fields)
    {
        out += (out.empty() ? "" : ":") + name + (value == next ? "" : "=" + std::to_string(value));
        next = value + 1;
    }
    return out;
}

namespace {

template <class T>
Floats copied(const T* values, size_t n)
{
    auto out = make<Buffer<double>>(n);
    for (size_t i = 0; i < n; ++i)
        (*out)[i] = double(values[i]);
    return out;
}

/// Leaves the buffer of the data with the borrower: while both hold it, a write on either side copies first.
bool lend(const Data* data, Lending& to)
{
    const auto flat = [&](const auto& buffer, size_t width) {
        to.floats = reinterpret_cast<const double*>(std::as_const(*buffer).data());
        to.count = buffer->size() * width;
        to.holder = std::make_shared<std::decay_t<decltype(buffer)>>(buffer);
        return true;
    };
    switch (data->type())
    {
    case MFnData::kVectorArray: return flat(static_cast<const VectorArrayData*>(data)->buffer, 3);
    case MFnData::kPointArray:  return flat(static_cast<const PointArrayData*>(data)->buffer, 4);
    case MFnData::kIntArray:    to.ints = static_cast<const IntArrayData*>(data)->buffer; return true;
    default:                    return false;
    }
}

Strings stringsOf(const StringArrayData& data)
{
    Strings out;
    for (const MString& s : std::as_const(*data.buffer))
        out.emplace_back(s.asChar(), s.length());
    return out;
}

Value dataValue(const Cell& cell, const Data* data, Call& call)
{
    switch (data->type())
    {
    case MFnData::kString:      return Value(static_cast<const StringData*>(data)->value);
    case MFnData::kStringArray: return Value(stringsOf(*static_cast<const StringArrayData*>(data)));
    case MFnData::kDoubleArray: return Value(static_cast<const DoubleArrayData*>(data)->buffer);
    case MFnData::kFloatArray:
    {
        const auto& b = *static_cast<const FloatArrayData*>(data)->buffer;
        return Value(copied(b.data(), b.size()));
    }
    case MFnData::kIntArray:
    {
        const auto& b = std::as_const(*static_cast<const IntArrayData*>(data)->buffer);
        return Value(Ints(b.begin(), b.end()));
    }
    case MFnData::kVectorArray:
    {
        const auto& b = *static_cast<const VectorArrayData*>(data)->buffer;
        call.rowWidth = 3;
        return Value(copied(reinterpret_cast<const double*>(b.data()), b.size() * 3));
    }
    case MFnData::kPointArray:
    {
        const auto& b = *static_cast<const PointArrayData*>(data)->buffer;
        call.rowWidth = 4;
        return Value(copied(reinterpret_cast<const double*>(b.data()), b.size() * 4));
    }
    case MFnData::kMatrixArray:
    {
        const auto& b = *static_cast<const MatrixArrayData*>(data)->buffer;
        return Value(copied(reinterpret_cast<const double*>(b.data()), b.size() * 16));
    }
    case MFnData::kMatrix:
        return Value(copied(&static_cast<const MatrixData*>(data)->value[0][0], 16));
    case MFnData::kNumeric:
    {
        const auto* n = static_cast<const NumericData*>(data);
        if (n->count() == 1)
            return n->numericType == MFnNumericData::kFloat || n->numericType == MFnNumericData::kDouble
                       ? Value(n->value[0]) : Value(int(n->value[0]));
        call.rowWidth = n->count();
        return Value(copied(n->value, size_t(n->count())));
    }
    case MFnData::kComponentList:
    {
        Strings out;
        for (const auto& c : static_cast<const ComponentListData*>(data)->list)
            for (std::string& s : mirk::componentTexts(*c))
                out.push_back(std::move(s));
        return Value(out);
    }
    default:
        fail("The data of '" + plugText(cell) + "' is not a numeric or string attribute, and cannot be displayed.");
    }
}

Value scalar(const Cell& cell, Call& call)
{
    switch (cell.store())
    {
    case Store::kBool:   call.truth = true; return Value(cell.number() != 0);
    case Store::kFloat:
    case Store::kDouble: return Value(toUi(*cell.attr, cell.number()));
    default:             return Value(int(int64_t(cell.number())));
    }
}

/// The numbers of everything below; false if something below is no number.
bool collect(Cell& cell, std::vector<double>& out)
{
    if (cell.isMulti())
    {
        for (size_t i = 0; i < cell.elementCount(); ++i)
            if (!collect(*cell.elements->cells[i], out))
                return false;
        return true;
    }
    const Store store = cell.store();
    if (!cell.attr->children.empty())
    {
        for (size_t i = 0; i < cell.attr->children.size(); ++i)
            if (Cell* child = cell.child(i); !child || !collect(*child, out))
                return false;
        return true;
    }
    if (store == Store::kMatrix || store == Store::kFloatMatrix)
        for (int i = 0; i < 16; ++i)
            out.push_back(store == Store::kMatrix ? cell.own.matrix[i] : double(cell.own.floatMatrix[i]));
    else if (const int n = storeDimension(store); n >= 1)
        for (int i = 0; i < n; ++i)
            out.push_back(toUi(*cell.attr, cell.number(i)));
    else
        return false;
    return true;
}

bool allInteger(const Attribute& a)
{
    const Store s = a.isTuple() ? storeElement(a.store) : a.store;
    return s == Store::kBool || s == Store::kChar || s == Store::kShort || s == Store::kInt || s == Store::kInt64;
}

}  // namespace

Value readPlug(Cell& cell, Call& call, Lending* lending)
{
    const Attribute& a = *cell.attr;
    if (a.kind == AttrKind::kMessage)
        fail("Message attributes have no data values: " + plugText(cell));
    if (cell.isMulti() && a.is(Attribute::kWorldSpace) && cell.node->dag)   // one element a path, asked for or not
        for (size_t i = 0; i < dag::allPaths(*cell.node).size(); ++i)
            cell.element(int(i));
    if (cell.isMulti() || (a.isCompound() && !a.isTuple()) || a.isTuple())
        eval::pullDeep(cell);
    eval::pull(cell);
    if (!cell.isMulti() && a.store == Store::kData)
    {
        const Data* data = cell.data();
        if (data && lending && lend(data, *lending))
            return Value();
        if (data)
            return dataValue(cell, data, call);
        if (a.dataType == MFnData::kString)
            return Value("");
        return Value();
    }
    if (!cell.isMulti() && a.children.empty() && storeDimension(a.store) == 1)
        return scalar(cell, call);
    if (cell.isMulti() && a.store == Store::kData)
    {
        Strings texts;
        for (size_t i = 0; i < cell.elementCount(); ++i)
            if (auto* s = dynamic_cast<StringData*>(cell.elements->cells[i]->data()))
                texts.push_back(s->value);
            else
                fail("The data of '" + plugText(cell) + "' is not a numeric or string attribute, and cannot be displayed.");
        return Value(texts);
    }
    std::vector<double> numbers;
    if (!collect(cell, numbers))
        fail("The data of '" + plugText(cell) + "' is not a numeric or string attribute, and cannot be displayed.");
    if (a.isTuple())
        call.rowWidth = storeDimension(a.store);
    else if (a.isCompound() && !cell.isMulti())
        call.rowWidth = int(numbers.size());
    if (allInteger(a))
    {
        Ints ints(numbers.begin(), numbers.end());
        return Value(ints);
    }
    return Value(numbers);
}

std::string numericName(Store store)
{
    switch (store)
    {
    case Store::kBool:    return "bool";
    case Store::kChar:    return "char";
    case Store::kShort:   return "short";
    case Store::kInt:     return "long";
    case Store::kInt64:   return "int64";
    case Store::kFloat:   return "float";
    case Store::kDouble:  return "double";
    case Store::kShort2:  return "short2";
    case Store::kShort3:  return "short3";
    case Store::kInt2:    return "long2";
    case Store::kInt3:    return "long3";
    case Store::kFloat2:  return "float2";
    case Store::kFloat3:  return "float3";
    case Store::kDouble2: return "double2";
    case Store::kDouble3: return "double3";
    case Store::kDouble4: return "double4";
    case Store::kMatrix:  return "matrix";
    case Store::kFloatMatrix: return "fltMatrix";
    default:              return "";
    }
}

namespace {

std::string dataName(MFnData::Type type)
{
    switch (type)
    {
    case MFnData::kString:       return "string";
    case MFnData::kMatrix:       return "matrix";
    case MFnData::kStringArray:  return "stringArray";
    case MFnData::kDoubleArray:  return "doubleArray";
    case MFnData::kFloatArray:   return "floatArray";
    case MFnData::kIntArray:     return "Int32Array";
    case MFnData::kPointArray:   return "pointArray";
    case MFnData::kVectorArray:  return "vectorArray";
    case MFnData::kMatrixArray:  return "matrixArray";
    case MFnData::kComponentList:return "componentList";
    case MFnData::kMesh:         return "mesh";
    case MFnData::kLattice:      return "lattice";
    case MFnData::kNurbsCurve:   return "nurbsCurve";
    case MFnData::kNurbsSurface: return "nurbsSurface";
    case MFnData::kDynArrayAttrs:return "dataDynArrayAttrs";
    default:                     return "";
    }
}

}  // namespace

std::string typeNameOf(const Attribute& a)
{
    switch (a.kind)
    {
    case AttrKind::kMessage: return "message";
    case AttrKind::kEnum:    return "enum";
    case AttrKind::kUnit:
        return a.unit == MFnUnitAttribute::kAngle ? "doubleAngle" : a.unit == MFnUnitAttribute::kTime ? "time" : "doubleLinear";
    case AttrKind::kGeneric: return "generic";
    case AttrKind::kTyped:   return dataName(a.dataType);
    default: break;
    }
    const std::string name = numericName(a.store);
    return name.empty() ? (a.isCompound() ? "TdataCompound" : "") : name;
}

std::string typeNameOf(const Cell& cell)
{
    if (cell.isMulti())
        return "TdataCompound";
    if (const Data* data = cell.data())
    {
        if (auto* n = dynamic_cast<const NumericData*>(data))
            return numericName(storeOf(n->numericType));
        if (std::string name = dataName(data->type()); !name.empty())
            return name;
    }
    return typeNameOf(*cell.attr);
}

}  // namespace mirk::command
