#include <maya/MFnSet.h>

#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "api/api.h"
#include "api/selection_access.h"
#include "graph/edit.h"
#include "nodes/sets.h"

using namespace mirk;

namespace {

constexpr const char* kRestrictions[] = {"", "verticesOnlySet", "edgesOnlySet", "facetsOnlySet", "editPointsOnlySet", "renderableOnlySet"};

Node* setNode(const MObject& object)
{
    Node* node = objectAs<Node>(object);
    return node && sets::isSet(*node) ? node : nullptr;
}

Cell& cellOf(Node& node, const char* attribute) { return *node.cell(node.findAttribute(attribute)); }

/// Items of whatever can be added to a selection list; none if it is not valid.
template <class... A>
std::vector<Item> itemsOf(const A&... what)
{
    MSelectionList list;
    return list.add(what...) ? SelectionAccess::items(list) : std::vector<Item>();
}

template <class F>
MStatus each(const MObject& object, const std::vector<Item>& items, F&& work)
{
    Node* set = setNode(object);
    if (!set)
        return MS::kFailure;
    if (items.empty())
        return MS::kInvalidParameter;
    return api::guarded([&] {
        for (const Item& item : items)
            work(*set, item);
    });
}

MStatus addAll(const MObject& set, const std::vector<Item>& items)
{
    return each(set, items, [](Node& s, const Item& item) { sets::add(s, item); });
}

MStatus removeAll(const MObject& set, const std::vector<Item>& items)
{
    return each(set, items, [](Node& s, const Item& item) { sets::remove(s, item); });
}

bool holdsAll(const MObject& object, const std::vector<Item>& items, MStatus* s)
{
    Node* set = setNode(object);
    report(s, !set ? MS::kFailure : items.empty() ? MS::kInvalidParameter : MS::kSuccess);
    bool all = set && !items.empty();
    for (const Item& item : items)
        all = all && sets::contains(*set, item);
    return all;
}

}  // namespace

MFnSet::MFnSet(const MObject& object, MStatus* s)
{
    report(s, setNode(object) ? setObject(object).statusCode() : MS::kInvalidParameter);
}

MFnSet::~MFnSet() = default;
MFn::Type MFnSet::type() const { return MFn::kSet; }

MObject MFnSet::create(const MSelectionList& members, Restriction restriction, MStatus* s)
{
    Node*         node = nullptr;
    const MStatus status = api::guarded([&] {
        node = edit::createNode(findNodeType("objectSet"), "set#");
        if (restriction > kNone && restriction <= kRenderableOnly)
            edit::setNumber(cellOf(*node, kRestrictions[restriction]), 1);
        for (const Item& item : SelectionAccess::items(members))
            sets::add(*node, item);
    });
    if (!status && node)
        api::guarded([&] { edit::deleteNode(*node); });
    report(s, status.statusCode());
    if (!status)
        return MObject();
    setObject(wrap(node));
    return wrap(node);
}

bool MFnSet::hasRestrictions(MStatus* s) const { return restriction(s) != kNone; }

MFnSet::Restriction MFnSet::restriction(MStatus* s) const
{
    Node* node = setNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    for (int r = kVerticesOnly; node && r <= kRenderableOnly; ++r)
        if (cellOf(*node, kRestrictions[r]).number() != 0)
            return Restriction(r);
    return kNone;
}

MString MFnSet::annotation(MStatus* s) const
{
    Node* node = setNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    const auto* text = node ? dynamic_cast<StringData*>(cellOf(*node, "annotation").data()) : nullptr;
    return text ? MString(text->value.c_str()) : MString();
}

MStatus MFnSet::setAnnotation(const MString& text)
{
    Node* node = setNode(object());
    if (!node)
        return MS::kFailure;
    return api::guarded([&] { edit::setData(cellOf(*node, "annotation"), make<StringData>(std::string(text.asChar()))); });
}

MStatus MFnSet::clear()
{
    Node* node = setNode(object());
    return node ? api::guarded([&] { sets::clear(*node); }) : MStatus(MS::kFailure);
}

MStatus MFnSet::addMember(const MObject& o) { return addAll(object(), itemsOf(o)); }
MStatus MFnSet::addMember(const MDagPath& p, const MObject& c) { return addAll(object(), itemsOf(p, c)); }
MStatus MFnSet::addMember(const MPlug& p) { return addAll(object(), itemsOf(p)); }
MStatus MFnSet::removeMember(const MObject& o) { return removeAll(object(), itemsOf(o)); }
MStatus MFnSet::removeMember(const MDagPath& p, const MObject& c) { return removeAll(object(), itemsOf(p, c)); }
MStatus MFnSet::removeMember(const MPlug& p) { return removeAll(object(), itemsOf(p)); }
bool    MFnSet::isMember(const MObject& o, MStatus* s) const { return holdsAll(object(), itemsOf(o), s); }
bool    MFnSet::isMember(const MDagPath& p, const MObject& c, MStatus* s) const { return holdsAll(object(), itemsOf(p, c), s); }
bool    MFnSet::isMember(const MPlug& p, MStatus* s) const { return holdsAll(object(), itemsOf(p), s); }

MStatus MFnSet::addMembers(const MSelectionList& list)
{
    return list.isEmpty() ? MStatus(setNode(object()) ? MS::kSuccess : MS::kFailure) : addAll(object(), SelectionAccess::items(list));
}

MStatus MFnSet::removeMembers(const MSelectionList& list)
{
    return list.isEmpty() ? MStatus(setNode(object()) ? MS::kSuccess : MS::kFailure) : removeAll(object(), SelectionAccess::items(list));
}

MStatus MFnSet::getMembers(MSelectionList& members, bool flatten) const
{
    Node* node = setNode(object());
    if (!node)
        return MS::kFailure;
    SelectionAccess::set(members, flatten ? sets::flattened(*node) : sets::members(*node));
    return MS::kSuccess;
}

MStatus MFnSet::getMemberPaths(MDagPathArray& members, bool) const
{
    MSelectionList list;
    const MStatus  status = getMembers(list, false);
    members.clear();
    for (unsigned i = 0; i < list.length(); ++i) {
        MDagPath path;
        if (list.getDagPath(i, path))
            members.append(path);
    }
    return status;
}

MStatus MFnSet::getUnion(const MFnSet& other, MSelectionList& result) const
{
    MSelectionList theirs;
    const MStatus  status = getMembers(result, false);
    if (!status || !other.getMembers(theirs, false))
        return MS::kFailure;
    return result.merge(theirs);
}

MStatus MFnSet::getIntersection(const MFnSet& other, MSelectionList& result) const
{
    Node *mine = setNode(object()), *theirs = setNode(other.object());
    if (!mine || !theirs)
        return MS::kFailure;
    SelectionAccess::set(result, sets::intersection(sets::members(*mine), sets::members(*theirs)));
    return MS::kSuccess;
}

bool MFnSet::intersectsWith(const MObject& otherSet, MStatus* s) const
{
    Node *mine = setNode(object()), *theirs = setNode(otherSet);
    report(s, mine && theirs ? MS::kSuccess : MS::kFailure);
    return mine && theirs && !sets::intersection(sets::members(*mine), sets::members(*theirs)).empty();
}
