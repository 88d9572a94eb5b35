#include "python/python.h"

#include <csignal>
#include <fstream>
#include <sstream>

#include "command/message.h"
#include "python/convert.h"
#include "python/package.h"

namespace mirk::python {

using command::Error;
using command::Value;

namespace {

bool g_started = false;

PyObject* mainNamespace() { return PyModule_GetDict(PyImport_AddModule("__main__")); }

std::string str(PyObject* o)
{
    Object s(o ? PyObject_Str(o) : nullptr);
    const char* text = s ? PyUnicode_AsUTF8(s.get()) : nullptr;
    if (!text)
        PyErr_Clear();
    return text ? text : "";
}

/// Innermost place of a traceback, as "file, line n".
std::string placeOf(PyObject* traceback)
{
    Object at(traceback);
    Py_XINCREF(traceback);
    while (at)
    {
        PyObject* next = PyObject_GetAttrString(at.get(), "tb_next");
        if (!next || next == Py_None)
        {
            Py_XDECREF(next);
            break;
        }
        at.reset(next);
    }
    PyErr_Clear();
    if (!at)
        return {};
    Object line(PyObject_GetAttrString(at.get(), "tb_lineno")), frame(PyObject_GetAttrString(at.get(), "tb_frame"));
    Object code(frame ? PyObject_GetAttrString(frame.get(), "f_code") : nullptr);
    Object file(code ? PyObject_GetAttrString(code.get(), "co_filename") : nullptr);
    PyErr_Clear();
    return str(file.get()) + ", line " + str(line.get());
}

/// The pending Python error as one message.
[[noreturn]] void throwPending()
{
    PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    Object t(type), v(value), b(traceback);
    std::string text = type ? reinterpret_cast<PyTypeObject*>(type)->tp_name : "Error";
    if (const std::string what = str(value); !what.empty())
        text += ": " + what;
    if (const std::string place = placeOf(traceback); !place.empty())
        text += " (" + place + ")";
    throw Error(text);
}

/// Runs text in `__main__`: as an expression if it is one. A new reference, null with a Python error set.
PyObject* evaluate(const std::string& text)
{
    PyObject* space = mainNamespace();
    Object    code(Py_CompileString(text.c_str(), "<maya console>", Py_eval_input));
    if (!code && PyErr_ExceptionMatches(PyExc_SyntaxError))
    {
        PyErr_Clear();
        code.reset(Py_CompileString(text.c_str(), "<maya console>", Py_file_input));
    }
    return code ? PyEval_EvalCode(code.get(), space, space) : nullptr;
}

Object evaluated(const std::string& text)
{
    if (text.find('\0') != std::string::npos)
        throw Error("Python text contains a null byte");
    // blanks before an expression are not Python's, but users give them
    const size_t begin = text.find('\n') == std::string::npos ? text.find_first_not_of(" \t") : 0;
    PyObject* result = evaluate(begin == std::string::npos ? "" : text.substr(begin));
    if (!result)
        throwPending();
    return Object(result);
}

int exitStatus(PyObject* value)
{
    Object code(value ? PyObject_GetAttrString(value, "code") : nullptr);
    PyErr_Clear();
    if (!code || code.get() == Py_None)
        return 0;
    if (PyLong_Check(code.get()))
        return int(PyLong_AsLong(code.get()) & 0xff);
    message::printError(str(code.get()) + "\n");
    return 1;
}

/// Prints the pending error; the exit status it stands for.
int reportPending()
{
    if (PyErr_ExceptionMatches(PyExc_SystemExit))
    {
        PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
        PyErr_Fetch(&type, &value, &traceback);
        PyErr_NormalizeException(&type, &value, &traceback);
        Object t(type), v(value), b(traceback);
        return exitStatus(value);
    }
    const bool stopped = PyErr_ExceptionMatches(PyExc_KeyboardInterrupt);
    PyErr_Print();
    return stopped ? 130 : 1;
}

void setArguments(const std::string& path, const std::vector<std::string>& arguments)
{
    Object list(PyList_New(0));
    Object first(PyUnicode_DecodeFSDefault(path.c_str()));
    PyList_Append(list.get(), first.get());
    for (const std::string& a : arguments)
    {
        Object o(PyUnicode_DecodeFSDefault(a.c_str()));
        PyList_Append(list.get(), o.get());
    }
    PySys_SetObject("argv", list.get());
    const size_t slash = path.rfind('/');
    Object folder(PyUnicode_DecodeFSDefault(slash == std::string::npos ? "." : path.substr(0, slash).c_str()));
    if (PyObject* paths = PySys_GetObject("path"); paths && PySequence_Contains(paths, folder.get()) == 0)
        PyList_Insert(paths, 0, folder.get());
    PyErr_Clear();
}

}  // namespace

bool started() { return g_started; }

void start()
{
    if (g_started)
        return;
    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    config.parse_argv = 0;
    config.install_signal_handlers = 1;
    config.buffered_stdio = 1;
    PyConfig_SetString(&config, &config.program_name, L"python3");
    struct sigaction before{};
    sigaction(SIGINT, nullptr, &before);
    const PyStatus status = Py_InitializeFromConfig(&config);
    if (before.sa_handler != SIG_DFL)
        sigaction(SIGINT, &before, nullptr);   // whoever has it passes it on through `interrupt`
    PyConfig_Clear(&config);
    if (PyStatus_Exception(status))
        throw Error(std::string("Python cannot be started: ") + (status.err_msg ? status.err_msg : ""));
    g_started = true;
    if (!installPackage())
        throwPending();
}

void finish()
{
    if (!std::exchange(g_started, false))
        return;
    PyErr_CheckSignals();   // an interrupt that came for somebody else
    PyErr_Clear();
    Py_FinalizeEx();
}

Value run(const std::string& text)
{
    start();
    const Lock   lock;
    const Object result = evaluated(text);
    try
    {
        return fromPython(result.get());
    }
    catch (const Error&)
    {
        return Value(str(result.get()));   // what MEL has no type for goes as text
    }
}

std::string runForText(const std::string& text)
{
    start();
    const Lock   lock;
    const Object result = evaluated(text);
    return result.get() == Py_None ? "" : str(result.get());
}

int runFile(const std::string& path, const std::vector<std::string>& arguments)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    if (!in || !(text << in.rdbuf() || in.peek() == EOF))
        throw Error("Cannot read file \"" + path + "\"");
    start();
    const Lock lock;
    setArguments(path, arguments);
    PyObject* space = mainNamespace();
    Object    name(PyUnicode_DecodeFSDefault(path.c_str()));
    PyDict_SetItemString(space, "__file__", name.get());
    Object code(Py_CompileStringObject(text.str().c_str(), name.get(), Py_file_input, nullptr, -1));
    Object result(code ? PyEval_EvalCode(code.get(), space, space) : nullptr);
    return result ? 0 : reportPending();
}

void setMelEvaluator(Value (*evaluate)(const std::string& text)) { melEvaluator = evaluate; }

void forgetInterrupt()
{
    if (!g_started)
        return;
    const Lock lock;
    PyErr_CheckSignals();
    PyErr_Clear();
}

void interrupt()
{
    if (g_started)
        PyErr_SetInterruptEx(SIGINT);
}

}  // namespace mirk::python
