// The function sets on components and component lists.
#include <maya/MFnComponentListData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnTripleIndexedComponent.h>
#include <maya/MIntArray.h>

#include "data/array_access.h"
#include "data/component.h"
#include "data/fn_base.h"

using namespace mirk;

namespace {

Component* componentOf(const MObject& object) { return objectAs<Component>(object); }

bool hasDimensions(const MObject& object, int dimensions)
{
    const Component* c = componentOf(object);
    return c && c->dimensions() == dimensions;
}

MObject createComponent(MObject& object, MFn::Type type, int dimensions, MStatus* status)
{
    if (componentDimensions(type) != dimensions)
        return reported(status, MS::kInvalidParameter, MObject());
    object = wrap(makeComponent(type));
    return reported(status, MS::kSuccess, object);
}

MStatus addTuples(const MObject& object, const int* tuples, size_t count)
{
    Component* c = componentOf(object);
    if (!c || c->complete)
        return MS::kFailure;
    for (size_t i = 0; i < count * size_t(c->dimensions()); ++i)
        if (tuples[i] < 0)
            return MS::kInvalidParameter;
    if (count)
        addElements(*c, tuples, count);
    return MS::kSuccess;
}

template <size_t D>
MStatus addArrays(const MObject& object, const MIntArray* const (&arrays)[D])
{
    const unsigned n = arrays[0]->length();
    for (const MIntArray* a : arrays)
        if (a->length() != n)
            return MS::kInvalidParameter;
    std::vector<int> tuples(size_t(n) * D);
    for (unsigned i = 0; i < n; ++i)
        for (size_t d = 0; d < D; ++d)
            tuples[i * D + d] = (*arrays[d])[i];
    return addTuples(object, tuples.data(), n);
}

/// The element at a position, also of a complete component; false past the end.
bool elementAt(const Component& c, int index, int out[3])
{
    if (index < 0 || size_t(index) >= elementCount(c))
        return false;
    const int dimensions = c.dimensions();
    if (!c.complete) {
        std::copy_n(&c.indices[size_t(index) * dimensions], dimensions, out);
        return true;
    }
    int rest = index;
    for (int d = dimensions - 1; d >= 0; --d) {
        out[d] = rest % c.completeCount[d];
        rest /= c.completeCount[d];
    }
    return true;
}

template <size_t D>
MStatus getArrays(const MObject& object, MIntArray* const (&arrays)[D])
{
    const Component* c = componentOf(object);
    if (!c || c->dimensions() != int(D))
        return MS::kFailure;
    const std::vector<int>  expanded = c->complete ? allElements(*c) : std::vector<int>();
    const std::vector<int>& all = c->complete ? expanded : c->indices;
    const unsigned          n = unsigned(all.size() / D);
    for (size_t d = 0; d < D; ++d) {
        arrays[d]->setLength(n);
        for (unsigned i = 0; i < n; ++i)
            (*arrays[d])[i] = all[i * D + d];
    }
    return MS::kSuccess;
}

template <size_t D>
MStatus setCounts(const MObject& object, const int (&counts)[D])
{
    Component* c = componentOf(object);
    if (!c || c->dimensions() != int(D))
        return MS::kFailure;
    for (int n : counts)
        if (n < 0)
            return MS::kInvalidParameter;
    c->indices.clear();
    c->complete = true;
    std::copy_n(counts, D, c->completeCount);
    c->changed();
    return MS::kSuccess;
}

template <size_t D>
MStatus getCounts(const MObject& object, int* const (&counts)[D])
{
    const Component* c = componentOf(object);
    if (!c || c->dimensions() != int(D) || !c->complete)
        return MS::kFailure;
    for (size_t d = 0; d < D; ++d)
        *counts[d] = c->completeCount[d];
    return MS::kSuccess;
}

}  // namespace

// --- any component ---------------------------------------------------------------------------------------------------

