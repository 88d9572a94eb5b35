#include <maya/MRampAttribute.h>

#include <algorithm>

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDGContextGuard.h>
#include <maya/MFloatArray.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MString.h>

#include "anim/ramp.h"
#include "command/registry.h"
#include "data/fn_base.h"
#include "graph/access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"

using namespace mirk;

namespace {

enum Part { kPosition, kValue, kInterp };

bool endsWith(const std::string& text, std::string_view end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// Ramps that a script declared with the children in the usual order count as well.
bool isRamp(const Attribute* a, bool color)
{
    if (!a || !a->isArray() || a->children.size() < 3)
        return false;
    return a->is(color ? Attribute::kRampColor : Attribute::kRampCurve) ||
           (endsWith(a->children[kPosition]->longName, "_Position") && endsWith(a->children[kInterp]->longName, "_Interp") &&
            endsWith(a->children[kValue]->longName, color ? "_Color" : "_FloatValue") &&
            storeDimension(a->children[kValue]->store) == (color ? 3 : 1));
}

Cell* rampOf(const MPlug& plug)
{
    Cell* c = PlugAccess::cell(plug);
    return c && c->isMulti() ? c : nullptr;
}
Cell* rampOf(const MPlug& plug, bool color)
{
    Cell* c = rampOf(plug);
    return c && isRamp(c->attr, color) ? c : nullptr;
}

void pullAll(Cell& ramp)
{
    if (ramp.source) {
        eval::pullDeep(ramp);
        return;
    }
    for (size_t i = 0; i < ramp.elementCount(); ++i)
        for (int part : {kPosition, kValue, kInterp})
            if (i < ramp.elementCount())   // a compute may take entries out
                eval::pull(*ramp.elements->cells[i]->child(part));
}

RampEntry entryOf(Cell& element)
{
    RampEntry e;
    e.position = float(element.child(kPosition)->number());
    e.interpolation = int(element.child(kInterp)->number());
    Cell&     value = *element.child(kValue);
    const int n = std::min(storeDimension(value.store()), 3);
    for (int i = 0; i < n; ++i)
        e.value[i] = float(value.number(i));
    return e;
}

/// As they stand, in order of index.
std::vector<RampEntry> readEntries(Cell& ramp)
{
    pullAll(ramp);
    std::vector<RampEntry> entries(ramp.elementCount());
    for (size_t i = 0; i < entries.size(); ++i)
        entries[i] = entryOf(*ramp.elements->cells[i]);
    return entries;
}

/// In order of position. The memory is kept for the next call: nodes ask for a value a point. Nothing evaluates while
/// it is filled, so that no other call can come between.
const std::vector<RampEntry>& sortedEntries(Cell& ramp)
{
    thread_local std::vector<RampEntry> entries;
    pullAll(ramp);
    entries.resize(ramp.elementCount());
    for (size_t i = 0; i < entries.size(); ++i)
        entries[i] = entryOf(*ramp.elements->cells[i]);
    sortRamp(entries);
    return entries;
}

MColor colorAt(const std::vector<RampEntry>& entries, float position)
{
    float c[3];
    for (int i = 0; i < 3; ++i)
        c[i] = rampValue(entries.data(), entries.size(), position, i);
    return MColor(c[0], c[1], c[2], 1);
}

RampEntry entry(float position, float value, int interp) { return {position, interp, {value, 0, 0}}; }
RampEntry entry(float position, const MColor& c, int interp) { return {position, interp, {c.r, c.g, c.b}}; }

template <class Values>
bool gather(const MFloatArray& positions, const Values& values, const MIntArray& interps, std::vector<RampEntry>& out)
{
    if (positions.length() != values.length() || positions.length() != interps.length())
        return false;
    for (unsigned i = 0; i < positions.length(); ++i)
        out.push_back(entry(positions[i], values[i], interps[i]));
    return true;
}

void put(Cell& element, const RampEntry& e)
{
    edit::setNumber(*element.child(kPosition), e.position);
    for (int i = 0; i < std::min(storeDimension(element.attr->children[kValue]->store), 3); ++i)
        edit::setNumber(*element.child(kValue), e.value[i], i);
    edit::setNumber(*element.child(kInterp), e.interpolation);
}

/// Runs edits of a ramp. Locked entries refuse before anything is done.
template <class F>
MStatus::MStatusCode edited(Cell& ramp, F&& work)
{
    bool locked = false;
    walkCells(ramp, [&](Cell& c) { locked = locked || c.is(Cell::kLocked); });
    if (locked)
        return MS::kFailure;
    try {
        work();
    } catch (const command::Error&) {
        return MS::kFailure;
    }
    return MS::kSuccess;
}

void append(Cell& ramp, const std::vector<RampEntry>& entries)
{
    int index = ramp.elementCount() ? ramp.elements->cells.back()->index + 1 : 0;
    for (const RampEntry& e : entries)
        put(edit::addElement(ramp, index++), e);
}

MStatus::MStatusCode replace(Cell* ramp, const std::vector<RampEntry>& entries)
{
    if (!ramp)
        return MS::kFailure;
    return edited(*ramp, [&] {
        while (ramp->elementCount())
            edit::removeElement(*ramp->elements->cells.back());
        append(*ramp, entries);
    });
}

/// The cell of a part of an entry that exists; null otherwise.
Cell* partOf(const MPlug& plug, unsigned index, Part part)
{
    Cell* ramp = rampOf(plug);
    Cell* element = ramp && index <= unsigned(INT_MAX) ? ramp->elementIfAny(int(index)) : nullptr;
    return element ? element->child(part) : nullptr;
}

void setPart(const MPlug& plug, unsigned index, Part part, double value, MStatus* status)
{
    Cell* cell = partOf(plug, index, part);
    report(status, cell ? edited(*cell, [&] { edit::setNumber(*cell, value); }) : MS::kInvalidParameter);
}

bool driven(Cell& ramp)
{
    bool any = false;
    walkCells(ramp, [&](Cell& c) { any = any || c.source; });
    return any;
}

MObject createRamp(const MString& longName, const MString& shortName, bool color, MStatus* status)
{
    MFnNumericAttribute  number;
    MFnEnumAttribute     choice;
    MFnCompoundAttribute compound;
    const MObject position = number.create(longName + "_Position", shortName + "p", MFnNumericData::kFloat);
    const MObject value = color ? number.createColor(longName + "_Color", shortName + "c")
                                : number.create(longName + "_FloatValue", shortName + "fv", MFnNumericData::kFloat);
    const MObject interp = choice.create(longName + "_Interp", shortName + "i");
    const char* const fields[] = {"None", "Linear", "Smooth", "Spline"};
    for (short i = 0; i < 4; ++i)
        choice.addField(fields[i], i);
    const MObject ramp = compound.create(longName, shortName, status);
    if (auto* a = objectAs<Attribute>(ramp)) {
        for (const MObject& child : {position, value, interp})
            compound.addChild(child);
        compound.setArray(true);
        compound.setUsesArrayDataBuilder(true);
        a->set(color ? Attribute::kRampColor : Attribute::kRampCurve, true);
    }
    return ramp;
}

}  // namespace

MRampAttribute::MRampAttribute(const MObject& node, const MObject& attribute, MStatus* status)
    : MRampAttribute(MPlug(node, attribute), status)
{
}

MRampAttribute::MRampAttribute(const MPlug& plug, MStatus* status)
{
    const Cell* c = rampOf(plug);
    const bool  good = c && (isRamp(c->attr, false) || isRamp(c->attr, true));
    report(status, good ? MS::kSuccess : MS::kInvalidParameter);
    if (good)
        plug_ = plug;
}

MObject MRampAttribute::createCurveRamp(const MString& l, const MString& b, MStatus* s) { return createRamp(l, b, false, s); }
MObject MRampAttribute::createColorRamp(const MString& l, const MString& b, MStatus* s) { return createRamp(l, b, true, s); }

bool MRampAttribute::isCurveRamp(MStatus* s) const { return reported(s, MS::kSuccess, rampOf(plug_, false) != nullptr); }
bool MRampAttribute::isColorRamp(MStatus* s) const { return reported(s, MS::kSuccess, rampOf(plug_, true) != nullptr); }

unsigned MRampAttribute::getNumEntries(MStatus* s) const
{
    Cell* ramp = rampOf(plug_);
    report(s, ramp ? MS::kSuccess : MS::kFailure);
    if (ramp && ramp->source)
        pullAll(*ramp);
    return ramp ? unsigned(ramp->elementCount()) : 0;
}

bool MRampAttribute::hasIndex(unsigned index, MStatus* s) const
{
    return reported(s, rampOf(plug_) ? MS::kSuccess : MS::kFailure, partOf(plug_, index, kPosition) != nullptr);
}

// ---- reading ----------------------------------------------------------------------------------------------------

namespace {

template <class Values, class F>
void listEntries(Cell* ramp, MIntArray& indices, MFloatArray& positions, Values& values, MIntArray& interps, F&& valueOf,
                 MStatus* status)
{
    indices.clear(), positions.clear(), values.clear(), interps.clear();
    report(status, ramp ? MS::kSuccess : MS::kFailure);
    if (!ramp)
        return;
    const std::vector<RampEntry> entries = readEntries(*ramp);
    for (size_t i = 0; i < entries.size(); ++i) {
        indices.append(ramp->elements->cells[i]->index);
        positions.append(entries[i].position);
        values.append(valueOf(entries[i]));
        interps.append(entries[i].interpolation);
    }
}

float step(unsigned i, unsigned count) { return count > 1 ? float(i) / float(count - 1) : 0; }

}  // namespace

void MRampAttribute::getEntries(MIntArray& indices, MFloatArray& positions, MFloatArray& values, MIntArray& interps,
                                MStatus* s) const
{
    listEntries(rampOf(plug_, false), indices, positions, values, interps, [](const RampEntry& e) { return e.value[0]; }, s);
}

void MRampAttribute::getEntries(MIntArray& indices, MFloatArray& positions, MColorArray& colors, MIntArray& interps,
                                MStatus* s) const
{
    listEntries(rampOf(plug_, true), indices, positions, colors, interps,
                [](const RampEntry& e) { return MColor(e.value[0], e.value[1], e.value[2], 1); }, s);
}

void MRampAttribute::getValueAtPosition(float position, float& value, MStatus* s, MDGContext& context) const
{
    if (!context.isNormal()) {
        const MDGContextGuard guard(context);
        return getValueAtPosition(position, value, s);
    }
    Cell* ramp = rampOf(plug_, false);
    report(s, ramp ? MS::kSuccess : MS::kFailure);
    value = 0;
    if (ramp) {
        const auto& entries = sortedEntries(*ramp);
        value = rampValue(entries.data(), entries.size(), position);
    }
}

void MRampAttribute::getColorAtPosition(float position, MColor& color, MStatus* s, MDGContext& context) const
{
    if (!context.isNormal()) {
        const MDGContextGuard guard(context);
        return getColorAtPosition(position, color, s);
    }
    Cell* ramp = rampOf(plug_, true);
    report(s, ramp ? MS::kSuccess : MS::kFailure);
    color = ramp ? colorAt(sortedEntries(*ramp), position) : MColor(0, 0, 0, 1);
}

MStatus MRampAttribute::sampleValueRamp(unsigned count, MFloatArray& values) const
{
    Cell* ramp = rampOf(plug_, false);
    if (!ramp)
        return MS::kFailure;
    const auto& entries = sortedEntries(*ramp);
    values.setLength(count);
    for (unsigned i = 0; i < count; ++i)
        values[i] = rampValue(entries.data(), entries.size(), step(i, count));
    return MS::kSuccess;
}

MStatus MRampAttribute::sampleColorRamp(unsigned count, MColorArray& colors) const
{
    Cell* ramp = rampOf(plug_, true);
    if (!ramp)
        return MS::kFailure;
    const auto& entries = sortedEntries(*ramp);
    colors.setLength(count);
    for (unsigned i = 0; i < count; ++i)
        colors[i] = colorAt(entries, step(i, count));
    return MS::kSuccess;
}

// ---- writing ----------------------------------------------------------------------------------------------------

namespace {

template <class Values>
MStatus::MStatusCode add(Cell* ramp, const MFloatArray& positions, const Values& values, const MIntArray& interps)
{
    std::vector<RampEntry> entries;
    if (!ramp)
        return MS::kFailure;
    if (!gather(positions, values, interps, entries))
        return MS::kInvalidParameter;
    return edited(*ramp, [&] { append(*ramp, entries); });
}

template <class Values>
MStatus::MStatusCode set(Cell* ramp, const MFloatArray& positions, const Values& values, const MIntArray& interps)
{
    std::vector<RampEntry> entries;
    return gather(positions, values, interps, entries) ? replace(ramp, entries) : MS::kInvalidParameter;
}

}  // namespace

void MRampAttribute::addEntries(const MFloatArray& positions, const MFloatArray& values, const MIntArray& interps, MStatus* s)
{
    report(s, add(rampOf(plug_, false), positions, values, interps));
}

void MRampAttribute::addEntries(const MFloatArray& positions, const MColorArray& colors, const MIntArray& interps, MStatus* s)
{
    report(s, add(rampOf(plug_, true), positions, colors, interps));
}

void MRampAttribute::deleteEntries(const MIntArray& indices, MStatus* s)
{
    Cell* ramp = rampOf(plug_);
    for (unsigned i = 0; i < indices.length(); ++i)
        if (!ramp || !ramp->elementIfAny(indices[i])) {
            report(s, MS::kInvalidParameter);
            return;
        }
    if (!ramp) {
        report(s, MS::kFailure);
        return;
    }
    report(s, edited(*ramp, [&] {
        for (unsigned i = 0; i < indices.length(); ++i)
            if (Cell* element = ramp->elementIfAny(indices[i]))   // an index may come twice
                edit::removeElement(*element);
    }));
}

MStatus MRampAttribute::setRamp(float value, float position, MInterpolation interp)
{
    return replace(rampOf(plug_, false), {entry(position, value, interp)});
}

MStatus MRampAttribute::setRamp(const MColor& color, float position, MInterpolation interp)
{
    return replace(rampOf(plug_, true), {entry(position, color, interp)});
}

MStatus MRampAttribute::setRamp(const MFloatArray& values, const MFloatArray& positions, const MIntArray& interps)
{
    return set(rampOf(plug_, false), positions, values, interps);
}

MStatus MRampAttribute::setRamp(const MColorArray& colors, const MFloatArray& positions, const MIntArray& interps)
{
    return set(rampOf(plug_, true), positions, colors, interps);
}

void MRampAttribute::setValueAtIndex(float value, unsigned index, MStatus* s)
{
    if (rampOf(plug_, false))
        setPart(plug_, index, kValue, value, s);
    else
        report(s, MS::kFailure);
}

void MRampAttribute::setColorAtIndex(const MColor& color, unsigned index, MStatus* s)
{
    Cell* cell = rampOf(plug_, true) ? partOf(plug_, index, kValue) : nullptr;
    const float c[3] = {color.r, color.g, color.b};
    report(s, cell ? edited(*cell, [&] { for (int i = 0; i < 3; ++i) edit::setNumber(*cell, c[i], i); }) : MS::kInvalidParameter);
}

void MRampAttribute::setPositionAtIndex(float position, unsigned index, MStatus* s)
{
    setPart(plug_, index, kPosition, position, s);
}

void MRampAttribute::setInterpolationAtIndex(MInterpolation interp, unsigned index, MStatus* s)
{
    setPart(plug_, index, kInterp, interp, s);
}

void MRampAttribute::sort(bool ascending, MStatus* s)
{
    Cell* ramp = rampOf(plug_);
    if (!ramp || driven(*ramp)) {
        report(s, MS::kFailure);
        return;
    }
    std::vector<RampEntry> entries = readEntries(*ramp);
    // NaN positions come last, so that the order is strict
    std::stable_sort(entries.begin(), entries.end(), [ascending](const RampEntry& a, const RampEntry& b) {
        if (a.position != a.position || b.position != b.position)
            return a.position == a.position && b.position != b.position;
        return ascending ? a.position < b.position : b.position < a.position;
    });
    report(s, edited(*ramp, [&] { for (size_t i = 0; i < entries.size(); ++i) put(*ramp->elements->cells[i], entries[i]); }));
}

void MRampAttribute::pack(MStatus* s)
{
    Cell* ramp = rampOf(plug_);
    report(s, ramp && !driven(*ramp) ? replace(ramp, readEntries(*ramp)) : MS::kFailure);
}
