#pragma once

#include <vector>

#include "audit/findings.h"
#include "base/exit_status.h"

/// Reads the outputs that a run has left into p_hba_info_list, as --simulate does but without
/// composing a command, and notes what is missing in them or older than the port list. An output
/// about one port that cannot be read leaves that port without it. Gives 0, 51 without a
/// readable port list, 54.
exit_status read_outputs(std::vector<finding>& findings);
