#pragma once

#include "base/exit_status.h"

/// Finds the management tool and puts its path into pHBAFlashCmdPath. Gives 0, or 21 when it
/// is at none of its places.
exit_status Get_HbaCmd_Path();

/// The longest of its places: a command that is too long with it may be refused somewhere.
const char* longest_tool_place();
