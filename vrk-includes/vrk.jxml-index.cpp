// Plain paths, and the numbered elements that they select.
#include "vrk.jxml-index.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <libxml/parser.h>
#include <libxml/xpath.h>

namespace {

constexpr size_t most_steps = 16;  // of a plain path; a longer one goes to XPath
constexpr size_t most_digits = 15; // of a number, so that a double holds it exactly
constexpr size_t most_indexes = 4; // that one document keeps

// ---- reading expressions

// A name, and the filter behind it unless `attribute` is empty.
template <typename Text> struct path_step {
    Text name;
    Text attribute;
    double number = 0;
};

struct plain_path {
    std::array<path_step<std::string_view>, most_steps> steps;
    size_t count = 0;
    size_t filtered = 0; // how many steps there are up to the last that has a filter; 0: none has one

    std::string_view head; // the expression before the number of that filter
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

enum character_class : unsigned char { no_name, name_part, name_start };

constexpr auto character_classes = [] {
    std::array<character_class, 256> classes{};
    for (unsigned char c = 'a'; c <= 'z'; ++c)
        classes[c] = classes[c - 'a' + 'A'] = name_start;
    for (unsigned char c = '0'; c <= '9'; ++c)
        classes[c] = name_part;
    classes['_'] = name_start;
    classes['-'] = classes['.'] = name_part;
    return classes;
}();

character_class class_of(char c) { return character_classes[static_cast<unsigned char>(c)]; }

// Takes a name off the front of the text; false when there is none. Other names that XML allows go to XPath.
bool take_name(std::string_view &text, std::string_view &name) {
    if (text.empty() || class_of(text[0]) != name_start)
        return false;
    size_t length = 1;
    while (length < text.size() && class_of(text[length]) != no_name)
        ++length;
    name = text.substr(0, length);
    text.remove_prefix(length);
    return true;
}

bool take(std::string_view &text, std::string_view piece) {
    if (!text.starts_with(piece))
        return false;
    text.remove_prefix(piece.size());
    return true;
}

// Takes a whole number, also as "5.000000", off the front of the text.
bool take_number(std::string_view &text, double &number) {
    const bool negative = take(text, "-");
    number = 0;
    size_t digits = 0;
    for (; digits < text.size() && is_digit(text[digits]); ++digits)
        number = number * 10 + (text[digits] - '0');
    if (digits == 0 || digits > most_digits)
        return false;
    text.remove_prefix(digits);
    if (take(text, "."))
        while (take(text, "0")) {
        }
    if (negative)
        number = -number;
    return true;
}

// False when the expression is no plain path.
bool read_plain_path(const char *expression, plain_path *path) {
    std::string_view text(expression);
    while (!text.empty()) {
        if (path->count == most_steps || !take(text, "/"))
            return false;
        auto &step = path->steps[path->count++];
        if (!take_name(text, step.name))
            return false;
        if (text.empty() || text[0] != '[')
            continue;
        path->filtered = path->count;
        if (!take(text, "[@") || !take_name(text, step.attribute) || !take(text, "="))
            return false;
        path->head = {expression, static_cast<size_t>(text.data() - expression)};
        if (!take_number(text, step.number) || !take(text, "]"))
            return false;
    }
    return path->count > 0;
}

// ---- matching nodes

// A node for whose name libxml2 had no memory has none.
bool has_name(const xmlChar *name, std::string_view wanted) {
    const char *text = reinterpret_cast<const char *>(name);
    return text && std::strncmp(text, wanted.data(), wanted.size()) == 0 && text[wanted.size()] == '\0';
}

bool is_element(const xmlNode *node, std::string_view name) {
    return node->type == XML_ELEMENT_NODE && !node->ns && has_name(node->name, name);
}

const xmlAttr *find_attribute(const xmlNode *element, std::string_view name) {
    const xmlAttr *attribute = element->properties;
    while (attribute && (attribute->ns || !has_name(attribute->name, name)))
        attribute = attribute->next;
    return attribute;
}

// Not-a-number when the element has no such attribute, or one that reads as no number.
double number_of(const xmlNode *element, std::string_view name) {
    const xmlAttr *attribute = find_attribute(element, name);
    if (!attribute)
        return std::nan("");
    const xmlNode *text = attribute->children;
    if (text && text->type == XML_TEXT_NODE && !text->next) // nearly always
        return xmlXPathCastStringToNumber(text->content);
    return xmlXPathCastNodeToNumber(reinterpret_cast<xmlNodePtr>(const_cast<xmlAttr *>(attribute)));
}

// Whether a step selects a node among its siblings.
template <typename Text> bool is_selected(const xmlNode *node, const path_step<Text> &step) {
    return is_element(node, step.name) && (step.attribute.empty() || number_of(node, step.attribute) == step.number);
}

// Calls `visit` with every node that the steps select below a parent, in document order; the filter of the last step
// is for `visit`.
template <typename Visit>
void walk(const xmlNode *parent, const path_step<std::string_view> *steps, size_t count, const Visit &visit) {
    for (xmlNodePtr child = parent->children; child; child = child->next) {
        if (count == 1 && is_element(child, steps->name))
            visit(child);
        else if (count > 1 && is_selected(child, *steps))
            walk(child, steps + 1, count - 1, visit);
    }
}

// How many elements a node is away from its document, itself included; 0 for a node that is in none.
size_t depth_of(const xmlNode *node) {
    size_t depth = 0;
    for (; node && node->type == XML_ELEMENT_NODE; node = node->parent)
        ++depth;
    return node && node->type == XML_DOCUMENT_NODE ? depth : 0;
}

// ---- indexes

struct numbered_element {
    double number;
    xmlNodePtr element; // null when it has gone
};

bool is_less(const numbered_element &a, const numbered_element &b) { return a.number < b.number; }

// The elements of one path that have a numeric attribute of the name in its last filter, by number, and of the same
// number in document order.
struct number_index {
    std::string head; // of expressions: "/resourcefile/resource/string[@number="; empty while the index is not in use
    std::vector<path_step<std::string>> steps;
    std::vector<numbered_element> elements;
    size_t gone = 0;
    size_t next = 0;                 // behind the elements that were found last
    const xmlNode *parent = nullptr; // of the element that was made last: it has the right path
};

enum class relation { none, above, same };

// Whether the path selects an element, or elements that could lie below it, by whatever its own number is.
relation relate(const number_index &index, const xmlNode *element) {
    const auto &steps = index.steps;
    if (element->parent && element->parent == index.parent)
        return is_element(element, steps.back().name) ? relation::same : relation::none;
    size_t depth = depth_of(element);
    if (depth == 0 || depth > steps.size() || !is_element(element, steps[depth - 1].name))
        return relation::none;
    const relation found = depth == steps.size() ? relation::same : relation::above;
    while (--depth > 0) {
        element = element->parent;
        if (!is_selected(element, steps[depth - 1]))
            return relation::none;
    }
    return found;
}

const std::string &attribute_of(const number_index &index) { return index.steps.back().attribute; }

// Whether an attribute of an element decides about those below it.
bool is_filter_above(const number_index &index, const xmlNode *element, const char *name) {
    return relate(index, element) == relation::above && index.steps[depth_of(element) - 1].attribute == name;
}

void build(number_index &index, xmlDocPtr doc, const plain_path &path) {
    xmlInitParser(); // makes libxml2's not-a-number
    for (const auto &step : std::span(path.steps.data(), path.filtered))
        index.steps.push_back({std::string(step.name), std::string(step.attribute), step.number});
    walk(reinterpret_cast<const xmlNode *>(doc), path.steps.data(), path.filtered, [&](xmlNodePtr element) {
        if (const double number = number_of(element, attribute_of(index)); !std::isnan(number))
            index.elements.push_back({number, element});
    });
    if (!std::is_sorted(index.elements.begin(), index.elements.end(), is_less))
        std::stable_sort(index.elements.begin(), index.elements.end(), is_less);
    index.head = path.head;
}

void drop(number_index &index) { index = number_index(); }

// The elements of a number, or the place where they would be. They are mostly asked for in order, and added at the end.
std::span<numbered_element> find(number_index &index, double number) {
    std::vector<numbered_element> &all = index.elements;
    size_t at = index.next;
    if (all.empty() || all.back().number < number)
        at = all.size();
    else if (at >= all.size() || all[at].number != number || (at > 0 && all[at - 1].number == number))
        at = static_cast<size_t>(std::lower_bound(all.begin(), all.end(), numbered_element{number, nullptr}, is_less) -
                                 all.begin());
    index.next = at;
    while (index.next < all.size() && all[index.next].number == number)
        ++index.next;
    return {all.data() + at, index.next - at};
}

// Takes an element out; it may not be in.
void forget(number_index &index, double number, const xmlNode *element) {
    if (std::isnan(number))
        return;
    for (numbered_element &each : find(index, number)) {
        if (each.element != element)
            continue;
        each.element = nullptr;
        ++index.gone;
    }
    if (index.gone > index.elements.size() / 2) {
        std::erase_if(index.elements, [](const numbered_element &each) { return !each.element; });
        index.gone = 0;
    }
}

// Puts an element in, if it has a number. The index is dropped when another one has it too: which of the two comes
// first is for a new index to find out.
void add(number_index &index, double number, xmlNodePtr element) {
    if (std::isnan(number))
        return;
    const std::span<numbered_element> same = find(index, number);
    if (std::any_of(same.begin(), same.end(), [](const numbered_element &each) { return each.element != nullptr; }))
        drop(index);
    else
        index.elements.insert(index.elements.begin() + (same.data() + same.size() - index.elements.data()),
                              {number, element});
}

} // namespace

struct jxml_index {
    std::array<number_index, most_indexes> indexes;
    size_t oldest = 0;

