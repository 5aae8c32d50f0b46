// What reading an XML text would cost.
#include "vrk.jxml-bounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <vector>

namespace {

constexpr size_t text_limit = 10'000'000; // libxml2 gives up in the middle of longer comments
constexpr size_t depth_limit = 256;       // and of deeper documents
constexpr size_t name_limit = 50'000;     // and of longer names

bool is_quote(char c) { return c == '"' || c == '\''; }

// Whether a name can begin with it. Bytes of other characters count as such.
bool starts_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || static_cast<signed char>(c) < 0;
}

// ---- characters

// What the steps below have to look for, as bits in a table of all bytes.
enum : unsigned char { impossible = 1, blank = 2, ends_tag_name = 4, ends_attribute_name = 8, ends_declared_word = 16 };

constexpr auto byte_kinds = [] {
    std::array<unsigned char, 256> kinds{};
    const auto add = [&kinds](std::string_view bytes, unsigned char kind) {
        for (const char c : bytes)
            kinds[static_cast<unsigned char>(c)] |= kind;
    };
    for (size_t i = 0; i < 0x20; ++i)
        kinds[i] = i != '\t' && i != '\n' && i != '\r' ? impossible : 0;
    add(" \t\n\r", blank | ends_tag_name | ends_attribute_name | ends_declared_word);
    add("/><", ends_tag_name);
    add("\"'=<>/", ends_attribute_name);
    add("()|,", ends_declared_word);
    return kinds;
}();

bool is(char c, unsigned char kinds) { return byte_kinds[static_cast<unsigned char>(c)] & kinds; }

// Whether the eight bytes at `place` are all of ASCII and none of them is a control character.
bool is_plain(const char *place) {
    constexpr std::uint64_t ones = 0x0101010101010101, tops = 0x80 * ones;
    std::uint64_t bytes;
    std::memcpy(&bytes, place, sizeof bytes);
    return ((bytes | (bytes - 0x20 * ones)) & tops) == 0;
}

// Whether a character begins here that XML does not allow: a control character, a surrogate, U+FFFE or U+FFFF.
bool is_impossible(std::string_view text) {
    const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80 || text.size() < 3)
        return is(text[0], impossible);
    return (byte(0) == 0xED && byte(1) >= 0xA0) || (byte(0) == 0xEF && byte(1) == 0xBF && byte(2) >= 0xBE);
}

// The first of them, or the end of the text.
size_t impossible_character(std::string_view text) {
    constexpr size_t step = 8;
    for (size_t i = 0; i < text.size(); i += step) {
        if (i + step <= text.size() && is_plain(text.data() + i)) // nearly always
            continue;
        for (size_t place = i; place < std::min(i + step, text.size()); ++place)
            if (is_impossible(text.substr(place)))
                return place;
    }
    return text.size();
}

// The character at the beginning of a text; 0 when it is not one in UTF-8.
unsigned first_character(std::string_view text) {
    const unsigned first = text.empty() ? 0 : static_cast<unsigned char>(text[0]);
    const size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length > text.size() || (length > 1 && first < 0xC2))
        return 0;
    unsigned character = length == 1 ? first : first & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80)
            return 0;
        character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    return character;
}

