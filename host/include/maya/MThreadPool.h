#pragma once
#include <maya/MStatus.h>

class MThreadRootTask;

typedef unsigned int MThreadRetVal;
typedef MThreadRetVal (*MThreadFunc)(void* data);
typedef void (*MThreadCallbackFunc)(void* data, MThreadRootTask* root);

/// Runs the tasks of a parallel region on several threads. Calls of init() and release() come in pairs.
class MThreadPool
{
public:
    static MStatus init();
    static void    release();
    /// Calls `func(data, root)`, which creates tasks on the root and runs them with executeAndJoin.
    static MStatus newParallelRegion(MThreadCallbackFunc func, void* data);
    static MStatus createTask(MThreadFunc func, void* data, MThreadRootTask* root);
    static MStatus executeAndJoin(MThreadRootTask* root);
};
