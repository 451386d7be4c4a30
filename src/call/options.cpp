#include "call/options.h"

int active_option_valid_subsystem = 0;
int active_option_ctrl_wide_identical = 0;
int active_option_ctrl_vendor_wide_identical = 0;
int active_option_simulate = 0;
int active_option_flash = 0;
int active_option_vox_mode = 0;