// Whether a name can begin with a character of XML, fifth edition, which is what libxml2 goes by.
bool begins_name(unsigned character) {
    constexpr unsigned ranges[][2] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                      {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                      {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
    if (character < 0x80)
        return starts_name(static_cast<char>(character));
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [character](const auto &range) { return range[0] <= character && character <= range[1]; });
}

// ---- the text

// Goes through a text as libxml2 would. A step is false where it ends: at a place that no parser comes by, or at a
// refusal. In tags there is no "<", so that none is overlooked, whatever libxml2 makes of a tag that is broken.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    jxml_bounds run();
    size_t end() const { return at_; } // of what was looked at

  private:
    // What stands here, or so many bytes ahead; at the end of the text a byte that no markup has.
    char now() const { return ahead(0); }
    char ahead(size_t bytes) const { return at_ + bytes < text_.size() ? text_[at_ + bytes] : '\0'; }
    bool begins(std::string_view piece) const { return text_.substr(at_).starts_with(piece); }
    // The next byte of a kind; the end of the text when there is none.
    size_t next(unsigned char kinds) const {
        size_t place = at_;
        while (place < text_.size() && !is(text_[place], kinds))
            ++place;
        return place;
    }
    void skip_blanks() {
        while (is(now(), blank))
            ++at_;
    }
    bool refuse(const char *format, long limit);
    bool count_pieces(std::int64_t pieces);
    bool count_words(std::int64_t words);
    bool compare(std::int64_t comparisons);
    bool skip_construct(std::string_view beginning, std::string_view ending);
    bool markup();
    bool processing_instruction();
    bool start_tag();
    bool attribute(std::int64_t &attributes, std::int64_t &namespaces);
    bool tag_is_whole(std::int64_t attributes, std::int64_t namespaces, bool is_empty);
    bool end_tag();
    bool skip_text();
    bool document_type();
    bool declarations();
    bool part_of_declarations();
    bool parameter_reference();
    bool declaration();
    bool literal(bool of_attributes, bool of_parameter);
    long parameter_words() const;

    std::string_view text_;
    size_t at_ = 0;
    jxml_refusal refusal_{nullptr, 0};
    std::int64_t pieces_ = 0;
    std::int64_t words_ = 0; // of the document type
    std::int64_t ids_ = 0;
    std::int64_t comparisons_ = 0;
    bool declares_ids_ = false;
    std::int64_t declared_ = 0;     // attributes in the document type, or more
    bool may_declare_more_ = false; // parameter entities may
    std::int64_t tags_ = 0;
    std::int64_t literal_tags_ = 0; // in entities
    std::int64_t most_in_scope_ = 0;
    std::vector<std::int64_t> in_scope_{0}; // namespaces at each depth
};

bool Scanner::refuse(const char *format, long limit) {
    refusal_ = {format, limit};
    return false;
}

bool Scanner::count_pieces(std::int64_t pieces) {
    pieces_ += pieces;
    if (pieces_ > JXML_PIECE_LIMIT)
        return refuse("%s has more than %ld tags, attributes and references", JXML_PIECE_LIMIT);
    return true;
}

bool Scanner::count_words(std::int64_t words) {
    words_ += words;
    if (words_ > JXML_WORD_LIMIT)
        return refuse("the document type of %s has more than %ld words", JXML_WORD_LIMIT);
    return true;
}

bool Scanner::compare(std::int64_t comparisons) {
    comparisons_ += comparisons;
    if (comparisons_ > JXML_COMPARISON_LIMIT)
        return refuse("attributes of %s need more than %ld comparisons", JXML_COMPARISON_LIMIT);
    return true;
}

// Behind the ending of a comment, a CDATA section or a processing instruction.
bool Scanner::skip_construct(std::string_view beginning, std::string_view ending) {
    const size_t content = at_ + beginning.size();
    const size_t end = text_.find(ending, content);
    if (end == text_.npos || end - content > text_limit) {
        at_ = std::min(content + text_limit, text_.size());
        return false;
    }
    at_ = end + ending.size();
    return count_pieces(1);
}

// Where no target stands, or one that is too long, libxml2 goes on as if a text stood there.
bool Scanner::processing_instruction() {
    const size_t target = at_ + 2;
    const size_t end = text_.substr(target, name_limit + 1).find_first_of(" \t\n\r?");
    return end != text_.npos && begins_name(first_character(text_.substr(target))) && skip_construct("<?", "?>");
}

bool Scanner::markup() {
    if (begins("<!--"))
        return skip_construct("<!--", "-->");
    if (begins("<![CDATA["))
        return skip_construct("<![CDATA[", "]]>");
    if (begins("<!DOCTYPE") && in_scope_.size() == 1)
        return document_type();
    if (begins("<?"))
        return processing_instruction();
    if (begins("</"))
        return end_tag();
    return starts_name(ahead(1)) && start_tag();
}

// ---- tags

