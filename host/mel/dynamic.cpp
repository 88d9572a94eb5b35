#include "mel/dynamic.h"

#include <cmath>

#include "command/registry.h"

namespace mirk::mel {

using command::Error;
using command::Matrix;

namespace {

const char* opText(Op op)
{
    static const char* const names[] = {"+", "-", "*", "/", "%", "^", "==", "!=", "<", "<=", ">", ">="};
    return names[op];
}

[[noreturn]] void illegal(Op op, const Value& v)
{
    throw Error(std::string("Illegal operation \"") + opText(op) + "\" on data of type " + typeName(typeOf(v)) + ".");
}

int32_t wrap(int64_t v) { return int32_t(uint32_t(uint64_t(v))); }

template <class T>
bool compare(Op op, const T& l, const T& r)
{
    switch (op)
    {
    case kEq: return l == r;
    case kNe: return !(l == r);
    case kLt: return l < r;
    case kLe: return l <= r;
    case kGt: return r < l;
    default:  return r <= l;
    }
}

Value ints(Op op, int64_t l, int64_t r)
{
    if ((op == kDiv || op == kMod) && r == 0)
        throw Error("Divide by zero.");
    switch (op)
    {
    case kAdd: return Value(wrap(l + r));
    case kSub: return Value(wrap(l - r));
    case kMul: return Value(wrap(l * r));
    case kDiv: return Value(wrap(l / r));
    default:   return Value(wrap(l % r));
    }
}

double floats(Op op, double l, double r)
{
    if ((op == kDiv || op == kMod) && r == 0)
        throw Error("Divide by zero.");
    switch (op)
    {
    case kAdd: return l + r;
    case kSub: return l - r;
    case kMul: return l * r;
    case kDiv: return l / r;
    default:   return std::fmod(l, r);
    }
}

Value vectors(Op op, const Value& l, const Value& r)
{
    const Vec3 u = convertTo(l, Type::kVector).get<Vec3>(), v = convertTo(r, Type::kVector).get<Vec3>();
    const bool both = l.kind() == Value::kVector && r.kind() == Value::kVector;
    switch (op)
    {
    case kMul:
        if (both)
            return Value(u.x * v.x + u.y * v.y + u.z * v.z);
        break;
    case kCross: return Value(Vec3{u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x});
    case kEq:
    case kNe:    return Value((u.x == v.x && u.y == v.y && u.z == v.z) == (op == kEq));
    case kLt:
    case kLe:
    case kGt:
    case kGe:    return Value(compare(op, l.asFloat(), r.asFloat()));
    default:     break;
    }
    return Value(vectorArithmetic(op, u, v));
}

Matrix asMatrix(Op op, const Value& v, const Matrix& other)
{
    if (v.kind() == Value::kMatrix)
        return v.get<Matrix>();
    if (v.kind() == Value::kVector)
    {
        const Vec3 u = v.get<Vec3>();
        return {1, 3, {u.x, u.y, u.z}};
    }
    if (v.isArray())
        illegal(op, v);
    return {other.rows, other.cols, std::vector<double>(other.v.size(), v.asFloat())};
}

}  // namespace

Value dynamicArithmetic(Op op, const Value& l, const Value& r)
{
    for (const Value* v : {&l, &r})
        if (v->isArray())
            illegal(op, *v);
    const bool comparison = op >= kEq && op <= kGe;
    const auto either = [&](Value::Kind k) { return l.kind() == k || r.kind() == k; };
    if (either(Value::kString))
    {
        if (comparison)
            return Value(compare(op, l.asString(), r.asString()));
        if (op != kAdd)
            illegal(op, l.kind() == Value::kString ? l : r);
        return Value(l.asString() + r.asString());
    }
    if (either(Value::kMatrix))
        return matrixArithmetic(op, l, r);
    if (either(Value::kVector))
        return vectors(op, l, r);
    if (op == kCross)
        illegal(op, l);
    if (either(Value::kFloat))
        return comparison ? Value(compare(op, l.asFloat(), r.asFloat())) : Value(floats(op, l.asFloat(), r.asFloat()));
    return comparison ? Value(compare(op, l.asInt(), r.asInt())) : ints(op, l.asInt(), r.asInt());
}

Vec3 vectorArithmetic(Op op, const Vec3& l, const Vec3& r)
{
    return {floats(op, l.x, r.x), floats(op, l.y, r.y), floats(op, l.z, r.z)};
}

Value matrixArithmetic(Op op, const Value& l, const Value& r)
{
    static const Matrix none;
    const Matrix m = asMatrix(op, l, r.kind() == Value::kMatrix ? r.get<Matrix>() : none);
    const Matrix k = asMatrix(op, r, m);
    const bool   both = l.kind() >= Value::kVector && r.kind() >= Value::kVector;
    const bool   same = m.rows == k.rows && m.cols == k.cols;
    if (op == kEq || op == kNe)
        return Value((same && m.v == k.v) == (op == kEq));
    const auto misfit = [&] {
        throw Error(std::string("Illegal operation \"") + opText(op) + "\" on a " + std::to_string(m.rows) + "x" + std::to_string(m.cols) +
                    " and a " + std::to_string(k.rows) + "x" + std::to_string(k.cols) + " matrix.");
    };
    if (op > kMod || (both && (op == kDiv || op == kMod)))
        misfit();
    if (op == kMul && both)
    {
        if (m.cols != k.rows)
            misfit();
        Matrix out{m.rows, k.cols, std::vector<double>(size_t(m.rows) * size_t(k.cols))};
        for (int i = 0; i < m.rows; ++i)
            for (int j = 0; j < k.cols; ++j)
                for (int s = 0; s < m.cols; ++s)
                    out.v[size_t(i * k.cols + j)] += m.v[size_t(i * m.cols + s)] * k.v[size_t(s * k.cols + j)];
        return Value(std::move(out));
    }
    if (!same)
        misfit();
    Matrix out = m;
    for (size_t i = 0; i < out.v.size(); ++i)
        out.v[i] = floats(op, m.v[i], k.v[i]);
    return Value(std::move(out));
}

namespace {

template <class T>
Value at(const std::vector<T>& v, int32_t i)
{
    return size_t(i) < v.size() ? Value(v[size_t(i)]) : Value(T());
}

template <class T>
void putAt(std::vector<T>& v, int32_t i, T e)
{
    if (size_t(i) >= v.size())
        v.resize(size_t(i) + 1);
    v[size_t(i)] = std::move(e);
}

}  // namespace

Value elementOf(const Value& a, int32_t i)
{
    if (i < 0)
        badIndex(i);
    switch (a.kind())
    {
    case Value::kInts:    return at(a.get<command::Ints>(), i);
    case Value::kStrings: return at(a.get<command::Strings>(), i);
    case Value::kVectors: return at(a.get<command::Vectors>(), i);
    case Value::kFloats:
    {
        const command::Floats f = a.asFloats();
        return size_t(i) < f->size() ? Value(std::as_const(*f)[size_t(i)]) : Value(0.0);
    }
    case Value::kNone: return Value();
    default: throw Error(std::string("Data of type ") + typeName(typeOf(a)) + " has no elements.");
    }
}

void setElement(Value& a, int32_t i, const Value& e)
{
    if (i < 0 || size_t(i) >= kMaxElements)
        badIndex(i);
    if (a.isNone())
    {
        const Type array = arrayType(typeOf(e));
        if (array == Type::kVoid)
            throw Error(std::string("An array cannot hold data of type ") + typeName(typeOf(e)) + ".");
        a = convertTo(Value(), array);
    }
    switch (a.kind())
    {
    case Value::kInts:    putAt(a.get<command::Ints>(), i, convertTo(e, Type::kInt).get<int32_t>()); break;
    case Value::kStrings: putAt(a.get<command::Strings>(), i, convertTo(e, Type::kString).get<std::string>()); break;
    case Value::kVectors: putAt(a.get<command::Vectors>(), i, convertTo(e, Type::kVector).get<Vec3>()); break;
    case Value::kFloats:
    {
        Buffer<double>& b = detach(a.get<command::Floats>());
        while (b.size() <= size_t(i))
            b.push(0);
        b[size_t(i)] = convertTo(e, Type::kFloat).get<double>();
        break;
    }
    default: throw Error(std::string("Data of type ") + typeName(typeOf(a)) + " has no elements.");
    }
}

int32_t sizeOf(const Value& v, bool)
{
    switch (v.kind())
    {
    case Value::kNone:    return 0;
    case Value::kInts:    return int32_t(v.get<command::Ints>().size());
    case Value::kFloats:  return int32_t(v.asFloats()->size());
    case Value::kStrings: return int32_t(v.get<command::Strings>().size());
    case Value::kVectors: return int32_t(v.get<command::Vectors>().size());
    case Value::kString:  return int32_t(v.get<std::string>().size());
    default:              return 1;
    }
}

Str* ownText(Slot& s) { return static_cast<Str*>(s.p); }

void freshArray(Type type, Slot& s, int32_t room)
{
    const size_t n = size_t(std::clamp(room, 0, 1 << 22));   // only a reservation: more comes as it is used
    switch (type)
    {
    case Type::kInts:
        object<IntArray>(s).clear();
        if (n) object<IntArray>(s).reserve(n);
        break;
    case Type::kFloats:
        object<FloatArray>(s).clear();
        if (n) object<FloatArray>(s).reserve(n);
        break;
    case Type::kVectors:
        object<VectorArray>(s).clear();
        if (n) object<VectorArray>(s).reserve(n);
        break;
    default:
        object<StringArray>(s).clear();
    }
}

Mat* newMatrix(int rows, int columns)
{
    if (rows < 1 || columns < 1 || rows > 4096 || columns > 4096)
        throw Error("A matrix cannot have " + std::to_string(rows) + " rows and " + std::to_string(columns) + " columns.");
    Mat* m = new Mat;
    m->m = {rows, columns, std::vector<double>(size_t(rows) * size_t(columns))};
    return m;
}

double* matrixCell(Matrix& m, int32_t row, int32_t column)
{
    if (row < 0 || column < 0 || row >= m.rows || column >= m.cols)
        throw Error("The matrix index [" + std::to_string(row) + "][" + std::to_string(column) + "] is out of range of a " + std::to_string(m.rows) +
                    "x" + std::to_string(m.cols) + " matrix.");
    return &m.v[size_t(row) * size_t(m.cols) + size_t(column)];
}

void assignMatrix(Slot& to, Slot& from)
{
    const Matrix &t = object<Mat>(to).m, &f = object<Mat>(from).m;
    if (t.rows && f.rows && (t.rows != f.rows || t.cols != f.cols))
        throw Error("A " + std::to_string(f.rows) + "x" + std::to_string(f.cols) + " matrix does not fit a " + std::to_string(t.rows) + "x" +
                    std::to_string(t.cols) + " matrix.");
    put(to, from.p);
}

}  // namespace mirk::mel
