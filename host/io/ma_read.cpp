// Reads .ma files: statements of a fixed vocabulary, which go to the commands one by one; anything else is MEL.
#include <fstream>
#include <set>
#include <sstream>

#include "command/cmd_util.h"
#include "command/message.h"
#include "dag/dag.h"
#include "graph/undo.h"
#include "io/ma_mesh.h"
#include "io/scene_file.h"
#include "mel/interpreter.h"
#include "nodes/builtin.h"

namespace mirk::io {

using command::fail;
using command::Value;

namespace {

struct Reading
{
    bool import = false;
    bool prefixAll = false;
    bool missingSelected = false;   ///< the statements that follow set up a default node that is missing here
    std::string                                  prefix;
    std::unordered_map<std::string, std::string> names;
    std::set<std::string>                        warned;
};
Reading* g_reading = nullptr;

std::string readFile(const std::string& path)
{
    std::ifstream     in(path, std::ios::binary);
    std::stringstream text;
    if (!in)
        fail("Cannot read file \"" + path + "\"");
    text << in.rdbuf();
    return text.str();
}

std::string baseName(const std::string& path)
{
    const size_t slash = path.rfind('/');
    std::string  name = slash == std::string::npos ? path : path.substr(slash + 1);
    return name;
}

/// A scene file's first line says what it is, its last one that it is whole.
void checkComplete(const std::string& text, const std::string& path)
{
    if (text.compare(0, 2, "//") != 0 || text.substr(0, text.find('\n')).find("ASCII") == std::string::npos)
        fail("\"" + path + "\" is no scene file: its first line does not say so");
    size_t end = text.find_last_not_of(" \t\r\n");
    size_t begin = text.rfind('\n', end);
    begin = begin == std::string::npos ? 0 : begin + 1;
    if (text.compare(begin, 9, "// End of") != 0)
        fail("The scene file \"" + path + "\" is cut off: its last line is missing. Nothing was loaded.");
}

/// One statement after the other, as raw text and as words.
class Statements
{
public:
    explicit Statements(const std::string& text) : text_(text) {}

    /// False at the end. `simple` is false for what only the interpreter can read.
    bool next()
    {
        skipBlanks();
        if (at_ >= text_.size())
            return false;
        begin = at_;
        words.clear();
        simple = true;
        while (at_ < text_.size() && text_[at_] != ';')
        {
            word();
            skipBlanks();
        }
        raw = text_.substr(begin, at_ - begin);
        ++at_;
        return true;
    }

    int line() const { return 1 + int(std::count(text_.begin(), text_.begin() + long(begin), '\n')); }

    std::vector<Value> words;
    std::string        raw;
    bool               simple = true;
    size_t             begin = 0;

private:
    void skipBlanks()
    {
        while (at_ < text_.size())
            if (std::isspace(static_cast<unsigned char>(text_[at_])))
                ++at_;
            else if (text_.compare(at_, 2, "//") == 0)
                at_ = std::min(text_.size(), text_.find('\n', at_));
            else if (text_.compare(at_, 2, "/*") == 0)
                at_ = text_.find("*/", at_) == std::string::npos ? text_.size() : text_.find("*/", at_) + 2;
            else
                return;
    }

    void word()
    {
        if (text_[at_] == '"')
            return string();
        const size_t from = at_;
        while (at_ < text_.size() && !std::isspace(static_cast<unsigned char>(text_[at_])) && text_[at_] != ';' && text_[at_] != '"')
        {
            const char c = text_[at_];
            if (c == '{')
                return block();
            if (c == '$' || c == '`' || c == '(' || c == '=')
                simple = false;
            ++at_;
        }
        const std::string w = text_.substr(from, at_ - from);
        const char first = w[0] == '-' && w.size() > 1 ? w[1] : w[0];
        if (!words.empty() && (std::isdigit(static_cast<unsigned char>(first)) || first == '.'))
        {
            const bool whole = w.find_first_not_of("-0123456789") == std::string::npos && w.size() < 10;
            char*  end = nullptr;
            const double d = std::strtod(w.c_str(), &end);
            if (*end == 0)
            {
                words.push_back(whole ? Value(int(d)) : Value(d));
                return;
            }
        }
        words.emplace_back(w);
    }

