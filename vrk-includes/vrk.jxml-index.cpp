// Plain paths, and the numbered elements that they select.
#include "vrk.jxml-index.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
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

struct plain_path {
    std::array<std::string_view, most_steps> names;
    size_t count = 0;
    size_t filtered = 0; // how many names stand up to the filter, that with the filter included; 0: there is none
    std::string_view attribute;
    double number = 0;

    std::string_view up_to_filter; // the expression before "[@"
};

bool is_name_start(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_name_part(char c) { return is_name_start(c) || is_digit(c) || c == '-' || c == '.'; }

// Takes a name off the front of the text; false when there is none. Other names that XML allows go to XPath.
bool take_name(std::string_view &text, std::string_view &name) {
    if (text.empty() || !is_name_start(text[0]))
        return false;
    size_t length = 1;
    while (length < text.size() && is_name_part(text[length]))
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
        if (path->count == most_steps || !take(text, "/") || !take_name(text, path->names[path->count]))
            return false;
        ++path->count;
        if (path->filtered || text.empty() || text[0] != '[')
            continue;
        path->filtered = path->count;
        path->up_to_filter = {expression, static_cast<size_t>(text.data() - expression)};
        if (!take(text, "[@") || !take_name(text, path->attribute) || !take(text, "=") ||
            !take_number(text, path->number) || !take(text, "]"))
            return false;
    }
    return path->count > 0;
}

// ---- matching nodes

bool has_name(const xmlChar *name, std::string_view wanted) {
    const char *text = reinterpret_cast<const char *>(name);
    return std::strncmp(text, wanted.data(), wanted.size()) == 0 && text[wanted.size()] == '\0';
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

// Calls `visit` with every node that the names select below a parent, in document order.
template <typename Visit>
void walk(const xmlNode *parent, const std::string_view *names, size_t count, const Visit &visit) {
    for (xmlNodePtr child = parent->children; child; child = child->next) {
        if (!is_element(child, *names))
            continue;
        if (count == 1)
            visit(child);
        else
            walk(child, names + 1, count - 1, visit);
    }
}

// How many elements a node is away from its document, itself included; 0 for a node that is in none.
size_t depth_of(const xmlNode *node) {
    size_t depth = 0;
    for (; node && node->type == XML_ELEMENT_NODE; node = node->parent)
        ++depth;
    return node && (node->type == XML_DOCUMENT_NODE || node->type == XML_HTML_DOCUMENT_NODE) ? depth : 0;
}

// ---- indexes

struct numbered_element {
    double number;
    xmlNodePtr element; // null when it has gone
};

bool is_less(const numbered_element &a, const numbered_element &b) { return a.number < b.number; }

// The elements of one path that have a numeric attribute of one name, by number, and of the same number in document
// order.
struct number_index {
    std::string path; // "/resourcefile/resource/string"; empty while the index is not in use
    std::vector<std::string> names;
    std::string attribute;
    std::vector<numbered_element> elements;
    size_t gone = 0;
};

enum class relation { none, above, same };

// Whether the path selects an element, or elements that could lie below it.
relation relate(const number_index &index, const xmlNode *element) {
    const std::vector<std::string> &names = index.names;
    size_t depth = depth_of(element);
    if (depth == 0 || depth > names.size())
        return relation::none;
    const relation found = depth == names.size() ? relation::same : relation::above;
    for (; depth > 0; --depth, element = element->parent)
        if (!is_element(element, names[depth - 1]))
            return relation::none;
    return found;
}

void build(number_index &index, xmlDocPtr doc, const plain_path &path) {
    xmlInitParser(); // makes libxml2's not-a-number
    index.names.assign(path.names.begin(), path.names.begin() + static_cast<long>(path.filtered));
    index.attribute = path.attribute;
    const auto *top = reinterpret_cast<const xmlNode *>(doc);
    size_t count = 0;
    walk(top, path.names.data(), path.filtered, [&](xmlNodePtr) { ++count; });
    index.elements.reserve(count);
    walk(top, path.names.data(), path.filtered, [&](xmlNodePtr element) {
        if (const double number = number_of(element, path.attribute); !std::isnan(number))
            index.elements.push_back({number, element});
    });
    if (!std::is_sorted(index.elements.begin(), index.elements.end(), is_less))
        std::stable_sort(index.elements.begin(), index.elements.end(), is_less);
    index.path = path.up_to_filter;
}

void drop(number_index &index) { index = number_index(); }

// Takes an element out; it may not be in.
void forget(number_index &index, double number, const xmlNode *element) {
    if (std::isnan(number))
        return;
    const auto [first, last] =
        std::equal_range(index.elements.begin(), index.elements.end(), numbered_element{number, nullptr}, is_less);
    for (auto at = first; at != last; ++at) {
        if (at->element != element)
            continue;
        at->element = nullptr;
        if (++index.gone > index.elements.size() / 2) {
            std::erase_if(index.elements, [](const numbered_element &each) { return !each.element; });
            index.gone = 0;
        }
        return;
    }
}

// Puts an element in, if it has a number. The index is dropped when another one has it too: which of the two comes
// first is for a new index to find out.
void add(number_index &index, double number, xmlNodePtr element) {
    if (std::isnan(number))
        return;
    const auto [first, last] =
        std::equal_range(index.elements.begin(), index.elements.end(), numbered_element{number, nullptr}, is_less);
    if (std::any_of(first, last, [](const numbered_element &each) { return each.element != nullptr; }))
        drop(index);
    else
        index.elements.insert(last, {number, element});
}

} // namespace

