#include "graph/cell.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>

#include "graph/context.h"

namespace mirk {
namespace {

template <class T>
T clampTo(double v)
{
    if (!(v == v))
        return T(0);
    if (v <= double(std::numeric_limits<T>::min()))
        return std::numeric_limits<T>::min();
    if (v >= double(std::numeric_limits<T>::max()))
        return std::numeric_limits<T>::max();
    return T(v);
}

double readNumber(Store element, const void* v, int i)
{
    switch (element) {
    case Store::kBool: return static_cast<const bool*>(v)[i];
    case Store::kChar: return static_cast<const signed char*>(v)[i];
    case Store::kShort: return static_cast<const int16_t*>(v)[i];
    case Store::kInt: return static_cast<const int32_t*>(v)[i];
    case Store::kInt64: return double(static_cast<const int64_t*>(v)[i]);
    case Store::kFloat: return static_cast<const float*>(v)[i];
    case Store::kDouble: return static_cast<const double*>(v)[i];
    default: return 0;
    }
}

void writeNumber(Store element, void* v, int i, double x)
{
    switch (element) {
    case Store::kBool: static_cast<bool*>(v)[i] = x != 0; break;
    case Store::kChar: static_cast<signed char*>(v)[i] = clampTo<signed char>(x); break;
    case Store::kShort: static_cast<int16_t*>(v)[i] = clampTo<int16_t>(x); break;
    case Store::kInt: static_cast<int32_t*>(v)[i] = clampTo<int32_t>(x); break;
    case Store::kInt64: static_cast<int64_t*>(v)[i] = clampTo<int64_t>(x); break;
    case Store::kFloat: static_cast<float*>(v)[i] = float(x); break;
    case Store::kDouble: static_cast<double*>(v)[i] = x; break;
    default: break;
    }
}

void copyMatrix(Cell& to, const Cell& from)
{
    double m[16];
    if (from.store() == Store::kMatrix)
        std::memcpy(m, from.own.matrix, sizeof m);
    else if (from.store() == Store::kFloatMatrix)
        for (int i = 0; i < 16; ++i) m[i] = from.own.floatMatrix[i];
    else if (auto* data = dynamic_cast<MatrixData*>(from.data()))
        std::memcpy(m, data->value, sizeof m);
    else
        return;
    if (to.store() == Store::kMatrix)
        std::memcpy(to.own.matrix, m, sizeof m);
    else if (to.store() == Store::kFloatMatrix)
        for (int i = 0; i < 16; ++i) to.own.floatMatrix[i] = float(m[i]);
    else {
        auto data = make<MatrixData>();
        std::memcpy(data->value, m, sizeof m);
        to.setData(data);
    }
}

double boxedNumber(const NumericData& d, int i)
{
    if (d.numericType == MFnNumericData::kInt64 || d.numericType == MFnNumericData::kAddr)
        return i == 0 ? double(d.integer) : 0;
    return i >= 0 && i < d.count() ? d.value[i] : 0;
}

void setBoxed(NumericData& d, int i, double x)
{
    if (i < 4)
        d.value[i] = x;
    if (i == 0)
        d.integer = clampTo<int64_t>(x);
}

bool isMatrix(Store s) { return s == Store::kMatrix || s == Store::kFloatMatrix; }

}  // namespace

size_t Elements::lowerBound(int logical) const
{
    size_t lo = 0, hi = cells.size();
    if (hi && cells.back()->index < logical)   // appending is the usual case
        return hi;
    while (lo < hi) {
        const size_t mid = (lo + hi) / 2;
        if (cells[mid]->index < logical) lo = mid + 1; else hi = mid;
    }
    return lo;
}

Cell* Elements::find(int logical) const
{
    // dense multis: the element stands at its index
    if (size_t(logical) < cells.size() && cells[size_t(logical)]->index == logical)
        return cells[size_t(logical)];
    const size_t i = lowerBound(logical);
    return i < cells.size() && cells[i]->index == logical ? cells[i] : nullptr;
}

namespace {

/// Fixed-size blocks, a cache line aligned, cut from slabs that are never given back.
struct Slabs
{
    static constexpr size_t kCell = 128, kPerSlab = 256;
    std::mutex         lock;
    std::vector<void*> free;

