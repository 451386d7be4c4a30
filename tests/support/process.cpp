#include "support/process.h"

#include "base/end_process.h"
#include "base/output.h"
#include "call/options.h"
#include "call/paths.h"
#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"

void end_process(exit_status status) { throw ended{status}; }

void reset_run() {
    DebugLevel = 0;
    open_debug_log("");  // opens none at this level and forgets what was held back for one
    VerboseLevel = 1;
    PrintDebugOnScreen = 1;
    for (int* option : {&active_option_valid_subsystem, &active_option_ctrl_wide_identical,
                        &active_option_ctrl_vendor_wide_identical, &active_option_simulate,
                        &active_option_flash, &active_option_vox_mode}) {
        *option = 0;
    }
    for (char* path : {pHBAConditionsPath, pHBAFirmwarePath, pHBAWorkingPath, pHBAFlashCmdPath}) {
        *path = '\0';
    }
    release_selections();
    release_conditions();
    release_port_records();
}

input_file text_file(std::string_view text) {
    // fmemopen only reads in this mode, though it asks for text that may be written.
    FILE* stream = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    return {.stream = decltype(input_file::stream)(stream), .path = "text"};
}

std::string_view next_section(std::string_view& rest) {
    constexpr std::string_view cut = "====\n";
    const std::size_t at = rest.find(cut);
    const std::string_view section = rest.substr(0, at);
    rest = at == std::string_view::npos ? std::string_view{} : rest.substr(at + cut.size());
    return section;
}
