// Syntax tables and the arguments read by them: what a command of a plug-in makes of what it is given.
#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MAngle.h>
#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

namespace {

class Arguments : public mirk::test::Host
{
protected:
    /// Every kind of flag, one of them for several uses, and one argument.
    static MSyntax syntax()
    {
        MSyntax s;
        EXPECT_TRUE(s.addFlag("-c", "-count", MSyntax::kLong));
        EXPECT_TRUE(s.addFlag("-x", "-extra", MSyntax::kDouble, MSyntax::kString));
        EXPECT_TRUE(s.addFlag("-on", "-switch", MSyntax::kNoArg));
        EXPECT_TRUE(s.addFlag("-b", "-bool", MSyntax::kBoolean));
        EXPECT_TRUE(s.addFlag("-m", "-many", MSyntax::kLong));
        EXPECT_TRUE(s.addFlag("-u", "-unsigned", MSyntax::kUnsigned));
        EXPECT_TRUE(s.addFlag("-d", "-distance", MSyntax::kDistance));
        EXPECT_TRUE(s.addFlag("-a", "-angle", MSyntax::kAngle));
        EXPECT_TRUE(s.addFlag("-t", "-time", MSyntax::kTime));
        EXPECT_TRUE(s.makeFlagMultiUse("-m"));
        s.enableQuery(true);
        s.enableEdit(true);
        return s;
    }
    struct Words
    {
        MArgList list;
        Words& operator<<(const char* text) { list.addArg(MString(text)); return *this; }
        Words& operator<<(int n) { list.addArg(n); return *this; }
        Words& operator<<(double n) { list.addArg(n); return *this; }
        Words& operator<<(bool b) { list.addArg(b); return *this; }
    };
    static MStatus parsed(const MSyntax& s, const Words& words)
    {
        MStatus status;
        MArgDatabase(s, words.list, &status);
        return status;
    }
    static std::string text(const MString& s) { return s.asChar(); }
};

}  // namespace

TEST_F(Arguments, FlagsByEitherName)
{
    for (const bool brief : {true, false}) {
        Words w;
        w << (brief ? "-c" : "-count") << 7 << (brief ? "-x" : "-extra") << 2.5 << "word" << (brief ? "-on" : "-switch");
        MStatus      s;
        MArgDatabase args(syntax(), w.list, &s);
        ASSERT_EQ(s, MS::kSuccess);
        int     n = 0;
        double  d = 0;
        MString t;
        for (const char* flag : {"-c", "-count"}) {
            EXPECT_TRUE(args.isFlagSet(flag));
            EXPECT_TRUE(args.getFlagArgument(flag, 0, n));
            EXPECT_EQ(n, 7);
        }
        EXPECT_TRUE(args.getFlagArgument("-extra", 0, d) && args.getFlagArgument("-x", 1, t));
        EXPECT_EQ(d, 2.5);
        EXPECT_EQ(text(t), "word");
        EXPECT_TRUE(args.isFlagSet("-switch") && !args.isFlagSet("-b"));
        EXPECT_EQ(args.numberOfFlagsUsed(), 3u);
        EXPECT_FALSE(args.isQuery() || args.isEdit());
        n = 5;
        EXPECT_FALSE(args.getFlagArgument("-c", 1, n)) << "it has one argument";
        EXPECT_FALSE(args.getFlagArgument("-m", 0, n)) << "it was not given";
        EXPECT_EQ(n, 5);
        args.isFlagSet("-nothing", &s);
        EXPECT_NE(s, MS::kSuccess);
    }
}