struct jxml_index {
    xmlDocPtr doc = nullptr; // that all of them are of
    std::array<number_index, most_indexes> indexes;
    size_t oldest = 0;
};

namespace {

// The index for the filter of a path; an old one gives way to a new one.
number_index &index_for(jxml_index &all, xmlDocPtr doc, const plain_path &path) {
    if (all.doc != doc) {
        all = jxml_index();
        all.doc = doc;
    }
    for (number_index &each : all.indexes)
        if (each.path == path.up_to_filter && each.attribute == path.attribute)
            return each;
    number_index &made = all.indexes[all.oldest];
    drop(made); // while it is built it answers nothing
    build(made, doc, path);
    all.oldest = (all.oldest + 1) % most_indexes;
    return made;
}

void select_numbered(const number_index &index, const plain_path &path, path_selection *out) {
    const auto visit = [out](xmlNodePtr node) {
        if (out->count++ == 0)
            out->first = node;
    };
    const auto [first, last] =
        std::equal_range(index.elements.begin(), index.elements.end(), numbered_element{path.number, nullptr}, is_less);
    const size_t rest = path.count - path.filtered;
    for (auto at = first; at != last; ++at) {
        if (!at->element)
            continue;
        if (rest == 0)
            visit(at->element);
        else
            walk(at->element, path.names.data() + path.filtered, rest, visit);
    }
}

// Carries out a change of every index that is in use; one for which memory runs out is given up.
template <typename Change> void change_each(jxml_index *all, const Change &change) {
    for (size_t i = 0; all && i < most_indexes; ++i) {
        number_index &index = all->indexes[i];
        if (index.path.empty())
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
    plain_path path;
    if (!read_plain_path(expression, &path))
        return false;
    *out = {};
    try {
        if (path.filtered == 0) {
            walk(reinterpret_cast<const xmlNode *>(doc), path.names.data(), path.count, [out](xmlNodePtr node) {
                if (out->count++ == 0)
                    out->first = node;
            });
            return true;
        }
        if (!*index)
            *index = new jxml_index;
        select_numbered(index_for(**index, doc, path), path, out);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

void jxml_index_added(jxml_index *all, xmlNodePtr element) {
    change_each(all, [element](number_index &index) {
        if (relate(index, element) == relation::same)
            add(index, number_of(element, index.attribute), element);
    });
}

void jxml_index_attribute_set(jxml_index *all, xmlNodePtr element, const char *name) {
    change_each(all, [element, name](number_index &index) {
        if (index.attribute == name && relate(index, element) == relation::same)
            add(index, number_of(element, index.attribute), element);
    });
}

void jxml_index_attribute_lost(jxml_index *all, xmlNodePtr element, const char *name) {
    change_each(all, [element, name](number_index &index) {
        if (index.attribute == name && relate(index, element) == relation::same)
            forget(index, number_of(element, index.attribute), element);
    });
}

void jxml_index_removed(jxml_index *all, xmlNodePtr element) {
    change_each(all, [element](number_index &index) {
        switch (relate(index, element)) {
        case relation::same:
            forget(index, number_of(element, index.attribute), element);
            break;
        case relation::above:
            drop(index);
            break;
        case relation::none:
            break;
        }
    });
}

void jxml_index_emptied(jxml_index *all, xmlNodePtr element) {
    change_each(all, [element](number_index &index) {
        if (relate(index, element) == relation::above)
            drop(index);
    });
}

void jxml_index_free(jxml_index *index) { delete index; }
