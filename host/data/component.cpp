#include "data/component.h"

#include <algorithm>
#include <unordered_set>

namespace mirk {
namespace {

int compareElements(const int* a, const int* b, int dimensions)
{
    for (int d = 0; d < dimensions; ++d)
        if (a[d] != b[d])
            return a[d] < b[d] ? -1 : 1;
    return 0;
}

uint64_t mix(uint64_t h, int v) { return (h ^ uint32_t(v)) * 0x9e3779b97f4a7c15ull; }

template <int D>
struct Element
{
    int v[D];
    bool operator<(const Element& o) const { return compareElements(v, o.v, D) < 0; }
    bool operator==(const Element& o) const { return compareElements(v, o.v, D) == 0; }
};

template <int D>
bool isSortedUnique(const std::vector<int>& indices)
{
    for (size_t i = D; i < indices.size(); i += D)
        if (compareElements(&indices[i - D], &indices[i], D) >= 0)
            return false;
    return true;
}

template <int D>
void sortUnique(std::vector<int>& indices)
{
    if (isSortedUnique<D>(indices))
        return;
    std::vector<Element<D>> elements(indices.size() / D);
    std::memcpy(static_cast<void*>(elements.data()), indices.data(), elements.size() * sizeof(Element<D>));
    std::sort(elements.begin(), elements.end());
    elements.erase(std::unique(elements.begin(), elements.end()), elements.end());
    indices.resize(elements.size() * D);
    std::memcpy(indices.data(), elements.data(), elements.size() * sizeof(Element<D>));
}

void sortUnique(std::vector<int>& indices, int dimensions)
{
    switch (dimensions) {
    case 1: return sortUnique<1>(indices);
    case 2: return sortUnique<2>(indices);
    default: return sortUnique<3>(indices);
    }
}

}  // namespace

/// Single indices that lie close together are looked up in a bit set, all others in a hash table of positions.
struct Component::Lookup
{
    int                   low = 0;
    std::vector<bool>     bits;
    std::vector<uint32_t> slots;   // position + 1, 0 for none; the size is a power of two
    std::vector<int>      copy;    // what the slots point into

    Lookup(const std::vector<int>& source, int dimensions)
    {
        const size_t size = source.size() / dimensions;
        if (!size)
            return;
        if (dimensions == 1) {
            const auto [lo, hi] = std::minmax_element(source.begin(), source.end());
            if (uint64_t(int64_t(*hi) - *lo) <= uint64_t(size) * 64 + 1024) {
                low = *lo;
                bits.resize(size_t(int64_t(*hi) - *lo) + 1);
                for (int i : source)
                    bits[size_t(int64_t(i) - low)] = true;
                return;
            }
        }
        copy = source;
        size_t slotCount = 8;
        while (slotCount < size * 2)
            slotCount *= 2;
        slots.resize(slotCount);
        for (size_t i = 0; i < size; ++i)
            *slot(&copy[i * dimensions], dimensions) = uint32_t(i + 1);
    }