MFnComponent::MFnComponent(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnComponent::~MFnComponent() = default;
MFn::Type MFnComponent::type() const { return MFn::kComponent; }

int MFnComponent::elementCount(MStatus* s) const
{
    const Component* c = componentOf(object_);
    return reported(s, c ? MS::kSuccess : MS::kFailure, c ? int(mirk::elementCount(*c)) : 0);
}
MFn::Type MFnComponent::componentType(MStatus* s) const
{
    const Component* c = componentOf(object_);
    return reported(s, c ? MS::kSuccess : MS::kFailure, c ? c->apiType() : MFn::kInvalid);
}
bool MFnComponent::isEmpty(MStatus* s) const
{
    const Component* c = componentOf(object_);
    return reported(s, c ? MS::kSuccess : MS::kFailure, !c || (!c->complete && c->indices.empty()));
}
bool MFnComponent::isEqual(MObject& other, MStatus* s) const
{
    const Component* a = componentOf(object_);
    const Component* b = componentOf(other);
    return reported(s, a ? MS::kSuccess : MS::kFailure, a && b && sameElements(*a, *b));
}
bool MFnComponent::isComplete(MStatus* s) const
{
    const Component* c = componentOf(object_);
    return reported(s, c ? MS::kSuccess : MS::kFailure, c && c->complete);
}
MStatus MFnComponent::setComplete(bool complete)
{
    Component* c = componentOf(object_);
    if (!c)
        return MS::kFailure;
    if (c->complete != complete) {
        c->complete = complete;
        c->indices.clear();
        c->changed();
    }
    return MS::kSuccess;
}
bool MFnComponent::hasWeights(MStatus* s) const
{
    return reported(s, componentOf(object_) ? MS::kSuccess : MS::kFailure, false);
}

// --- one index -------------------------------------------------------------------------------------------------------

MFnSingleIndexedComponent::MFnSingleIndexedComponent(const MObject& object, MStatus* s)
{
    report(s, setObject(object).statusCode());
}
MFnSingleIndexedComponent::~MFnSingleIndexedComponent() = default;
MFn::Type MFnSingleIndexedComponent::type() const { return MFn::kComponent; }
bool      MFnSingleIndexedComponent::acceptsObject(const MObject& object) const { return hasDimensions(object, 1); }
MObject   MFnSingleIndexedComponent::create(MFn::Type t, MStatus* s) { return createComponent(object_, t, 1, s); }
MStatus   MFnSingleIndexedComponent::addElement(int element) { return addTuples(object_, &element, 1); }
MStatus   MFnSingleIndexedComponent::addElements(const MIntArray& elements)
{
    const Buffer<int>& buffer = bufferOf(elements);
    return addTuples(object_, buffer.data(), buffer.size());
}
int MFnSingleIndexedComponent::element(int index, MStatus* s) const
{
    const Component* c = componentOf(object_);
    int              element[3] = {-1, -1, -1};
    if (!c || !elementAt(*c, index, element))
        return reported(s, c ? MS::kInvalidParameter : MS::kFailure, -1);
    return reported(s, MS::kSuccess, element[0]);
}
MStatus MFnSingleIndexedComponent::getElements(MIntArray& elements) const { return getArrays<1>(object_, {&elements}); }
MStatus MFnSingleIndexedComponent::setCompleteData(int n) { return setCounts<1>(object_, {n}); }
MStatus MFnSingleIndexedComponent::getCompleteData(int& n) const { return getCounts<1>(object_, {&n}); }

// --- two indices -----------------------------------------------------------------------------------------------------

MFnDoubleIndexedComponent::MFnDoubleIndexedComponent(const MObject& object, MStatus* s)
{
    report(s, setObject(object).statusCode());
}
MFnDoubleIndexedComponent::~MFnDoubleIndexedComponent() = default;
MFn::Type MFnDoubleIndexedComponent::type() const { return MFn::kComponent; }
bool      MFnDoubleIndexedComponent::acceptsObject(const MObject& object) const { return hasDimensions(object, 2); }
MObject   MFnDoubleIndexedComponent::create(MFn::Type t, MStatus* s) { return createComponent(object_, t, 2, s); }
MStatus   MFnDoubleIndexedComponent::addElement(int u, int v)
{
    const int element[2] = {u, v};
    return addTuples(object_, element, 1);
}
MStatus MFnDoubleIndexedComponent::addElements(const MIntArray& u, const MIntArray& v) { return addArrays<2>(object_, {&u, &v}); }
MStatus MFnDoubleIndexedComponent::getElement(int index, int& u, int& v) const
{
    const Component* c = componentOf(object_);
    int              element[3];
    if (!c)
        return MS::kFailure;
    if (!elementAt(*c, index, element))
        return MS::kInvalidParameter;
    u = element[0];
    v = element[1];
    return MS::kSuccess;
}
MStatus MFnDoubleIndexedComponent::getElements(MIntArray& u, MIntArray& v) const { return getArrays<2>(object_, {&u, &v}); }
MStatus MFnDoubleIndexedComponent::setCompleteData(int u, int v) { return setCounts<2>(object_, {u, v}); }
MStatus MFnDoubleIndexedComponent::getCompleteData(int& u, int& v) const { return getCounts<2>(object_, {&u, &v}); }

// --- three indices ---------------------------------------------------------------------------------------------------

MFnTripleIndexedComponent::MFnTripleIndexedComponent(const MObject& object, MStatus* s)
{
    report(s, setObject(object).statusCode());
}
MFnTripleIndexedComponent::~MFnTripleIndexedComponent() = default;
MFn::Type MFnTripleIndexedComponent::type() const { return MFn::kComponent; }
bool      MFnTripleIndexedComponent::acceptsObject(const MObject& object) const { return hasDimensions(object, 3); }
MObject   MFnTripleIndexedComponent::create(MFn::Type type, MStatus* st) { return createComponent(object_, type, 3, st); }
MStatus   MFnTripleIndexedComponent::addElement(int s, int t, int u)
{
    const int element[3] = {s, t, u};
    return addTuples(object_, element, 1);
}
MStatus MFnTripleIndexedComponent::addElements(const MIntArray& s, const MIntArray& t, const MIntArray& u)
{
    return addArrays<3>(object_, {&s, &t, &u});
}
MStatus MFnTripleIndexedComponent::getElement(int index, int& s, int& t, int& u) const
{
    const Component* c = componentOf(object_);
    int              element[3];
    if (!c)
        return MS::kFailure;
    if (!elementAt(*c, index, element))
        return MS::kInvalidParameter;
    s = element[0];
    t = element[1];
    u = element[2];
    return MS::kSuccess;
}
MStatus MFnTripleIndexedComponent::getElements(MIntArray& s, MIntArray& t, MIntArray& u) const
{
    return getArrays<3>(object_, {&s, &t, &u});
}
MStatus MFnTripleIndexedComponent::setCompleteData(int s, int t, int u) { return setCounts<3>(object_, {s, t, u}); }
MStatus MFnTripleIndexedComponent::getCompleteData(int& s, int& t, int& u) const { return getCounts<3>(object_, {&s, &t, &u}); }

// --- lists -----------------------------------------------------------------------------------------------------------

MFnComponentListData::MFnComponentListData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnComponentListData::~MFnComponentListData() = default;
MFn::Type MFnComponentListData::type() const { return MFn::kComponentListData; }

unsigned MFnComponentListData::length(MStatus* s) const
{
    const auto* data = objectAs<ComponentListData>(object_);
    return reported(s, data ? MS::kSuccess : MS::kFailure, data ? unsigned(data->list.size()) : 0u);
}

bool MFnComponentListData::has(const MObject& component, MStatus* s) const
{
    const auto*      data = objectAs<ComponentListData>(object_);
    const Component* part = componentOf(component);
    if (!data || !part)
        return reported(s, MS::kFailure, false);
    report(s, MS::kSuccess);
    for (const Ref<Component>& c : data->list)
        if (containsAll(*c, *part))
            return true;
    return false;
}

MObject MFnComponentListData::operator[](unsigned index) const
{
    const auto* data = objectAs<ComponentListData>(object_);
    return data && index < data->list.size() ? wrap(data->list[index]) : MObject();
}

MStatus MFnComponentListData::add(MObject& component)
{
    auto*            data = objectAs<ComponentListData>(object_);
    const Component* c = componentOf(component);
    if (!data)
        return MS::kFailure;
    if (!c)
        return MS::kInvalidParameter;
    mergeInto(*data, *c);
    return MS::kSuccess;
}

MStatus MFnComponentListData::remove(const MObject& component)
{
    auto* data = objectAs<ComponentListData>(object_);
    if (!data)
        return MS::kFailure;
    // the handle may be the only holder left once the list lets go of it
    const Ref<Component> c(componentOf(component));
    if (!c)
        return MS::kInvalidParameter;
    removeFrom(*data, *copyComponent(*c));
    return MS::kSuccess;
}

MStatus MFnComponentListData::remove(unsigned index)
{
    auto* data = objectAs<ComponentListData>(object_);
    if (!data)
        return MS::kFailure;
    if (index >= data->list.size())
        return MS::kInvalidParameter;
    data->list.erase(data->list.begin() + index);
    return MS::kSuccess;
}

MStatus MFnComponentListData::clear()
{
    auto* data = objectAs<ComponentListData>(object_);
    if (!data)
        return MS::kFailure;
    data->list.clear();
    return MS::kSuccess;
}

MObject MFnComponentListData::create(MStatus* s)
{
    object_ = wrap(make<ComponentListData>());
    return reported(s, MS::kSuccess, object_);
}
