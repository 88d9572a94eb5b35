// The commands, a script a subject; see support/line_script.h for what each line is held to.
#include "support/line_script.h"

namespace mirk::test {
namespace {

class CommandLines : public LineScript {};

TEST_F(CommandLines, Nodes) { runLines("command/lines/nodes.mel"); }
TEST_F(CommandLines, Attributes) { runLines("command/lines/attributes.mel"); }
TEST_F(CommandLines, Transforms) { runLines("command/lines/transforms.mel"); }
TEST_F(CommandLines, Polygons) { runLines("command/lines/polygons.mel"); }
TEST_F(CommandLines, PolyOperations) { runLines("command/lines/poly_operations.mel"); }
TEST_F(CommandLines, Curves) { runLines("command/lines/curves.mel"); }
TEST_F(CommandLines, AnimationAndSets) { runLines("command/lines/animation.mel"); }
TEST_F(CommandLines, Session) { runLines("command/lines/session.mel"); }
TEST_F(CommandLines, Python) { runLines("command/lines/python.py"); }

}  // namespace
}  // namespace mirk::test
