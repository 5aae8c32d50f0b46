// What fuzz targets share: the host around them, their bytes, and the checks that every input has to pass.
#pragma once

#include "support/xml-paths.h" // libxml2's headers come before the host's

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "embed/host.h"

// A target is FUZZ_TARGET(input) { … }, with the input as a text.
#define FUZZ_TARGET(input)                                                                                             \
    static void fuzz_one(std::string_view input);                                                                      \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);                                           \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {                                          \
        fuzz_one({reinterpret_cast<const char *>(data), size});                                                        \
        return 0;                                                                                                      \
    }                                                                                                                  \
    static void fuzz_one(std::string_view input)

namespace fuzz {

// Ends the program, with the reason on standard error, unless the condition holds.
void expect(bool holds, const std::string &otherwise);

// The bytes of an input as numbers, one after the other; zeros behind the end.
class Bytes {
  public:
    explicit Bytes(std::string_view bytes) : rest_(bytes) {}
    bool is_over() const { return rest_.empty(); }
    size_t number();
    std::string text(size_t most); // up to a zero

  private:
    std::string_view rest_;
};

// Whether a text could name a file of another folder, be it in JSON. Such inputs are left alone: a fuzzer must not
// write where it likes.
bool could_leave_the_folder(std::string_view text);

// The host while one input lasts, with the plug-in loaded and an empty folder as the current one. Misuse of the API is
// a finding, and so are blocks, objects and open files that are left at the end.
class Host {
  public:
    Host();
    explicit Host(maxhost::FrontEnd front_end);
    ~Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    // What went to the console and out of outlets since they were taken last.
    std::vector<std::string> take_lines();

    // A box in `patcher`, with its name.
    t_object *box(t_object *patcher, const char *class_name);

    // Sends typed messages in one event; then the queue is drained.
    void send(t_object *box, std::string_view messages);

    // Opens a patcher of that text and saves it, and does the same with what was saved, which has to open.
    void open_and_save_patcher(std::string_view text);

  private:
    std::vector<std::string> lines_;
};

void write_file(const std::string &name, std::string_view content);
std::string read_file(const std::string &name);

} // namespace fuzz
