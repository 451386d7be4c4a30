#pragma once

#include <string_view>

#include "frame/exit_status.h"
#include "frame/lines.h"

/// What end_process throws here in place of ending the process.
struct ended {
    exit_status status;
};

/// Puts every global back to where a new process has it.
void reset_run();

/// A file that reads as `text`, which must outlive it.
input_file text_file(std::string_view text);
