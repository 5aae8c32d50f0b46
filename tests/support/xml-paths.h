// Documents, paths and changes that are made up, and what a path selects in a holder's document.
#pragma once

#include "vrk.jxmlfile.h" // libxml2's headers come before the host's

#include <functional>
#include <string>
#include <utility>
#include <vector>

// Everything follows from the numbers that it is given: for the same ones it is the same on every machine. From zeros
// it makes little, so that a source may end.
class XmlGenerator {
  public:
    explicit XmlGenerator(std::function<size_t()> numbers) : numbers_(std::move(numbers)) {}

    size_t below(size_t n) { return numbers_() % n; }
    bool once_in(size_t n) { return below(n) == 0; }
    template <typename T, size_t n> const T &one_of(const T (&choices)[n]) { return choices[below(n)]; }

    std::string document(); // without a declaration; the root is "r"
    std::string path();     // typed; often a plain one, often of elements that are there
    std::string number();   // in one of many forms

  private:
    std::string attributes();
    std::string content(int depth);
    std::string element(int depth);
    std::string step();
    std::string filter();

    std::function<size_t()> numbers_;
};

// Changes an element or an attribute that a path selects, or tries to; tells it in words.
std::string change_nodes(t_jxmlfile *holder, XmlGenerator &generator, const std::string &path);

// What a path selects: how many nodes (-1: it cannot be evaluated), and the first, if it is an element.
struct XmlSelection {
    long count;
    const xmlNode *first;
    bool operator==(const XmlSelection &) const = default;
};

XmlSelection selected_by_xpath(t_jxmlfile *holder, std::vector<t_atom> path);
XmlSelection selected_by_holder(t_jxmlfile *holder, std::vector<t_atom> path); // from the index where that answers it
