#include "volumes/componentPattern.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>

namespace {

/// Reads an unsigned number at `at` and moves on behind it. Numbers past any index stay past it.
bool readIndex(const std::string& token, std::size_t& at, std::int64_t& value)
{
    constexpr std::int64_t kPastAll = std::int64_t(1) << 40;
    const std::size_t      begin = at;
    for (value = 0; at < token.size() && token[at] >= '0' && token[at] <= '9'; ++at)
        value = std::min(10 * value + (token[at] - '0'), kPastAll);
    return at > begin;
}

bool readToken(const std::string& token, std::int64_t& first, std::int64_t& last)
{
    std::size_t at = 0;
    if (!readIndex(token, at, first))
        return false;
    last = first;
    if (at < token.size() && (token[at++] != ':' || !readIndex(token, at, last)))
        return false;
    return at == token.size();
}

} // namespace

void markPattern(Marks& marks, const std::string& text)
{
    if (text == "*") {
        std::fill(marks.begin(), marks.end(), static_cast<unsigned char>(1));
        return;
    }
    std::istringstream tokens(text);
    const auto         count = static_cast<std::int64_t>(marks.size());
    for (std::string token; tokens >> token;) {
        std::int64_t first = 0, last = 0;
        if (!readToken(token, first, last))
            continue;
        if (first > last)
            std::swap(first, last);
        for (std::int64_t i = first; i <= last && i < count; ++i)
            marks[static_cast<std::size_t>(i)] = 1;
    }
}

void markRange(Marks& marks, const RangeRule& rule)
{
    const auto         count = static_cast<std::int64_t>(marks.size());
    const std::int64_t end = -std::int64_t(rule.end) < count ? std::min(count + rule.end, count) : 0;
    const std::int64_t every = std::max(rule.every, 1), take = std::min<std::int64_t>(rule.take, every);
    std::int64_t       behind = 0;   // indices since the last multiple
    for (std::int64_t i = std::max(rule.start, 0); i < end; ++i) {
        behind = i % every == 0 ? 0 : behind + 1;
        if (i % every == 0 || behind < take)
            marks[static_cast<std::size_t>(i)] = 1;
    }
}

bool namesFrame(const std::string& text, double frame)
{
    constexpr double   kSameFrame = 1e-6;   // frames that come through unit conversions are not exact
    std::istringstream tokens(text);
    for (std::string token; tokens >> token;) {
        char*        end = nullptr;
        const double number = std::strtod(token.c_str(), &end);
        if (*end == '\0' && std::fabs(number - frame) < kSameFrame)
            return true;
    }
    return false;
}
