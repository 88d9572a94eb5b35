// What the function sets on data share.
#pragma once
#include <maya/MStatus.h>

#include "data/data.h"
#include "data/mobject.h"

namespace mirk {

/// Reports the outcome through the optional last argument of interface methods and hands a value on.
inline void report(MStatus* status, MStatus::MStatusCode code)
{
    if (status)
        *status = code;
}
template <class T>
T reported(MStatus* status, MStatus::MStatusCode code, T value)
{
    report(status, code);
    return value;
}

}  // namespace mirk
