// What reading an XML text would cost.
#include "vrk.jxml-bounds.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr size_t text_limit = 10'000'000; // libxml2 gives up in the middle of longer comments
constexpr size_t depth_limit = 256;       // and of deeper documents

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool is_quote(char c) { return c == '"' || c == '\''; }

// Whether a name can begin with it. Bytes of other characters count as such.
bool starts_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || static_cast<signed char>(c) < 0;
}

// ---- encodings

// Encodings in which the bytes of "<", quotes and the like never stand for anything else.
constexpr std::string_view transparent_encodings[] = {
    "UTF-8", "UTF8",        "US-ASCII", "ASCII",  "ISO-8859-", "ISO8859-",  "ISO_8859-",
    "LATIN", "WINDOWS-125", "CP125",    "KOI8-",  "EUC-",      "SHIFT_JIS", "SHIFT-JIS",
    "SJIS",  "BIG5",        "GBK",      "GB2312", "GB18030",   "TIS-620",   "MACINTOSH"};

std::string upper_case(std::string_view text) {
    std::string upper(text);
    for (char &c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return upper;
}

bool is_utf16(std::string_view name) { return name == "UTF-16" || name == "UTF16"; }
bool is_utf8(std::string_view name) { return name == "UTF-8" || name == "UTF8"; }

// The quoted texts of the XML declaration that are not its version or "yes" or "no": one at most, the encoding.
std::vector<std::string> declared_encodings(std::string_view text) {
    std::vector<std::string> names;
    if (!text.starts_with("<?xml"))
        return names;
    text = text.substr(0, text.find('>'));
    for (size_t at = text.find_first_of("\"'"); at != text.npos; at = text.find_first_of("\"'", at)) {
        const size_t end = std::min(text.find(text[at], at + 1), text.size());
        const std::string name = upper_case(text.substr(at + 1, end - at - 1));
        if (!name.empty() && starts_name(name[0]) && name != "YES" && name != "NO")
            names.push_back(name);
        at = std::min(end + 1, text.size());
    }
    return names;
}

enum class Width { byte, utf16_little, utf16_big, unknown };

Width width_of(std::string_view text) {
    using namespace std::string_view_literals;
    if (text.starts_with("\xFE\xFF"sv) || text.starts_with("\0<\0?"sv))
        return Width::utf16_big;
    if (text.starts_with("\xFF\xFE"sv) || text.starts_with("<\0?\0"sv))
        return Width::utf16_little;
    // What libxml2 takes for characters of four bytes, or for EBCDIC.
    const bool is_other =
        text.starts_with("\0"sv) || text.starts_with("<\0"sv) || text.starts_with("\x4C\x6F\xA7\x94"sv);
    return is_other ? Width::unknown : Width::byte;
}

// UTF-16 with one byte for each unit: those outside of ASCII as \x80, what is no character as \x01.
std::string narrowed(std::string_view text, Width width) {
    std::string narrow;
    narrow.reserve(text.size() / 2);
    const size_t high = width == Width::utf16_little ? 1 : 0;
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
        const unsigned unit =
            static_cast<unsigned char>(text[i + high]) << 8 | static_cast<unsigned char>(text[i + 1 - high]);
        narrow += unit < 0x80 ? static_cast<char>(unit) : unit >= 0xFFFE ? '\x01' : '\x80';
    }
    return narrow;
}

// ---- characters

constexpr auto impossible_bytes = [] {
    std::array<bool, 256> bytes{};
    for (size_t i = 0; i < 0x20; ++i)
        bytes[i] = i != '\t' && i != '\n' && i != '\r';
    return bytes;
}();

// The first byte of a character that XML does not allow; of UTF-8 also U+FFFE, U+FFFF and surrogates.
size_t impossible_character(std::string_view text, bool utf8) {
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (impossible_bytes[byte])
            return i;
        if (!utf8 || (byte != 0xED && byte != 0xEF) || i + 2 >= text.size())
            continue;
        const auto second = static_cast<unsigned char>(text[i + 1]), third = static_cast<unsigned char>(text[i + 2]);
        if (byte == 0xED ? second >= 0xA0 : second == 0xBF && third >= 0xBE)
            return i;
    }
    return text.size();
}

