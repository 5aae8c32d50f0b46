// Hexadecimal in CDATA sections, beside the digit-by-digit way.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "ratio.h"
#include "vrk.jxmlfile.h"

namespace {

constexpr size_t byte_count = 1'000'000;

// A holder with a document of one element.
class Document {
  public:
    Document() : holder_(jxmlfile_new(nullptr)) {
        holder_->doc = xmlNewDoc(BAD_CAST "1.0");
        xmlDocSetRootElement(holder_->doc, xmlNewNode(nullptr, BAD_CAST "a"));
        holder_->loaded = 1;
    }
    ~Document() { jxmlfile_free(holder_); }
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    void set_bytes() {
        t_atom atoms[3];
        atom_setsym(atoms, gensym("a"));
        atom_setsym(atoms + 1, gensym("cdata"));
        t_ptr block = sysmem_newptr(byte_count); // becomes the layer's
        std::memset(block, 'z', byte_count);
        atom_setobj(atoms + 2, block);
        jxmlfile_set(holder_, 3, atoms, 1);
    }

    void get_bytes() {
        t_atom path, value;
        atom_setsym(&path, gensym("a"));
        t_atom *result = &value;
        short count = 1;
        jxmlfile_get(holder_, 1, &path, gensym("text"), &count, &result, 1);
        sysmem_freeptr(atom_getobj(&value));
    }

  private:
    t_jxmlfile *holder_;
};

void decode(benchmark::State &state) {
    Document document;
    document.set_bytes();
    for (auto _ : state)
        document.get_bytes();
}

void encode(benchmark::State &state) {
    Document document;
    for (auto _ : state)
        document.set_bytes();
}

// Each character on its own, as a scanf of one digit reads it.
void decode_by_digits(benchmark::State &state) {
    const std::string digits(2 * byte_count, 'A');
    std::vector<char> bytes(byte_count);
    for (auto _ : state) {
        for (size_t i = 0; i < byte_count; ++i) {
            unsigned parts[2] = {0, 0};
            for (size_t half = 0; half < 2; ++half) {
                const char digit[2] = {digits[2 * i + half], 0};
                std::sscanf(digit, "%X", &parts[half]);
            }
            bytes[i] = static_cast<char>(parts[0] * 16 + parts[1]);
        }
        benchmark::DoNotOptimize(bytes.data());
    }
}

void encode_by_digits(benchmark::State &state) {
    const std::vector<char> bytes(byte_count, 'z');
    std::vector<char> digits(2 * byte_count + 1);
    for (auto _ : state) {
        for (size_t i = 0; i < byte_count; ++i)
            std::snprintf(&digits[2 * i], 3, "%.2X", static_cast<unsigned>(static_cast<unsigned char>(bytes[i])));
        benchmark::DoNotOptimize(digits.data());
    }
}

} // namespace

void add_hex_ratios() {
    add_ratio({"decode 1 MB of hexadecimal, whole operation", decode, "a scanf for each digit", decode_by_digits});
    add_ratio({"encode 1 MB of hexadecimal, whole operation", encode, "a printf for each byte", encode_by_digits});
}
