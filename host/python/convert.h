// Values of commands to Python objects and back. The interpreter's lock is held by the caller.
#pragma once
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "command/registry.h"

namespace mirk::python {

/// A new reference. `rowWidth` > 1: the numbers of a float array become tuples of that many; `truth`: an int is a bool.
PyObject* toPython(const command::Value& value, int rowWidth = 0, bool truth = false);
/// Throws command::Error for an object no command can take; Python's own errors are cleared.
command::Value fromPython(PyObject* object);

/// Owns one reference.
class Object
{
public:
    explicit Object(PyObject* p = nullptr) : p_(p) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    ~Object() { Py_XDECREF(p_); }
    PyObject* get() const { return p_; }
    PyObject* release() { return std::exchange(p_, nullptr); }
    void      reset(PyObject* p) { Py_XDECREF(std::exchange(p_, p)); }
    explicit operator bool() const { return p_ != nullptr; }

private:
    PyObject* p_;
};

struct Lock
{
    Lock() : state(PyGILState_Ensure()) {}
    ~Lock() { PyGILState_Release(state); }
    Lock(const Lock&) = delete;
    PyGILState_STATE state;
};

}  // namespace mirk::python
