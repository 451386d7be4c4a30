#pragma once

#include <cstdint>

struct hba_info;

/// The run's one record of findings; the flags are booleans.
struct global_ctrl_flags {
    /// The system has no port at all.
    std::int32_t NoCtrlInstalled = 0;
    /// Some attached storage is not allowed.
    std::int32_t InvalidCtrlSubsystemCombinationFound = 0;
    /// Some port fits a selected controller.
    std::int32_t MatchingCtrlModelInstalled = 0;
    /// On every controller all ports checked see the same storage vendor.
    std::int32_t CtrlSpecificSubsystemEquality = 1;
    /// All controllers checked see the storage vendor of `vendor_reference`.
    std::int32_t CtrlVendorSpecificSubsystemEquality = 1;
    /// The run's reference port, one for all vendors; not owned.
    const hba_info* vendor_reference = nullptr;
};
