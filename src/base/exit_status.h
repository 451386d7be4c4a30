#pragma once

#include <span>
#include <string>

/// The tool's answer to its caller. Calling programs rely on the numbers.
enum exit_status : int {
    RET_OK = 0,                       ///< passed; help or version given; 12 and 13 under --vox-mode
    RET_NOT_CTRL_WIDE_IDENTICAL = 1,  ///< a controller carries differing storage
    RET_NOT_CTRL_VENDOR_WIDE_IDENTICAL = 2,      ///< the controllers carry differing storage
    RET_BAD_CALL = 3,                            ///< bad command line or incomplete -pci-id group
    RET_INVALID_CTRL_SUBSYSTEM_COMBINATION = 4,  ///< storage that is not allowed
    RET_FLASH_ERROR = 10,                        ///< a flash command failed or was refused
    RET_NO_FC_HBA_CONDITIONS_ENTRY = 11,         ///< listed for callers; nothing ends with it
    RET_NO_MATCHING_CTRL_FOUND = 12,             ///< no installed port fits the selection
    RET_NO_FC_CTRL_INSTALLED = 13,               ///< the management tool lists no port
    RET_FC_HBA_CONDITIONS_MISSING = 15,          ///< the conditions file cannot be opened
    RET_INFOFILE_MISSING = 16,                   ///< listed for callers; nothing ends with it
    RET_FW_NOT_AVAILABLE = 20,                   ///< a firmware directory or image is missing
    RET_SCLI_NOT_INSTALLED = 21,                 ///< the management tool is missing
    RET_KERNEL_MODULE_MISSING = 22,              ///< a port with a serial number has no flash port
    STATUS_OUTPUT_FILE_MISSING = 51,             ///< an output cannot be read; in no printed list
    RET_MEMALLOC_FAIL = 54,                      ///< memory ran out
    RET_FATAL_ERROR = 55,                        ///< bad identifier, failed listing, unusable table
};

struct status_name {
    exit_status status;
    const char* name;
};

/// The statuses of the list that is printed, by number.
std::span<const status_name> listed_statuses();

/// The text of --show-return-codes behind its title.
std::string return_code_list();
