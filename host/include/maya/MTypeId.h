#pragma once
#include <iosfwd>

/// The number that identifies a node or data type in files.
class MTypeId
{
public:
    MTypeId() = default;
    MTypeId(unsigned int id) : id_(id) {}
    /// 24 bits of prefix and 8 of the type.
    MTypeId(unsigned int prefix, unsigned int id) : id_((prefix << 8) | (id & 0xff)) {}

    unsigned int id() const { return id_; }

    bool operator==(const MTypeId& other) const { return id_ == other.id_; }
    bool operator!=(const MTypeId& other) const { return id_ != other.id_; }
    bool operator<(const MTypeId& other) const { return id_ < other.id_; }

private:
    unsigned int id_ = 0;
};

std::ostream& operator<<(std::ostream& os, const MTypeId& id);
