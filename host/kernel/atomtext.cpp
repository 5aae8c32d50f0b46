// Atoms as text: reading typed messages, printing atoms.
#include "kernel/atomtext.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "ext_obex.h"
#include "ext_proto.h"

namespace maxhost {
namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

// [+-] digits [. digits] [e [+-] digits], with at least one digit before the exponent. `whole` tells whether there was
// neither point nor exponent.
bool reads_as_number(std::string_view word, bool &whole) {
    size_t i = 0;
    auto digits = [&] {
        const size_t start = i;
        while (i < word.size() && is_digit(word[i]))
            ++i;
        return i - start;
    };
    if (i < word.size() && (word[i] == '+' || word[i] == '-'))
        ++i;
    size_t count = digits();
    whole = true;
    if (i < word.size() && word[i] == '.') {
        ++i;
        whole = false;
        count += digits();
    }
    if (count == 0)
        return false;
    if (i < word.size() && (word[i] == 'e' || word[i] == 'E')) {
        ++i;
        whole = false;
        if (i < word.size() && (word[i] == '+' || word[i] == '-'))
            ++i;
        if (digits() == 0)
            return false;
    }
    return i == word.size();
}

t_atom symbol_atom(const std::string &text) {
    t_atom atom;
    atom_setsym(&atom, gensym(text.c_str()));
    return atom;
}

// Reads typed text from left to right, one word at a time.
class Reader {
  public:
    Reader(std::string_view text, bool separators) : text_(text), separators_(separators) {}

    // What stands next: a word (then `atom` is set), or ',' or ';', or 0 at the end.
    char next(t_atom &atom) {
        while (at_ < text_.size() && is_blank(text_[at_]))
            ++at_;
        if (at_ == text_.size())
            return 0;
        if (is_separator(text_[at_]))
            return text_[at_++];
        atom = word();
        return 'w';
    }

    // Whether the last word begins with $1 to $9.
    bool changeable() const { return changeable_; }

  private:
    bool is_separator(char c) const { return separators_ && (c == ',' || c == ';'); }

    t_atom word() {
        std::string word;
        bool literal = false; // quoted or escaped: never a number
        bool quoted = false;
        changeable_ = false;
        for (; at_ < text_.size(); ++at_) {
            const char c = text_[at_];
            if (c == '$' && word.empty() && at_ + 1 < text_.size() && text_[at_ + 1] >= '1' && text_[at_ + 1] <= '9')
                changeable_ = true;
            if (c == '\\' && at_ + 1 < text_.size()) {
                word += text_[++at_];
                literal = true;
            } else if (c == '"') {
                quoted = !quoted;
                literal = true;
            } else if (!quoted && (is_blank(c) || is_separator(c))) {
                break;
            } else if (c != 0) {
                word += c;
            }
        }
        t_atom atom;
        return !literal && parse_number(word, atom) ? atom : symbol_atom(word);
    }

    std::string_view text_;
    bool separators_;
    bool changeable_ = false;
    size_t at_ = 0;
};

bool needs_quotes(std::string_view text) {
    bool whole;
    return text.empty() || text.find_first_of(" \t\r\n,;\"\\") != text.npos || reads_as_number(text, whole);
}

void append_printable(std::string &out, char c) {
    static constexpr char hex[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n')
        out += "\\n";
    else if (c == '\t')
        out += "\\t";
    else if (c == '\r')
        out += "\\r";
    else if (byte < 0x20 || byte == 0x7f)
        out.append("\\x").append(1, hex[byte >> 4]).append(1, hex[byte & 15]);
    else
        out += c;
}

} // namespace

bool parse_number(std::string_view word, t_atom &number) {
    bool whole;
    if (!reads_as_number(word, whole))
        return false;
    if (word.front() == '+')
        word.remove_prefix(1);
    const char *end = word.data() + word.size();
    t_atom_long integer = 0;
    if (whole && std::from_chars(word.data(), end, integer).ec == std::errc()) {
        atom_setlong(&number, integer);
        return true;
    }
    double value = 0;
    if (std::from_chars(word.data(), end, value).ec == std::errc::result_out_of_range)
        value = std::strtod(std::string(word).c_str(), nullptr); // 0 or infinity, with the sign
    atom_setfloat(&number, value);
    return true;
}

std::vector<TypedMessage> parse_messages(std::string_view text) {
    std::vector<TypedMessage> messages;
    TypedMessage message;
    bool wants_receiver = false;
    auto finish = [&] {
        if (!message.atoms.empty())
            messages.push_back(message);
        message.atoms.clear();
        message.changeable.clear();
    };
    Reader reader(text, true);
    t_atom atom;
    while (const char kind = reader.next(atom)) {
        if (kind == 'w' && wants_receiver) {
            message.receiver = atom_gettype(&atom) == A_SYM ? atom_getsym(&atom) : gensym(print_atom(atom).c_str());
            message.changeable_receiver = reader.changeable();
            wants_receiver = false;
        } else if (kind == 'w') {
            if (reader.changeable())
                message.changeable.push_back(message.atoms.size());
            message.atoms.push_back(atom);
        } else {
            finish();
            wants_receiver = kind == ';';
        }
    }
    finish();
    return messages;
}

std::vector<t_atom> parse_atoms(std::string_view text) {
    std::vector<t_atom> atoms;
    Reader reader(text, false);
    t_atom atom;
    while (reader.next(atom))
        atoms.push_back(atom);
    return atoms;
}

std::string print_float(double value) {
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value)) // a number that no float holds is read as infinite
        return value < 0 ? "-1.e999" : "1.e999";
    const double magnitude = std::abs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16); // without an exponent
    char digits[64];
    const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
    std::string text(digits, std::to_chars(digits, digits + sizeof digits, value, format).ptr);
    if (text.find('.') != text.npos)
        return text;
    const size_t exponent = text.find('e');
    return text.insert(exponent == text.npos ? text.size() : exponent, ".");
}

std::string print_text(std::string_view text) {
    std::string out;
    for (char c : text)
        append_printable(out, c);
    return out;
}

std::string print_quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        append_printable(out, c);
    }
    return out += '"';
}

std::string print_atom(const t_atom &atom) {
    switch (atom_gettype(&atom)) {
    case A_LONG:
        return std::to_string(atom_getlong(&atom));
    case A_FLOAT:
        return print_float(atom_getfloat(&atom));
    case A_SYM: {
        const char *text = atom_getsym(&atom)->s_name;
        return needs_quotes(text) ? print_quoted(text) : print_text(text);
    }
    default:
        return "<object>";
    }
}

std::string typed_atoms(std::span<const t_atom> atoms) {
    std::string out;
    for (const t_atom &atom : atoms) {
        out.append(out.empty() ? "" : " ");
        const std::string_view text = atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : "";
        if (text.empty() || !needs_quotes(text)) {
            out += text.empty() ? print_atom(atom) : text;
            continue;
        }
        out += '"';
        for (char c : text)
            out.append(c == '"' || c == '\\' ? "\\" : "").append(1, c);
        out += '"';
    }
    return out;
}

std::string print_atoms(std::span<const t_atom> atoms) {
    std::string out;
    for (const t_atom &atom : atoms)
        out.append(out.empty() ? "" : " ").append(print_atom(atom));
    return out;
}

} // namespace maxhost
