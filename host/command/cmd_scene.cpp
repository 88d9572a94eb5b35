// Files: new, open, save, import, export, and the statements that scene files begin with.
#include <filesystem>

#include "command/cmd_util.h"
#include "command/message.h"
#include "command/shape_edit.h"
#include "graph/undo.h"
#include "io/obj.h"
#include "io/scene_file.h"
#include "nodes/builtin.h"

namespace mirk::command {

namespace fs = std::filesystem;

namespace {

constexpr uint8_t kBoth = kCreate | kQuery;

constexpr Flag kFile[] = {
    {"new", "newFile"}, {"o", "open"}, {"i", "import"}, {"s", "save"}, {"rn", "rename", "s"}, {"ea", "exportAll"}, {"es", "exportSelected"},
    {"f", "force"}, {"typ", "type", "s", kBoth}, {"op", "options", "s"}, {"rnn", "returnNewNodes"}, {"ns", "namespace", "s"},
    {"rpr", "renamingPrefix", "s"}, {"pr", "preserveReferences"}, {"iv", "ignoreVersion"}, {"mnc", "mergeNamespacesOnClash", "b"},
    {"sn", "sceneName", "", kQuery}, {"shn", "shortName", "", kQuery}, {"loc", "location", "", kQuery}, {"amf", "anyModified", "", kQuery},
    {"mf", "modified", "b", kBoth}, {"ex", "exists", "", kQuery}, {"exn", "expandName", "", kQuery}, {"l", "list", "", kQuery}, {"w", "writable", "", kQuery},
    {"pmt", "prompt", "b", kBoth}, {"r", "reference"}, {"rdi", "referenceDepthInfo", "i"}, {"rfn", "referenceNode", "s"}, {"de", "defaultExtensions", "b"},
    {"ch", "constructionHistory", "b"}, {"chn", "channels", "b"}, {"con", "constraints", "b"}, {"exp", "expressions", "b"}, {"sh", "shader", "b"},
    {"lrd", "loadReferenceDepth", "s"}, {"uiCfg", "uiConfiguration", "b"}, {"esc", "executeScriptNodes", "b"}, {"ra", "renameAll", "b"},
};

/// "mayaAscii" or "OBJ", by the -type flag or the file's extension.
std::string formatOf(const Call& call, const std::string& path, const std::string& otherwise)
{
    std::string type = call.has("type") ? call.str("type") : "";
    if (type.empty())
    {
        const std::string extension = fs::path(path).extension().string();
        type = extension == ".ma" ? "mayaAscii" : extension == ".obj" || extension == ".OBJ" ? "OBJ" : extension.empty() ? otherwise : extension;
    }
    if (type == "OBJ" || type == "OBJexport" || type == "OBJimport" || type == "obj" || type == "Wavefront")
        return "OBJ";
    if (type == "mayaAscii")
        return type;
    fail("Unknown or unsupported file type '" + type + "' for \"" + path + "\"");
}

void mustExist(const std::string& path)
{
    std::error_code ignored;
    if (!fs::exists(path, ignored))
        fail("File not found: \"" + path + "\"");
    if (fs::is_directory(path, ignored))
        fail("\"" + path + "\" is a folder and no file");
}

std::vector<NamedMesh> readMeshes(const std::string& path)
{
    std::vector<NamedMesh> meshes;
    std::string            error;
    if (!readObj(path, meshes, error))
        fail(error);
    return meshes;
}

/// A name that nodes may have; what others use becomes '_'.
std::string nodeNameFrom(const std::string& name, const std::string& path)
{
    std::string out = name.empty() ? fs::path(path).stem().string() : name;
    for (char& c : out)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    if (out.empty() || std::isdigit(static_cast<unsigned char>(out[0])))
        out.insert(0, "_");
    return out;
}

std::vector<Ref<Node>> addMeshes(const std::vector<NamedMesh>& meshes, const std::string& path)
{
    std::vector<Ref<Node>> out;
    for (const NamedMesh& m : meshes)
    {
        Node* transform = dag::createNode(findNodeType("transform"), nodeNameFrom(m.name, path));
        Node* shape = dag::createNode(findNodeType("mesh"), shapeName(transform->name), transform);
        setGeometry(*shape, make<MeshData>(m.body));
        out.emplace_back(transform);
        out.emplace_back(shape);
    }
    return out;
}

/// Meshes of the scene in world space, all visible ones or those selected, with their transforms' names.
std::vector<NamedMesh> worldMeshes(bool selectedOnly)
{
    std::vector<Path> paths;
    const auto collect = [&](const Path& p) {
        if (dynamic_cast<MeshSource*>(p.node()) && !boolAttr(*p.node(), "intermediateObject") && std::find(paths.begin(), paths.end(), p) == paths.end())
            paths.push_back(p);
        return true;
    };
    if (selectedOnly)
        for (const Item& i : selection::get())
        {
            if (i.path.nodes.empty())
                continue;
            collect(i.path);
            dag::descend(i.path, collect);
        }
    else
        for (Node* n : scene().nodes())
            if (isShape(*n))
                for (const Path& p : dag::allPaths(*n))
                    collect(p);
    std::vector<NamedMesh> out;
    for (const Path& p : paths)
    {
        const Ref<MeshData> mesh = dynamic_cast<MeshSource*>(p.node())->meshForRead();
        if (!mesh)
            continue;
        auto body = make<MeshBody>(*mesh->body);
        dag::inclusiveMatrix(p, body->matrix);
        body->identity = false;
        body->bakeMatrix();
        out.push_back({p.nodes.size() > 1 ? p.nodes[p.nodes.size() - 2]->name : p.node()->name, body});
    }
    return out;
}

void writeMeshes(const std::string& path, bool selectedOnly)
{
    const std::vector<NamedMesh> meshes = worldMeshes(selectedOnly);
    if (meshes.empty())
        fail("There is no mesh to be written to \"" + path + "\"");
    std::string error;
    if (!writeObj(path, meshes, error))
        fail(error);
}

Value importFile(Call& call, const std::string& path)
{
    mustExist(path);
    std::vector<Ref<Node>> made;
    if (formatOf(call, path, "mayaAscii") == "OBJ")
    {
        made = addMeshes(readMeshes(path), path);
        std::vector<Item> items;
        for (size_t i = 0; i < made.size(); i += 2)
            items.push_back(itemOf(*made[i]));
        selection::set(items);
    }
    else
    {
        std::string prefix = call.has("namespace") ? call.str("namespace") + ":" : call.has("renamingPrefix") ? call.str("renamingPrefix") + "_" : "";
        if (!prefix.empty() && !edit::validName(prefix))
            fail("'" + prefix + "' is no name that nodes could begin with");
        made = io::importScene(path, {prefix, call.has("namespace") || call.boolean("renameAll")});
    }
    if (!call.has("returnNewNodes"))
        return Value(path);
    Strings names;
    for (const auto& n : made)
        names.push_back(nodeName(*n, true));
    return Value(names);
}

Value exportFile(Call& call, const std::string& path, bool selectedOnly)
{
    if (selectedOnly && selection::get().empty())
        fail("Nothing is selected to be exported to \"" + path + "\"");
    const std::string folder = fs::path(path).parent_path().string();
    std::error_code   ignored;
    if (!folder.empty() && !fs::is_directory(folder, ignored))
        fail("Cannot write file \"" + path + "\": there is no folder \"" + folder + "\"");
    if (formatOf(call, path, "mayaAscii") == "OBJ")
        writeMeshes(path, selectedOnly);
    else
        io::saveScene(path, selectedOnly);
    return Value(path);
}

void newFile(Call& call)
{
    if (scene().modified && !call.has("force"))
        fail("Unsaved changes: use the -force flag to discard them.");
    newScene();
    io::forgetFileData();
    scene().fileName.clear();
    scene().modified = false;
}

Value openFile(Call& call, const std::string& path)
{
    mustExist(path);
    if (scene().modified && !call.has("force"))
        fail("Unsaved changes: use the -force flag to discard them.");
    if (formatOf(call, path, "mayaAscii") == "OBJ")
    {
        const std::vector<NamedMesh> meshes = readMeshes(path);   // a file that cannot be read leaves the scene
        newScene();
        io::forgetFileData();
        addMeshes(meshes, path);
        undo::flush();
    }
    else
        io::openScene(path);
    scene().fileName = path;
    scene().modified = false;
    return Value(path);
}

Value query(Call& call, const Strings& names)
{
    const std::string& scenePath = scene().fileName;
    if (call.has("shortName"))
        return Value(fs::path(scenePath).filename().string());
    if (call.has("sceneName") || call.has("location"))
        return Value(scenePath.empty() && call.has("location") ? "unknown" : scenePath);
    if (call.has("type"))
        return Value(Strings{"mayaAscii"});
    if (call.has("list"))
        return Value(Strings{scenePath.empty() ? "untitled" : scenePath});
    if (call.has("expandName"))
        return Value(names.empty() ? scenePath : fs::absolute(names[0]).string());
    call.truth = true;
    std::error_code ignored;
    if (call.has("modified") || call.has("anyModified"))
        return Value(scene().modified);
    if (call.has("exists"))
        return Value(!names.empty() && fs::exists(names[0], ignored));
    if (call.has("writable"))
        return Value(!names.empty() && (fs::status(names[0], ignored).permissions() & fs::perms::owner_write) != fs::perms::none);
    if (call.has("prompt"))
        return Value(false);
    fail("file: a flag that says what to ask has to be given");
}

Value file(Call& call)
{
    const Strings names = call.names();
    if (call.isQuery())
        return query(call, names);
    const auto path = [&]() -> const std::string& {
        if (names.size() != 1)
            fail("file: one file name has to be given");
        return names[0];
    };
    if (call.has("newFile"))
        return newFile(call), Value("untitled");
    if (call.has("open"))
        return openFile(call, path());
    if (call.has("import"))
        return importFile(call, path());
    if (call.has("exportAll") || call.has("exportSelected"))
        return exportFile(call, path(), call.has("exportSelected"));
    if (call.has("reference") || call.has("referenceDepthInfo"))
        fail("References to other files cannot be loaded: " + (names.empty() ? std::string() : names[0]));
    if (call.has("rename"))
    {
        std::string name = call.str("rename");
        if (name.empty())
            fail("file -rename: a name has to be given");
        if (fs::path(name).extension().empty())
            name += ".ma";
        scene().fileName = fs::absolute(name).lexically_normal().string();
        if (!call.has("save"))
            return Value(scene().fileName);
    }
    if (call.has("save"))
    {
        if (scene().fileName.empty())
            fail("The scene has no name yet: use file -rename first");
        formatOf(call, scene().fileName, "mayaAscii");
        io::saveScene(scene().fileName);
        scene().modified = false;
        return Value(scene().fileName);
    }
    if (call.has("modified"))
        return scene().modified = call.boolean("modified"), Value();
    if (call.has("type") || call.has("prompt"))
        return {};
    fail("file: a flag that says what to do has to be given");
}

constexpr Flag kRequires[] = {{"nt", "nodeType", "s", kCreate, true}, {"dt", "dataType", "s", kCreate, true}};

/// Keeps what a file asks for. Node types that are missing are told where nodes of them come.
Value requiresCommand(Call& call)
{
    const Strings names = call.names();
    if (names.empty() || names[0] == "maya" || !io::readingFile())
        return {};
    std::string text = "requires";
    for (const auto& use : call.uses)
        text += std::string(" -") + use.flag->longName + " \"" + use.args[0].asString() + "\"";
    for (const std::string& n : names)
        text += " \"" + n + "\"";
    io::fileData().requirements.push_back(text);
    return {};
}

constexpr Flag kFileInfo[] = {{"rm", "remove", "s"}};

Value fileInfo(Call& call)
{
    auto& info = io::fileData().info;
    const Strings names = call.names();
    if (call.isQuery())
    {
        Strings out;
        for (const auto& [key, value] : info)
            if (names.empty() || key == names[0])
                names.empty() ? (out.push_back(key), out.push_back(value)) : out.push_back(value);
        return Value(out);
    }
    if (call.has("remove"))
        return std::erase_if(info, [&](const auto& e) { return e.first == call.str("remove"); }), Value();
    if (names.size() != 2)
        fail("fileInfo: a keyword and a value have to be given");
    std::erase_if(info, [&](const auto& e) { return e.first == names[0]; });
    info.emplace_back(names[0], names[1]);
    return {};
}

const Command kCommands[] = {
    {"file", kFile, file},
    {"requires", kRequires, requiresCommand, false},
    {"fileInfo", kFileInfo, fileInfo, false},
};

}  // namespace

void registerSceneCommands() { add(kCommands); }

}  // namespace mirk::command
