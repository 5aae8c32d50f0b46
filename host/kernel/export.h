// Marks what programs that embed the host may call.
#pragma once

#define MAXHOST_EMBED __attribute__((visibility("default")))
