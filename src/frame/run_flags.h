#pragma once

#include <cstdint>

struct hba_info;

/// The run's one record of findings; the flags are booleans.
struct global_ctrl_flags {
    std::int32_t NoCtrlInstalled = 0;  ///< the system has no port at all
    std::int32_t InvalidCtrlSubsystemCombinationFound =
        0;                                           ///< some attached storage is not allowed
    std::int32_t MatchingCtrlModelInstalled = 0;     ///< some port fits a selected controller
    std::int32_t CtrlSpecificSubsystemEquality = 1;  ///< on each controller all see one vendor
    std::int32_t CtrlVendorSpecificSubsystemEquality =
        1;                                       ///< all controllers see the reference's vendor
    const hba_info* vendor_reference = nullptr;  ///< the run's reference port; not owned
};