    std::string parent_path;     // that jxml_index_parent was asked for last
    xmlNodePtr parent = nullptr; // what it selects; null when that has to be found anew
};

namespace {

// The index for the filter of a path; an old one gives way to a new one.
number_index &index_for(jxml_index &all, xmlDocPtr doc, const plain_path &path) {
    for (number_index &each : all.indexes)
        if (each.head == path.head)
            return each;
    number_index &made = all.indexes[all.oldest];
    drop(made); // while it is built it answers nothing
    build(made, doc, path);
    all.oldest = (all.oldest + 1) % most_indexes;
    return made;
}

void add_to(path_selection *selection, xmlNodePtr node) {
    if (selection->count++ == 0)
        selection->first = node;
}

void select_numbered(number_index &index, const plain_path &path, path_selection *out) {
    const size_t rest = path.count - path.filtered;
    for (const numbered_element &each : find(index, path.steps[path.filtered - 1].number)) {
        if (!each.element)
            continue;
        if (rest == 0)
            add_to(out, each.element);
        else
            walk(each.element, path.steps.data() + path.filtered, rest, [out](xmlNodePtr node) { add_to(out, node); });
    }
}

// Answers an expression that differs from earlier ones by its number alone; false for any other.
bool select_again(jxml_index &all, std::string_view expression, path_selection *out) {
    for (number_index &index : all.indexes) {
        std::string_view rest = expression;
        double number = 0;
        if (index.head.empty() || !take(rest, index.head) || !take_number(rest, number) || rest != "]")
            continue;
        for (const numbered_element &each : find(index, number))
            if (each.element)
                add_to(out, each.element);
        return true;
    }
    return false;
}

// Carries out a change of every index that is in use; one for which memory runs out is given up.
template <typename Change> void change_each(jxml_index *all, const Change &change) {
    for (size_t i = 0; all && i < most_indexes; ++i) {
        number_index &index = all->indexes[i];
        if (index.head.empty())
            continue;
        try {
            change(index);
        } catch (const std::bad_alloc &) {
            drop(index);
        }
    }
}

} // namespace

bool jxml_index_select(jxml_index **index, xmlDocPtr doc, const char *expression, path_selection *out) {
    *out = {};
    if (*index && select_again(**index, expression, out))
        return true;
    plain_path path;
    if (!read_plain_path(expression, &path))
        return false;
    if (path.filtered == 0) {
        walk(reinterpret_cast<const xmlNode *>(doc), path.steps.data(), path.count,
             [out](xmlNodePtr node) { add_to(out, node); });
        return true;
    }
    try {
        if (!*index)
            *index = new jxml_index;
        select_numbered(index_for(**index, doc, path), path, out);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

xmlNodePtr jxml_index_parent(jxml_index *index, xmlDocPtr doc, const char *expression) {
    if (index && index->parent && index->parent_path == expression)
        return index->parent;
    plain_path path;
    path_selection selection{};
    if (!read_plain_path(expression, &path) || path.filtered)
        return nullptr;
    walk(reinterpret_cast<const xmlNode *>(doc), path.steps.data(), path.count,
         [&](xmlNodePtr node) { add_to(&selection, node); });
    if (index) {
        try {
            index->parent_path = expression;
            index->parent = selection.first;
        } catch (const std::bad_alloc &) {
            index->parent = nullptr;
        }
    }
    return selection.first;
}

void jxml_index_added(jxml_index *all, xmlNodePtr element) {
    if (all && all->parent && xmlStrEqual(all->parent->name, element->name))
        all->parent = nullptr; // it may come before the one that is known
    change_each(all, [element](number_index &index) {
        if (relate(index, element) != relation::same)
            return;
        index.parent = element->parent;
        add(index, number_of(element, attribute_of(index)), element);
    });
}

void jxml_index_attribute_set(jxml_index *all, xmlNodePtr element, const char *name) {
    change_each(all, [element, name](number_index &index) {
        if (attribute_of(index) == name && relate(index, element) == relation::same)
            add(index, number_of(element, attribute_of(index)), element);
    });
}

void jxml_index_attribute_lost(jxml_index *all, xmlNodePtr element, const char *name) {
    change_each(all, [element, name](number_index &index) {
        if (is_filter_above(index, element, name))
            drop(index);
        else if (attribute_of(index) == name && relate(index, element) == relation::same)
            forget(index, number_of(element, attribute_of(index)), element);
    });
}

void jxml_index_removed(jxml_index *all, xmlNodePtr element) {
    if (all)
        all->parent = nullptr;
    change_each(all, [element](number_index &index) {
        const relation found = relate(index, element);
        if (found == relation::same)
            forget(index, number_of(element, attribute_of(index)), element);
        else if (found == relation::above)
            drop(index);
    });
}

void jxml_index_emptied(jxml_index *all, xmlNodePtr element) {
    if (all)
        all->parent = nullptr;
    change_each(all, [element](number_index &index) {
        if (relate(index, element) == relation::above)
            drop(index);
    });
}

void jxml_index_free(jxml_index *index) { delete index; }
