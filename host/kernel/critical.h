// The global critical region.
#pragma once

namespace maxhost {

// To be called where an event is over: a region that the calling thread still holds is misuse, and is left.
void expect_no_region(const char *event);

} // namespace maxhost
