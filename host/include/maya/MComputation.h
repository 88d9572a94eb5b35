#pragma once
#include <maya/MStatus.h>
#include <maya/MString.h>

/// A long computation that may be interrupted (by the terminal's interrupt key) and tells its progress.
class MComputation
{
public:
    MComputation() = default;
    virtual ~MComputation();
    MComputation(const MComputation&) = delete;
    MComputation& operator=(const MComputation&) = delete;

    void    beginComputation(bool showProgressBar = false, bool isInterruptable = true, bool useWaitCursor = true);
    bool    isInterruptRequested();
    void    endComputation();

    void    setProgressRange(int min, int max);
    int     progressMin() const { return min_; }
    int     progressMax() const { return max_; }
    void    setProgress(int amount);
    int     progress() const { return progress_; }
    MStatus setProgressStatus(const MString& msg);
    MString progressStatus() const { return status_; }

private:
    void show() const;

    int     min_ = 0, max_ = 100, progress_ = 0;
    bool    running_ = false, interruptable_ = false, bar_ = false;
    MString status_;
};