TEST_F(Arguments, UnitsAndNumbers)
{
    mel("currentUnit -l cm -a deg -t film;");
    Words w;
    w << "-d" << 2.0 << "-a" << 90.0 << "-t" << 12.0 << "-b" << true << "-u" << 3;
    MArgDatabase args(syntax(), w.list);
    MDistance d;
    MAngle    a;
    MTime     t;
    bool      b = false;
    unsigned  u = 0;
    EXPECT_TRUE(args.getFlagArgument("-d", 0, d) && args.getFlagArgument("-a", 0, a) && args.getFlagArgument("-t", 0, t));
    EXPECT_TRUE(args.getFlagArgument("-b", 0, b) && args.getFlagArgument("-u", 0, u));
    EXPECT_DOUBLE_EQ(d.asCentimeters(), 2);
    EXPECT_DOUBLE_EQ(a.asRadians(), M_PI / 2);
    EXPECT_DOUBLE_EQ(t.as(MTime::kSeconds), 0.5);
    EXPECT_TRUE(b);
    EXPECT_EQ(u, 3u);
    EXPECT_EQ(args.flagArgumentDouble("-d", 0), 2);
}

TEST_F(Arguments, SeveralUsesOfAFlag)
{
    Words w;
    w << "-m" << 4 << "-on" << "-many" << 9;
    MArgDatabase args(syntax(), w.list);
    EXPECT_EQ(args.numberOfFlagUses("-m"), 2u);
    EXPECT_EQ(args.numberOfFlagUses("-on"), 1u);
    EXPECT_EQ(args.numberOfFlagUses("-c"), 0u);
    for (const unsigned use : {0u, 1u}) {
        MArgList one;
        EXPECT_TRUE(args.getFlagArgumentList("-many", use, one));
        ASSERT_EQ(one.length(), 1u);
        EXPECT_EQ(one.asInt(0), use ? 9 : 4);
    }
    MArgList none;
    EXPECT_FALSE(args.getFlagArgumentList("-m", 2, none));
    unsigned position = 99;
    EXPECT_TRUE(args.getFlagArgumentPosition("-m", 1, position));
    EXPECT_EQ(position, 3u) << "after -m, 4 and -on";
}

