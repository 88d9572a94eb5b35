#pragma once
#include <maya/MTypes.h>

/// The kinds of objects an MObject can hold.
class MFn
{
public:
    enum Type {
#define MFN_TYPE(name, number) name = number,
#include <maya/MFnTypes.inc>
#undef MFN_TYPE
    };
};
