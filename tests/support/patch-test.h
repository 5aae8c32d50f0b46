// A test with a patcher that is open.
#pragma once

#include <nlohmann/json.hpp>

#include "support/host-test.h"

class PatchTest : public HostTest {
  protected:
    using Json = nlohmann::ordered_json;

    void SetUp() override;
    void TearDown() override;

    // Opens a file with this text in place of the patcher that is open; the queue is drained.
    void open(const std::string &text);

    // Why a file with this text cannot be opened; "opened" when it can.
    std::string refusal(const std::string &text);

    // The text of the file that the patcher is saved in, and as a value.
    std::string saved_text();
    Json saved() { return Json::parse(saved_text()); }

    // A value out of the file: of the box with that id, the member.
    Json saved_member(const std::string &id, const std::string &key);

    // A box as it would be typed: "route foo 1". Attributes are "@name value".
    t_object *box(const std::string &name, const std::string &typed);
    void cord(const std::string &from, long outlet, const std::string &to, long inlet = 0);

    t_object *named(const std::string &name);

    // What happens when the messages, written as in a message box, are sent to a box; the queue is drained.
    Lines sent(const std::string &name, const std::string &messages);

    t_object *patcher = nullptr;
};

// A file of these boxes and cords: what stands in the lists "boxes" and "lines".
std::string file_of(const std::string &boxes, const std::string &lines = "");