TEST_F(Arguments, WhatDoesNotFitIsRefused)
{
    MSyntax plain;
    plain.addFlag("-c", "-count", MSyntax::kLong);
    struct Case { const char* why; Words words; bool ok; };
    const Case cases[] = {
        {"nothing", Words(), true},
        {"a flag and its number", Words() << "-c" << 3, true},
        {"a flag that is none", Words() << "-zz" << 3, false},
        {"without its argument", Words() << "-c", false},
        {"a text for a number", Words() << "-c" << "many", false},
        {"an argument too many", Words() << "-c" << 3 << 4, false},
        {"query is off", Words() << "-q" << "-c", false},
        {"edit is off", Words() << "-e" << "-c" << 3, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(bool(parsed(plain, c.words)), c.ok) << c.why;
    EXPECT_FALSE(parsed(syntax(), Words() << "-q" << "-e" << "-c" << 2)) << "asked and changed at once";
    EXPECT_FALSE(plain.addFlag("-c", "-other", MSyntax::kLong)) << "the short name is taken";
    EXPECT_FALSE(plain.makeFlagMultiUse("-nothing"));
}

TEST_F(Arguments, QueriesTakeNoArguments)
{
    MStatus      s;
    const Words  ask = Words() << "-q" << "-c", change = Words() << "-edit" << "-c" << 3;
    MArgDatabase query(syntax(), ask.list, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(query.isQuery() && !query.isEdit() && query.isFlagSet("-count"));
    MArgDatabase edit(syntax(), change.list, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(edit.isEdit() && !edit.isQuery());
    EXPECT_EQ(edit.flagArgumentInt("-c", 0), 3);
    MSyntax full = syntax();
    EXPECT_TRUE(full.makeFlagQueryWithFullArgs("-c", false));
    EXPECT_TRUE(full.canQueryFlagWithFullArgs("-count") && !full.canQueryFlagWithFullArgs("-x"));
    const Words with = Words() << "-q" << "-c" << 5;
    MArgDatabase all(full, with.list, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_EQ(all.flagArgumentInt("-c", 0), 5);
}

TEST_F(Arguments, ObjectsNamedOrSelected)
{
    mel("createNode transform -n a; createNode transform -n b; polyPlane -n p -ch 0; select -r b;");
    MSyntax list;
    list.addFlag("-c", "-count", MSyntax::kLong);
    list.setObjectType(MSyntax::kSelectionList, 1, 2);
    list.useSelectionAsDefault(true);
    MStatus        s;
    MSelectionList objects;
    MStringArray   names;
    const Words    none, two = Words() << "-c" << 2 << "a" << "p.vtx[1]", three = Words() << "a" << "b" << "p", wrong = Words() << "nobody";
    MArgDatabase   fromSelection(list, none.list, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(fromSelection.getObjects(objects));
    objects.getSelectionStrings(names);
    ASSERT_EQ(names.length(), 1u);
    EXPECT_EQ(text(names[0]), "b");
    MArgDatabase named(list, two.list, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(named.getObjects(objects));
    EXPECT_EQ(objects.length(), 2u);
    EXPECT_FALSE(parsed(list, three)) << "two at most";
    EXPECT_FALSE(parsed(list, wrong)) << "no such object";
    mel("select -cl;");
    EXPECT_FALSE(parsed(list, none)) << "one at least";

    MSyntax words;
    words.setObjectType(MSyntax::kStringObjects, 0);
    MArgDatabase anything(words, wrong.list, &s);
    EXPECT_EQ(s, MS::kSuccess) << "texts need no node";
    EXPECT_TRUE(anything.getObjects(names));
    ASSERT_EQ(names.length(), 1u);
    EXPECT_EQ(text(names[0]), "nobody");
}

TEST_F(Arguments, CommandArguments)
{
    MSyntax s;
    s.addFlag("-c", "-count", MSyntax::kLong);
    EXPECT_TRUE(s.addArg(MSyntax::kDouble) && s.addArg(MSyntax::kString));
    MStatus     status;
    const Words w = Words() << 2.5 << "-c" << 1 << "name";
    MArgDatabase args(s, w.list, &status);
    ASSERT_EQ(status, MS::kSuccess);
    double  d = 0;
    MString t;
    int     n = 0;
    EXPECT_TRUE(args.getCommandArgument(0, d) && args.getCommandArgument(1, t));
    EXPECT_EQ(d, 2.5);
    EXPECT_EQ(text(t), "name");
    EXPECT_FALSE(args.getCommandArgument(2, n));
    EXPECT_EQ(text(args.commandArgumentString(1)), "name");
    EXPECT_FALSE(parsed(s, Words() << 2.5)) << "the second is missing";
    EXPECT_FALSE(parsed(s, Words() << 2.5 << "a" << "b")) << "a third";
}

TEST_F(Arguments, ListsByHand)
{
    Words w;
    w << "-v" << 1.0 << 2.0 << 3.0 << "word" << 7 << true << -4.5;
    const MArgList& list = w.list;
    EXPECT_EQ(list.length(), 8u);
    EXPECT_EQ(list.flagIndex("v", "vector"), 0u);
    EXPECT_EQ(list.flagIndex("w", "word"), unsigned(MArgList::kInvalidArgIndex)) << "a word is no flag";
    unsigned at = 1;
    MVector  v;
    EXPECT_TRUE(list.get(at, v));
    EXPECT_EQ(at, 4u);
    EXPECT_TRUE(v == MVector(1, 2, 3));
    at = 2;
    EXPECT_TRUE(list.asVector(at, 2) == MVector(2, 3, 0));
    EXPECT_EQ(at, 4u);
    MStatus s;
    at = 3;
    list.asVector(at, 3, &s);
    EXPECT_NE(s, MS::kSuccess) << "a word is among them";
    EXPECT_EQ(list.asInt(5), 7);
    EXPECT_EQ(list.asDouble(5), 7);
    EXPECT_TRUE(list.asBool(6));
    EXPECT_EQ(list.asDouble(7), -4.5);
    EXPECT_EQ(text(list.asString(4)), "word");
    list.asInt(4, &s);
    EXPECT_NE(s, MS::kSuccess);
    list.asString(8, &s);
    EXPECT_NE(s, MS::kSuccess);
    int n = 3;
    EXPECT_FALSE(list.get(4, n));
    EXPECT_EQ(n, 3);
}
