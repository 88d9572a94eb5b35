#pragma once
#include <maya/MMatrix.h>
#include <maya/MPoint.h>

/// A box along the axes. An empty box has size 0 at the origin and takes the place of the first thing it is expanded by.
class MBoundingBox
{
public:
    MBoundingBox() = default;
    MBoundingBox(const MPoint& corner1, const MPoint& corner2);

    void clear() { *this = MBoundingBox(); }
    void expand(const MPoint& point);
    void expand(const MBoundingBox& box);
    /// To the box around the eight moved corners.
    void transformUsing(const MMatrix& matrix);

    /// The border belongs to the box.
    bool contains(const MPoint& point) const;
    bool intersects(const MBoundingBox& box, double tolerance = 0.0) const;

    double width() const { return max_.x - min_.x; }   ///< along x
    double height() const { return max_.y - min_.y; }  ///< along y
    double depth() const { return max_.z - min_.z; }   ///< along z
    MPoint center() const;
    MPoint min() const { return min_; }
    MPoint max() const { return max_; }

private:
    MPoint min_, max_;
    bool   empty_ = true;
};