    void string()
    {
        std::string s;
        for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_)
        {
            if (text_[at_] != '\\' || at_ + 1 >= text_.size())
            {
                s += text_[at_];
                continue;
            }
            const char c = text_[++at_];
            if (c == '\n')
                continue;
            s += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
        }
        if (at_ >= text_.size())
            fail("A string is not closed");
        ++at_;
        words.emplace_back(std::move(s));
    }

    /// Braces hold statements of their own: skips to the closing one.
    void block()
    {
        simple = false;
        int depth = 0;
        for (; at_ < text_.size(); ++at_)
            if (text_[at_] == '{')
                ++depth;
            else if (text_[at_] == '}' && --depth == 0)
            {
                ++at_;
                return;
            }
    }

    const std::string& text_;
    size_t             at_ = 0;
};

Node* selectedNode() { return selection::get().empty() ? nullptr : selection::get().front().node.get(); }

void keepText(Node& node, const std::string& raw)
{
    const std::string line = "\t" + raw + ";\n";
    const size_t      length = node.unknownText.size();
    const Ref<Node>   keep(&node);   // default nodes outlive the file that fails
    node.unknownText += line;
    undo::push([=] { keep->unknownText.resize(length); }, [=] { keep->unknownText += line; });
}

/// The node and attribute path that a plug in a statement names; null if the node is not there.
Node* plugNode(const std::string& plug, std::string& path)
{
    const size_t dot = plug.find('.');
    if (dot == std::string::npos)
        return nullptr;
    path = plug.substr(dot + 1);
    if (dot == 0)
        return selectedNode();
    const auto items = command::resolveItems(plug.substr(0, dot));
    return items.size() == 1 ? items.front().node.get() : nullptr;
}

bool knowsPlug(Node& node, const std::string& path)
{
    const std::string root = path.substr(0, path.find_first_of(".["));
    return node.findAttribute(root) != nullptr;
}

void warnOnce(const std::string& text)
{
    if (g_reading->warned.insert(text).second)
        message::warning(text);
}

/// The first word that is no flag and no flag's argument: the plug of a setAttr.
std::string plugOf(const std::vector<Value>& words)
{
    for (size_t i = 1; i < words.size(); ++i)
        if (words[i].kind() == Value::kString)
        {
            const std::string& s = words[i].get<std::string>();
            if (s.find('.') != std::string::npos && (s[0] == '.' || std::isalpha(static_cast<unsigned char>(s[0])) || s[0] == '|' || s[0] == ':' || s[0] == '_'))
                return s;
        }
    return {};
}

/// Statements about attributes that nobody registered: kept with their node. True if this was one.
bool keepUnknown(const Statements& st, const std::string& name)
{
    std::string path;
    if (name == "setAttr")
    {
        Node* node = plugNode(plugOf(st.words), path);
        if (!node || knowsPlug(*node, path))
            return false;
        std::vector<Value>  words(st.words.begin() + 1, st.words.end());
        command::Call       call = command::parse(*command::find("setAttr"), words);
        if (!call.args.empty())
        {
            command::Arguments args({call.args.begin() + 1, call.args.end()});
            if (setMeshAttribute(call.args[0].asString(), args))
                return true;
            const std::string root = path.substr(0, path.find_first_of(".["));
            if (dynamic_cast<MPxNode*>(node->user.get()) && node->unknownType.empty() && root.size())
                warnOnce("The attribute '" + root + "' of type '" + node->type->name + "' is unknown; it is kept as it is.");
        }
        return keepText(*node, st.raw), true;
    }
    if (name == "addAttr")
    {
        Node* node = selectedNode();
        if (!node || node->unknownType.empty())
            return false;
        return keepText(*node, st.raw), true;
    }
    if (name == "connectAttr" && st.words.size() >= 3)
        for (size_t i = 1; i < st.words.size(); ++i)
        {
            const std::string plug = st.words[i].asString();
            Node* node = plug.find('.') == std::string::npos ? nullptr : plugNode(plug, path);
            if (node && !knowsPlug(*node, path))
            {
                if (node->unknownType.empty())
                    warnOnce("The attribute '" + path + "' of type '" + node->type->name + "' is unknown; its connections are kept as they are.");
                fileData().foreign.push_back({Ref<Node>(node), st.raw});
                return true;
            }
        }
    return false;
}

/// What files of the host hold that has no meaning here.
bool keepForeign(const Statements& st, const std::string& name)
{
    for (const char* known : {"relationship", "dataStructure", "applyMetadata"})
        if (name == known)
            return fileData().foreign.push_back({{}, st.raw}), true;
    return false;
}

/// True for ":name" or ":name.plug" of a default node that this host does without, render settings and the like.
bool isMissingDefault(const Value& word)
{
    if (word.kind() != Value::kString)
        return false;
    const std::string& s = word.get<std::string>();
    return s.size() > 1 && s[0] == ':' && command::resolveItems(s.substr(0, s.find('.'))).empty();
}

/// Settings of missing default nodes, and connections with them: kept, the latter as long as the other node lives.
bool keepMissingDefault(const Statements& st, const std::string& name)
{
    const bool missing = std::any_of(st.words.begin() + 1, st.words.end(), isMissingDefault);
    if (name == "select" || name == "createNode")
        g_reading->missingSelected = name == "select" && missing;
    const bool setting = g_reading->missingSelected && name != "createNode" && name != "connectAttr" &&
                         (name == "select" || plugOf(st.words).compare(0, 1, ".") == 0 || name == "addAttr");
    if (!setting && !(missing && (name == "connectAttr" || name == "setAttr" || name == "disconnectAttr")))
        return false;
    Node* other = nullptr;
    if (!setting)
        for (size_t i = 1; i < st.words.size() && !other; ++i)
            if (std::string path; st.words[i].kind() == Value::kString && !isMissingDefault(st.words[i]))
                other = plugNode(st.words[i].get<std::string>(), path);
    fileData().foreign.push_back({Ref<Node>(other), st.raw});
    return true;
}

void runStatement(const Statements& st)
{
    if (st.words.empty())
        return;
    const std::string name = st.words[0].asString();
    if (!st.simple)
    {
        mel::execute(st.raw + ";", "scene file");
        return;
    }
    if (keepForeign(st, name) || keepMissingDefault(st, name) || keepUnknown(st, name))
        return;
    const command::Command* cmd = command::find(name);
    if (!cmd)
    {
        mel::execute(st.raw + ";", "scene file");
        return;
    }
    command::Call call = command::parse(*cmd, std::span<const Value>(st.words).subspan(1));
    command::run(call);
}

void readStatements(const std::string& text, const std::string& path)
{
    Statements st(text);
    while (true)
        try
        {
            if (!st.next())
                break;
            runStatement(st);
        }
        catch (const command::Error& e)
        {
            fail("Error reading file \"" + path + "\", line " + std::to_string(st.line()) + ": " + e.what());
        }
    finishMeshes();
    selection::set({});
}

/// Reads inside an undo scope that is rolled back on an error.
void readInto(const std::string& path, bool import, const ImportNames& names, const std::function<void()>& before)
{
    const std::string text = readFile(path);
    checkComplete(text, path);
    if (g_reading)
        fail("\"" + path + "\": a scene file cannot be read while another one is");
    Reading reading;
    reading.import = import;
    reading.prefix = baseName(path);
    reading.prefix = names.prefix.empty() ? reading.prefix.substr(0, reading.prefix.find('.')) + "_" : names.prefix;
    for (char& c : reading.prefix)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != ':')
            c = '_';
    if (std::isdigit(static_cast<unsigned char>(reading.prefix[0])))
        reading.prefix.insert(0, "_");
    reading.prefixAll = names.all;
    const FileData    dataBefore = fileData();
    const bool        wasEnabled = undo::enabled();
    undo::setEnabled(true);   // the scope needs the edits, wanted in the queue or not
    undo::Scope       scope("file", import && wasEnabled);
    g_reading = &reading;
    try
    {
        before();
        readStatements(text, path);
        g_reading = nullptr;
        scope.commit();
        undo::setEnabled(wasEnabled);
    }
    catch (...)
    {
        g_reading = nullptr;
        finishMeshes(true);
        fileData() = dataBefore;
        scope.rollback();
        undo::setEnabled(wasEnabled);
        throw;
    }
}