    static uint64_t hash(const int* e, int dimensions)
    {
        uint64_t h = 1;
        for (int d = 0; d < dimensions; ++d)
            h = mix(h, e[d]);
        return h ^ (h >> 32);
    }
    uint32_t* slot(const int* e, int dimensions)
    {
        return const_cast<uint32_t*>(static_cast<const Lookup*>(this)->slot(e, dimensions));
    }
    const uint32_t* slot(const int* e, int dimensions) const
    {
        const size_t mask = slots.size() - 1;
        size_t       i = size_t(hash(e, dimensions)) & mask;
        while (slots[i] && compareElements(&copy[size_t(slots[i] - 1) * dimensions], e, dimensions) != 0)
            i = (i + 1) & mask;
        return &slots[i];
    }
    bool has(const int* e, int dimensions) const
    {
        if (!bits.empty()) {
            const int64_t i = int64_t(e[0]) - low;
            return i >= 0 && i < int64_t(bits.size()) && bits[size_t(i)];
        }
        return !slots.empty() && *slot(e, dimensions) != 0;
    }
};

bool Component::hasFn(MFn::Type t) const { return t == MFn::kComponent || Object::hasFn(t); }

bool Component::has(int u, int v, int w) const
{
    const int element[3] = {u, v, w};
    if (complete) {
        for (int d = 0; d < dimensions_; ++d)
            if (element[d] < 0 || (completeCount[d] > 0 && element[d] >= completeCount[d]))
                return false;
        return true;
    }
    if (count() <= 8) {
        for (size_t i = 0; i < indices.size(); i += dimensions_)
            if (compareElements(&indices[i], element, dimensions_) == 0)
                return true;
        return false;
    }
    std::shared_ptr<const Lookup> lookup = std::atomic_load_explicit(&lookup_, std::memory_order_acquire);
    if (!lookup) {
        lookup = std::make_shared<const Lookup>(indices, dimensions_);
        std::atomic_store_explicit(&lookup_, lookup, std::memory_order_release);
    }
    return lookup->has(element, dimensions_);
}

int componentDimensions(MFn::Type type)
{
    switch (type) {
    case MFn::kCurveCVComponent:
    case MFn::kCurveEPComponent:
    case MFn::kCurveKnotComponent:
    case MFn::kMeshEdgeComponent:
    case MFn::kMeshPolygonComponent:
    case MFn::kMeshFrEdgeComponent:
    case MFn::kMeshVertComponent:
    case MFn::kMeshMapComponent:
    case MFn::kDynParticleSetComponent:
    case MFn::kSubdivMapComponent:
        return 1;
    case MFn::kSurfaceCVComponent:
    case MFn::kSurfaceEPComponent:
    case MFn::kSurfaceKnotComponent:
    case MFn::kSurfaceFaceComponent:
    case MFn::kMeshFaceVertComponent:
    case MFn::kMeshVtxFaceComponent:
        return 2;
    case MFn::kLatticeComponent:
        return 3;
    default:
        return 0;
    }
}

Ref<Component> makeComponent(MFn::Type type)
{
    const int dimensions = componentDimensions(type);
    return dimensions ? make<Component>(type, dimensions) : Ref<Component>();
}

Ref<Component> copyComponent(const Component& component)
{
    return make<Component>(component);
}

void addElements(Component& component, const int* elements, size_t count)
{
    const int    dimensions = component.dimensions();
    auto&        indices = component.indices;
    const size_t before = indices.size();
    indices.insert(indices.end(), elements, elements + count * dimensions);
    component.changed();
    // the usual case of rising elements appends without a sort
    if (count == 1 && (before == 0 || compareElements(&indices[before - dimensions], elements, dimensions) < 0))
        return;
    sortUnique(indices, dimensions);
}

void removeElements(Component& component, const int* elements, size_t count)
{
    const int dimensions = component.dimensions();
    Component gone(component.apiType(), dimensions);
    addElements(gone, elements, count);
    std::vector<int> kept;
    const std::vector<int> all = allElements(component);
    for (size_t i = 0; i < all.size(); i += dimensions)
        if (!gone.has(all[i], dimensions > 1 ? all[i + 1] : 0, dimensions > 2 ? all[i + 2] : 0))
            kept.insert(kept.end(), &all[i], &all[i] + dimensions);
    component.indices = std::move(kept);
    component.complete = false;
    component.changed();
}

std::vector<int> allElements(const Component& component)
{
    if (!component.complete)
        return component.indices;
    const int        dimensions = component.dimensions();
    std::vector<int> all;
    all.reserve(elementCount(component) * dimensions);
    const int n[3] = {component.completeCount[0], dimensions > 1 ? component.completeCount[1] : 1,
                      dimensions > 2 ? component.completeCount[2] : 1};
    for (int i = 0; i < n[0]; ++i)
        for (int j = 0; j < n[1]; ++j)
            for (int k = 0; k < n[2]; ++k) {
                const int element[3] = {i, j, k};
                all.insert(all.end(), element, element + dimensions);
            }
    return all;
}

size_t elementCount(const Component& component)
{
    if (!component.complete)
        return component.count();
    size_t n = 1;
    for (int d = 0; d < component.dimensions(); ++d)
        n *= size_t(std::max(component.completeCount[d], 0));
    return n;
}

bool containsAll(const Component& whole, const Component& part)
{
    if (whole.apiType() != part.apiType())
        return false;
    const int dimensions = whole.dimensions();
    if (part.complete) {
        if (whole.complete)
            return true;
        if (elementCount(part) == 0)   // stands for all of an unknown geometry
            return false;
    }
    const std::vector<int>  expanded = part.complete ? allElements(part) : std::vector<int>();
    const std::vector<int>& elements = part.complete ? expanded : part.indices;
    if (elements.empty())
        return false;
    for (size_t i = 0; i < elements.size(); i += dimensions)
        if (!whole.has(elements[i], dimensions > 1 ? elements[i + 1] : 0, dimensions > 2 ? elements[i + 2] : 0))
            return false;
    return true;
}

bool sameElements(const Component& a, const Component& b)
{
    if (a.apiType() != b.apiType())
        return false;
    if (a.complete && b.complete)
        return std::equal(a.completeCount, a.completeCount + 3, b.completeCount);
    return allElements(a) == allElements(b);
}

void mergeInto(ComponentListData& list, const Component& component)
{
    for (Ref<Component>& present : list.list) {
        if (present->apiType() != component.apiType())
            continue;
        if (present->complete)
            return;
        if (component.complete)
            present = copyComponent(component);
        else
            addElements(*present, component.indices.data(), component.count());
        return;
    }
    list.list.push_back(copyComponent(component));
}

void removeFrom(ComponentListData& list, const Component& component)
{
    std::vector<Ref<Component>> kept;
    for (const Ref<Component>& present : list.list) {
        if (present->apiType() != component.apiType()) {
            kept.push_back(present);
            continue;
        }
        if (component.complete && elementCount(component) == 0)
            continue;
        if (present->complete && elementCount(*present) == 0) {   // all of an unknown geometry: nothing to count down from
            kept.push_back(present);
            continue;
        }
        const std::vector<int> gone = allElements(component);
        removeElements(*present, gone.data(), gone.size() / component.dimensions());
        if (!present->indices.empty())
            kept.push_back(present);
    }
    list.list = std::move(kept);
}

}  // namespace mirk
