// Outputs and table through the audit to both of its reports. Lines of "====" cut the input into
// the listing, the attributes and the mapping of every port, and the table.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "audit/audit_run.h"
#include "audit/json_report.h"
#include "audit/text_report.h"
#include "base/list.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_query.h"
#include "inventory/target_mapping.h"
#include "support/process.h"

namespace {

namespace fs = std::filesystem;

void write(const std::string& path, std::string_view text) {
    std::ofstream(path, std::ios::binary) << text;
}

// False for more ports than are worth the time, or for one whose output is none of the directory.
bool lay_out(std::string_view rest) {
    write(port_list_path(), next_section(rest));
    const std::string_view attributes = next_section(rest);
    const std::string_view mapping = next_section(rest);
    write(pHBAConditionsPath, rest);
    read_port_list(open_for_reading(port_list_path()));
    for (const hba_info* port : entries(p_hba_info_list)) {
        if ((std::string(port->SerialNo) + port->PCIFunction).find('/') != std::string::npos) {
            return false;
        }
        write(output_path(*port, attributes_file_name), attributes);
        write(output_path(*port, mapping_file_name), mapping);
    }
    return entries(p_hba_info_list).size() <= 16;
}

// Both reports as their readers need them: printable lines that fit, and JSON.
void require_sound_reports(const survey& result) {
    int column = 0;
    for (const char c : text_report(result)) {
        column = c == '\n' ? 0 : column + 1;
        if (column > 100 || (c != '\n' && (c < ' ' || c > '~'))) {
            std::abort();
        }
    }
    const auto report = nlohmann::json::parse(json_report(result, AUDIT_FINDINGS));
    if (report["findings"].size() != result.findings.size()) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fs::path directory =
        fs::temp_directory_path() / ("cnatool-fuzz." + std::to_string(getpid()));
    fs::create_directory(directory);
    reset_run();
    set_directory(directory.string());
    settle_paths("");
    try {
        const bool usable = lay_out({reinterpret_cast<const char*>(data), size});
        release_port_records();
        active_option_flash = 1;
        p_option_input = save_list_of_pci_ids("F1A0:4201:F1A0:0011,F1A0:4201,1:2");
        if (const auto result = usable ? audit_server() : std::nullopt) {
            require_sound_reports(*result);
        }
    } catch (const ended&) {
        // Bad identifiers and numbers that overflow end the process.
    }
    fs::remove_all(directory);
    return 0;
}