// ---- the text

// Goes through a text as libxml2 would. A step is false where it ends: at a place that no parser comes by, or at a
// refusal. In tags there is no "<", so that none is overlooked, whatever libxml2 makes of a tag that is broken.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    jxml_refusal run();
    size_t end() const { return at_; } // of what was looked at

  private:
    // What stands here, or so many bytes ahead; at the end of the text a byte that no markup has.
    char now() const { return ahead(0); }
    char ahead(size_t bytes) const { return at_ + bytes < text_.size() ? text_[at_ + bytes] : '\0'; }
    bool begins(std::string_view piece) const { return text_.substr(at_).starts_with(piece); }
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
    bool document_type();
    bool declarations();
    bool declaration();
    bool literal(bool of_attributes, bool of_parameter);

    std::string_view text_;
    size_t at_ = 0;
    jxml_refusal refusal_{nullptr, 0};
    std::int64_t pieces_ = 0;
    std::int64_t words_ = 0; // of the document type
    std::int64_t ids_ = 0;
    std::int64_t comparisons_ = 0;
    bool declares_ids_ = false;
    std::int64_t declared_ = 0;        // attributes in the document type, or more
    std::int64_t parameter_words_ = 0; // in parameter entities
    std::int64_t parameter_references_ = 0;
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

// One whose target does not begin in ASCII may be none to libxml2, so that no tag may be in it.
bool Scanner::processing_instruction() {
    const char target = ahead(2);
    if (!starts_name(target))
        return false;
    const size_t tag = text_.find('<', at_ + 2);
    if (static_cast<signed char>(target) > 0 || tag > text_.find("?>", at_ + 2))
        return skip_construct("<?", "?>");
    at_ = std::min(tag, text_.size());
    return false;
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
    while (at_ < text_.size() && !is_blank(now()) && !is_quote(now()) &&
           std::string_view("=<>/").find(now()) == std::string_view::npos)
        ++at_;
    const std::string_view name = text_.substr(start, at_ - start);
    while (is_blank(now()))
        ++at_;
    if (name.empty() || now() != '=')
        return false;
    ++at_;
    while (is_blank(now()))
        ++at_;
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
    while (at_ < text_.size() && !is_blank(now()) && now() != '/' && now() != '>' && now() != '<')
        ++at_;
    std::int64_t attributes = 0, namespaces = 0;
    for (;;) {
        if (is_blank(now()))
            ++at_;
        else if (now() == '>' || begins("/>"))
            return tag_is_whole(attributes, namespaces, now() == '/');
        else if (!attribute(attributes, namespaces))
            return false;
    }
}

bool Scanner::tag_is_whole(std::int64_t attributes, std::int64_t namespaces, bool is_empty) {
    at_ += is_empty ? 2 : 1;
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
        else if (now() == '>')
            return ++at_, true;
        else if (now() == '[')
            return ++at_, declarations();
    }
    return false;
}

