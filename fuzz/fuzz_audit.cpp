// Outputs and table through the audit to both of its reports. Lines of "====" cut the input into
// the listing, the attributes and the mapping of every port, and the table.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "audit/audit_run.h"
#include "audit/reports.h"
#include "base/list.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_query.h"
#include "inventory/target_mapping.h"
#include "support/process.h"
#include "tool/output_files.h"

namespace {

void lay_out(std::string_view rest) {
    std::ofstream(port_list_path(), std::ios::binary) << next_section(rest);
    const std::string_view attributes = next_section(rest);
    const std::string_view mapping = next_section(rest);
    std::ofstream(pHBAConditionsPath, std::ios::binary) << rest;
    read_port_list(open_for_reading(port_list_path()));
    for (const hba_info* port : entries(p_hba_info_list)) {
        // Behind a slash the file would lie elsewhere; more ports take the fuzzer's time alone.
        const std::string_view serial = port->SerialNo;
        const std::string_view function = port->PCIFunction;
        if (entries(p_hba_info_list).size() > 16 || serial.find('/') != std::string_view::npos ||
            function.find('/') != std::string_view::npos) {
            throw ended{};
        }
        std::ofstream(output_path(*port, attributes_file_name), std::ios::binary) << attributes;
        std::ofstream(output_path(*port, mapping_file_name), std::ios::binary) << mapping;
    }
    release_port_records();
}

void require_sound_reports(const survey& result) {
    const std::string text = text_report(result);
    const auto report = nlohmann::json::parse(json_report(result));
    for (std::size_t start = 0, end = 0; start < text.size(); start = end + 1) {
        end = text.find('\n', start);
        if (end - start > 100 || report["findings"].size() != result.findings.size()) {
            std::abort();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto directory =
        std::filesystem::temp_directory_path() / ("cnatool-fuzz." + std::to_string(getpid()));
    std::filesystem::create_directory(directory);
    reset_run();
    set_directory(directory.string());
    resolve_paths("");
    try {
        lay_out({reinterpret_cast<const char*>(data), size});
        active_option_flash = 1;
        p_option_input = save_list_of_pci_ids("F1A0:4201:F1A0:0011,F1A0:4201,1:2");
        if (const auto result = audit_server({})) {
            require_sound_reports(*result);
        }
    } catch (const ended&) {
        // Bad identifiers and numbers that overflow end the process.
    }
    std::filesystem::remove_all(directory);
    return 0;
}
