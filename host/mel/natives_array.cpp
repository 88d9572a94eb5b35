// Arrays.
#include <set>

#include "mel/native.h"

namespace mirk::mel {

namespace {

std::vector<std::string> texts(const StringArray& a)
{
    std::vector<std::string> out;
    for (size_t i = 0; i < a.size(); ++i)
        out.push_back(a.text(i));
    return out;
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator)
{
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i)
        out.append(i ? separator : "").append(parts[i]);
    return out;
}

int32_t countOf(const StringArray& a, const std::string& s)
{
    int32_t n = 0;
    for (size_t i = 0; i < a.size(); ++i)
        n += a.text(i) == s;
    return n;
}

std::vector<std::string> catenated(const StringArray& a, const StringArray& b)
{
    std::vector<std::string> out = texts(a);
    for (size_t i = 0; i < b.size(); ++i)
        out.push_back(b.text(i));
    return out;
}

/// Elements of `from` that are in `what` or are not.
std::vector<std::string> chosen(const StringArray& what, const StringArray& from, bool in)
{
    std::set<std::string>    set;
    std::vector<std::string> out;
    for (size_t i = 0; i < what.size(); ++i)
        set.insert(what.text(i));
    for (size_t i = 0; i < from.size(); ++i)
        if (set.count(from.text(i)) == in)
            out.push_back(from.text(i));
    return out;
}

std::vector<std::string> unique(const StringArray& a)
{
    std::set<std::string>    seen;
    std::vector<std::string> out;
    for (size_t i = 0; i < a.size(); ++i)
        if (seen.insert(a.text(i)).second)
            out.push_back(a.text(i));
    return out;
}

template <class T>
Value sorted(const PlainArray<T>& a)
{
    std::vector<T> v(a.begin(), a.end());
    if constexpr (std::is_same_v<T, double>)
        std::stable_sort(v.begin(), v.end(), [](double l, double r) { return l < r || (l == l && r != r); });   // NaN last
    else
        std::sort(v.begin(), v.end());
    return Value(std::move(v));
}

std::vector<std::string> sortedTexts(const StringArray& a)
{
    std::vector<std::string> v = texts(a);
    std::sort(v.begin(), v.end());
    return v;
}

void append(StringArray& to, const StringArray& from, int32_t count)
{
    const size_t n = std::min(from.size(), size_t(std::max(count, 0)));
    for (size_t i = 0; i < n; ++i)
        to.set(int64_t(to.size()), from.v[i]);
}

bool insertAt(StringArray& a, int32_t at, const std::string& s)
{
    if (at < 0 || size_t(at) > a.size())
        return false;
    Str* text = new Str(s);
    addRef(text);
    a.v.insert(a.v.begin() + at, text);
    return true;
}

template <class A, class E>
bool plainInsertAt(A& a, int32_t at, E e)
{
    if (at < 0 || size_t(at) > a.size())
        return false;
    a.push(e);
    for (int64_t i = int64_t(a.size()) - 1; i > at; --i)
        a.set(i, a.get(i - 1));
    a.set(at, e);
    return true;
}

template <class A, class E>
int32_t indexOf(const A& a, E e)
{
    const auto* at = std::find(a.begin(), a.end(), e);
    return at == a.end() ? -1 : int32_t(at - a.begin());
}

bool removeAt(StringArray& a, int32_t at)
{
    if (at < 0 || size_t(at) >= a.size())
        return false;
    release(a.v[size_t(at)]);
    a.v.erase(a.v.begin() + at);
    return true;
}

bool removeAt(auto& a, int32_t at)
{
    if (at < 0 || size_t(at) >= a.size())
        return false;
    auto rest = std::vector(a.begin(), a.end());
    rest.erase(rest.begin() + at);
    a.clear();
    for (auto e : rest)
        a.push(e);
    return true;
}

template <class T>
std::vector<T> without(const PlainArray<T>& what, const PlainArray<T>& from)
{
    const std::set<T> set(what.begin(), what.end());
    std::vector<T>    out;
    for (T e : from)
        if (!set.count(e))
            out.push_back(e);
    return out;
}

template <class T>
std::vector<T> catenated(const PlainArray<T>& a, const PlainArray<T>& b)
{
    std::vector<T> out(a.begin(), a.end());
    out.insert(out.end(), b.begin(), b.end());
    return out;
}

template <class T>
int32_t findFrom(const PlainArray<T>& a, T e, int32_t from)
{
    for (size_t i = size_t(std::max(from, 0)); i < a.size(); ++i)
        if (a.get(int64_t(i)) == e)
            return int32_t(i);
    return -1;
}

#define FN(name, params, result, expr) {name, params, result, [](NativeCall& c) { c.give(expr); }}

const Native kRows[] = {
    FN("sort", "S", 'S', sortedTexts(c.strings(0))),
    {"sort", "I", 'I', [](NativeCall& c) { c.give(sorted(c.ints(0)).get<command::Ints>()); }},
    {"sort", "F", 'F', [](NativeCall& c) { c.give(sorted(c.floats(0)).asFloats()); }},
    FN("stringArrayToString", "Ss", 's', joined(texts(c.strings(0)), c.s(1))),
    FN("intArrayToString", "Is", 's', joined(Value(command::Ints(c.ints(0).begin(), c.ints(0).end())).asStrings(), c.s(1))),
    FN("floatArrayToString", "Fs", 's', joined(Value(c.floats(0).share()).asStrings(), c.s(1))),
    FN("stringArrayContains", "sS", 'i', int32_t(countOf(c.strings(1), c.s(0)) > 0)),
    FN("intArrayContains", "iI", 'i', int32_t(indexOf(c.ints(1), c.i(0)) >= 0)),
    FN("floatArrayContains", "fF", 'i', int32_t(indexOf(c.floats(1), c.f(0)) >= 0)),
    FN("stringArrayFind", "siS", 'i', [&] {
        for (size_t i = size_t(std::max(c.i(1), 0)); i < c.strings(2).size(); ++i)
            if (c.strings(2).text(i) == c.s(0))
                return int32_t(i);
        return int32_t(-1);
    }()),
    FN("intArrayFind", "iiI", 'i', findFrom(c.ints(2), c.i(0), c.i(1))),
    FN("floatArrayFind", "fiF", 'i', findFrom(c.floats(2), c.f(0), c.i(1))),
    FN("stringArrayCount", "sS", 'i', countOf(c.strings(1), c.s(0))),
    FN("intArrayCount", "iI", 'i', int32_t(std::count(c.ints(1).begin(), c.ints(1).end(), c.i(0)))),
    FN("floatArrayCount", "fF", 'i', int32_t(std::count(c.floats(1).begin(), c.floats(1).end(), c.f(0)))),
    FN("intArrayCatenate", "II", 'I', catenated(c.ints(0), c.ints(1))),
    FN("floatArrayCatenate", "FF", 'F', Value(catenated(c.floats(0), c.floats(1))).asFloats()),
    FN("intArrayRemove", "II", 'I', without(c.ints(0), c.ints(1))),
    FN("floatArrayRemove", "FF", 'F', Value(without(c.floats(0), c.floats(1))).asFloats()),
    FN("stringArrayCatenate", "SS", 'S', catenated(c.strings(0), c.strings(1))),
    FN("stringArrayRemove", "SS", 'S', chosen(c.strings(0), c.strings(1), false)),
    FN("stringArrayRemoveExact", "SS", 'S', chosen(c.strings(0), c.strings(1), false)),
    FN("stringArrayIntersector", "SS", 'S', chosen(c.strings(1), c.strings(0), true)),
    FN("stringArrayDiff", "SS", 'S', chosen(c.strings(1), c.strings(0), false)),
    FN("stringArrayRemoveDuplicates", "S", 'S', unique(c.strings(0))),
    FN("stringArrayAddPrefix", "Ss", 'S', [&] {
        std::vector<std::string> out = texts(c.strings(0));
        for (std::string& s : out)
            s.insert(0, c.s(1));
        return out;
    }()),
    FN("stringArrayInsertAtIndex", "iSs", 'i', int32_t(insertAt(c.strings(1), c.i(0), c.s(2)))),
    FN("intArrayInsertAtIndex", "iIi", 'i', int32_t(plainInsertAt(c.ints(1), c.i(0), c.i(2)))),
    FN("floatArrayInsertAtIndex", "iFf", 'i', int32_t(plainInsertAt(c.floats(1), c.i(0), c.f(2)))),
    FN("stringArrayRemoveAtIndex", "iS", 'i', int32_t(removeAt(c.strings(1), c.i(0)))),
    FN("intArrayRemoveAtIndex", "iI", 'i', int32_t(removeAt(c.ints(1), c.i(0)))),
    FN("floatArrayRemoveAtIndex", "iF", 'i', int32_t(removeAt(c.floats(1), c.i(0)))),
    {"appendStringArray", "SSi", 0, [](NativeCall& c) { append(c.strings(0), c.strings(1), c.i(2)); }},
    {"appendStringArray", "SS", 0, [](NativeCall& c) { append(c.strings(0), c.strings(1), int32_t(c.strings(1).size())); }},
};

}  // namespace

std::span<const Native> arrayNatives() { return kRows; }

}  // namespace mirk::mel
