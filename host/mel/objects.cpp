#include "mel/objects.h"

#include "command/registry.h"
#include "command/value_text.h"

namespace mirk::mel {

using command::Error;

void badIndex(int64_t index)
{
    if (index < 0)
        throw Error("The array index " + std::to_string(index) + " is negative.");
    throw Error("The array index " + std::to_string(index) + " is too large.");
}

const std::string& StringArray::empty()
{
    static const std::string none;
    return none;
}

Type typeOf(const Value& v)
{
    static const Type types[] = {Type::kVoid,   Type::kInt,  Type::kFloat,  Type::kString,  Type::kVector,
                                 Type::kMatrix, Type::kInts, Type::kFloats, Type::kStrings, Type::kVectors};
    return types[v.kind()];
}

Value toValue(Type t, Slot* s)
{
    switch (t)
    {
    case Type::kInt:    return Value(s->i);
    case Type::kFloat:  return Value(s->d);
    case Type::kString: return Value(text(*s));
    case Type::kVector: return Value(vec(s));
    case Type::kMatrix: return Value(object<Mat>(*s).m);
    case Type::kInts:
    {
        const IntArray& a = object<IntArray>(*s);
        return Value(command::Ints(a.begin(), a.end()));
    }
    case Type::kFloats: return Value(object<FloatArray>(*s).share());
    case Type::kStrings:
    {
        const StringArray& a = object<StringArray>(*s);
        command::Strings   out;
        out.reserve(a.size());
        for (size_t i = 0; i < a.size(); ++i)
            out.push_back(a.text(i));
        return Value(std::move(out));
    }
    case Type::kVectors:
    {
        const VectorArray& a = object<VectorArray>(*s);
        return Value(command::Vectors(a.begin(), a.end()));
    }
    case Type::kDyn: return dynValue(*s);
    default:         return Value();
    }
}

namespace {

[[noreturn]] void cannotConvert(Type from, Type to)
{
    throw Error(std::string("Cannot convert data of type ") + typeName(from) + " to type " + typeName(to) + ".");
}

Vec3 toVector(const Value& v)
{
    switch (v.kind())
    {
    case Value::kVector: return v.get<Vec3>();
    case Value::kString:
    {
        // the text form of a vector reads back
        Vec3               out;
        double*            part[] = {&out.x, &out.y, &out.z};
        const std::string& s = v.get<std::string>();
        size_t             at = 0;
        for (double* d : part)
        {
            at = s.find_first_not_of(" \t\n,", at);
            if (at == std::string::npos)
                break;
            *d = command::leadingNumber(std::string_view(s).substr(at));
            at = s.find_first_of(" \t\n,", at);
        }
        return out;
    }
    default:
    {
        const double d = v.asFloat();
        return {d, d, d};
    }
    }
}

Value toVectors(const Value& v)
{
    const command::Floats flat = v.asFloats();
    if (flat->size() % 3)
        cannotConvert(typeOf(v), Type::kVectors);
    command::Vectors out(flat->size() / 3);
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = {std::as_const(*flat)[i * 3], std::as_const(*flat)[i * 3 + 1], std::as_const(*flat)[i * 3 + 2]};
    return Value(std::move(out));
}

}  // namespace

Value convertTo(Value v, Type t)
{
    const Type from = typeOf(v);
    if (from == t || t == Type::kDyn)
        return v;
    const bool none = from == Type::kVoid;
    const bool strings = from == Type::kStrings && !v.get<command::Strings>().empty();
    if (!isArray(t) && isArray(from))
    {
        // commands give the three numbers of a vector as an array
        if (t == Type::kVector && from == Type::kFloats && v.asFloats()->size() == 3)
            return toVectors(v).get<command::Vectors>()[0];
        cannotConvert(from, t);
    }
    switch (t)
    {
    case Type::kInt:     return Value(v.asInt());
    case Type::kFloat:   return Value(v.asFloat());
    case Type::kString:  return Value(v.asString());
    case Type::kVector:  return Value(toVector(v));
    case Type::kMatrix:
        if (none) return Value(command::Matrix());
        if (from == Type::kVector) return Value(command::Matrix{1, 3, {v.get<Vec3>().x, v.get<Vec3>().y, v.get<Vec3>().z}});
        break;
    case Type::kInts:    if (!strings && from != Type::kVectors) return Value(v.asInts()); break;
    case Type::kFloats:  if (!strings) return Value(v.asFloats()); break;
    case Type::kStrings: if (!isArray(from) || v.asFloats()->empty()) return Value(v.asStrings()); break;
    case Type::kVectors: if (!strings && from != Type::kString) return toVectors(v); break;
    default: break;
    }
    cannotConvert(from, t);
}

void fromValue(Value v, Type t, Slot* s)
{
    if (t == Type::kDyn)
    {
        Dyn* d = new Dyn;
        d->v = std::move(v);
        put(*s, d);
        return;
    }
    v = convertTo(std::move(v), t);
    switch (t)
    {
    case Type::kInt:    s->i = v.get<int32_t>(); break;
    case Type::kFloat:  s->d = v.get<double>(); break;
    case Type::kString: put(*s, new Str(std::move(v.get<std::string>()))); break;
    case Type::kVector: putVec(s, v.get<Vec3>()); break;
    case Type::kMatrix:
    {
        Mat* m = new Mat;
        m->m = std::move(v.get<command::Matrix>());
        put(*s, m);
        break;
    }
    case Type::kInts:
    {
        const command::Ints& a = v.get<command::Ints>();
        object<IntArray>(*s).adopt(make<Buffer<int32_t>>(a.data(), a.size()));
        break;
    }
    case Type::kFloats:
    {
        command::Floats f = std::move(v.get<command::Floats>());
        v = Value();
        object<FloatArray>(*s).adopt(std::move(f));
        break;
    }
    case Type::kStrings:
    {
        StringArray& a = object<StringArray>(*s);
        a.clear();
        a.v.reserve(v.get<command::Strings>().size());
        for (std::string& e : v.get<command::Strings>())
            a.push(std::move(e));
        break;
    }
    case Type::kVectors:
    {
        const command::Vectors& a = v.get<command::Vectors>();
        object<VectorArray>(*s).adopt(make<Buffer<Vec3>>(a.data(), a.size()));
        break;
    }
    default: break;
    }
}

void assignArray(Type t, Slot& to, Slot& from)
{
    if (to.p == from.p && to.p)
        return;
    switch (t)
    {
    case Type::kInts:    object<IntArray>(to).adopt(object<IntArray>(from).share()); break;
    case Type::kFloats:  object<FloatArray>(to).adopt(object<FloatArray>(from).share()); break;
    case Type::kVectors: object<VectorArray>(to).adopt(object<VectorArray>(from).share()); break;
    default:             object<StringArray>(to).assign(object<StringArray>(from)); break;
    }
}

void swapArray(Type t, Slot& to, Slot& from)
{
    switch (t)
    {
    case Type::kInts:    object<IntArray>(to).swap(object<IntArray>(from)); break;
    case Type::kFloats:  object<FloatArray>(to).swap(object<FloatArray>(from)); break;
    case Type::kVectors: object<VectorArray>(to).swap(object<VectorArray>(from)); break;
    default:             object<StringArray>(to).v.swap(object<StringArray>(from).v); break;
    }
}

}  // namespace mirk::mel
