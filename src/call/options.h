#pragma once

/// What the command line asks for. Each is 1 when its option was given, else 0.
extern int active_option_valid_subsystem;      ///< valid storage is attached; the default check
extern int active_option_ctrl_wide_identical;  ///< each controller carries one storage vendor
extern int active_option_ctrl_vendor_wide_identical;  ///< all controllers carry one storage vendor
extern int active_option_simulate;  ///< commands are composed and printed, none is run
extern int active_option_flash;     ///< flash the selected controllers
extern int active_option_vox_mode;  ///< statuses 12 and 13 become 0
