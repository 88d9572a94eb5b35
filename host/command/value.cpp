// Conversions between the kinds of values, and numbers as text.
#include "command/value.h"

#include <charconv>
#include <cmath>

#include "command/value_text.h"

namespace mirk::command {

int32_t intFromDouble(double d)
{
    if (!(d == d))
        return 0;
    if (d >= 2147483647.0)
        return INT32_MAX;
    if (d <= -2147483648.0)
        return INT32_MIN;
    return int32_t(d);
}

double leadingNumber(std::string_view text, bool* whole)
{
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r')))
        ++i;
    if (i < text.size() && text[i] == '+')
        ++i;
    double      value = 0;
    const char* begin = text.data() + i;
    const char* end = text.data() + text.size();
    const char* digit = begin != end && *begin == '-' ? begin + 1 : begin;   // from_chars also takes inf and nan
    const bool  number = digit != end && ((*digit >= '0' && *digit <= '9') || *digit == '.');
    std::from_chars_result r{begin, std::errc::invalid_argument};
    if (number)
        r = std::from_chars(begin, end, value);
    if (r.ec == std::errc::result_out_of_range)
        value = *begin == '-' ? -HUGE_VAL : HUGE_VAL;
    if (whole)
        *whole = number && r.ec != std::errc::invalid_argument && r.ptr == end;
    return value;
}

std::string numberText(double value)
{
    char         text[64];
    const double magnitude = std::fabs(value);
    const bool   fixed = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e17);
    const auto   r = std::to_chars(text, text + sizeof text, value, fixed ? std::chars_format::fixed : std::chars_format::scientific);
    return std::string(text, r.ptr);
}

std::string vectorText(const Vec3& v) { return numberText(v.x) + " " + numberText(v.y) + " " + numberText(v.z); }

namespace {

double length(const Vec3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

Value firstOf(const Value& v)
{
    switch (v.kind())
    {
    case Value::kMatrix:  return v.get<Matrix>().v.empty() ? Value() : Value(v.get<Matrix>().v[0]);
    case Value::kInts:    return v.get<Ints>().empty() ? Value() : Value(v.get<Ints>()[0]);
    case Value::kFloats:  return !v.get<Floats>() || v.get<Floats>()->empty() ? Value() : Value((*v.get<Floats>())[0]);
    case Value::kStrings: return v.get<Strings>().empty() ? Value() : Value(v.get<Strings>()[0]);
    case Value::kVectors: return v.get<Vectors>().empty() ? Value() : Value(v.get<Vectors>()[0]);
    default:              return Value();
    }
}

}  // namespace

double Value::asFloat() const
{
    switch (kind())
    {
    case kNone:   return 0;
    case kInt:    return get<int32_t>();
    case kFloat:  return get<double>();
    case kString: return leadingNumber(get<std::string>());
    case kVector: return length(get<Vec3>());
    default:      return firstOf(*this).asFloat();
    }
}

int32_t Value::asInt() const { return kind() == kInt ? get<int32_t>() : intFromDouble(asFloat()); }

bool Value::asBool() const
{
    if (kind() == kString)
    {
        const std::string& s = get<std::string>();
        return s == "on" || s == "true" || s == "yes" || leadingNumber(s) != 0;
    }
    return asFloat() != 0;
}

std::string Value::asString() const
{
    switch (kind())
    {
    case kNone:   return {};
    case kInt:    return std::to_string(get<int32_t>());
    case kFloat:  return numberText(get<double>());
    case kString: return get<std::string>();
    case kVector: return vectorText(get<Vec3>());
    default:      return firstOf(*this).asString();
    }
}

Ints Value::asInts() const
{
    if (kind() == kInts)
        return get<Ints>();
    if (kind() == kInt)
        return {get<int32_t>()};
    Ints         out;
    const Floats all = asFloats();
    out.reserve(all->size());
    for (double d : std::as_const(*all))
        out.push_back(intFromDouble(d));
    return out;
}

Floats Value::asFloats() const
{
    auto out = make<Buffer<double>>();
    switch (kind())
    {
    case kNone:    break;
    case kFloats:  return get<Floats>() ? get<Floats>() : out;
    case kMatrix:  for (double d : get<Matrix>().v) out->push(d); break;
    case kInts:    out->reserve(get<Ints>().size()); for (int32_t i : get<Ints>()) out->push(i); break;
    case kStrings: for (const std::string& s : get<Strings>()) out->push(leadingNumber(s)); break;
    case kVector:
    case kVectors:
    {
        const Vectors one = kind() == kVector ? Vectors{get<Vec3>()} : get<Vectors>();
        out->reserve(one.size() * 3);
        for (const Vec3& v : one)
            for (double d : {v.x, v.y, v.z})
                out->push(d);
        break;
    }
    default: out->push(asFloat());
    }
    return out;
}

Strings Value::asStrings() const
{
    Strings out;
    switch (kind())
    {
    case kNone:    break;
    case kStrings: return get<Strings>();
    case kInts:    for (int32_t i : get<Ints>()) out.push_back(std::to_string(i)); break;
    case kVectors: for (const Vec3& v : get<Vectors>()) out.push_back(vectorText(v)); break;
    case kMatrix:
    case kFloats:
    {
        const Floats all = asFloats();
        for (double d : *all)
            out.push_back(numberText(d));
        break;
    }
    default:       out.push_back(asString());
    }
    return out;
}

}  // namespace mirk::command
