// The conditions table, with its echo.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/list.h"
#include "base/output.h"
#include "conditions/conditions_file.h"
#include "support/process.h"

namespace {

// What the check relies on: every row has been read whole, with sound identifiers.
void require_sound_row(const fc_config_file_entry& row) {
    const bool ids =
        row.vendor_id >= 0 && row.device_id >= 0 && row.subvendor_id >= 0 && row.subdevice_id >= 0;
    const bool texts = std::strlen(row.vendor) < sizeof row.vendor &&
                       std::strlen(row.col12_text) < sizeof row.col12_text;
    if (!ids || !texts) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    reset_run();
    VerboseLevel = 6;
    try {
        read_conditions(text_file({reinterpret_cast<const char*>(data), size}));
        for (const fc_config_file_entry* row : entries(fc_config_entry_list)) {
            require_sound_row(*row);
        }
    } catch (const ended&) {
        // A bad identifier ends the process.
    }
    return 0;
}
