// JSON.
#include "ui/json.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "ext_obex.h"
#include "ext_proto.h"
#include "kernel/console.h"

namespace maxhost {
namespace {

constexpr size_t deepest = 512;
constexpr size_t longest_reason = 200; // bytes; the rest is cut

// "line L, column C" of a byte, counted from 1.
std::string place_of(const std::string &text, size_t position) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(position > 0 ? position - 1 : 0, text.size()));
    const auto line = 1 + std::count(text.begin(), end, '\n');
    const auto start = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
    return "line " + std::to_string(line) + ", column " + std::to_string(end - start + 1);
}

// What the parser says, without its own name for the error and the place.
std::string bare_reason(std::string what) {
    if (const size_t bracket = what.find("] "); bracket != what.npos)
        what.erase(0, bracket + 2);
    if (what.starts_with("parse error at "))
        what.erase(0, what.find(": ") + 2);
    return cut(std::move(what), longest_reason);
}

// Builds the value from what the parser finds. Keys are not searched for while an object grows, so that one of very
// many keys costs no more than its size.
class Builder : public nlohmann::json_sax<Json> {
  public:
    Builder(const std::string &text, Json &root, std::string &reason) : text_(text), root_(root), reason_(reason) {}

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(Json::number_integer_t value) override { return add(value); }
    bool number_unsigned(Json::number_unsigned_t value) override { return add(value); }
    bool number_float(Json::number_float_t value, const std::string &) override { return add(value); }
    bool string(std::string &value) override { return add(std::move(value)); }
    bool binary(Json::binary_t &) override { return false; } // no JSON text has any
    bool start_object(size_t) override { return open(Json::object()); }
    bool start_array(size_t) override { return open(Json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(std::string &name) override {
        key_ = std::move(name);
        return true;
    }
    bool parse_error(size_t position, const std::string &, const nlohmann::detail::exception &error) override {
        reason_ = place_of(text_, position) + ": " + bare_reason(error.what());
        return false;
    }

  private:
    bool add(Json value) {
        place(std::move(value));
        return true;
    }

    bool open(Json container) {
        if (open_.size() == deepest) {
            reason_ = "nested more than " + std::to_string(deepest) + " deep";
            return false;
        }
        open_.push_back(&place(std::move(container)));
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    Json &place(Json value) {
        if (open_.empty())
            return root_ = std::move(value);
        if (open_.back()->is_array()) {
            open_.back()->push_back(std::move(value));
            return open_.back()->back();
        }
        auto &members = open_.back()->get_ref<Json::object_t &>();
        members.emplace_back(key_, std::move(value));
        return members.back().second;
    }

    const std::string &text_;
    Json &root_;
    std::string &reason_;
    std::vector<Json *> open_;
    std::string key_;
};

// Writes a value piece by piece, with one serializer for all: making one costs more than most values do.
class Writer {
  public:
    std::string text;
    bool replaced = false;

    void write(const Json &value, size_t level) {
        if (value.is_object() && !value.empty())
            write_object(value, level);
        else if (value.is_array() && !value.empty())
            write_list(value, level);
        else
            write_plain(value);
    }

  private:
    void write_plain(const Json &value) {
        const size_t before = text.size();
        try {
            serializer_.dump(value, false, false, 0);
        } catch (const Json::type_error &) { // not UTF-8
            text.resize(before);
            text += value.dump(-1, ' ', false, Json::error_handler_t::replace);
            replaced = true;
        }
    }

    void write_object(const Json &value, size_t level) {
        const char *before = "{";
        for (const auto &[key, part] : value.get_ref<const Json::object_t &>()) {
            text += before;
            new_line(level + 1);
            write_plain(key);
            text += ": ";
            write(part, level + 1);
            before = ",";
        }
        new_line(level);
        text += '}';
    }

    void write_list(const Json &value, size_t level) {
        const bool in_one_line = std::none_of(value.begin(), value.end(), [](auto &v) { return v.is_structured(); });
        const char *before = "[";
        for (const Json &part : value) {
            text += before;
            in_one_line ? text.append(" ") : new_line(level + 1);
            write(part, level + 1);
            before = ",";
        }
        in_one_line ? text.append(" ") : new_line(level);
        text += ']';
    }

    std::string &new_line(size_t level) { return text.append(1, '\n').append(4 * level, ' '); }

    nlohmann::detail::serializer<Json> serializer_{nlohmann::detail::output_adapter<char>(text), ' '};
};

bool to_atom(const Json &value, t_atom &atom) {
    const bool is_too_large = value.is_number_unsigned() && value.get<uint64_t>() > std::numeric_limits<int64_t>::max();
    if (value.is_string())
        atom_setsym(&atom, gensym(value.get_ref<const std::string &>().c_str()));
    else if (value.is_boolean())
        atom_setlong(&atom, value.get<bool>());
    else if (value.is_number_integer() && !is_too_large)
        atom_setlong(&atom, value.get<int64_t>());
    else if (value.is_number())
        atom_setfloat(&atom, value.get<double>());
    else
        return false;
    return true;
}

// JSON has no infinite number: the farthest there is. What is no number is 0.
double finite(double number) {
    constexpr double farthest = std::numeric_limits<double>::max();
    return std::isnan(number) ? 0.0 : std::clamp(number, -farthest, farthest);
}

Json value_of(const t_atom &atom) {
    switch (atom_gettype(&atom)) {
    case A_LONG:
        return atom_getlong(&atom);
    case A_FLOAT:
        return finite(atom_getfloat(&atom));
    case A_SYM:
        return atom_getsym(&atom)->s_name;
    default:
        return nullptr;
    }
}

bool is_alphabetical(const Json &object) {
    const std::string *before = nullptr;
    for (const auto &[key, value] : object.get_ref<const Json::object_t &>()) {
        if (before && *before > key)
            return false;
        before = &key;
    }
    return true;
}

} // namespace

bool parse_json(const std::string &text, Json &value, std::string &reason) {
    Builder builder(text, value, reason);
    return Json::sax_parse(text, &builder);
}

std::string json_text(const Json &value, bool &replaced) {
    Writer writer;
    writer.write(value, 0);
    replaced = writer.replaced;
    return std::move(writer.text) + "\n";
}

bool to_atoms(const Json &value, std::vector<t_atom> &atoms) {
    atoms.clear();
    if (!value.is_array())
        return to_atom(value, atoms.emplace_back());
    atoms.resize(value.size());
    for (size_t i = 0; i < value.size(); ++i)
        if (!to_atom(value[i], atoms[i]))
            return false;
    return true;
}

Json to_json(std::span<const t_atom> atoms, bool as_list) {
    if (atoms.size() == 1 && !as_list)
        return value_of(atoms[0]);
    Json list = Json::array();
    for (const t_atom &atom : atoms)
        list.push_back(value_of(atom));
    return list;
}

void put(Json &object, const std::string &key, Json value) {
    if (auto found = object.find(key); found != object.end()) {
        *found = std::move(value);
        return;
    }
    auto &before = object.get_ref<Json::object_t &>();
    const auto is_behind = [&](const auto &each) { return each.first > key; };
    const auto place = is_alphabetical(object) ? std::find_if(before.begin(), before.end(), is_behind) : before.end();
    Json::object_t with;
    std::move(before.begin(), place, std::back_inserter(with));
    with.emplace_back(key, std::move(value));
    std::move(place, before.end(), std::back_inserter(with));
    object = std::move(with);
}

const Json *member(const Json &object, const char *key) {
    if (!object.is_object())
        return nullptr;
    auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

void dismantle(Json &value) noexcept {
    // No deeper than what can be read. The containers are gone through themselves: the library's own iterators throw.
    if (auto *members = value.get_ptr<Json::object_t *>())
        for (auto &[key, each] : *members)
            dismantle(each);
    else if (auto *elements = value.get_ptr<Json::array_t *>())
        for (Json &each : *elements)
            dismantle(each);
    value.clear();
}

const char *kind_of(const Json &value) {
    switch (value.type()) {
    case Json::value_t::object:
        return "an object";
    case Json::value_t::array:
        return "a list";
    case Json::value_t::string:
        return "a text";
    case Json::value_t::boolean:
        return "true or false";
    case Json::value_t::null:
        return "null";
    default:
        return "a number";
    }
}

} // namespace maxhost
