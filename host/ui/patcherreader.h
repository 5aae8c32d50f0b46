// Reading patchers: from what a file says to boxes and cords.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "ui/json.h"
#include "ui/patcher.h"

namespace maxhost {

// Reads one file's patchers. What is wrong in them, and which classes are not known, goes to the console as a warning
// that begins with the name of the file; everything else is made.
class PatcherReader {
  public:
    explicit PatcherReader(std::string file_name) : file_name_(std::move(file_name)) {}

    // Fills an empty patcher from the object under "patcher"; `where` is its place in the file. What the patcher does
    // not need is kept in its document.
    void fill(Patcher &patcher, Json described, const std::string &where);

    // Makes a box from the object under "box". A class that is not known, or that makes no box, gives an inert one;
    // null only when memory runs out. The object is taken over by the box that is made. `element` is its place in the
    // list of boxes, -1 when there is no such list.
    t_object *make(Patcher &patcher, Json &entry, const std::string &where, long element = -1);

    void warn(const std::string &where, const std::string &text);

  private:
    struct OpenPatcher;

    void make_boxes(OpenPatcher &open);
    void make_lines(OpenPatcher &open);
    void make_line(OpenPatcher &open, const Json &described, const std::string &where, long line);
    t_object *find_end(OpenPatcher &open, const Json &line, const char *end, const std::string &where, long &number);
    t_symbol *class_named_by(const Json &entry, const std::string &where, std::vector<t_atom> &arguments,
                             t_dictionary *dictionary);
    t_object *make_of_class(Patcher &patcher, t_symbol *class_name, t_dictionary *dictionary,
                            std::span<const t_atom> arguments);
    void fill_inner(t_object *box, Json &entry, const std::string &where);

    std::string file_name_;
    std::unordered_set<t_symbol *> unknown_; // classes that have been told of
};

// Brings the cords of every outlet into the order in which they carry a message: by their number in the file, or else
// from the rightmost inlet to the leftmost, of two above each other the lower one first. `order_of` holds the number of
// each cord that has one, by Cord::line.
void sort_cords(Patcher &patcher, const std::vector<std::optional<t_atom_long>> &order_of);

} // namespace maxhost
