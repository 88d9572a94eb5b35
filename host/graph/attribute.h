// Attribute definitions: one immutable tree a node type, plus the dynamic ones that single nodes carry.
#pragma once
#include <string>
#include <vector>

#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnUnitAttribute.h>

#include "data/object.h"

namespace mirk {

enum class AttrKind : uint8_t { kNumeric, kUnit, kEnum, kTyped, kMatrix, kMessage, kCompound, kGeneric };

/// How a cell holds its value. Tuples lie contiguous in the parent's cell; their children look into it.
enum class Store : uint8_t {
    kNone,  // message, plain compound, multi
    kBool, kChar, kShort, kInt, kInt64, kFloat, kDouble,
    kShort2, kShort3, kInt2, kInt3, kFloat2, kFloat3, kDouble2, kDouble3, kDouble4,
    kMatrix, kFloatMatrix,
    kData,  // typed and generic attributes: a counted data object, or null
};

namespace detail {
struct StoreRow { uint8_t dimension; Store element; uint8_t bytes; };
inline constexpr StoreRow kStores[] = {
    // none, then the order of the enum: numbers held, kind of one, bytes of all
    {0, Store::kNone, 0},
    {1, Store::kBool, 1}, {1, Store::kChar, 1}, {1, Store::kShort, 2}, {1, Store::kInt, 4}, {1, Store::kInt64, 8},
    {1, Store::kFloat, 4}, {1, Store::kDouble, 8},
    {2, Store::kShort, 4}, {3, Store::kShort, 6}, {2, Store::kInt, 8}, {3, Store::kInt, 12},
    {2, Store::kFloat, 8}, {3, Store::kFloat, 12}, {2, Store::kDouble, 16}, {3, Store::kDouble, 24}, {4, Store::kDouble, 32},
    {0, Store::kMatrix, 0}, {0, Store::kFloatMatrix, 0}, {0, Store::kData, 0},
};
}  // namespace detail

Store storeOf(MFnNumericData::Type type);
/// 1 for scalars, 2 to 4 for tuples, 0 otherwise.
constexpr int    storeDimension(Store s) { return detail::kStores[size_t(s)].dimension; }
constexpr Store  storeElement(Store s) { return detail::kStores[size_t(s)].element; }   ///< store of a tuple's child
constexpr size_t storeBytes(Store s) { return detail::kStores[size_t(s)].bytes; }

class Attribute : public Object
{
public:
    enum Flag : uint32_t {
        kKeyable = 1 << 0, kStorable = 1 << 1, kReadable = 1 << 2, kWritable = 1 << 3, kConnectable = 1 << 4,
        kCached = 1 << 5, kArray = 1 << 6, kIndexMatters = 1 << 7, kUsesBuilder = 1 << 8, kHidden = 1 << 9,
        kChannelBox = 1 << 10, kInternal = 1 << 11, kAffectsAppearance = 1 << 12, kUsedAsColor = 1 << 13,
        kUsedAsFilename = 1 << 14, kWorldSpace = 1 << 15, kIndeterminant = 1 << 16, kRenderSource = 1 << 17,
        kDynamic = 1 << 18, kRampCurve = 1 << 19, kRampColor = 1 << 20, kWorldMeshLike = 1 << 21,
    };
    enum Limit : uint8_t { kMin = 1, kMax = 2, kSoftMin = 4, kSoftMax = 8 };

    Attribute(AttrKind kind, std::string longName, std::string shortName);

    MFn::Type apiType() const override;
    bool      hasFn(MFn::Type type) const override;

    bool is(Flag f) const { return flags & f; }
    void set(Flag f, bool on) { flags = on ? flags | f : flags & ~uint32_t(f); }
    bool isArray() const { return flags & kArray; }
    bool isCompound() const { return !children.empty() || kind == AttrKind::kCompound; }
    bool isTuple() const { return storeDimension(store) > 1; }
    /// Children that a name or plug can reach: those of compounds and of tuples made from three attributes.
    Attribute* child(size_t i) const { return i < children.size() ? children[i].get() : nullptr; }
    /// Some attribute above is a multi, this one itself not counted. Told once the tree stands in a type.
    bool       hasArrayAncestor() const { return belowMulti; }
    Attribute* topParent() { Attribute* a = this; while (a->parent) a = a->parent; return a; }
    int        enumIndex(const std::string& field) const;   ///< -1 if unknown
    bool       acceptsData(MFnData::Type type) const;

    AttrKind             kind;
    Store                store = Store::kNone;
    MFnNumericData::Type numeric = MFnNumericData::kInvalid;
    MFnUnitAttribute::Type unit = MFnUnitAttribute::kInvalid;
    MFnData::Type        dataType = MFnData::kInvalid;
    unsigned             pluginDataId = 0;
    uint8_t              disconnect = 2;      ///< 0 delete, 1 reset, 2 nothing
    bool                 belowMulti = false;  ///< see hasArrayAncestor
    uint8_t              limits = 0;          ///< which of the four below are set
    uint32_t             flags = kStorable | kReadable | kWritable | kConnectable | kCached | kIndexMatters;
    int                  slot = -1;           ///< place in the type's flat table; dynamic: past the type's
    int                  childIndex = -1;
    Attribute*           parent = nullptr;
    std::string          longName, shortName, niceName;
    double               defaults[4] = {0, 0, 0, 0};
    double               min = 0, max = 0, softMin = 0, softMax = 0;
    Ref<Object>          defaultData;         ///< typed: a data object or null
    double               defaultMatrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::vector<Ref<Attribute>>                children;
    std::vector<std::pair<std::string, short>> fields;        ///< enum
    std::vector<MFnData::Type>                 acceptData;    ///< generic
    std::vector<MFnNumericData::Type>          acceptNumeric; ///< generic
    std::vector<std::string>                   categories;
};

/// Walks an attribute and everything below it, parents first.
template <class F>
void walkAttributes(Attribute& a, F&& visit)
{
    visit(a);
    for (auto& c : a.children)
        walkAttributes(*c, visit);
}

}  // namespace mirk
