// Long computations, thread pools, and what evaluation scheduled ahead would know.
#include <maya/MComputation.h>

#include <csignal>
#include <cstdio>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <unistd.h>

#include <maya/MCacheSchema.h>
#include <maya/MEvaluationNode.h>
#include <maya/MPlug.h>
#include <maya/MThreadPool.h>
#include <maya/MTime.h>

#include "api/playback.h"
#include "data/fn_base.h"

using namespace mirk;

// ---- MComputation ------------------------------------------------------------------------------------------------

namespace {

volatile std::sig_atomic_t g_interrupted = 0;
struct sigaction           g_before;
int                        g_running = 0;

void onInterrupt(int) { g_interrupted = 1; }

}  // namespace

MComputation::~MComputation() { endComputation(); }

void MComputation::beginComputation(bool showProgressBar, bool isInterruptable, bool)
{
    if (running_)
        return;
    running_ = true;
    bar_ = showProgressBar && isatty(STDERR_FILENO);
    interruptable_ = isInterruptable;
    progress_ = min_;
    if (interruptable_ && g_running++ == 0) {
        g_interrupted = 0;
        struct sigaction action = {};
        action.sa_handler = onInterrupt;
        sigemptyset(&action.sa_mask);
        sigaction(SIGINT, &action, &g_before);
    }
    show();
}

bool MComputation::isInterruptRequested() { return running_ && interruptable_ && g_interrupted; }

void MComputation::endComputation()
{
    if (!running_)
        return;
    running_ = false;
    if (interruptable_ && --g_running == 0)
        sigaction(SIGINT, &g_before, nullptr);
    if (bar_)
        std::fputs("\r\033[K", stderr);
}

void MComputation::setProgressRange(int min, int max)
{
    min_ = min;
    max_ = max < min ? min : max;
    setProgress(progress_);
}

void MComputation::setProgress(int amount)
{
    progress_ = amount < min_ ? min_ : amount > max_ ? max_ : amount;
    show();
}

MStatus MComputation::setProgressStatus(const MString& msg)
{
    status_ = msg;
    show();
    return MS::kSuccess;
}

void MComputation::show() const
{
    if (!running_ || !bar_)
        return;
    constexpr int kWidth = 40;
    const double  part = max_ > min_ ? (double(progress_) - min_) / (double(max_) - min_) : 0;
    const int     filled = int(part * kWidth);
    std::fprintf(stderr, "\r[%.*s%*s] %3d%% %s", filled, "########################################", kWidth - filled, "", int(part * 100),
                 status_.asChar());
    std::fflush(stderr);
}

// ---- MThreadPool -------------------------------------------------------------------------------------------------

class MThreadRootTask
{
public:
    struct Task { MThreadFunc func; void* data; };
    std::vector<Task> tasks;
};

namespace {

/// Threads that wait for a region's tasks. One region runs at a time; a region inside a task runs on its own thread.
class Pool
{
public:
    static Pool& get()
    {
        static Pool* pool = new Pool;   // threads never outlive what they wait on
        return *pool;
    }
    void run(const std::vector<MThreadRootTask::Task>& tasks)
    {
        std::unique_lock region(region_, std::try_to_lock);
        if (!region || tasks.size() < 2 || inTask()) {
            for (const auto& t : tasks)
                t.func(t.data);
            return;
        }
        start();
        {
            std::lock_guard lock(mutex_);
            tasks_ = &tasks;
            next_ = 0;
            left_ = tasks.size();
            ++round_;
        }
        wake_.notify_all();
        work(tasks);
        std::unique_lock lock(mutex_);
        done_.wait(lock, [&] { return left_ == 0 && busy_ == 0; });
        tasks_ = nullptr;
    }

private:
    static bool& inTask()
    {
        static thread_local bool in = false;
        return in;
    }
    void start()
    {
        const unsigned wanted = std::max(1u, std::thread::hardware_concurrency()) - 1;
        while (threads_ < wanted) {
            std::thread([this] { loop(); }).detach();
            ++threads_;
        }
    }
    void work(const std::vector<MThreadRootTask::Task>& tasks)
    {
        inTask() = true;
        for (size_t i = next_++; i < tasks.size(); i = next_++) {
            tasks[i].func(tasks[i].data);
            std::lock_guard lock(mutex_);
            if (--left_ == 0)
                done_.notify_all();
        }
        inTask() = false;
    }
    void loop()
    {
        size_t seen = 0;
        for (;;) {
            const std::vector<MThreadRootTask::Task>* tasks;
            {
                std::unique_lock lock(mutex_);
                wake_.wait(lock, [&] { return round_ != seen && tasks_; });
                seen = round_;
                tasks = tasks_;
                ++busy_;
            }
            work(*tasks);
            std::lock_guard lock(mutex_);
            --busy_;
            done_.notify_all();
        }
    }

    std::mutex              region_, mutex_;
    std::condition_variable wake_, done_;
    const std::vector<MThreadRootTask::Task>* tasks_ = nullptr;
    std::atomic<size_t>     next_{0};
    size_t                  left_ = 0, round_ = 0;
    unsigned                threads_ = 0, busy_ = 0;
};

std::atomic<int> g_poolUsers{0};

}  // namespace

MStatus MThreadPool::init()
{
    ++g_poolUsers;
    return MS::kSuccess;
}

void MThreadPool::release()
{
    if (g_poolUsers > 0)
        --g_poolUsers;
}

MStatus MThreadPool::newParallelRegion(MThreadCallbackFunc func, void* data)
{
    if (!func || g_poolUsers == 0)
        return MS::kFailure;
    MThreadRootTask root;
    func(data, &root);
    return MS::kSuccess;
}

MStatus MThreadPool::createTask(MThreadFunc func, void* data, MThreadRootTask* root)
{
    if (!func || !root)
        return MS::kInvalidParameter;
    root->tasks.push_back({func, data});
    return MS::kSuccess;
}

MStatus MThreadPool::executeAndJoin(MThreadRootTask* root)
{
    if (!root)
        return MS::kInvalidParameter;
    const auto tasks = std::move(root->tasks);
    root->tasks.clear();
    Pool::get().run(tasks);
    return MS::kSuccess;
}

bool MEvaluationNode::dirtyPlugExists(const MObject& attribute, MStatus* s) const
{
    bool found = false;
    for (unsigned i = 0; i < dirty_.length(); ++i)
        found = found || dirty_[i] == attribute;
    return reported(s, attribute.isNull() ? MS::kInvalidParameter : MS::kSuccess, found);
}

MPlug MEvaluationNode::dirtyPlug(const MObject& attribute, MStatus* s) const
{
    for (unsigned i = 0; i < dirty_.length(); ++i)
        if (dirty_[i] == attribute)
            return reported(s, MS::kSuccess, dirty_[i]);
    return reported(s, MS::kFailure, MPlug());
}

MObject MEvaluationNode::dependencyNode(MStatus* s) const { return reported(s, node_.isNull() ? MS::kFailure : MS::kSuccess, node_); }

MStatus MCacheSchema::add(const MObject& attribute)
{
    if (!attribute.hasFn(MFn::kAttribute))
        return MS::kInvalidParameter;
    if (!contains(attribute))
        attributes_.push_back(attribute);
    return MS::kSuccess;
}

bool MCacheSchema::contains(const MObject& attribute) const
{
    return std::find(attributes_.begin(), attributes_.end(), attribute) != attributes_.end();
}
