#include <maya/MGlobal.h>

#include <deque>
#include <optional>

#include <maya/MAnimControl.h>
#include <maya/MApiVersion.h>
#include <maya/MCommandResult.h>
#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include "api/api.h"
#include "api/result_access.h"
#include "api/script.h"
#include "api/selection_access.h"
#include "command/startup.h"
#include "command/user_command.h"
#include "data/array_access.h"
#include "dag/dag.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"
#include "mel/interpreter.h"
#include "python/python.h"

using namespace mirk;
using command::Value;

// ---- scripts -----------------------------------------------------------------------------------------------------

namespace mirk::script {
namespace {

struct Idle { Language language; std::string text; bool display; };

std::deque<Idle>& idle()
{
    static std::deque<Idle> queue;
    return queue;
}

Value plainRun(Language language, const std::string& text)
{
    if (eval::depth() > 0)
        eval::noteCommandInCompute();
    return language == Language::mel ? mel::execute(text) : python::run(text);
}

}  // namespace

Value run(Language language, const std::string& text, bool display, bool undo)
{
    if (display)
        message::echo(text);
    Value         result;
    CommandFrame* frame = CommandFrame::current();
    if (undo && !frame) {
        result = plainRun(language, text);
    } else {
        undo::Scope scope(text.substr(0, 60), false);
        result = plainRun(language, text);   // an error keeps what was done before it, as for any script
        auto edits = scope.take();
        if (undo)
            for (auto& e : edits)
                frame->nested.push_back(std::move(e));
    }
    if (display && !result.isNone())
        message::result(mel::printed(result));
    return result;
}

void onIdle(Language language, const std::string& text, bool display) { idle().push_back({language, text, display}); }

void runIdle()
{
    while (!idle().empty()) {
        const Idle next = std::move(idle().front());
        idle().pop_front();
        api::guarded([&] { run(next.language, next.text, next.display, true); });
    }
}

}  // namespace mirk::script

namespace {

using script::Language;

MString text(const std::string& s) { return MString(s.c_str()); }

bool isSingle(const Value& v) { return !v.isNone() && !v.isArray() && v.kind() != Value::kMatrix && v.kind() != Value::kVector; }

bool take(const Value& v, int& out)
{
    if (!isSingle(v))
        return false;
    out = v.asInt();
    return true;
}

bool take(const Value& v, double& out)
{
    if (!isSingle(v))
        return false;
    out = v.asFloat();
    return true;
}

bool take(const Value& v, MString& out)
{
    if (v.isNone() || v.isArray())
        return false;
    out = text(v.asString());
    return true;
}

bool take(const Value& v, MIntArray& out)
{
    out.clear();
    if (v.kind() == Value::kString || v.kind() == Value::kStrings)
        return false;
    if (v.isNone())
        return true;
    const command::Ints converted = v.kind() == Value::kInts ? command::Ints() : v.asInts();
    const command::Ints& values = v.kind() == Value::kInts ? v.get<command::Ints>() : converted;
    if (!values.empty())
        out = MIntArray(values.data(), unsigned(values.size()));
    return true;
}

/// Takes the value's buffer, which is copied only if a variable still holds it.
bool take(Value& v, MDoubleArray& out)
{
    out.clear();
    if (v.kind() == Value::kString || v.kind() == Value::kStrings)
        return false;
    if (v.isNone())
        return true;
    command::Floats values = v.kind() == Value::kFloats ? std::move(v.get<command::Floats>()) : v.asFloats();
    v = Value();
    if (values && values->refCount() > 1)
        values = make<Buffer<double>>(std::as_const(*values));
    ArrayAccess::own(out, values);
    return true;
}

bool take(const Value& v, MStringArray& out)
{
    out.clear();
    if (!v.isNone())
        for (const std::string& t : v.asStrings())
            out.append(t.c_str());
    return true;
}

bool take(const Value& v, MCommandResult& out)
{
    ResultAccess::set(out, v);
    return true;
}

template <class T>
MStatus execute(Language language, const MString& command, T& result, bool display, bool undo)
{
    Value         value;
    const MStatus status = api::guarded([&] { value = script::run(language, command.asChar(), display, undo); });
    if (!status)
        return status;
    return take(value, result) ? MS::kSuccess : MS::kFailure;
}

MStatus execute(Language language, const MString& command, bool display, bool undo)
{
    return api::guarded([&] { script::run(language, command.asChar(), display, undo); });
}

MString executeForText(Language language, const MString& command, bool display, bool undo, MStatus* s)
{
    Value         value;
    const MStatus status = api::guarded([&] { value = script::run(language, command.asChar(), display, undo); });
    report(s, status.statusCode());
    return value.isNone() ? MString() : text(value.isArray() ? mel::printed(value) : value.asString());
}

}  // namespace

