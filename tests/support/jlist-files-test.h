// A test of a list that is read from files and written to them.
#pragma once

#include "support/list-test.h"

// Has a holder for resources of type "string", until a test asks for another one.
class JlistFilesTest : public ListTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    // A fresh holder, through which resources of this type are read.
    void use_holder(const char *type);

    // The result of reading a file: 1 when the list has its rows, 0 otherwise.
    short load(const std::string &name);

    // Loads a file of this content.
    short load_content(const std::string &content);

    // Loads a file with these elements where resources stand.
    short load_resources(const std::string &elements) { return load_content(file_of(elements)); }

    // A list that has lost its rows because the reading gave up: it counts three and has none.
    void give_up();

    // The whole of a file as the list writes it.
    static std::string file_of(const std::string &elements);

    // Writes to the file that the arguments name, and otherwise to the one that a person chooses.
    void write(const std::string &arguments);
    std::string written(const std::string &name);

    // "NAME: REASON" when the last file could not be written, else nothing.
    std::string unwritten() const;

    // From now on a person answers save dialogs so.
    void answer_save_dialog(const std::string &answer);

    t_jxmlfile *holder = nullptr;
    Lines asked; // by save dialogs: prompt and proposal
};

bool has_error(const Lines &lines); // of the console
