// Units, the current time and the playback range.
#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>

#include "api/playback.h"
#include "command/cmd_util.h"
#include "command/units_text.h"
#include "graph/evaluate.h"
#include "graph/undo.h"

namespace mirk::command {

namespace {

constexpr uint8_t kBoth = kCreate | kQuery;

constexpr Flag kCurrentUnit[] = {
    {"a", "angle", "s", kBoth}, {"f", "fullName", "", kBoth}, {"l", "linear", "s", kBoth}, {"t", "time", "s", kBoth}, {"ua", "updateAnimation", "b"},
};

struct UnitName { const char* shortName; const char* longName; int unit; };
constexpr UnitName kLinear[] = {
    {"mm", "millimeter", MDistance::kMillimeters}, {"cm", "centimeter", MDistance::kCentimeters}, {"m", "meter", MDistance::kMeters},
    {"km", "kilometer", MDistance::kKilometers}, {"in", "inch", MDistance::kInches}, {"ft", "foot", MDistance::kFeet},
    {"yd", "yard", MDistance::kYards}, {"mi", "mile", MDistance::kMiles},
};
constexpr UnitName kAngular[] = {{"deg", "degree", MAngle::kDegrees}, {"rad", "radian", MAngle::kRadians}};
constexpr UnitName kTimes[] = {
    {"hour", "hours", MTime::kHours}, {"min", "minutes", MTime::kMinutes}, {"sec", "seconds", MTime::kSeconds}, {"millisec", "milliseconds", MTime::kMilliseconds},
    {"game", "15fps", MTime::k15FPS}, {"film", "24fps", MTime::k24FPS}, {"pal", "25fps", MTime::k25FPS}, {"ntsc", "30fps", MTime::k30FPS},
    {"show", "48fps", MTime::k48FPS}, {"palf", "50fps", MTime::k50FPS}, {"ntscf", "60fps", MTime::k60FPS},
    {"2fps", "2fps", MTime::k2FPS}, {"3fps", "3fps", MTime::k3FPS}, {"4fps", "4fps", MTime::k4FPS}, {"5fps", "5fps", MTime::k5FPS}, {"6fps", "6fps", MTime::k6FPS},
    {"8fps", "8fps", MTime::k8FPS}, {"10fps", "10fps", MTime::k10FPS}, {"12fps", "12fps", MTime::k12FPS}, {"16fps", "16fps", MTime::k16FPS},
    {"20fps", "20fps", MTime::k20FPS}, {"40fps", "40fps", MTime::k40FPS}, {"75fps", "75fps", MTime::k75FPS}, {"80fps", "80fps", MTime::k80FPS},
    {"100fps", "100fps", MTime::k100FPS}, {"120fps", "120fps", MTime::k120FPS},
};

template <size_t N>
int unitNamed(const UnitName (&names)[N], const std::string& text, const char* kind)
{
    for (const UnitName& n : names)
        if (text == n.shortName || text == n.longName)
            return n.unit;
    fail(std::string("Unknown ") + kind + " unit: " + text);
}

template <class Class, class Unit>
void setUnit(Unit to)
{
    const Unit from = Class::uiUnit();
    Class::setUIUnit(to);
    undo::push([from] { Class::setUIUnit(from); }, [to] { Class::setUIUnit(to); });
}

Value currentUnit(Call& call)
{
    if (call.isQuery())
    {
        const bool full = call.has("fullName");
        if (call.has("linear"))
            return Value(linearUnitName(full));
        if (call.has("angle"))
            return Value(angularUnitName(full));
        return Value(timeUnitName());
    }
    if (call.has("linear"))
        setUnit<MDistance>(MDistance::Unit(unitNamed(kLinear, call.str("linear"), "linear")));
    if (call.has("angle"))
        setUnit<MAngle>(MAngle::Unit(unitNamed(kAngular, call.str("angle"), "angular")));
    if (call.has("time"))
        setUnit<MTime>(MTime::Unit(unitNamed(kTimes, call.str("time"), "time")));
    return {};
}

constexpr Flag kCurrentTime[] = {{"u", "update", "b", kBoth}};

double frames(double seconds) { return MTime(seconds, MTime::kSeconds).as(MTime::uiUnit()); }

Value currentTime(Call& call)
{
    if (call.isQuery() || call.args.empty())
        return Value(frames(playback::currentTime()));
    const double seconds = timeSeconds(call.args[0]);
    playback::setCurrentTime(seconds);
    return Value(frames(seconds));
}

constexpr Flag kPlayback[] = {
    {"min", "minTime", "t", kBoth | kEdit}, {"max", "maxTime", "t", kBoth | kEdit}, {"ast", "animationStartTime", "t", kBoth | kEdit},
    {"aet", "animationEndTime", "t", kBoth | kEdit}, {"l", "loop", "s", kBoth | kEdit}, {"ps", "playbackSpeed", "f", kBoth | kEdit},
    {"by", "by", "f", kBoth | kEdit}, {"v", "view", "s", kBoth | kEdit}, {"mps", "maxPlaybackSpeed", "f", kBoth | kEdit}, {"fps", "framesPerSecond", "", kQuery},
};

/// What only the playback of a window would use; kept for whoever asks.
struct Habits { std::string loop = "continuous", view = "active"; double maxSpeed = 0; };

Value playbackOptions(Call& call)
{
    static Habits    habits;
    playback::Range& p = playback::range();
    if (call.isQuery())
    {
        const struct { const char* flag; double value; } numbers[] = {
            {"minTime", frames(p.min)}, {"maxTime", frames(p.max)}, {"animationStartTime", frames(p.start)}, {"animationEndTime", frames(p.end)},
            {"playbackSpeed", p.speed}, {"by", p.by}, {"maxPlaybackSpeed", habits.maxSpeed}, {"framesPerSecond", frames(1)}};
        for (const auto& n : numbers)
            if (call.has(n.flag))
                return Value(n.value);
        if (call.has("loop"))
            return Value(habits.loop);
        if (call.has("view"))
            return Value(habits.view);
        fail("playbackOptions: a flag that says what to ask has to be given");
    }
    const playback::Range before = p;
    const auto time = [&](const char* flag, double& to) {
        if (call.has(flag))
            to = timeSeconds(call.use(flag)->args[0]);
    };
    time("animationStartTime", p.start);
    time("animationEndTime", p.end);
    time("minTime", p.min);
    time("maxTime", p.max);
    if (p.max < p.min)
        (call.has("minTime") ? p.max : p.min) = call.has("minTime") ? p.min : p.max;
    p.start = std::min(p.start, p.min);
    p.end = std::max(p.end, p.max);
    p.speed = call.num("playbackSpeed", p.speed);
    p.by = call.num("by", p.by);
    habits.maxSpeed = call.num("maxPlaybackSpeed", habits.maxSpeed);
    habits.loop = call.str("loop", habits.loop);
    habits.view = call.str("view", habits.view);
    undo::push([before] { playback::range() = before; }, [now = p] { playback::range() = now; });
    return {};
}

constexpr Flag kEvaluationManager[] = {{"m", "mode", "s", kBoth}, {"e", "enabled", "b", kBoth}};

/// Values are pulled on demand: the mode that is called off.
Value evaluationManager(Call& call)
{
    if (call.isQuery())
        return call.has("enabled") ? Value(false) : Value(Strings{"off"});
    if (call.has("mode") && call.str("mode") != "off")
        fail("evaluationManager: the mode '" + call.str("mode") + "' is not offered, only 'off'");
    if (call.has("enabled") && call.boolean("enabled"))
        fail("evaluationManager: only the mode 'off' is offered");
    return {};
}

constexpr Flag kUndoInfo[] = {
    {"st", "state", "b", kBoth}, {"swf", "stateWithoutFlush", "b", kBoth}, {"in", "infinity", "b", kBoth}, {"l", "length", "i", kBoth},
    {"ock", "openChunk"}, {"cck", "closeChunk"}, {"cn", "chunkName", "s", kBoth}, {"un", "undoName", "", kQuery}, {"rn", "redoName", "", kQuery},
    {"uqe", "undoQueueEmpty", "", kQuery}, {"rqe", "redoQueueEmpty", "", kQuery}, {"pq", "printQueue", "", kQuery},
};

Value undoInfo(Call& call)
{
    if (call.isQuery())
    {
        if (call.has("undoName"))
            return Value(undo::undoName());
        if (call.has("redoName"))
            return Value(undo::redoName());
        if (call.has("length"))
            return Value(undo::length());
        if (call.has("printQueue"))
            return Value(undo::names());
        call.truth = true;
        if (call.has("infinity"))
            return Value(undo::length() == 0);
        if (call.has("undoQueueEmpty"))
            return Value(undo::undoName().empty());
        if (call.has("redoQueueEmpty"))
            return Value(undo::redoName().empty());
        return Value(undo::enabled());
    }
    if (call.has("state"))
    {
        if (!call.boolean("state"))
            undo::flush();
        undo::setEnabled(call.boolean("state"));
    }
    if (call.has("stateWithoutFlush"))
        undo::setEnabled(call.boolean("stateWithoutFlush"));
    if (call.has("infinity"))
        undo::setLength(call.boolean("infinity") ? 0 : std::max(1, undo::length()));
    if (call.has("length"))
        undo::setLength(std::max(0, call.integer("length")));
    if (call.has("openChunk"))
        undo::openChunk(call.str("chunkName"));
    if (call.has("closeChunk"))
        undo::closeChunk();
    return {};
}

Value undoCommand(Call&)
{
    const std::string name = undo::undoName();
    if (!undo::undoOne())
        fail("There are no more commands to undo.");
    return Value(name);
}

Value redoCommand(Call&)
{
    const std::string name = undo::redoName();
    if (!undo::redoOne())
        fail("There are no more commands to redo.");
    return Value(name);
}

Value flushUndo(Call&) { return undo::flush(), Value(); }

const Command kCommands[] = {
    {"currentUnit", kCurrentUnit, currentUnit},
    {"currentTime", kCurrentTime, currentTime},
    {"playbackOptions", kPlayback, playbackOptions},
    {"evaluationManager", kEvaluationManager, evaluationManager},
    {"undoInfo", kUndoInfo, undoInfo, false, false},
    {"undo", {}, undoCommand, false, false},
    {"redo", {}, redoCommand, false, false},
    {"flushUndo", {}, flushUndo, false, false},
};

}  // namespace

void registerTimeCommands() { add(kCommands); }

}  // namespace mirk::command