#define MIRK_EXECUTE(TYPE)                                                                                        \
    MStatus MGlobal::executeCommand(const MString& command, TYPE& result, bool display, bool undo)                \
    {                                                                                                             \
        return execute(Language::mel, command, result, display, undo);                                            \
    }
#define MIRK_EXECUTE_PYTHON(TYPE)                                                                                 \
    MStatus MGlobal::executePythonCommand(const MString& command, TYPE& result, bool display, bool undo)          \
    {                                                                                                             \
        return execute(Language::python, command, result, display, undo);                                         \
    }

MIRK_EXECUTE(MCommandResult)
MIRK_EXECUTE(int)
MIRK_EXECUTE(double)
MIRK_EXECUTE(MString)
MIRK_EXECUTE(MIntArray)
MIRK_EXECUTE(MDoubleArray)
MIRK_EXECUTE(MStringArray)
MIRK_EXECUTE_PYTHON(int)
MIRK_EXECUTE_PYTHON(double)
MIRK_EXECUTE_PYTHON(MString)
MIRK_EXECUTE_PYTHON(MIntArray)
MIRK_EXECUTE_PYTHON(MDoubleArray)
MIRK_EXECUTE_PYTHON(MStringArray)
#undef MIRK_EXECUTE
#undef MIRK_EXECUTE_PYTHON

MStatus MGlobal::executeCommand(const MString& command, bool display, bool undo) { return execute(Language::mel, command, display, undo); }
MStatus MGlobal::executePythonCommand(const MString& command, bool display, bool undo) { return execute(Language::python, command, display, undo); }
MString MGlobal::executeCommandStringResult(const MString& c, bool display, bool undo, MStatus* s) { return executeForText(Language::mel, c, display, undo, s); }
MString MGlobal::executePythonCommandStringResult(const MString& c, bool display, bool undo, MStatus* s)
{
    return executeForText(Language::python, c, display, undo, s);
}

MStatus MGlobal::executeCommandOnIdle(const MString& command, bool display)
{
    script::onIdle(Language::mel, command.asChar(), display);
    return MS::kSuccess;
}

MStatus MGlobal::executePythonCommandOnIdle(const MString& command, bool display)
{
    script::onIdle(Language::python, command.asChar(), display);
    return MS::kSuccess;
}

MStatus MGlobal::sourceFile(const MString& fileName)
{
    return api::guarded([&] { mel::sourceFile(fileName.asChar()); });
}

// ---- messages and state ------------------------------------------------------------------------------------------

void MGlobal::displayInfo(const MString& text) { message::info(text.asChar()); }
void MGlobal::displayWarning(const MString& text, bool) { message::warning(text.asChar()); }
void MGlobal::displayError(const MString& text, bool)
{
    if (!CommandFrame::holdError(text.asChar()))
        message::error(text.asChar());
}

MGlobal::MMayaState MGlobal::mayaState(MStatus* s) { return reported(s, MS::kSuccess, isInteractive() ? kInteractive : kBatch); }
MString MGlobal::mayaVersion() { return text(std::to_string(MAYA_APP_VERSION)); }
int     MGlobal::apiVersion() { return MAYA_API_VERSION; }
bool    MGlobal::isUndoing() { return undo::isUndoing(); }
bool    MGlobal::isYAxisUp(MStatus* s) { return reported(s, MS::kSuccess, true); }
bool    MGlobal::isZAxisUp(MStatus* s) { return reported(s, MS::kSuccess, false); }
MVector MGlobal::upAxis(MStatus* s) { return reported(s, MS::kSuccess, MVector(0, 1, 0)); }

