// Names of nodes, attributes and user-interface texts, and conversions of units.
#include <cctype>

#include "command/registry.h"
#include "mel/native.h"

namespace mirk::mel {

namespace {

using command::Error;

std::string afterLast(const std::string& s, const char* separators)
{
    const size_t at = s.find_last_of(separators);
    return at == std::string::npos ? s : s.substr(at + 1);
}

std::string plugNode(const std::string& plug) { return plug.substr(0, plug.find('.')); }

std::string plugAttr(const std::string& plug)
{
    const size_t dot = plug.find('.');
    return dot == std::string::npos ? std::string() : plug.substr(dot + 1);
}

/// "fooBarTwo" gives "Foo Bar Two".
std::string interfaceText(const std::string& name)
{
    std::string out;
    for (size_t i = 0; i < name.size(); ++i)
    {
        const auto c = static_cast<unsigned char>(name[i]);
        if (i > 0 && std::isupper(c) && std::islower(static_cast<unsigned char>(name[i - 1])))
            out += ' ';
        out += char(i == 0 ? std::toupper(c) : c);
    }
    return out;
}

bool nodeExists(const std::string& name) { return command::execute("objExists", std::vector<Value>{name}).asBool(); }

/// The name, with the first number behind it that makes it new.
std::string uniqueName(const std::string& name)
{
    std::string base = name;
    while (!base.empty() && std::isdigit(static_cast<unsigned char>(base.back())))
        base.pop_back();
    std::string out = name;
    for (int n = 1; nodeExists(out); ++n)
        out = base + std::to_string(n);
    return out;
}

int32_t hasAttribute(const std::string& attribute, const std::string& node)
{
    return nodeExists(node) && nodeExists(node + "." + attribute);
}

std::string withoutPrefix(const std::string& s, const std::string& prefix)
{
    return s.starts_with(prefix) ? s.substr(prefix.size()) : s;
}

std::vector<std::string> eachWithout(const StringArray& a, const std::string& prefix)
{
    std::vector<std::string> out;
    for (size_t i = 0; i < a.size(); ++i)
        out.push_back(withoutPrefix(a.text(i), prefix));
    return out;
}

#define FN(name, params, result, expr) {name, params, result, [](NativeCall& c) { c.give(expr); }}

const Native kRows[] = {
    FN("plugNode", "s", 's', plugNode(c.s(0))),
    FN("plugAttr", "s", 's', plugAttr(c.s(0))),
    FN("plugNodeStripped", "s", 's', afterLast(plugNode(c.s(0)), "|:")),
    FN("shortNameOf", "s", 's', afterLast(c.s(0), "|")),
    FN("stripPrefixFromName", "s", 's', afterLast(c.s(0), ":")),
    FN("interToUI", "s", 's', interfaceText(c.s(0))),
    FN("uniqueObjectName", "s", 's', uniqueName(c.s(0))),
    FN("attributeExists", "ss", 'i', hasAttribute(c.s(0), c.s(1))),
    FN("stringAddPrefix", "ss", 's', c.s(1) + c.s(0)),
    FN("stringRemovePrefix", "ss", 's', withoutPrefix(c.s(0), c.s(1))),
    FN("stringArrayRemovePrefix", "Ss", 'S', eachWithout(c.strings(0), c.s(1))),
    FN("isValidUiName", "s", 'i', int32_t(!c.s(0).empty() && std::isalpha(static_cast<unsigned char>(c.s(0)[0])))),
};

}  // namespace

std::span<const Native> nameNatives() { return kRows; }

}  // namespace mirk::mel
