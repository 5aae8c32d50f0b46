// The text form of patchers.
#include "ui/textpatcher.h"

#include <algorithm>
#include <map>
#include <set>

#include "kernel/console.h"
#include "kernel/dictionary.h"
#include "kernel/outlets.h"
#include "kernel/receivers.h"
#include "ui/patcherdocument.h"
#include "ui/patcherreader.h"
#include "ui/textrecords.h"

namespace maxhost {
namespace {

constexpr size_t deepest = 128; // patchers in patchers

Json rect_of(double x, double y, double width, double height) { return Json::array({x, y, width, height}); }

// A patcher whose records are being read.
struct Level {
    Patcher *patcher;
    std::vector<t_object *> boxes; // null: one that could not be made
};

class TextReader {
  public:
    explicit TextReader(const std::string &file_name) : reader_(file_name) {}
    ~TextReader() {
        while (!levels_.empty())
            close_level();
        if (inner_)
            close_patcher(inner_);
    }
    TextReader(const TextReader &) = delete;
    TextReader &operator=(const TextReader &) = delete;

    // False with the reason when the record ends the reading.
    bool take(const TextRecord &record, std::string &reason);

    // What has been read; null when that is no patcher.
    Patcher *finish(bool broken_off);

  private:
    void begin(const TextRecord &record);
    void end();
    void leave_inner();
    void close_level();
    void patcher_record(const TextRecord &record, size_t at);
    void user_box(const TextRecord &record, size_t at);
    void typed_box(const TextRecord &record, size_t at, const char *maxclass);
    void plain_box(const TextRecord &record, size_t at, const char *maxclass);
    void add_box(const TextRecord &record, Json entry);
    void adopt_inner(t_object *box);
    void cord(const TextRecord &record, size_t at);
    void message(const TextRecord &record);
    void warn(const TextRecord &record, const std::string &text);
    void warn_once(const TextRecord &record, const std::string &what);

