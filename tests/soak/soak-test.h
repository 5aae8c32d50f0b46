// A host and its boxes for tests that go on for long: outputs are not kept.
#pragma once

#include <atomic>

#include "support/host-test.h"

class SoakTest : public HostTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    t_object *new_list();

    // Waits until nothing is under way, and expects the numbers of a box to agree: as many rows in the view as it
    // counts, and a current and a selected row that are there, or none.
    void expect_agreement(t_object *box);

    // How long the test is to go on: what the environment variable VRK_SOAK says, else the given number.
    static long turns_or(long usual);

    t_object *patcher = nullptr;

  private:
    std::atomic<bool> asking = false;
    long count = 0, current = 0; // what the outlets sent last while asking
};

void send(t_object *box, const std::string &text);
void schedule(t_object *box, const std::string &text);

// A resource file of texts, numbered from 0.
std::string resource_file(const std::vector<std::string> &texts);