void deleteAllNodes()
{
    for (Node* n : scene().nodes())
        if (n->inScene && !n->isDefault)
        {
            n->locked = false;
            dag::deleteNode(*n);
        }
}

/// What another scene said of the default nodes. The cameras keep their places, which every file gives.
void resetDefaultNodes()
{
    for (Node* n : scene().nodes()) {
        if (!n->isDefault)
            continue;
        if (!n->unknownText.empty()) {
            const Ref<Node> keep(n);
            undo::push([keep, text = n->unknownText] { keep->unknownText = text; }, [keep] { keep->unknownText.clear(); });
            n->unknownText.clear();
        }
        while (!n->dynamics.empty())
            edit::deleteDynamic(*n, *n->dynamics.back());
        for (Cell* top : n->cells)
            if (top && !top->parent && !n->dag && top->attr->is(Attribute::kStorable) && !n->isComputed(top->attr))
                walkCells(*top, [](Cell& c) {
                    if (c.is(Cell::kSet) && !c.source && c.store() != Store::kNone && !(c.parent && c.parent->attr->isTuple())) {
                        edit::change(c, [&] { c.setDefault(); });
                        c.set(Cell::kSet, false);
                    }
                });
    }
}

}  // namespace

FileData& fileData()
{
    static FileData data;
    return data;
}

