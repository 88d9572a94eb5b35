#pragma once
#include <maya/MDGContext.h>

/// Makes a context the current one for its scope.
class MDGContextGuard
{
public:
    explicit MDGContextGuard(const MDGContext& context) : before_(context.makeCurrent()) {}
    ~MDGContextGuard() { before_.makeCurrent(); }
    MDGContextGuard(const MDGContextGuard&) = delete;
    MDGContextGuard& operator=(const MDGContextGuard&) = delete;

    const MDGContext& oldContext() const { return before_; }

private:
    MDGContext before_;
};
