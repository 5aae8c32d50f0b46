// Patcher files in the text form, behind their first record: whatever opens is saved, and what is saved opens.
#include "fuzz.h"

FUZZ_TARGET(input) {
    if (!fuzz::could_leave_the_folder(input))
        fuzz::Host().open_and_save_patcher("max v2;\n" + std::string(input));
}
