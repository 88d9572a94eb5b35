// A new scene for each test, and short ways to make and read things in it.
#pragma once
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "command/registry.h"
#include "dag/dag.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"
#include "nodes/builtin.h"

namespace dag_test {

using namespace mirk;

struct SceneTest : testing::Test
{
    void SetUp() override
    {
        registerBuiltinNodes();
        newScene();
    }
    void TearDown() override { newScene(); }

    static Node* make(const char* type, const char* name = "", Node* parent = nullptr) { return dag::createNode(findNodeType(type), name, parent); }
    static Cell& cell(Node* node, const char* path) { return *findCell(*node, path); }
    static void  set(Node* node, const char* path, double value) { edit::setNumber(cell(node, path), value); }
    static double get(Node* node, const char* path)
    {
        Cell& c = cell(node, path);
        eval::pull(c);
        return c.number();
    }
    /// Where the origin of the node's last path goes: the translation row of its world matrix.
    static std::vector<double> origin(Node* node, int instance = 0)
    {
        Cell& c = *cell(node, "worldMatrix").element(instance);
        eval::pull(c);
        return {c.own.matrix[12], c.own.matrix[13], c.own.matrix[14]};
    }
    static std::vector<std::string> named(const std::string& text)
    {
        std::vector<std::string> all;
        for (const Item& i : names::resolve(text))
            for (const std::string& t : names::texts(i))
                all.push_back(t);
        return all;
    }
};

using Names = std::vector<std::string>;
using Point = std::vector<double>;

}  // namespace dag_test
