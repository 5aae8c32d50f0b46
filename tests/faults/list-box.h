// The list box as the tests of failures see it: linked in, so that its items can be looked at.
#pragma once

#include "vrk.owners.h" // libxml2's headers come before the host's

#include "support/host-test.h"

// Registers the class, once in a process.
void register_list_box();

t_object *new_list_box(t_object *patcher);

// The items, without asking the box for them.
Lines items_of(t_object *box);

// Fails the test unless the view has the rows of the list, and the current row is one of them.
void expect_whole(t_object *box);