// A name, "=" and a value.
bool Scanner::attribute(std::int64_t &attributes, std::int64_t &namespaces) {
    const size_t start = at_;
    at_ = next(ends_attribute_name);
    const std::string_view name = text_.substr(start, at_ - start);
    skip_blanks();
    if (name.empty() || now() != '=')
        return false;
    ++at_;
    skip_blanks();
    if (!is_quote(now()))
        return false;
    const char quote = text_[at_++];
    std::int64_t references = 0;
    for (; now() != quote; ++at_) {
        if (at_ == text_.size() || now() == '<')
            return false;
        references += now() == '&';
    }
    ++at_;
    ++attributes;
    namespaces += name.starts_with("xmlns");
    ids_ += declares_ids_ || name == "xml:id";
    if (attributes > JXML_ATTRIBUTE_LIMIT)
        return refuse("a tag of %s has more than %ld attributes", JXML_ATTRIBUTE_LIMIT);
    if (ids_ > JXML_ID_LIMIT)
        return refuse("%s has more than %ld identifiers", JXML_ID_LIMIT);
    return count_pieces(1 + references);
}

bool Scanner::start_tag() {
    ++at_;
    at_ = next(ends_tag_name);
    std::int64_t attributes = 0, namespaces = 0;
    for (;;) {
        if (is(now(), blank))
            ++at_;
        else if (now() == '>' || begins("/>"))
            return tag_is_whole(attributes, namespaces, now() == '/');
        else if (!attribute(attributes, namespaces))
            return false;
    }
}

bool Scanner::tag_is_whole(std::int64_t attributes, std::int64_t namespaces, bool is_empty) {
    at_ += is_empty ? 2 : 1;
    ++tags_;
    const std::int64_t in_scope = in_scope_.back() + namespaces;
    most_in_scope_ = std::max(most_in_scope_, in_scope);
    const std::int64_t compared = attributes + declared_;
    if (!count_pieces(1) || !compare(compared * compared + in_scope * (1 + attributes)))
        return false;
    if (!is_empty)
        in_scope_.push_back(in_scope);
    return in_scope_.size() <= depth_limit + 2;
}

bool Scanner::end_tag() {
    for (; now() != '>'; ++at_)
        if (at_ == text_.size() || (now() == '<' && !begins("</")))
            return false;
    ++at_;
    if (in_scope_.size() > 1)
        in_scope_.pop_back();
    return true;
}

// ---- the document type

bool Scanner::document_type() {
    at_ += std::string_view("<!DOCTYPE").size();
    char quote = 0;
    for (; at_ < text_.size() && now() != '<'; ++at_) {
        if (quote)
            quote = now() == quote ? char{0} : quote;
        else if (is_quote(now()))
            quote = now();
        else if (now() == '>' || now() == '[')
            break;
    }
    if (now() != '>' && now() != '[')
        return false;
    return text_[at_++] == '>' || declarations();
}

bool Scanner::declarations() {
    while (now() != ']')
        if (!part_of_declarations())
            return false;
    ++at_;
    skip_blanks();
    if (now() != '>')
        return false;
    ++at_;
    return true;
}

bool Scanner::part_of_declarations() {
    if (begins("<!--"))
        return skip_construct("<!--", "-->");
    if (begins("<?"))
        return processing_instruction();
    if (begins("<!"))
        return declaration();
    if (now() == '%')
        return parameter_reference();
    const bool is_space = is(now(), blank);
    skip_blanks();
    return is_space;
}

bool Scanner::parameter_reference() {
    const size_t end = text_.find_first_of(";<", at_);
    if (end == text_.npos || text_[end] == '<')
        return false;
    at_ = end + 1;
    return true;
}

// From "<!" to ">": words, and texts in quotes.
bool Scanner::declaration() {
    const bool of_attributes = begins("<!ATTLIST"), of_entity = begins("<!ENTITY");
    bool of_parameter = false, in_word = false;
    for (at_ += 2; now() != '>';) {
        if (at_ >= text_.size() || now() == '<' || now() == ']')
            return false;
        if (is_quote(now())) {
            if (!literal(of_attributes, of_parameter))
                return false;
            in_word = false;
            continue;
        }
        of_parameter = of_parameter || (of_entity && now() == '%');
        const bool is_part = !is(now(), ends_declared_word);
        if (is_part && !in_word) {
            if (!count_words(1))
                return false;
            if (begins("ID") && is(ahead(2), blank))
                declares_ids_ = true;
        }
        declared_ += is_part && !in_word && of_attributes;
        in_word = is_part;
        ++at_;
    }
    ++at_;
    return true;
}

