// Scripts of vrk-run.
#include "fuzz.h"

#include <sstream>

#include "script/script.h"
#include "script/stage.h"

FUZZ_TARGET(input) {
    if (fuzz::could_leave_the_folder(input))
        return;
    static std::FILE *const nowhere = std::fopen("/dev/null", "w");
    Transcript transcript(nowhere);
    fuzz::Host host(transcript.front_end(~0u));
    std::istringstream lines{std::string(input)};
    std::string reason;
    Stage stage;
    Script(transcript, stage).run(lines, "script", reason);
    maxhost::fail_nth_allocation(0);
}
