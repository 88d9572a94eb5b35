#include "graph/scene.h"

#include <algorithm>
#include <cctype>

#include "graph/evaluate.h"

namespace mirk {

Scene& scene()
{
    static Scene* s = new Scene;
    return *s;
}

void Scene::add(Node& node)
{
    if (node.inScene)
        return;
    node.addRef();
    node.inScene = true;
    if (!node.order)
        node.order = ++nextOrder_;
    auto& same = byName_[node.name];
    same.insert(std::upper_bound(same.begin(), same.end(), &node,
                                 [](Node* a, Node* b) { return a->order < b->order; }), &node);
    modified = true;
}

void Scene::remove(Node& node)
{
    if (!node.inScene)
        return;
    if (onRemoved)
        onRemoved(node);
    auto it = byName_.find(node.name);
    if (it != byName_.end()) {
        std::erase(it->second, &node);
        if (it->second.empty()) {
            byName_.erase(it);
            nameFreed(node.name);
        }
    }
    node.inScene = false;
    modified = true;
    eval::freeLater(Ref<Object>(&node));
    node.release();
}

void Scene::renamed(Node& node, const std::string& old)
{
    auto it = byName_.find(old);
    if (it != byName_.end()) {
        std::erase(it->second, &node);
        if (it->second.empty()) {
            byName_.erase(it);
            nameFreed(old);
        }
    }
    byName_[node.name].push_back(&node);
    modified = true;
}

void Scene::nameFreed(const std::string& name)
{
    const size_t digits = name.find_last_not_of("0123456789") + 1;
    if (digits == name.size() || name.size() - digits > 9 || name[digits] == '0')
        return;
    const auto it = numbers_.find(name.substr(0, digits));
    const int  number = std::stoi(name.substr(digits));
    if (it == numbers_.end())
        return;
    Numbers& n = it->second;
    if (number >= n.runFirst && number < n.runEnd)
        n.runEnd = number;
    if (number + 1 == n.next)
        n.next = number;
    else if (number < n.next)
        n.freed.insert(number);
}

int Scene::freeNumber(const std::string& base, int from)
{
    Numbers&   n = numbers_[base];
    const auto taken = [&](int number) { return byName_.count(base + std::to_string(number)) != 0; };
    for (auto it = n.freed.lower_bound(from); it != n.freed.end(); it = n.freed.erase(it))
        if (*it < n.next && !taken(*it))
            return *it;
    while (taken(n.next))
        ++n.next;
    if (from <= n.next)
        return n.next;
    if (from < n.runFirst || from > n.runEnd)
        n.runFirst = n.runEnd = from;
    while (taken(n.runEnd))
        ++n.runEnd;
    return n.runEnd;
}

const std::vector<Node*>& Scene::named(const std::string& name) const
{
    static const std::vector<Node*> none;
    auto it = byName_.find(name);
    return it == byName_.end() ? none : it->second;
}

std::vector<Node*> Scene::nodes() const
{
    std::vector<Node*> all;
    for (auto& [name, list] : byName_)
        all.insert(all.end(), list.begin(), list.end());
    std::sort(all.begin(), all.end(), [](Node* a, Node* b) { return a->order < b->order; });
    return all;
}

namespace {

/// One step of a plug path: a name and, behind it, indices.
struct Step
{
    std::string      name;
    std::vector<int> indices;
};

bool parse(const std::string& text, std::vector<Step>& steps, std::string* why)
{
    size_t i = 0;
    auto fail = [&](const std::string& reason) { if (why) *why = reason; return false; };
    while (i < text.size()) {
        Step step;
        while (i < text.size() && text[i] != '.' && text[i] != '[')
            step.name += text[i++];
        if (step.name.empty())
            return fail("'" + text + "' is no attribute name");
        while (i < text.size() && text[i] == '[') {
            const size_t close = text.find(']', i);
            if (close == std::string::npos)
                return fail("']' is missing in '" + text + "'");
            const std::string number = text.substr(i + 1, close - i - 1);
            if (number.empty() || !std::all_of(number.begin(), number.end(), [](unsigned char c) { return std::isdigit(c); })
                || number.size() > 9)
                return fail("'[" + number + "]' is no valid index in '" + text + "'");
            step.indices.push_back(std::stoi(number));
            i = close + 1;
        }
        steps.push_back(step);
        if (i < text.size()) {
            if (text[i] != '.')
                return fail("'" + text + "' is no attribute name");
            if (++i == text.size())
                return fail("'" + text + "' ends in a dot");
        }
    }
    if (steps.empty())
        return fail("the attribute name is empty");
    return true;
}

/// The attribute of this name below `a`, not looking into multis.
const Attribute* below(const Attribute& a, const std::string& name)
{
    for (auto& c : a.children)
        if (c->longName == name || c->shortName == name)
            return c.get();
    for (auto& c : a.children)
        if (!c->isArray())
            if (const Attribute* found = below(*c, name))
                return found;
    return nullptr;
}

Cell* descend(Cell& from, const Attribute& to)
{
    Cell* above = to.parent == from.attr ? &from : descend(from, *to.parent);
    return above ? above->child(to.childIndex) : nullptr;
}

}  // namespace

Cell* findCell(Node& node, const std::string& path, bool create, std::string* why)
{
    std::vector<Step> steps;
    if (!parse(path, steps, why))
        return nullptr;
    auto fail = [&](const std::string& reason) -> Cell* { if (why) *why = reason; return nullptr; };
    Cell* cell = nullptr;
    for (const Step& step : steps) {
        if (!cell) {
            for (auto& [alias, target] : node.aliases)
                if (alias == step.name && target != path) {
                    cell = findCell(node, target, create, why);
                    if (!cell)
                        return nullptr;
                }
            if (!cell) {
                Attribute* a = node.findAttribute(step.name);
                if (!a)
                    return fail("'" + node.name + "' has no attribute '" + step.name + "'");
                cell = node.cell(a);
                if (!cell)
                    return fail("'" + step.name + "' on '" + node.name + "' needs the index of the multi that it is part of");
            }
        } else {
            const Attribute* a = cell->isMulti() ? nullptr : below(*cell->attr, step.name);
            if (!a)
                return fail("'" + plugPath(*cell) + "' on '" + node.name + "' has no child '" + step.name + "'");
            cell = descend(*cell, *a);
        }
        for (int index : step.indices) {
            if (!cell->isMulti())
                return fail("'" + plugPath(*cell) + "' on '" + node.name + "' is no multi");
            Cell* element = create ? cell->element(index) : cell->elementIfAny(index);
            if (!element)
                return fail("'" + plugPath(*cell) + "[" + std::to_string(index) + "]' on '" + node.name + "' does not exist");
            cell = element;
        }
    }
    return cell;
}

}  // namespace mirk
