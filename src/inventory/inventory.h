#pragma once

#include "base/exit_status.h"

/// Collects all ports with their attributes and storage into p_hba_info_list, each stage
/// complete before the next. Gives 0, also for a machine without ports, or 21, 51, 54, 55;
/// what was collected before a failure stays. An interrupted process ends in it; a number
/// that overflows ends one with 1.
exit_status Get_All_Hba_Info();
