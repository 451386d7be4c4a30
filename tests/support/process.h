#pragma once

#include <string_view>

#include "base/exit_status.h"
#include "base/lines.h"

/// What end_process throws here in place of ending the process.
struct ended {
    exit_status status;
};

/// Puts back to where a new process has it all that a run fills; of the debug log nothing is held.
void reset_run();

/// Cuts off `rest` what stands before its next line of "====", and that line.
std::string_view next_section(std::string_view& rest);

/// A file that reads as `text`, which must outlive it.
input_file text_file(std::string_view text);
