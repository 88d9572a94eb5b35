#include "python/package.h"

#include <map>

#include "command/message.h"
#include "command/registry.h"
#include "python/convert.h"

namespace mirk::python {

command::Value (*melEvaluator)(const std::string& text) = nullptr;

namespace {

using command::Value;

/// Runs `f`; what C++ throws becomes a Python error of type `type`.
template <class F>
PyObject* guarded(PyObject* type, F&& f)
{
    try
    {
        return f();
    }
    catch (const std::exception& e)
    {
        if (PyErr_Occurred() || PyErr_CheckSignals() < 0)   // stopped from the keyboard: that is the error
            return nullptr;
        Object text(PyUnicode_DecodeUTF8(e.what(), Py_ssize_t(std::strlen(e.what())), "replace"));
        PyErr_SetObject(type, text.get());
        return nullptr;
    }
}

/// Languages differ here: MEL gives the length of these arrays before their elements, Python a list alone.
bool takesListWithoutCount(const std::vector<command::Keyword>& keywords)
{
    for (const command::Keyword& k : keywords)
        if (k.name == "type" || k.name == "typ")
            for (const char* type : {"doubleArray", "floatArray", "Int32Array"})
                if (k.value.asString() == type)
                    return true;
    return false;
}

/// The languages' commands know no absent value.
void refuseNone(PyObject* o, const char* command, const std::string& where)
{
    bool none = o == Py_None;
    if (PyList_Check(o) || PyTuple_Check(o))
        for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(o); ++i)
            none = none || PySequence_Fast_GET_ITEM(o, i) == Py_None;
    if (none)
        throw command::Error(std::string(command) + ": " + where + (o == Py_None ? " is None" : " holds None") +
                             ", which is neither a name nor a value");
}

PyObject* parsed(command::Call& call, const command::Command& command, PyObject* args, PyObject* kwargs)
{
    return guarded(PyExc_TypeError, [&]() -> PyObject* {
        std::vector<Value>            positional;
        std::vector<command::Keyword> keywords;
        PyObject *key = nullptr, *value = nullptr;
        Py_ssize_t at = 0;
        while (kwargs && PyDict_Next(kwargs, &at, &key, &value))
        {
            refuseNone(value, command.name, std::string("the flag '") + PyUnicode_AsUTF8(key) + "'");
            keywords.push_back({PyUnicode_AsUTF8(key), fromPython(value)});
        }
        const bool counts = std::strcmp(command.name, "setAttr") == 0 && takesListWithoutCount(keywords);
        for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(args); ++i)
        {
            PyObject* o = PyTuple_GET_ITEM(args, i);
            refuseNone(o, command.name, "argument " + std::to_string(i + 1));
            if (counts && i == 1 && PyTuple_GET_SIZE(args) == 2 && (PyList_Check(o) || PyTuple_Check(o)))
                positional.emplace_back(int(PySequence_Size(o)));
            positional.push_back(fromPython(o));
        }
        call = command::parseKeywords(command, positional, keywords);
        Py_RETURN_NONE;
    });
}

/// A dictionary where the command gave names to the values, as many as there are.
PyObject* resultOf(const Value& result, const command::Call& call)
{
    Object value(toPython(result, call.rowWidth, call.truth));
    if (!value || call.keys.empty() || !PyList_Check(value.get()) || size_t(PyList_GET_SIZE(value.get())) != call.keys.size())
        return value ? Py_NewRef(value.get()) : nullptr;
    PyObject* named = PyDict_New();
    for (size_t i = 0; named && i < call.keys.size(); ++i)
        if (PyDict_SetItemString(named, call.keys[i].c_str(), PyList_GET_ITEM(value.get(), Py_ssize_t(i))) < 0)
            Py_CLEAR(named);
    return named;
}

PyObject* callCommand(PyObject* self, PyObject* args, PyObject* kwargs)
{
    const char*             name = PyUnicode_AsUTF8(self);
    const command::Command* command = name ? command::find(name) : nullptr;
    if (!command)
        return PyErr_Format(PyExc_RuntimeError, "The command '%s' is no longer there", name ? name : "");
    command::Call call;
    Object        ok(parsed(call, *command, args, kwargs));
    if (!ok)
        return nullptr;
    return guarded(PyExc_RuntimeError, [&] {
        const Value result = command::run(call);
        return PyErr_Occurred() ? nullptr : resultOf(result, call);
    });
}

/// A callable for a command; made once a name, the definition has to live as long as the interpreter.
PyObject* commandFunction(const std::string& name)
{
    struct Entry { std::string name; PyMethodDef def; };
    static std::map<std::string, Entry> entries;
    auto [it, isNew] = entries.try_emplace(name);
    Entry& e = it->second;
    if (isNew)
    {
        e.name = name;
        e.def = {e.name.c_str(), reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(callCommand)), METH_VARARGS | METH_KEYWORDS, nullptr};
    }
    Object self(PyUnicode_FromString(name.c_str())), module(PyUnicode_FromString("maya.cmds"));
    return self && module ? PyCFunction_NewEx(&e.def, self.get(), module.get()) : nullptr;
}

