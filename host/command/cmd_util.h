// What the commands share: names to things, things to names, units, and arguments read one after the other.
#pragma once
#include <string>
#include <vector>

#include "command/registry.h"
#include "dag/dag.h"
#include "graph/edit.h"
#include "graph/scene.h"

namespace mirk::command {

/// As names::resolve and its kin; a leading ":" means the root namespace, a leading "." the selected node, as scene
/// files write it. `[a:b]` and `[*]` in plug names stand for the elements.
std::vector<Item>  resolveItems(const std::string& text);
/// Errors where nothing matches.
std::vector<Item>  someItems(const std::string& text);
Item               oneItem(const std::string& text);
Node&              oneNode(const std::string& text);
Cell&              onePlug(const std::string& text, bool create = true);
std::vector<Cell*> somePlugs(const std::string& text, bool create = true);
/// The objects a command works on: its free arguments, or what is selected if there are none.
std::vector<Item>  callItems(const Call& call, bool orSelection = true);
std::vector<Node*> callNodes(const Call& call, bool orSelection = true);   ///< each once, in order

/// A node as an item, with its first path.
Item        itemOf(Node& node);
Item        itemOf(const Path& path);
Node*       nodeOf(const Item& item);
std::string itemName(const Item& item, bool fullPath = false);
std::string nodeName(const Node& node, bool fullPath = false);
std::string plugText(const Cell& cell, bool fullPath = false);
/// The shapes below a transform, or the node itself if it is a shape. Intermediate ones are left out.
std::vector<Node*> shapesOf(Node& node);
Node*       transformOf(Node& node);       ///< of a shape its first parent, a transform itself, null for others
std::string shapeName(const std::string& transform);   ///< "pCube1" gives "pCubeShape1"
bool        isShape(const Node& node);
bool        isTransform(const Node& node);
bool        isA(const Node& node, const std::string& type);
bool        boolAttr(Node& node, const char* name, bool otherwise = false);

/// Values in the user's units to and from the internal ones. `attr` is a leaf.
double toUi(const Attribute& attr, double value);
double fromUi(const Attribute& attr, double value);
/// A time argument: a number in the user's unit, or text with a unit ("2sec"). In seconds.
double timeSeconds(const Value& value);

/// Numbers, texts and words from a flat list of arguments.
class Arguments
{
public:
    explicit Arguments(std::vector<Value> args);
    bool   done() const { return at_ >= args_.size(); }
    size_t left() const { return args_.size() - at_; }
    const Value& peek() const { return args_[at_]; }
    const Value& next(const char* what = "data");     ///< an error that tells the element's number at the end
    double number();
    int    integer();
    bool   boolean();
    std::string text();
    bool   nextIs(const char* word) const;            ///< the next argument is this text
    std::vector<double> numbers(size_t count);
    std::vector<double> counted(size_t perElement);   ///< a count, then count * perElement numbers

private:
    std::vector<Value> args_;
    size_t             at_ = 0;
};

bool matches(const std::string& text, const std::string& pattern);   ///< * and ?
[[noreturn]] void fail(const std::string& message);
template <class T> std::span<const T> rows(const T* begin, size_t n) { return {begin, n}; }

// One function a file of commands; `registerCommands` calls them all.
void registerNodeCommands();
void registerGetSetCommands();
void registerConnectCommands();
void registerListCommands();
void registerSelectCommands();
void registerAttrCommands();
void registerDagCommands();
void registerTransformCommands();
void registerPolyCommands();
void registerMeshEditCommands();
void registerPolyOperationCommands();
void registerPolyCutCommands();
void registerNurbsCommands();
void registerSceneCommands();
void registerTimeCommands();
void registerMeasureCommands();
void registerDisplayCommands();
void registerSystemCommands();
void registerPluginCommands();

}  // namespace mirk::command

