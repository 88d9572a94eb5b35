#include "nodes/nurbs_info.h"

#include <iterator>

#include "data/mobject.h"
#include "graph/evaluate.h"
#include "nodes/attr.h"
#include "nurbs/nurbs_data.h"

namespace mirk::nodes {
namespace {

/// One direction of parameters.
struct Direction
{
    NurbsForm             form;
    int                   degree, spans;
    const Buffer<double>& knots;
};

struct Attributes { const Attribute *form = nullptr, *degree = nullptr, *spans = nullptr, *range = nullptr; };
Attributes g_curve, g_surface[2];

MObject formOf(const char* longName, const char* shortName) { return choice(longName, shortName, 0, {"Open", "Closed", "Periodic"}, kOut); }
MObject count(const char* longName, const char* shortName) { return number(longName, shortName, Number::kInt, 0, kOut); }
MObject rangeOf(const char* longName, const char* shortName, const char* low, const char* lowShort, const char* high, const char* highShort)
{
    return compound(longName, shortName, {number(low, lowShort, Number::kDouble, 0, kOut), number(high, highShort, Number::kDouble, 0, kOut)}, kOut);
}

const Attribute* of(const MObject& o) { return objectAs<Attribute>(o); }

bool isIn(const Attribute* a, const Attribute* top)
{
    while (a && a != top)
        a = a->parent;
    return a != nullptr;
}

bool tell(Node& node, const Cell& cell, const Attributes& a, const Direction* d)
{
    const std::pair<const Attribute*, double> numbers[] = {
        {a.form, d ? int(d->form) - 1 : 0}, {a.degree, d ? d->degree : 0}, {a.spans, d ? d->spans : 0}};
    for (const auto& [attribute, value] : numbers)
        if (cell.attr == attribute) {
            node.cell(attribute)->setNumber(value);
            return true;
        }
    if (!isIn(cell.attr, a.range))
        return false;
    Cell* range = node.cell(a.range);
    const size_t last = d ? d->knots.size() : 0;
    range->child(0)->setNumber(d ? d->knots.data()[d->degree - 1] : 0);
    range->child(1)->setNumber(d ? d->knots.data()[last - size_t(d->degree)] : 0);
    eval::clean(*range);
    return true;
}

}  // namespace

void addCurveInfo(std::initializer_list<MObject> inputs)
{
    const MObject form = formOf("form", "f"), degree = count("degree", "d"), spans = count("spans", "s");
    const MObject range = rangeOf("minMaxValue", "mmv", "minValue", "min", "maxValue", "max");
    add({range, form, degree, spans});
    affects(inputs, {range, childOf(range, 0), childOf(range, 1), form, degree, spans});
    g_curve = {of(form), of(degree), of(spans), of(range)};
}

void addSurfaceInfo(std::initializer_list<MObject> inputs)
{
    const MObject formU = formOf("formU", "fu"), formV = formOf("formV", "fv");
    const MObject degree = tuple("degreeUV", "duv", {count("degreeU", "du"), count("degreeV", "dv")}, kOut);
    const MObject spans = tuple("spansUV", "suv", {count("spansU", "su"), count("spansV", "sv")}, kOut);
    const MObject ranges[] = {rangeOf("minMaxRangeU", "mmu", "minValueU", "mnu", "maxValueU", "mxu"),
                              rangeOf("minMaxRangeV", "mmv", "minValueV", "mnv", "maxValueV", "mxv")};
    add({ranges[0], ranges[1], formU, formV, degree, spans});
    for (unsigned i = 0; i < 2; ++i) {
        const MObject& form = i == 0 ? formU : formV;
        affects(inputs, {ranges[i], childOf(ranges[i], 0), childOf(ranges[i], 1), form});
        g_surface[i] = {of(form), of(childOf(degree, i)), of(childOf(spans, i)), of(ranges[i])};
    }
    affects(inputs, {degree, childOf(degree, 0), childOf(degree, 1), spans, childOf(spans, 0), childOf(spans, 1)});
}

bool computeNurbsInfo(GeometryShape& shape, Cell& cell)
{
    if (dynamic_cast<CurveSource*>(&shape)) {
        const Ref<GeometryData> data = shape.read();
        const CurveBody*        c = data ? static_cast<CurveData&>(*data).body.get() : nullptr;
        if (!c || c->empty())
            return tell(shape, cell, g_curve, nullptr);
        const Direction d{c->form, c->degree, c->cvCount() - c->degree, std::as_const(*c->knots)};
        return tell(shape, cell, g_curve, &d);
    }
    if (!dynamic_cast<SurfaceSource*>(&shape))
        return false;
    const Ref<GeometryData> data = shape.read();
    const SurfaceBody*      s = data ? static_cast<SurfaceData&>(*data).body.get() : nullptr;
    if (!s || s->empty())
        s = nullptr;
    const bool pair = cell.attr->isTuple();   // degreeUV or spansUV as a whole
    for (int i = 0; i < 2; ++i) {
        if (pair && cell.attr == g_surface[i].degree->parent)
            cell.setNumber(!s ? 0 : i == 0 ? s->degreeU : s->degreeV, i);
        else if (pair && cell.attr == g_surface[i].spans->parent)
            cell.setNumber(!s ? 0 : i == 0 ? s->cvsU - s->degreeU : s->cvsV - s->degreeV, i);
    }
    if (pair && (cell.attr == g_surface[0].degree->parent || cell.attr == g_surface[0].spans->parent))
        return true;
    for (int i = 0; i < 2; ++i) {
        if (!s) {
            if (tell(shape, cell, g_surface[i], nullptr))
                return true;
            continue;
        }
        const Direction d = i == 0 ? Direction{s->formU, s->degreeU, s->cvsU - s->degreeU, std::as_const(*s->knotsU)}
                                   : Direction{s->formV, s->degreeV, s->cvsV - s->degreeV, std::as_const(*s->knotsV)};
        if (tell(shape, cell, g_surface[i], &d))
            return true;
    }
    return false;
}

}  // namespace mirk::nodes