void forgetFileData() { fileData() = FileData(); }
bool readingFile() { return g_reading; }

const std::string& importedName(const std::string& name)
{
    if (g_reading && g_reading->import)
        if (auto it = g_reading->names.find(name); it != g_reading->names.end())
            return it->second;
    return name;
}

std::string nameForImport(const std::string& name)
{
    if (!g_reading || !g_reading->import || (!g_reading->prefixAll && !scene().first(name)))
        return name;
    return edit::freeName(g_reading->prefix + name);
}

void noteImportedName(const std::string& wanted, const std::string& got)
{
    if (g_reading && g_reading->import && !wanted.empty() && wanted != got)
        g_reading->names[wanted] = got;
}

Node* makeUnknownNode(const std::string& typeName, const std::string& name, Node* parent)
{
    NodeType* type = findNodeType(parent ? "unknownDag" : "unknown");
    if (!type)
        type = findNodeType("unknown");
    if (!type)
        fail("Unknown object type: " + typeName);
    Node* node = type->dag ? dag::createNode(type, name, parent) : edit::createNode(type, name);
    node->unknownType = typeName;
    if (g_reading)
        warnOnce("The node type '" + typeName + "' is unknown; its nodes are kept as they are.");
    return node;
}

void openScene(const std::string& path)
{
    readInto(path, false, {}, [] {
        forgetFileData();
        deleteAllNodes();
        resetDefaultNodes();
    });
    scene().fileName = path;
    scene().modified = false;
    undo::flush();
}

std::vector<Ref<Node>> importScene(const std::string& path, const ImportNames& names)
{
    std::set<Node*> before;
    for (Node* n : scene().nodes())
        before.insert(n);
    readInto(path, true, names, [] {});
    std::vector<Ref<Node>> out;
    for (Node* n : scene().nodes())
        if (!before.count(n))
            out.emplace_back(n);
    return out;
}

}  // namespace mirk::io