    void* take()
    {
        std::lock_guard guard(lock);
        if (free.empty()) {
            char* slab = static_cast<char*>(::operator new(kCell * kPerSlab, std::align_val_t(64)));
            for (size_t i = kPerSlab; i-- > 0;)
                free.push_back(slab + i * kCell);
        }
        void* cell = free.back();
        free.pop_back();
        return cell;
    }
    void give(void* cell)
    {
        std::lock_guard guard(lock);
        free.push_back(cell);
    }
};

Slabs& slabs()
{
    static Slabs* s = new Slabs;
    return *s;
}

}  // namespace

#if defined(__SANITIZE_ADDRESS__)
void* Cell::operator new(size_t bytes) { return ::operator new(bytes); }   // so that the sanitizer sees stale cells
void  Cell::operator delete(void* cell) noexcept { ::operator delete(cell); }
#else
void* Cell::operator new(size_t) { return slabs().take(); }
void  Cell::operator delete(void* cell) noexcept { slabs().give(cell); }
#endif
static_assert(sizeof(Cell) <= Slabs::kCell);

Cell::Cell(Node* n, const Attribute* a, Cell* p, int i) : v(&own), index(i), node(n), attr(a), parent(p)
{
    if (a->is(Attribute::kInternal))
        flags |= kInternal;
    if (isMulti())
        return;
    if (p && i < 0 && p->attr->isTuple() && a->childIndex >= 0)
        v = static_cast<char*>(p->v) + a->childIndex * storeBytes(storeElement(p->attr->store));
    else
        setDefault();
}

Cell::~Cell()
{
    if (children) {
        for (size_t i = 0; i < attr->children.size(); ++i)
            delete children[i];
        delete[] children;
    }
    if (elements) {
        for (Cell* e : elements->cells)
            delete e;
        delete elements;
    }
    delete targets;
    switch (store()) {
    case Store::kData: if (own.data) own.data->release(); break;
    case Store::kMatrix: delete[] own.matrix; break;
    case Store::kFloatMatrix: delete[] own.floatMatrix; break;
    default: break;
    }
}

Cell* Cell::child(size_t i)
{
    if (i >= attr->children.size() || isMulti())
        return nullptr;
    if (!children)
        children = new Cell*[attr->children.size()]();
    if (!children[i]) {
        children[i] = new Cell(node, attr->children[i].get(), this, -1);
        children[i]->flags |= flags & (kRemoved | kPrivate);
        if (attr->isTuple())
            children[i]->set(kDirty, is(kDirty));
        if (eval::other::active)
            eval::other::noteNew(*children[i]);
    }
    return children[i];
}

Cell* Cell::element(int logical)
{
    if (!isMulti() || logical < 0)
        return nullptr;
    if (!elements)
        elements = new Elements;
    if (Cell* found = elements->find(logical))
        return found;
    Cell* made = new Cell(node, attr, this, logical);
    made->flags |= flags & (kRemoved | kPrivate);
    elements->cells.insert(elements->cells.begin() + elements->lowerBound(logical), made);
    if (eval::other::active)
        eval::other::noteNew(*made);
    return made;
}

double Cell::number(int component) const
{
    const Store s = store();
    const int   n = storeDimension(s);
    if (n)
        return component < n ? readNumber(storeElement(s), v, component) : 0;
    if (s == Store::kData)
        if (auto* boxed = dynamic_cast<NumericData*>(own.data))
            return boxedNumber(*boxed, component);
    return 0;
}

void Cell::setNumber(double value, int component)
{
    const Store s = store();
    const int   n = storeDimension(s);
    if (n) {
        if (component < n)
            writeNumber(storeElement(s), v, component, value);
    } else if (s == Store::kData && attr->kind == AttrKind::kGeneric) {
        auto boxed = make<NumericData>(MFnNumericData::kDouble);
        boxed->value[0] = value;
        setData(boxed);
    }
}

void Cell::setData(Ref<Data> value)
{
    if (store() != Store::kData)
        return;
    Data* old = own.data;
    if (value)
        value->addRef();
    own.data = value.get();
    if (old)
        old->release();
}

void Cell::setDefault()
{
    const Store s = store();
    switch (s) {
    case Store::kNone: break;
    case Store::kData: {
        auto* data = dynamic_cast<Data*>(attr->defaultData.get());
        setData(data ? data->share() : Ref<Data>());
        break;
    }
    case Store::kMatrix:
        if (!own.matrix)
            v = own.matrix = new double[16];
        std::memcpy(own.matrix, attr->defaultMatrix, sizeof attr->defaultMatrix);
        break;
    case Store::kFloatMatrix:
        if (!own.floatMatrix)
            v = own.floatMatrix = new float[16];
        for (int i = 0; i < 16; ++i) own.floatMatrix[i] = float(attr->defaultMatrix[i]);
        break;
    default:
        for (int i = 0; i < storeDimension(s); ++i)
            setNumber(i < int(attr->children.size()) ? attr->children[i]->defaults[0] : attr->defaults[i], i);
    }
    if (s == Store::kNone && children)
        for (size_t i = 0; i < attr->children.size(); ++i)
            if (children[i])
                children[i]->setDefault();
}

void Cell::copyLeafFrom(const Cell& other)
{
    const Store a = store(), b = other.store();
    const int   n = storeDimension(a), m = storeDimension(b);
    if (n && a == b) {
        std::memcpy(v, other.v, storeBytes(a));
    } else if (n && m) {
        for (int i = 0; i < n && i < m; ++i)
            setNumber(other.number(i), i);
    } else if (a == Store::kData && b == Store::kData) {
        Data* data = other.own.data;
        setData(data ? data->share() : Ref<Data>());
    } else if (isMatrix(a) || isMatrix(b)) {
        copyMatrix(*this, other);
    } else if (a == Store::kData && m && attr->kind == AttrKind::kGeneric) {
        auto boxed = make<NumericData>(other.attr->numeric ? other.attr->numeric : MFnNumericData::kDouble);
        for (int i = 0; i < m; ++i)
            setBoxed(*boxed, i, other.number(i));
        setData(boxed);
    } else if (n && b == Store::kData) {
        for (int i = 0; i < n; ++i)
            setNumber(other.number(i), i);
    }
}

void Cell::copyFrom(const Cell& other)
{
    if (&other == this)
        return;
    if (isMulti()) {
        if (!other.isMulti())
            return;
        for (size_t i = 0; i < other.elementCount(); ++i)
            element(other.elements->cells[i]->index)->copyFrom(*other.elements->cells[i]);
        return;
    }
    if (store() != Store::kNone && !(attr->isTuple() && other.store() == Store::kNone)) {
        copyLeafFrom(other);
        return;
    }
    for (size_t i = 0; i < attr->children.size() && i < other.attr->children.size(); ++i)
        if (const Cell* c = other.childIfAny(i))
            child(i)->copyFrom(*c);
        else if (Cell* mine = childIfAny(i))
            mine->setDefault();
}

}  // namespace mirk