    PatcherReader reader_;
    std::vector<Level> levels_;  // from the outermost to the innermost that is open
    Patcher *inner_ = nullptr;   // read, and waiting for its box
    bool is_over_ = false;       // the outermost has ended
    std::set<std::string> told_; // what was left out
    long last_line_ = 1;
};

void TextReader::warn(const TextRecord &record, const std::string &text) {
    reader_.warn("line " + std::to_string(record.line), text);
}

void TextReader::warn_once(const TextRecord &record, const std::string &what) {
    if (told_.insert(what).second)
        warn(record, "unknown record \"" + what + "\" is left out");
}

// ---- patchers

void TextReader::begin(const TextRecord &record) {
    auto *patcher = create<Patcher>();
    patcher->document.reset(new PatcherDocument{});
    patcher->document->patcher = new_description();
    const auto left = static_cast<double>(record.number(2)), top = static_cast<double>(record.number(3));
    const auto right = static_cast<double>(record.number(4)), bottom = static_cast<double>(record.number(5));
    patcher->document->patcher["rect"] = rect_of(left, top, std::max(0., right - left), std::max(0., bottom - top));
    levels_.push_back({patcher, {}});
}

// A patcher that ends in another waits for the box that it belongs in.
void TextReader::end() {
    sort_cords(*levels_.back().patcher, {});
    if (levels_.size() == 1) {
        is_over_ = true;
        return;
    }
    leave_inner();
    inner_ = levels_.back().patcher;
    levels_.pop_back();
}

// A patcher that no box has taken.
void TextReader::leave_inner() {
    if (!inner_)
        return;
    reader_.warn("line " + std::to_string(last_line_), "a patcher that no box takes is left out");
    close_patcher(inner_);
    inner_ = nullptr;
}

void TextReader::close_level() {
    close_patcher(levels_.back().patcher);
    levels_.pop_back();
}

void TextReader::adopt_inner(t_object *box) {
    BoxState *state = box_state(box);
    if (!state->inner || !inner_)
        return;
    close_patcher(state->inner);
    state->inner = inner_;
    inner_->owner = reinterpret_cast<t_jbox *>(box);
    inner_ = nullptr;
    object_method(box, gensym("patcherfilled"));
}

// ---- boxes

void TextReader::add_box(const TextRecord &record, Json entry) {
    t_object *box = reader_.make(*levels_.back().patcher, entry, "line " + std::to_string(record.line));
    levels_.back().boxes.push_back(box);
    if (box)
        adopt_inner(box);
}

// CLASS ATOM…: the class turns the atoms into what the box is made from.
void TextReader::user_box(const TextRecord &record, size_t at) {
    t_symbol *class_name = gensym(std::string(record.text(at)).c_str());
    std::vector<t_atom> atoms;
    for (size_t i = at + 1; i < record.words.size(); ++i)
        atoms.push_back(record.words[i].atom);
    const OwnedDictionary dictionary = new_dictionary();
    const Class *cls = find_class(CLASS_BOX, class_name);
    if (const Method *found = cls ? find_method(*cls, gensym("stdargs")) : nullptr) {
        using Conversion = long (*)(t_dictionary *, t_symbol *, long, t_atom *);
        reinterpret_cast<Conversion>(found->function)(dictionary.get(), class_name, static_cast<long>(atoms.size()),
                                                      atoms.data());
    }
    Json entry = Json::object();
    put(entry, "maxclass", class_name->s_name);
    if (!cls) { // what the inert box is to keep
        put(entry, "patching_rect",
            rect_of(static_cast<double>(record.number(at + 1)), static_cast<double>(record.number(at + 2)),
                    static_cast<double>(record.number(at + 3)), static_cast<double>(record.number(at + 4))));
        put(entry, "oldarguments", to_json(atoms, true));
        put(entry, "numinlets", 1);
    }
    for (const auto &[key, values] : dictionary->entries)
        put(entry, key->s_name, to_json(values, false));
    add_box(record, std::move(entry));
}

// X Y W FONT TEXT…
void TextReader::typed_box(const TextRecord &record, size_t at, const char *maxclass) {
    const t_atom_long font = record.number(at + 3);
    const auto size = static_cast<double>(font & 0xFFFF);
    std::string text;
    for (size_t i = at + 4; i < record.words.size(); ++i)
        text.append(text.empty() ? "" : " ").append(record.words[i].typed);
    Json entry = Json::object();
    put(entry, "fontname", fontinfo_getname(static_cast<short>(font >> 16))->s_name);
    if (size > 0)
        put(entry, "fontsize", size);
    put(entry, "maxclass", maxclass);
    put(entry, "patching_rect",
        rect_of(static_cast<double>(record.number(at)), static_cast<double>(record.number(at + 1)),
                static_cast<double>(record.number(at + 2)), size + 8));
    put(entry, "text", text);
    add_box(record, std::move(entry));
}

// X Y SIZE…
void TextReader::plain_box(const TextRecord &record, size_t at, const char *maxclass) {
    const auto size = static_cast<double>(record.number(at + 2));
    Json entry = Json::object();
    put(entry, "maxclass", maxclass);
    put(entry, "patching_rect",
        rect_of(static_cast<double>(record.number(at)), static_cast<double>(record.number(at + 1)), size,
                std::clamp(size, 15., 22.)));
    add_box(record, std::move(entry));
}

// ---- cords and messages

// SOURCE OUTLET DESTINATION INLET, the boxes counted from the one made last.
void TextReader::cord(const TextRecord &record, size_t at) {
    const std::vector<t_object *> &boxes = levels_.back().boxes;
    const auto box_at = [&](size_t word) -> t_object * {
        const t_atom_long back = record.number(word);
        return record.words.size() >= at + 4 && back >= 0 && static_cast<size_t>(back) < boxes.size()
                   ? boxes[boxes.size() - 1 - static_cast<size_t>(back)]
                   : nullptr;
    };
    t_object *from = box_at(at), *to = box_at(at + 2);
    Outlet *outlet = from ? outlet_of(from, static_cast<long>(record.number(at + 1))) : nullptr;
    const auto inlet = static_cast<long>(record.number(at + 3));
    if (outlet && to && inlet >= 0 && inlet < inlet_count(to))
        connect(*outlet, {to, inlet});
    else
        warn(record, "a cord that leads to no box, outlet or inlet is left out");
}

void TextReader::message(const TextRecord &record) {
    std::vector<t_atom> atoms;
    for (size_t i = 1; i < record.words.size(); ++i)
        atoms.push_back(record.words[i].atom);
    if (!atoms.empty())
        deliver_to_name_or_tell(gensym(std::string(record.text(0)).c_str()), message_of(atoms));
}

// ---- records

void TextReader::patcher_record(const TextRecord &record, size_t at) {
    using Reading = void (TextReader::*)(const TextRecord &, size_t, const char *);
    struct Known {
        Reading read;
        const char *maxclass;
    };
    static const std::map<std::string_view, Known> boxes{
        {"newex", {&TextReader::typed_box, "newobj"}},    {"newobj", {&TextReader::typed_box, "newobj"}},
        {"message", {&TextReader::typed_box, "message"}}, {"comment", {&TextReader::typed_box, "comment"}},
        {"number", {&TextReader::plain_box, "number"}},   {"flonum", {&TextReader::plain_box, "flonum"}},
        {"button", {&TextReader::plain_box, "button"}},   {"toggle", {&TextReader::plain_box, "toggle"}},
        {"inlet", {&TextReader::plain_box, "inlet"}},     {"outlet", {&TextReader::plain_box, "outlet"}}};
    // Prefixes of a record, and records that tell only of looks.
    static const std::set<std::string_view> prefixes{"hidden", "background"};
    static const std::set<std::string_view> looks{"window", "origin", "flags", "linecount"};
    while (prefixes.contains(record.text(at)))
        ++at;
    const std::string_view word = record.text(at);
    if (const auto found = boxes.find(word); found != boxes.end())
        return (this->*found->second.read)(record, at + 1, found->second.maxclass);
    if (word == "user")
        return user_box(record, at + 1);
    if (word == "connect" || word == "fasten")
        return cord(record, at + 1);
    if (word == "pop")
        return end();
    if (!looks.contains(word))
        warn_once(record, "#P " + std::string(word));
}

bool TextReader::take(const TextRecord &record, std::string &reason) {
    last_line_ = record.line;
    const std::string first(record.text(0));
    const bool is_begin = first == "#N" && record.text(1) == "vpatcher";
    if (record.words.empty() || (first == "max" && levels_.empty()))
        return true;
    if (is_begin && !is_over_ && levels_.size() == deepest) {
        reason =
            "line " + std::to_string(record.line) + ": patchers nested more than " + std::to_string(deepest) + " deep";
        return false;
    }
    if (is_begin && !is_over_)
        begin(record);
    else if (levels_.empty() || is_over_)
        warn_once(record, first + " outside of the patcher");
    else if (first == "#P")
        patcher_record(record, 1);
    else if (first == "#X")
        message(record);
    else
        warn_once(record, first == "#N" ? first + " " + std::string(record.text(1)) : first);
    return true;
}

Patcher *TextReader::finish(bool broken_off) {
    if (levels_.empty())
        return nullptr;
    if (broken_off || !is_over_)
        reader_.warn("line " + std::to_string(last_line_), "the text ends before the patcher does");
    leave_inner();
    while (levels_.size() > 1)
        close_level();
    if (!is_over_)
        end();
    Patcher *patcher = levels_.front().patcher;
    levels_.clear();
    return patcher;
}

} // namespace

bool is_text_patcher(const std::string &text) {
    TextRecord record;
    RecordReader records(std::string_view(text).substr(0, 100));
    return records.next(record) && record.text(0) == "max" && record.text(1) == "v2";
}

Patcher *read_text_patcher(const std::string &text, const std::string &file_name, std::string &reason) {
    const std::string readable = utf8_of_old_text(text);
    RecordReader records(readable);
    TextReader reader(file_name);
    TextRecord record;
    while (records.next(record))
        if (!reader.take(record, reason))
            return nullptr;
    Patcher *patcher = reader.finish(records.broken_off());
    if (!patcher)
        reason = "no patcher: no record \"#N vpatcher\" is in it";
    return patcher;
}

} // namespace maxhost
