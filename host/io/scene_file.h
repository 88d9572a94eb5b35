// Scene files: .ma text in and out.
#pragma once
#include <string>
#include <unordered_map>
#include <vector>

#include "graph/node.h"

namespace mirk::io {

/// Replaces the scene by a file's. Any error (no such file, cut off, a failing statement) leaves the scene as it was.
/// Errors: command::Error naming file and line.
void openScene(const std::string& path);
/// Adds a file's nodes to the scene; a node whose name is taken gets "file_name" and is found under its old name by the
/// file's own statements. Returns the new nodes. On an error nothing is added.
/// A prefix of one's own stands in place of "file_", on request before all names.
struct ImportNames { std::string prefix; bool all = false; };
std::vector<Ref<Node>> importScene(const std::string& path, const ImportNames& names = {});
/// Writes the scene, or only the selected nodes and what they hang on. The file is replaced in one step.
void saveScene(const std::string& path, bool selectedOnly = false);
/// The text of a scene file.
std::string sceneText(const std::string& path, bool selectedOnly);
/// Forgets what belongs to a scene beside its nodes; newScene() does not know of it.
void forgetFileData();

/// What files hold beside nodes: kept and written back.
struct FileData
{
    struct Statement { Ref<Node> node; std::string text; };
    std::vector<std::pair<std::string, std::string>> info;       ///< fileInfo
    std::vector<Statement>   foreign;     ///< statements nobody here understands; with a node, gone when it goes
    std::vector<std::string> requirements;
};
FileData& fileData();

/// True while a scene file is being read: unknown node types are kept instead of refused.
bool readingFile();
/// While importing: the name a node of the file got, else the name itself.
const std::string& importedName(const std::string& name);
/// The name to ask for: with the file's name in front if the node's own is taken. The file's later statements find it by
/// the name alone, so it has to be the only one in the scene.
std::string nameForImport(const std::string& name);
void noteImportedName(const std::string& wanted, const std::string& got);
/// A node of a type that nobody registered, to be kept.
Node* makeUnknownNode(const std::string& type, const std::string& name, Node* parent);

}  // namespace mirk::io