bool Scanner::declarations() {
    while (now() != ']') {
        const size_t before = at_;
        if (is_blank(now())) {
            ++at_;
        } else if (now() == '%') {
            ++parameter_references_;
            at_ = std::min(text_.find(';', at_), text_.size());
            at_ += at_ < text_.size();
            if (text_.substr(before, at_ - before).find('<') != std::string_view::npos)
                return at_ = before, false;
        } else if (begins("<!--")) {
            if (!skip_construct("<!--", "-->"))
                return false;
        } else if (begins("<?")) {
            if (!processing_instruction())
                return false;
        } else if (!begins("<!") || !declaration()) {
            return false;
        }
    }
    ++at_;
    while (is_blank(now()))
        ++at_;
    if (now() != '>')
        return false;
    ++at_;
    constexpr std::int64_t most = JXML_WORD_LIMIT;
    return count_words(std::min(parameter_words_, most) * std::min(parameter_references_, most));
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
        const bool is_part = !is_blank(now()) && std::string_view("()|,").find(now()) == std::string_view::npos;
        if (is_part && !in_word) {
            if (!count_words(1))
                return false;
            if (begins("ID") && is_blank(ahead(2)))
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
        return at_ = text_.size(), false;
    const std::string_view value = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    std::int64_t tags = 0, attributes = 0, references = 0, words = 1;
    for (size_t i = 0; i < value.size(); ++i) {
        const bool is_character = value.substr(i, 2) == "&#";
        tags += value[i] == '<' || is_character;
        attributes += value[i] == '=' || is_character;
        references += value[i] == '&';
        words += is_blank(value[i]) || value[i] == '|' || is_character;
    }
    declared_ += of_attributes;
    parameter_words_ += of_parameter ? words : 0;
    if (of_parameter && (references > 0 || value.find("ID") != value.npos))
        declares_ids_ = true;
    literal_tags_ += tags;
    if (tags == 0)
        attributes = 0; // they are text
    if (attributes > JXML_ATTRIBUTE_LIMIT)
        return refuse("a tag of %s has more than %ld attributes", JXML_ATTRIBUTE_LIMIT);
    return count_words(1) && count_pieces(tags + references + attributes) && compare(attributes * attributes);
}

// ---- all of it

jxml_refusal Scanner::run() {
    if (begins("<?xml")) // when the declaration is broken, libxml2 goes on behind the next ">"
        at_ = std::min(text_.find('>'), text_.size() - 1) + 1;
    while (at_ < text_.size()) {
        if (now() == '<') {
            if (!markup())
                break;
            continue;
        }
        if (now() == '&' && !count_pieces(1))
            break;
        ++at_;
    }
    // No product here overflows: what is beyond these has been refused.
    constexpr std::int64_t most_declared = JXML_WORD_LIMIT;
    constexpr std::int64_t most_in_scope = std::int64_t{depth_limit + 2} * JXML_ATTRIBUTE_LIMIT;
    static_assert(most_declared * most_declared + most_in_scope <=
                  std::numeric_limits<std::int64_t>::max() / JXML_PIECE_LIMIT);
    if (!refusal_.format) // entities may be referred to at any place
        compare(literal_tags_ * (declared_ * declared_ + most_in_scope_));
    return refusal_;
}

// Whether libxml2 will read the text in an encoding in which its markup can be seen.
bool is_transparent(const std::vector<std::string> &encodings, bool utf16) {
    return std::all_of(encodings.begin(), encodings.end(), [utf16](const std::string &name) {
        if (is_utf16(name) || is_utf8(name))
            return true;
        return !utf16 && std::any_of(std::begin(transparent_encodings), std::end(transparent_encodings),
                                     [&name](std::string_view start) { return name.starts_with(start); });
    });
}

} // namespace

static jxml_refusal check(std::string_view *text) {
    const Width width = width_of(*text);
    const bool utf16 = width == Width::utf16_little || width == Width::utf16_big;
    std::string narrow;
    std::string_view seen = *text;
    if (utf16)
        seen = narrow = narrowed(*text, width);
    const size_t mark = seen.starts_with("\xEF\xBB\xBF") ? 3 : utf16 && seen.starts_with('\x80') ? 1 : 0;
    seen.remove_prefix(mark);
    const std::vector<std::string> encodings = declared_encodings(seen);
    if (width == Width::unknown || !is_transparent(encodings, utf16))
        return {"the encoding of %s is not supported", 0};
    const bool utf8 = !utf16 && std::all_of(encodings.begin(), encodings.end(), is_utf8);
    seen = seen.substr(0, impossible_character(seen, utf8) + 1);
    Scanner scanner(seen);
    const jxml_refusal refusal = scanner.run();
    // With what a parser looks at when it gives up.
    const size_t end = mark + std::min(scanner.end() + 1, seen.size());
    *text = text->substr(0, utf16 ? 2 * end : end);
    return refusal;
}

jxml_refusal jxml_bounds_check(std::string_view *text) {
    try {
        return check(text);
    } catch (const std::bad_alloc &) {
        return {"out of memory for %s", 0};
    }
}
