#pragma once

/// Base of what a draw override keeps from preparing to drawing.
class MUserData
{
public:
    MUserData() = default;
    /// With `true` the object is deleted after each draw; else it is kept and handed to the next preparation.
    explicit MUserData(bool deleteAfterUse) : deleteAfterUse_(deleteAfterUse) {}
    virtual ~MUserData();

    bool deleteAfterUse() const { return deleteAfterUse_; }
    void setDeleteAfterUse(bool deleteAfterUse) { deleteAfterUse_ = deleteAfterUse; }

private:
    bool deleteAfterUse_ = false;
};
