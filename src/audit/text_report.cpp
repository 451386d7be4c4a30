#include "audit/text_report.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "call/help.h"
#include "call/options.h"
#include "call/paths.h"
#include "call/selection.h"
#include "inventory/management_tool.h"

namespace {

using std::string;
using std::string_view;

constexpr std::size_t line_columns = 100;

enum class emphasis { none, heading, warning };

bool in_colours() {
    const char* refused = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

/// The report as it grows.
struct page {
    string text;
    bool coloured;
};

// A device's text must not steer the terminal.
string printable(string_view text) {
    string result(text);
    std::replace_if(
        result.begin(), result.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return result;
}

// How much of `text` a line with room for `width` takes: up to a blank where there is one.
std::size_t line_length(string_view text, std::size_t width) {
    if (text.size() <= width) {
        return text.size();
    }
    const std::size_t blank = text.rfind(' ', width);
    return blank == string_view::npos || blank == 0 ? width : blank;
}

// `head` once, and `text` behind it in lines that all begin under its first character.
void put(page& out, emphasis style, string_view head, string_view text) {
    constexpr const char* colours[] = {"", "\033[1m", "\033[33m"};
    const bool coloured = out.coloured && style != emphasis::none;
    const string line = printable(text);
    string_view rest = line;
    out.text += coloured ? colours[static_cast<std::size_t>(style)] : "";
    out.text += printable(head);
    out.text += coloured ? "\033[0m" : "";
    for (bool is_first = true; is_first || !rest.empty(); is_first = false) {
        const std::size_t length = line_length(rest, line_columns - head.size());
        if (!is_first) {
            out.text.append("\n").append(head.size(), ' ');
        }
        out.text += rest.substr(0, length);
        rest.remove_prefix(length);
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    }
    out.text.resize(out.text.find_last_not_of(' ') + 1);
    out.text += '\n';
}

string padded(string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

string joined(const std::vector<string>& parts, const char* between) {
    string result;
    for (const string& part : parts) {
        result += (result.empty() ? "" : between) + part;
    }
    return result;
}

string rows_of(const controller& each) {
    std::vector<string> rows;
    for (const fitting_row& row : each.rows) {
        rows.push_back(fill_in("line %s%s%s", {std::to_string(row.row->line),
                                               row.by_four ? "" : " (by two identifiers)",
                                               row.fits_names ? "" : " (its names differ)"}));
    }
    return rows.empty() ? "none in the table" : joined(rows, ", ");
}

string judgement_of(const surveyed_port& each) {
    if (p_option_input == nullptr) {
        return "";
    }
    if (each.checked_by == nullptr) {
        return "not checked";
    }
    const string by = fill_in("checked by line %s", {std::to_string(each.checked_by->line)});
    if (each.allowed_by != nullptr) {
        const string_view products = each.allowed_by->product_list;
        return fill_in("%s, allowed by %s %s", {by, each.allowed_by->vendor,
                                                products.empty() ? "(all products)" : products});
    }
    return each.port->target_mapping == nullptr ? by : by + ", NOT ALLOWED";
}

string storage_of(const hba_info& port) {
    const target_mapping_entry* target = port.target_mapping;
    return target == nullptr
               ? "no storage"
               : string(target->VendorID) + " " + target->ProductID + " " + target->ProductVersion;
}

string state_of(const surveyed_port& each) {
    const string judgement = judgement_of(each);
    return judgement.empty() ? storage_of(*each.port)
                             : fill_in("%s; %s", {storage_of(*each.port), judgement});
}

void put_port(page& out, const hba_info& port, const string& text) {
    put(out, emphasis::none,
        fill_in("  %s %s %s  ", {padded(port_name(port), 5), padded(port.PortType, 5),
                                 padded(address_of(port), 23)}),
        text);
}

void put_controller(page& out, const controller& each) {
    const hba_info& first = *each.ports.front().port;
    const hba_info& flash_port = *first.flash_port;
    put(out, emphasis::heading, fill_in("Controller %s", {first.SerialNo}),
        fill_in("  %s %s", {first.Mfg, first.Model}));
    const std::vector<string> ids = pci_ids_of(each);
    put(out, emphasis::none, "  select it:  ",
        ids.empty() ? "its identifiers are not known" : fill_in("-pci-id %s", {joined(ids, ",")}));
    put(out, emphasis::none, "  flash port: ",
        fill_in("%s %s %s", {port_name(flash_port), flash_port.PortType, flash_port.PermanentMAC}));
    put(out, emphasis::none, "  rows:       ", rows_of(each));
    for (const surveyed_port& member : each.ports) {
        put_port(out, *member.port, is_fc_or_fcoe(*member.port) ? state_of(member) : "");
    }
    out.text += '\n';
}

void put_without_serial(page& out, const survey& result) {
    if (result.without_serial.empty() || p_option_input != nullptr) {
        return;
    }
    put(out, emphasis::heading, "Ports without a serial number", ", never checked or flashed");
    for (const hba_info* port : result.without_serial) {
        put_port(out, *port, port->Model);
    }
    out.text += '\n';
}

void put_downloads(page& out, const survey& result) {
    if (active_option_flash == 0) {
        return;
    }
    put(out, emphasis::heading, "Images that a flash sends, in this order",
        result.downloads.empty() ? ": none" : "");
    for (const download& each : result.downloads) {
        put(out, emphasis::none,
            fill_in("  %s  %s", {padded(each.port->flash_port->PermanentMAC, 17),
                                 each.sent ? "" : "NOT SENT, the flash ends before: "}),
            each.image);
    }
    out.text += '\n';
}

void put_findings(page& out, const survey& result) {
    if (result.findings.empty()) {
        put(out, emphasis::heading, "No finding", "");
        return;
    }
    put(out, emphasis::heading, "Findings",
        fill_in(": %s", {std::to_string(result.findings.size())}));
    for (const finding& each : result.findings) {
        put(out, emphasis::warning, fill_in("  %s  ", {padded(name_of(each.code), 17)}),
            place_of(each));
        put(out, emphasis::none, "    ",
            each.file.empty() || each.serial.empty() ? each.what
                                                     : fill_in("%s: %s", {each.serial, each.what}));
        put(out, emphasis::none, "    -> ", each.advice);
    }
}

}  // namespace

string text_report(const survey& result) {
    page out{.text = {}, .coloured = in_colours()};
    put(out, emphasis::none, string(p_option_input == nullptr ? "Inventory" : "Audit") + " of ",
        pHBAWorkingPath);
    out.text += '\n';
    for (const controller& each : result.controllers) {
        if (is_reported(each)) {
            put_controller(out, each);
        }
    }
    put_without_serial(out, result);
    put_downloads(out, result);
    put_findings(out, result);
    return out.text;
}
