// Records of the text form.
#include "ui/textrecords.h"

#include <algorithm>

#include "ext_obex.h"
#include "ext_proto.h"
#include "kernel/atomtext.h"
#include "ui/json.h"

namespace maxhost {
namespace {

// The characters 128 to 255 of Mac Roman.
constexpr std::string_view mac_roman = "ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü"
                                       "†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
                                       "¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
                                       "‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";

std::vector<std::string_view> characters_of(std::string_view text) {
    std::vector<std::string_view> characters;
    for (size_t start = 0, end = 1; start < text.size(); start = end++) {
        while (end < text.size() && (text[end] & 0xC0) == 0x80)
            ++end;
        characters.push_back(text.substr(start, end - start));
    }
    return characters;
}

bool is_utf8(const std::string &text) {
    try {
        Json(text).dump(); // refuses anything else
        return true;
    } catch (const Json::type_error &) {
        return false;
    }
}

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == 0; }

} // namespace

std::string_view TextRecord::text(size_t at) const {
    return at < words.size() && atom_gettype(&words[at].atom) == A_SYM ? atom_getsym(&words[at].atom)->s_name : "";
}

t_atom_long TextRecord::number(size_t at) const { return at < words.size() ? atom_getlong(&words[at].atom) : 0; }

bool RecordReader::next(TextRecord &record) {
    record.words.clear();
    skip_blanks();
    record.line = line_;
    while (at_ < text_.size() && text_[at_] != ';') {
        record.words.push_back(word());
        skip_blanks();
    }
    broken_off_ = at_ == text_.size() && !record.words.empty();
    const bool is_record = at_ < text_.size() || broken_off_;
    at_ += at_ < text_.size();
    return is_record;
}

void RecordReader::skip_blanks() {
    for (; at_ < text_.size() && is_blank(text_[at_]); ++at_)
        line_ += text_[at_] == '\n' || (text_[at_] == '\r' && text_.substr(at_ + 1, 1) != "\n");
}

RecordWord RecordReader::word() {
    std::string bare, typed;
    bool literal = false; // quoted or escaped: never a number
    bool quoted = false;
    for (; at_ < text_.size() && text_[at_] != ';' && (quoted || !is_blank(text_[at_])); ++at_) {
        char c = text_[at_];
        if (c == '"') {
            quoted = !quoted;
            literal = true;
            typed += c;
            continue;
        }
        if (c == '\\' && at_ + 1 < text_.size()) {
            c = text_[++at_];
            literal = true;
            if (c == ' ' || c == '"')
                typed += '\\';
        }
        bare += c;
        typed += c;
    }
    RecordWord word{{}, typed};
    if (literal || !parse_number(bare, word.atom))
        atom_setsym(&word.atom, gensym(bare.c_str()));
    return word;
}

std::string utf8_of_old_text(const std::string &text) {
    if (is_utf8(text))
        return text;
    static const std::vector<std::string_view> upper_half = characters_of(mac_roman);
    std::string converted;
    for (char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        byte < 128 ? converted.append(1, c) : converted.append(upper_half[byte - 128U]);
    }
    return converted;
}

} // namespace maxhost