/// Names of commands; `forImport` without those that would hide Python's own.
PyObject* commandNames(bool forImport = false)
{
    PyObject* list = PyList_New(0);
    PyObject* own = PyEval_GetBuiltins();
    for (const std::string& n : command::names())
    {
        Object name(PyUnicode_FromString(n.c_str()));
        if (forImport && PyDict_Contains(own, name.get()) == 1)
            continue;
        if (PyList_Append(list, name.get()) < 0)
            break;
    }
    return list;
}

PyObject* cmdsGetattr(PyObject*, PyObject* name)
{
    const char* text = PyUnicode_AsUTF8(name);
    if (!text)
        return nullptr;
    if (std::strcmp(text, "__all__") == 0)
        return commandNames(true);
    if (!command::find(text))
        return PyErr_Format(PyExc_AttributeError, "module 'maya.cmds' has no attribute '%s'", text);
    return commandFunction(text);
}

PyObject* cmdsDir(PyObject*, PyObject*) { return commandNames(); }

PyObject* melEval(PyObject*, PyObject* argument)
{
    const char* text = PyUnicode_AsUTF8(argument);
    if (!text)
        return nullptr;
    if (!melEvaluator)
        return PyErr_Format(PyExc_RuntimeError, "There is no MEL interpreter in this process");
    return guarded(PyExc_RuntimeError, [&] {
        const Value result = melEvaluator(text);
        return PyErr_Occurred() ? nullptr : toPython(result);
    });
}

PyObject* writeText(PyObject*, PyObject* args)
{
    int         error = 0;
    const char* text = nullptr;
    Py_ssize_t  length = 0;
    if (!PyArg_ParseTuple(args, "ps#", &error, &text, &length))
        return nullptr;
    (error ? message::printError : message::print)(std::string(text, size_t(length)));
    Py_RETURN_NONE;
}

PyObject* flushText(PyObject*, PyObject*)
{
    std::fflush(stdout);
    Py_RETURN_NONE;
}

PyMethodDef kCmdsMethods[] = {
    {"__getattr__", cmdsGetattr, METH_O, nullptr}, {"__dir__", cmdsDir, METH_NOARGS, nullptr}, {nullptr, nullptr, 0, nullptr}};
PyMethodDef kMelMethods[] = {{"eval", melEval, METH_O, "Runs MEL text; returns the value of its last statement."}, {nullptr, nullptr, 0, nullptr}};
PyMethodDef kHostMethods[] = {{"write", writeText, METH_VARARGS, nullptr}, {"flush", flushText, METH_NOARGS, nullptr}, {nullptr, nullptr, 0, nullptr}};

PyObject* addModule(const char* name, PyMethodDef* methods)
{
    PyObject* module = PyImport_AddModule(name);   // borrowed, sys.modules holds it
    if (!module || (methods && PyModule_AddFunctions(module, methods) < 0))
        return nullptr;
    return module;
}

// what is plainer in Python than here
constexpr const char* kBootstrap = R"(
import sys, io

def _install(host):
    class Stream(io.TextIOBase):
        def __init__(self, error):
            self._error = error
        encoding = 'utf-8'
        errors = 'surrogateescape'
        def write(self, text):
            if not isinstance(text, str):
                raise TypeError('write() argument must be str, not ' + type(text).__name__)
            host.write(self._error, text.encode('utf-8', 'replace').decode('utf-8'))
            return len(text)
        def flush(self): host.flush()
        def writable(self): return True
        def fileno(self): return 2 if self._error else 1
        def isatty(self):
            import os
            return os.isatty(self.fileno())
    sys.stdout, sys.stderr = Stream(False), Stream(True)
    maya = sys.modules['maya']
    maya.__path__ = []
    for name in ('cmds', 'mel', 'standalone', 'utils'):
        module = sys.modules['maya.' + name]
        module.__package__ = 'maya'
        setattr(maya, name, module)
    standalone, utils = maya.standalone, maya.utils
    standalone.initialize = lambda name='python', **unused: None
    standalone.uninitialize = lambda: None
    def call(function, *args, **kwargs):
        if callable(function):
            return function(*args, **kwargs)
        exec(function, sys.modules['__main__'].__dict__)
    utils.executeDeferred = utils.executeInMainThreadWithResult = call
)";

}  // namespace

bool installPackage()
{
    PyObject* host = addModule("_mirkhost", kHostMethods);
    if (!host || !addModule("maya", nullptr) || !addModule("maya.cmds", kCmdsMethods) || !addModule("maya.mel", kMelMethods) ||
        !addModule("maya.standalone", nullptr) || !addModule("maya.utils", nullptr))
        return false;
    Object space(PyDict_New());
    if (!space || PyDict_SetItemString(space.get(), "__builtins__", PyEval_GetBuiltins()) < 0)
        return false;
    Object done(PyRun_String(kBootstrap, Py_file_input, space.get(), space.get()));
    if (!done)
        return false;
    PyObject* install = PyDict_GetItemString(space.get(), "_install");
    Object    called(PyObject_CallOneArg(install, host));
    return bool(called);
}

}  // namespace mirk::python