// A text in quotes. What an entity stands for is read as tags, or as declarations, where it is referred to; its
// characters may be written as references.
bool Scanner::literal(bool of_attributes, bool of_parameter) {
    const char quote = text_[at_];
    const size_t end = text_.find(quote, at_ + 1);
    if (end == text_.npos)
        return false;
    const std::string_view value = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    std::int64_t tags = 0, attributes = 0, references = 0;
    for (size_t i = 0; i < value.size(); ++i) {
        const bool is_character = value.substr(i, 2) == "&#";
        tags += value[i] == '<' || is_character;
        attributes += value[i] == '=' || is_character;
        references += value[i] == '&';
    }
    declared_ += of_attributes;
    declares_ids_ = declares_ids_ || (of_parameter && (references > 0 || value.find("ID") != value.npos));
    may_declare_more_ = may_declare_more_ || (of_parameter && (references > 0 || value.find("ATTLIST") != value.npos));
    literal_tags_ += tags;
    if (tags == 0)
        attributes = 0; // they are text
    if (attributes > JXML_ATTRIBUTE_LIMIT)
        return refuse("a tag of %s has more than %ld attributes", JXML_ATTRIBUTE_LIMIT);
    return count_words(1) && count_pieces(tags + references + attributes) && compare(attributes * attributes);
}

// ---- all of it

// To the next "<"; false when that is one reference too many.
bool Scanner::skip_text() {
    const size_t end = std::min(text_.find('<', at_), text_.size());
    const std::int64_t references = std::count(text_.begin() + at_, text_.begin() + end, '&');
    at_ = end;
    return references == 0 || count_pieces(references);
}

// How many words parameter entities may expand to. Two of them can make an attribute with a default, with which those
// of every tag are compared.
long Scanner::parameter_words() const {
    if (!may_declare_more_)
        return JXML_PARAMETER_LIMIT;
    const auto comparisons_of_a_tag = JXML_COMPARISON_LIMIT / std::max<std::int64_t>(tags_ + literal_tags_, 1);
    return std::min(JXML_PARAMETER_LIMIT, 2 * std::lround(std::sqrt(comparisons_of_a_tag)));
}

jxml_bounds Scanner::run() {
    if (begins("<?xml") && is(ahead(5), blank)) // when the declaration is broken, libxml2 goes on after the next ">"
        at_ = std::min(text_.find('>'), text_.size() - 1) + 1;
    while (skip_text() && at_ < text_.size() && markup()) {
    }
    // No product here overflows: what is beyond these has been refused.
    constexpr std::int64_t most_declared = JXML_WORD_LIMIT;
    constexpr std::int64_t most_in_scope = std::int64_t{depth_limit + 2} * JXML_ATTRIBUTE_LIMIT;
    static_assert(most_declared * most_declared + most_in_scope <=
                  std::numeric_limits<std::int64_t>::max() / JXML_PIECE_LIMIT);
    if (!refusal_.format) // entities may be referred to at any place
        compare(literal_tags_ * (declared_ * declared_ + most_in_scope_));
    return {refusal_, parameter_words()};
}

} // namespace

jxml_bounds jxml_bounds_check(std::string_view *text) {
    try {
        constexpr std::string_view mark = "\xEF\xBB\xBF";
        const size_t start = text->starts_with(mark) ? mark.size() : 0;
        const std::string_view seen = text->substr(start, impossible_character(*text) + 1 - start);
        Scanner scanner(seen);
        const jxml_bounds bounds = scanner.run();
        // With what a parser looks at when it gives up.
        *text = text->substr(0, start + std::min(scanner.end() + 1, seen.size()));
        return bounds;
    } catch (const std::bad_alloc &) {
        return {{"out of memory for %s", 0}, 0};
    }
}
