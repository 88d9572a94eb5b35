#include "arrayExpressionText.h"

namespace arrayExpressionText {

namespace {

/// The pieces of text with every # replaced by the number of the input, which is empty for the first one.
std::string numbered(const std::string& piece, int input)
{
    std::string text;
    for (const char c : piece) {
        if (c != '#')
            text += c;
        else if (input > 0)
            text += std::to_string(input + 1);
    }
    return text;
}

/// At the interpreter's global level: the arrays and their lengths. Vectors are split into their coordinates.
std::string globals(const Input& in, int k)
{
    const char* const type = in.kind == Kind::kInts ? "int" : "float";
    if (in.kind != Kind::kVectors)
        return type + numbered(" $a#_ARREXP[]; $a#_ARREXP = `getAttr ", k) + in.plug +
               numbered("`; int $c#_ARREXP = size($a#_ARREXP);\n", k);
    return numbered("float $ax#_ARREXP[], $ay#_ARREXP[], $az#_ARREXP[]; $fa_ARREXP = `getAttr ", k) + in.plug +
           numbered("`; int $c#_ARREXP = size($fa_ARREXP)/3; for($i = 0; $i < $c#_ARREXP; ++$i){int $ii = $i*3; "
                    "$ax#_ARREXP[$i]=$fa_ARREXP[$ii]; $ay#_ARREXP[$i]=$fa_ARREXP[$ii+1]; "
                    "$az#_ARREXP[$i]=$fa_ARREXP[$ii+2];}\n", k);
}

/// In the procedure: the element variables, and the longest length so far.
std::string declarations(const Input& in, int k)
{
    const std::string count = "if($count < $c#_ARREXP) $count = $c#_ARREXP;\n";
    switch (in.kind) {
    case Kind::kInts:
        return numbered("int $E#; global int $c#_ARREXP; global int $a#_ARREXP[]; " + count, k);
    case Kind::kReals:
        return numbered("float $E#; global int $c#_ARREXP; global float $a#_ARREXP[]; " + count, k);
    case Kind::kVectors:
        return numbered("float $EX#, $EY#, $EZ#; global int $c#_ARREXP; global float $ax#_ARREXP[]; "
                        "global float $ay#_ARREXP[]; global float $az#_ARREXP[]; " + count, k);
    case Kind::kNone: break;
    }
    return {};
}

std::string statisticsText(const Statistics& s, int k)
{
    return numbered("float $MIN# = ", k) + s.min + ";" + numbered("float $MAX# = ", k) + s.max + ";" +
           numbered("float $SUM# = ", k) + s.sum + ";" + numbered("float $PRO# = ", k) + s.product + ";";
}

/// Calls f for each array that is there.
template <class F>
void each(const Source& source, F&& f)
{
    for (int k = 0; k < kInputCount; ++k) {
        if (source.inputs[static_cast<std::size_t>(k)].kind != Kind::kNone)
            f(source.inputs[static_cast<std::size_t>(k)], k);
    }
}

constexpr char kBeware[] = "// Be careful with the \"getAttr\" and \"setAttr\" commands,\n"
                           "// they may cause cycle loops if you are trying to access\n"
                           "// nodes located in the downstream graph of this one.\n";

} // namespace

std::string text(const Source& source)
{
    std::string t = "int $ia_ARREXP[]; float $fa_ARREXP[];\n";
    each(source, [&](const Input& in, int k) { t += globals(in, k); });
    t += "global proc ARRAYEXPRESSION(){\n";
    t += "int $count; string $NODE = \"" + source.node + "\"; float $TIME = " + source.time +
         "; int $FRAME = (int)$TIME;\n";
    each(source, [&](const Input& in, int k) {
        t += declarations(in, k);
        if (source.withStatistics)
            t += statisticsText(in.statistics, k);
    });
    t += "int $COUNT = $count;\n";
    t += "\n" + source.startBlock + "\n";
    t += "for($i = 0; $i < $count; ++$i){int $ID = $i;\n";
    each(source, [&](const Input& in, int k) {
        t += numbered(in.kind == Kind::kVectors
                          ? "$EX# = $ax#_ARREXP[$i]; $EY# = $ay#_ARREXP[$i]; $EZ# = $az#_ARREXP[$i];\n"
                          : "$E# = $a#_ARREXP[$i];\n", k);
    });
    t += "\n" + source.expression + ";\n\n";
    each(source, [&](const Input& in, int k) {
        t += numbered(in.kind == Kind::kVectors
                          ? "$ax#_ARREXP[$i] = $EX#; $ay#_ARREXP[$i] = $EY#; $az#_ARREXP[$i] = $EZ#;\n"
                          : "$a#_ARREXP[$i] = $E#;\n", k);
    });
    return t + "}\n\n" + source.endBlock + "\n}\n ARRAYEXPRESSION();\n";
}

std::string readBack(int input, Kind kind, char component)
{
    const std::string from = component ? std::string("$a") + component : std::string("$a");
    return (kind == Kind::kInts ? "$ia_ARREXP = " : "$fa_ARREXP = ") + numbered(from + "#_ARREXP", input);
}

std::string defaultStartBlock()
{
    return std::string("// START BLOCK (this code is executed before the main loop)\n//\n") + kBeware;
}

std::string defaultExpression()
{
    return "// common local variables:\n"
           "// $NODE - this node name\n"
           "// $ID - current element index in the loop\n"
           "// $COUNT - array length\n"
           "// $TIME - current time (float)\n"
           "// $FRAME - current frame (int)\n\n"
           "// additional local variables:\n"
           "// $MIN, $MIN2, $MIN3, $MIN4, $MIN5 - lowest array value\n"
           "// $MAX, $MAX2, $MAX3, $MAX4, $MAX5 - highest array value\n"
           "// $SUM, $SUM2, $SUM3, $SUM4, $SUM5 - sum of array values\n"
           "// $PRO, $PRO2, $PRO3, $PRO4, $PRO5 - product of array values\n\n"
           "// local variables for the current element index in the loop:\n"
           "// $E, $E2, $E3, $E4, $E5\n"
           "// $EX, $EY, $EZ, $EX2, $EY2, $EZ2, $EX3, $EY3, $EZ3, $EX4, $EY4, $EZ4, $EX5, $EY5, $EZ5\n\n"
           "// int/double array example:\n"
           "// $E = sin($E);\n\n"
           "// vector array example:\n"
           "// $EX = sin($EX); // x coordinate\n"
           "// $EY = cos($EY); // y coordinate\n"
           "// $EZ = tan($EZ); // z coordinate\n\n"
           "// place your code below\n";
}

std::string defaultEndBlock()
{
    return std::string("// END BLOCK (this code is executed after the main loop)\n//\n") + kBeware;
}

} // namespace arrayExpressionText
