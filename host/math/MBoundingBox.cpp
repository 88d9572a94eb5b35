#include <maya/MBoundingBox.h>

#include <algorithm>

MBoundingBox::MBoundingBox(const MPoint& corner1, const MPoint& corner2)
{
    expand(corner1);
    expand(corner2);
}

void MBoundingBox::expand(const MPoint& p)
{
    if (empty_) {
        min_ = max_ = MPoint(p.x, p.y, p.z);
        empty_ = false;
        return;
    }
    min_ = MPoint(std::min(min_.x, p.x), std::min(min_.y, p.y), std::min(min_.z, p.z));
    max_ = MPoint(std::max(max_.x, p.x), std::max(max_.y, p.y), std::max(max_.z, p.z));
}

void MBoundingBox::expand(const MBoundingBox& box)
{
    if (box.empty_)
        return;
    expand(box.min_);
    expand(box.max_);
}

void MBoundingBox::transformUsing(const MMatrix& matrix)
{
    if (empty_)
        return;
    MBoundingBox moved;
    for (int i = 0; i < 8; ++i) {
        const MPoint corner(i & 1 ? max_.x : min_.x, i & 2 ? max_.y : min_.y, i & 4 ? max_.z : min_.z);
        moved.expand((corner * matrix).cartesianize());
    }
    *this = moved;
}

bool MBoundingBox::contains(const MPoint& p) const
{
    return !empty_ && p.x >= min_.x && p.x <= max_.x && p.y >= min_.y && p.y <= max_.y && p.z >= min_.z &&
           p.z <= max_.z;
}

bool MBoundingBox::intersects(const MBoundingBox& o, double tolerance) const
{
    return !empty_ && !o.empty_ && min_.x - tolerance <= o.max_.x && o.min_.x - tolerance <= max_.x &&
           min_.y - tolerance <= o.max_.y && o.min_.y - tolerance <= max_.y && min_.z - tolerance <= o.max_.z &&
           o.min_.z - tolerance <= max_.z;
}

MPoint MBoundingBox::center() const
{
    return MPoint((min_.x + max_.x) / 2, (min_.y + max_.y) / 2, (min_.z + max_.z) / 2);
}
