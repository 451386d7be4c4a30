#include "audit/findings.h"

#include <array>
#include <utility>

#include "call/paths.h"

namespace {

struct code_row {
    finding_code code;
    const char* name;
    const char* advice;
};

// In the order of finding_code.
constexpr std::array code_rows{
    code_row{
        finding_code::not_installed, "not-installed",
        "Compare the group with the identifiers that cnatool-audit shows without a selection."},
    code_row{finding_code::no_row, "no-row",
             "Add a row with these identifiers, or leave the controller out of the selection."},
    code_row{finding_code::ids_differ, "ids-differ",
             "If the controller is to be flashed, give it a row with all four identifiers."},
    code_row{finding_code::names_differ, "names-differ",
             "Let vendor and model of the row be beginnings of what the port reports."},
    code_row{finding_code::no_storage, "no-storage",
             "See whether storage should be behind the port: link, zoning, mapping."},
    code_row{finding_code::not_on_chain, "not-on-chain",
             "Compare the storage behind this port with the table by hand."},
    code_row{finding_code::many_flashes, "many-flashes",
             "Select the controller so that its flash port is selected and fits a row itself."},
    code_row{finding_code::flash_refused, "flash-refused",
             "Rename what is named here: short, and without characters of the shell."},
    code_row{finding_code::image_missing, "image-missing",
             "Put the image into this directory, or correct its name in the row."},
    code_row{finding_code::directory_missing, "directory-missing",
             "Make the directory, or see that the images beside the table are the right ones."},
    code_row{finding_code::image_ambiguous, "image-ambiguous",
             "Leave only one file there whose name fits."},
    code_row{finding_code::output_incomplete, "output-incomplete",
             "Run cnatool again; if it stays so, ask the management tool by hand."},
    code_row{finding_code::output_old, "output-old",
             "Run cnatool again, so that all outputs are of one run."},
    code_row{finding_code::row_unreachable, "row-unreachable",
             "Join the row with the earlier one, or correct its identifiers."},
    code_row{finding_code::row_odd, "row-odd", "See whether the row says what is meant."},
};

const code_row& row_of(finding_code code) { return code_rows.at(static_cast<std::size_t>(code)); }

finding found(finding_code code, std::string what) {
    finding result{};
    result.code = code;
    result.what = std::move(what);
    result.advice = row_of(code).advice;
    return result;
}

}  // namespace

const char* name_of(finding_code code) { return row_of(code).name; }

std::string port_name(const hba_info& port) {
    return std::string(port.PCIFunction) + "/" + port.PortNumber;
}

std::string file_name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string place_of(const finding& found) {
    if (!found.group.empty()) {
        return found.group;
    }
    if (!found.file.empty()) {
        const std::string name = file_name_of(found.file);
        return found.line > 0 ? name + ":" + std::to_string(found.line) : name;
    }
    return found.port.empty() ? found.serial : found.serial + " " + found.port;
}

finding found_at_group(finding_code code, std::string group, std::string what) {
    finding result = found(code, std::move(what));
    result.group = std::move(group);
    return result;
}

finding found_in_file(finding_code code, std::string path, std::string what) {
    finding result = found(code, std::move(what));
    result.file = std::move(path);
    return result;
}

finding found_at_port(finding_code code, const hba_info& port, std::string what) {
    finding result = found_at_controller(code, port, std::move(what));
    result.port = port_name(port);
    return result;
}

finding found_at_controller(finding_code code, const hba_info& port, std::string what) {
    finding result = found(code, std::move(what));
    result.serial = port.SerialNo;
    return result;
}

finding found_at_row(finding_code code, const fc_config_file_entry& row, std::string what) {
    finding result = found_in_file(code, pHBAConditionsPath, std::move(what));
    result.line = row.line;
    return result;
}