// ---- selection ---------------------------------------------------------------------------------------------------

namespace {

HeldItems& hilited()
{
    static HeldItems* items = new HeldItems;
    return *items;
}

std::vector<Item> inScene(const std::vector<Item>& items)
{
    std::vector<Item> kept;
    for (const Item& i : items)
        if (i.node && i.node->inScene)
            kept.push_back(i);
    return kept;
}

/// What a compute does to the scene is no part of the command that asked for a value.
class Untraced
{
public:
    Untraced()
    {
        if (eval::depth() > 0)
            quiet_.emplace();
    }

private:
    std::optional<undo::Suspend> quiet_;
};

MStatus adjust(const MSelectionList& src, MGlobal::ListAdjustment how)
{
    MSelectionList now;
    SelectionAccess::set(now, selection::get());
    switch (how) {
    case MGlobal::kReplaceList: now = src; break;
    case MGlobal::kAddToList: now.merge(src); break;
    case MGlobal::kXORWithList: now.merge(src, MSelectionList::kXORWithList); break;
    case MGlobal::kRemoveFromList: now.merge(src, MSelectionList::kRemoveFromList); break;
    case MGlobal::kAddToHeadOfList: {
        MSelectionList all = src;
        all.merge(now);
        now = all;
        break;
    }
    default: return MS::kInvalidParameter;
    }
    const Untraced untraced;
    selection::set(SelectionAccess::items(now));
    return MS::kSuccess;
}

MStatus adjustBy(const MStatus& added, const MSelectionList& list, MGlobal::ListAdjustment how) { return added ? adjust(list, how) : added; }

}  // namespace

MStatus MGlobal::getActiveSelectionList(MSelectionList& dest, bool)
{
    SelectionAccess::set(dest, selection::get());
    return MS::kSuccess;
}

MStatus MGlobal::setActiveSelectionList(const MSelectionList& src, ListAdjustment how) { return adjust(src, how); }
MStatus MGlobal::clearSelectionList() { return adjust(MSelectionList(), kReplaceList); }

MStatus MGlobal::select(const MObject& object, ListAdjustment how)
{
    MSelectionList list;
    const MStatus  added = list.add(object);
    return adjustBy(added, list, how);
}

MStatus MGlobal::select(const MDagPath& object, const MObject& component, ListAdjustment how)
{
    MSelectionList list;
    const MStatus  added = list.add(object, component);
    return adjustBy(added, list, how);
}

MStatus MGlobal::unselect(const MObject& object) { return select(object, kRemoveFromList); }
MStatus MGlobal::unselect(const MDagPath& object, const MObject& component) { return select(object, component, kRemoveFromList); }

bool MGlobal::isSelected(const MObject& object)
{
    MSelectionList now;
    getActiveSelectionList(now);
    return now.hasItem(object);
}

MStatus MGlobal::selectByName(const MString& name, ListAdjustment how)
{
    MSelectionList list;
    const MStatus  added = list.add(name);
    return adjustBy(added, list, how);
}

MStatus MGlobal::getSelectionListByName(const MString& name, MSelectionList& list) { return list.add(name); }

MStatus MGlobal::getHiliteList(MSelectionList& dest)
{
    SelectionAccess::set(dest, inScene(hilited().items()));
    return MS::kSuccess;
}

MStatus MGlobal::setHiliteList(const MSelectionList& src)
{
    hilited() = HeldItems(SelectionAccess::items(src));
    return MS::kSuccess;
}

// ---- scene -------------------------------------------------------------------------------------------------------

MStatus MGlobal::deleteNode(MObject& object)
{
    Node* node = objectAs<Node>(object);
    if (!node || !node->inScene)
        return MS::kInvalidParameter;
    const Untraced untraced;
    const MStatus  status = api::guarded([&] { dag::deleteNode(*node); });
    if (status)
        object = MObject();
    return status;
}

MStatus MGlobal::viewFrame(const MTime& time) { return MAnimControl::setCurrentTime(time); }
MStatus MGlobal::viewFrame(double time) { return MAnimControl::setCurrentTime(MTime(time, MTime::uiUnit())); }
