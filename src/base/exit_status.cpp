#include "base/exit_status.h"

#include <array>
#include <cstdio>

namespace {

constexpr std::array status_names{
    status_name{RET_OK, "RET_OK"},
    status_name{RET_NOT_CTRL_WIDE_IDENTICAL, "RET_NOT_CTRL_WIDE_IDENTICAL"},
    status_name{RET_NOT_CTRL_VENDOR_WIDE_IDENTICAL, "RET_NOT_CTRL_VENDOR_WIDE_IDENTICAL"},
    status_name{RET_BAD_CALL, "RET_BAD_CALL"},
    status_name{RET_INVALID_CTRL_SUBSYSTEM_COMBINATION, "RET_INVALID_CTRL_SUBSYSTEM_COMBINATION"},
    status_name{RET_FLASH_ERROR, "RET_FLASH_ERROR"},
    status_name{RET_NO_FC_HBA_CONDITIONS_ENTRY, "RET_NO_FC_HBA_CONDITIONS_ENTRY"},
    status_name{RET_NO_MATCHING_CTRL_FOUND, "RET_NO_MATCHING_CTRL_FOUND"},
    status_name{RET_NO_FC_CTRL_INSTALLED, "RET_NO_FC_CTRL_INSTALLED"},
    status_name{RET_FC_HBA_CONDITIONS_MISSING, "RET_FC_HBA_CONDITIONS_MISSING"},
    status_name{RET_INFOFILE_MISSING, "RET_INFOFILE_MISSING"},
    status_name{RET_FW_NOT_AVAILABLE, "RET_FW_NOT_AVAILABLE"},
    status_name{RET_SCLI_NOT_INSTALLED, "RET_SCLI_NOT_INSTALLED"},
    status_name{RET_KERNEL_MODULE_MISSING, "RET_KERNEL_MODULE_MISSING"},
    status_name{RET_MEMALLOC_FAIL, "RET_MEMALLOC_FAIL"},
    status_name{RET_FATAL_ERROR, "RET_FATAL_ERROR"},
};

}  // namespace

std::span<const status_name> listed_statuses() { return status_names; }

std::string return_code_list() {
    std::string list = "\n   Valid return codes\n\n";
    for (const status_name& entry : listed_statuses()) {
        char line[64];
        std::snprintf(line, sizeof line, "   %-40s%2d\n", entry.name,
                      static_cast<int>(entry.status));
        list += line;
    }
    return list + "\n";
}
