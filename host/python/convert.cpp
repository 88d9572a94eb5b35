#include "python/convert.h"

namespace mirk::python {

using command::Value;

namespace {

PyObject* fromText(const std::string& s) { return PyUnicode_DecodeUTF8(s.data(), Py_ssize_t(s.size()), "surrogateescape"); }

PyObject* fromNumbers(const double* v, size_t n)
{
    PyObject* list = PyList_New(Py_ssize_t(n));
    for (size_t i = 0; list && i < n; ++i)
        PyList_SET_ITEM(list, Py_ssize_t(i), PyFloat_FromDouble(v[i]));
    return list;
}

PyObject* fromRows(const double* v, size_t n, size_t width)
{
    PyObject* list = PyList_New(Py_ssize_t(n / width));
    for (size_t i = 0; list && i < n / width; ++i)
    {
        PyObject* row = PyTuple_New(Py_ssize_t(width));
        for (size_t k = 0; row && k < width; ++k)
            PyTuple_SET_ITEM(row, Py_ssize_t(k), PyFloat_FromDouble(v[i * width + k]));
        PyList_SET_ITEM(list, Py_ssize_t(i), row);
    }
    return list;
}

}  // namespace

PyObject* toPython(const Value& value, int rowWidth, bool truth)
{
    switch (value.kind())
    {
    case Value::kNone:   Py_RETURN_NONE;
    case Value::kInt:    return truth ? PyBool_FromLong(value.get<int32_t>()) : PyLong_FromLong(value.get<int32_t>());
    case Value::kFloat:  return PyFloat_FromDouble(value.get<double>());
    case Value::kString: return fromText(value.get<std::string>());
    case Value::kVector:
    {
        const command::Vec3& v = value.get<command::Vec3>();
        return Py_BuildValue("(ddd)", v.x, v.y, v.z);
    }
    case Value::kInts:
    {
        const command::Ints& ints = value.get<command::Ints>();
        const size_t width = rowWidth > 1 && ints.size() % size_t(rowWidth) == 0 ? size_t(rowWidth) : 0;
        PyObject* list = PyList_New(Py_ssize_t(width ? ints.size() / width : ints.size()));
        for (size_t i = 0; list && i < ints.size(); ++i)
        {
            PyObject* number = PyLong_FromLong(ints[i]);
            if (!width)
            {
                PyList_SET_ITEM(list, Py_ssize_t(i), number);
                continue;
            }
            if (i % width == 0)
                PyList_SET_ITEM(list, Py_ssize_t(i / width), PyTuple_New(Py_ssize_t(width)));
            PyTuple_SET_ITEM(PyList_GET_ITEM(list, Py_ssize_t(i / width)), Py_ssize_t(i % width), number);
        }
        return list;
    }
    case Value::kStrings:
    {
        const command::Strings& strings = value.get<command::Strings>();
        PyObject* list = PyList_New(Py_ssize_t(strings.size()));
        for (size_t i = 0; list && i < strings.size(); ++i)
            PyList_SET_ITEM(list, Py_ssize_t(i), fromText(strings[i]));
        return list;
    }
    case Value::kVectors: rowWidth = 3; break;
    default: break;
    }
    const command::Floats floats = value.asFloats();
    const auto&           f = std::as_const(*floats);
    return rowWidth > 1 && f.size() % size_t(rowWidth) == 0 ? fromRows(f.data(), f.size(), size_t(rowWidth)) : fromNumbers(f.data(), f.size());
}

namespace {

std::string textOf(PyObject* o)
{
    Object bytes(PyUnicode_AsEncodedString(o, "utf-8", "surrogateescape"));
    if (!bytes)
    {
        PyErr_Clear();
        throw command::Error("A text cannot be encoded");
    }
    return {PyBytes_AS_STRING(bytes.get()), size_t(PyBytes_GET_SIZE(bytes.get()))};
}

Value fromLong(PyObject* o)
{
    int overflow = 0;
    const long long v = PyLong_AsLongLongAndOverflow(o, &overflow);
    if (!overflow && v >= INT32_MIN && v <= INT32_MAX)
        return Value(int(v));
    const double d = PyLong_AsDouble(o);
    if (PyErr_Occurred())
    {
        PyErr_Clear();
        throw command::Error("A number is too large");
    }
    return Value(d);
}

enum Content { kEmpty = 0, kIntegers = 1, kReals = 2, kTexts = 4, kNested = 8 };

int contentOf(PyObject* fast)
{
    int what = kEmpty;
    for (Py_ssize_t i = 0, n = PySequence_Fast_GET_SIZE(fast); i < n; ++i)
    {
        PyObject* o = PySequence_Fast_GET_ITEM(fast, i);
        what |= PyFloat_Check(o) ? kReals : PyLong_Check(o) ? kIntegers : PyUnicode_Check(o) ? kTexts
                : PyList_Check(o) || PyTuple_Check(o) ? kNested : kReals;
    }
    return what;
}

Value fromSequence(PyObject* o)
{
    Object fast(PySequence_Fast(o, "a sequence"));
    if (!fast)
    {
        PyErr_Clear();
        throw command::Error("An argument cannot be read as a list");
    }
    const Py_ssize_t n = PySequence_Fast_GET_SIZE(fast.get());
    PyObject* const* items = PySequence_Fast_ITEMS(fast.get());
    const int what = contentOf(fast.get());
    if (what == kIntegers)
    {
        command::Ints ints;
        ints.reserve(size_t(n));
        bool fits = true;
        for (Py_ssize_t i = 0; i < n && fits; ++i)
        {
            int overflow = 0;
            const long long v = PyLong_AsLongLongAndOverflow(items[i], &overflow);
            fits = !overflow && v >= INT32_MIN && v <= INT32_MAX;
            ints.push_back(int32_t(v));
        }
        if (fits)
            return Value(std::move(ints));
    }
    if (!(what & (kTexts | kNested)) && what)
    {
        auto buffer = make<Buffer<double>>(size_t(n));
        for (Py_ssize_t i = 0; i < n; ++i)
        {
            const double d = PyFloat_CheckExact(items[i]) ? PyFloat_AS_DOUBLE(items[i]) : PyFloat_AsDouble(items[i]);
            if (d == -1 && PyErr_Occurred())
            {
                PyErr_Clear();
                throw command::Error(std::string("Invalid argument in a list: an object of type ") + Py_TYPE(items[i])->tp_name);
            }
            (*buffer)[size_t(i)] = d;
        }
        return Value(buffer);
    }
    // texts among numbers, or lists in lists: one flat list
    std::vector<Value> parts;
    bool text = what & kTexts;
    for (Py_ssize_t i = 0; i < n; ++i)
    {
        parts.push_back(fromPython(items[i]));
        text |= parts.back().kind() == Value::kStrings || parts.back().kind() == Value::kString;
    }
    if (text || parts.empty())
    {
        command::Strings strings;
        for (const Value& p : parts)
            for (std::string& s : p.asStrings())
                strings.push_back(std::move(s));
        return Value(std::move(strings));
    }
    auto buffer = make<Buffer<double>>();
    for (const Value& p : parts)
    {
        const command::Floats f = p.asFloats();
        for (double d : std::as_const(*f))
            buffer->push(d);
    }
    return Value(buffer);
}

}  // namespace

Value fromPython(PyObject* o)
{
    if (o == Py_None)
        return {};
    if (PyUnicode_Check(o))
        return Value(textOf(o));
    if (PyBool_Check(o))
        return Value(o == Py_True);
    if (PyLong_Check(o))
        return fromLong(o);
    if (PyFloat_Check(o))
        return Value(PyFloat_AS_DOUBLE(o));
    if (PyBytes_Check(o))
        return Value(std::string(PyBytes_AS_STRING(o), size_t(PyBytes_GET_SIZE(o))));
    if (PySequence_Check(o) || PyAnySet_Check(o) || PyDictViewSet_Check(o) || PyIter_Check(o))
    {
        Object fast(PySequence_Fast(o, "a sequence"));
        if (fast)
            return fromSequence(fast.get());
        PyErr_Clear();
    }
    if (PyNumber_Check(o))
    {
        const double d = PyFloat_AsDouble(o);
        if (!(d == -1 && PyErr_Occurred()))
            return PyIndex_Check(o) && d == double(int32_t(d)) ? Value(int32_t(d)) : Value(d);
        PyErr_Clear();
    }
    throw command::Error(std::string("Invalid argument: an object of type ") + Py_TYPE(o)->tp_name);
}

}  // namespace mirk::python
