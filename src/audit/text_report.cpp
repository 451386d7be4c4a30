#include <algorithm>

#include "audit/reports.h"
#include "base/page.h"
#include "base/text.h"
#include "call/help.h"

namespace {

using std::string;

string version_of(const port_texts& versions) {
    return versions.empty() ? "not known" : joined(versions, ", ");
}

string rows_of(const controller& each) {
    std::vector<string> rows;
    for (const fitting_row& row : each.rows) {
        rows.push_back(fill_in("line %s%s%s", std::to_string(row.row->line),
                               row.by_four ? "" : " (by two identifiers)",
                               row.fits_names ? "" : " (its names differ)"));
    }
    if (rows.empty()) {
        return "none in the table";
    }
    const std::size_t more =
        each.rows.front().by_four ? 0 : each.rows_by_two_ids - each.rows.size();
    return joined(rows, ", ") + (more == 0 ? "" : fill_in(" and %s more", std::to_string(more)));
}

string judgement_of(const surveyed_port& each) {
    if (each.checked_by == nullptr) {
        return "not checked";
    }
    const string by = fill_in("checked by line %s", std::to_string(each.checked_by->line));
    if (each.allowed_by != nullptr) {
        const std::string_view products = each.allowed_by->product_list;
        return fill_in("%s, allowed by %s %s", by, each.allowed_by->vendor,
                       products.empty() ? "(all products)" : products);
    }
    return each.port->target_mapping == nullptr ? by : by + ", NOT ALLOWED";
}

string storage_of(const hba_info& port) {
    const target_mapping_entry* target = port.target_mapping;
    return target == nullptr
               ? "no storage"
               : string(target->VendorID) + " " + target->ProductID + " " + target->ProductVersion;
}

string state_of(const surveyed_port& each, const survey& result) {
    if (!is_fc_or_fcoe(*each.port)) {
        return "";
    }
    return storage_of(*each.port) + (result.selection.empty() ? "" : "; " + judgement_of(each));
}

void put_port(page& out, const hba_info& port, const string& text) {
    put(out,
        fill_in("  %s %s %s  ", padded(port_name(port), 5), padded(port.PortType, 5),
                padded(address_of(port), 23)),
        text);
}

void put_controller(page& out, const controller& each, const survey& result) {
    const hba_info& first = *each.ports.front().port;
    const hba_info& flash_port = *first.flash_port;
    const port_texts ids = pci_ids_of(each);
    put(out, fill_in("Controller %s", first.SerialNo), fill_in("  %s %s", first.Mfg, first.Model),
        emphasis::heading);
    put(out, "  select it:  ",
        ids.empty() ? "its identifiers are not known" : fill_in("-pci-id %s", joined(ids, ",")));
    put(out, "  flash port: ",
        fill_in("%s %s %s", port_name(flash_port), flash_port.PortType, flash_port.PermanentMAC));
    put(out, "  versions:   ",
        fill_in("firmware %s, BIOS %s", version_of(firmware_versions_of(each)),
                version_of(bios_versions_of(each))));
    put(out, "  rows:       ", rows_of(each));
    for (const surveyed_port& member : each.ports) {
        put_port(out, *member.port, state_of(member, result));
    }
    out.text += '\n';
}

void put_without_serial(page& out, const survey& result) {
    if (!result.without_serial.empty()) {
        put(out, "Ports without a serial number", ", never checked or flashed", emphasis::heading);
        for (const hba_info* port : result.without_serial) {
            put_port(out, *port, port->Model);
        }
        out.text += '\n';
    }
}

void put_downloads(page& out, const survey& result) {
    put(out, "Images that a flash sends, in this order", result.downloads.empty() ? ": none" : "",
        emphasis::heading);
    for (const download& each : result.downloads) {
        put(out,
            fill_in("  %s  %s", padded(each.port->flash_port->PermanentMAC, 17),
                    each.sent ? "" : "NOT SENT, the flash ends before: "),
            fill_in("%s (now %s)", each.image, version_of(each.installed)));
    }
    out.text += '\n';
}

string state_of(const finding& each) { return each.accepted ? "accepted" : name_of(each.weight); }

// "2 errors, 1 note, 3 accepted"
string count_of(const finding_list& findings) {
    std::vector<string> parts;
    for (const string state : {"error", "warning", "note", "accepted"}) {
        const auto count = std::ranges::count_if(
            findings, [&](const finding& each) { return state_of(each) == state; });
        if (count > 0) {
            parts.push_back(std::to_string(count) + " " + state +
                            (count > 1 && state != "accepted" ? "s" : ""));
        }
    }
    return joined(parts, ", ");
}

void put_finding(page& out, const finding& each) {
    const finding_place& place = each.place;
    const bool has_two = !place.file.empty() && !place.serial.empty();
    put(out, fill_in("  %s  %s  ", padded(state_of(each), 8), padded(name_of(each.code), 17)),
        name_of(place), each.accepted ? emphasis::none : emphasis::warning);
    put(out, "    ",
        (has_two ? place.serial + ": " : "") + each.what +
            (place.piece == 0 ? ""
                              : fill_in(" (cnatool counts pieces, and calls it line %s.)",
                                        std::to_string(place.piece))));
    put(out, "    -> ", each.advice);
}

}  // namespace

string text_report(const survey& result) {
    page out{.coloured = takes_colours()};
    put(out, result.selection.empty() ? "Inventory of " : "Audit of ", result.directory);
    out.text += '\n';
    for (const controller* each : result.shown) {
        put_controller(out, *each, result);
    }
    put_without_serial(out, result);
    if (result.flash) {
        put_downloads(out, result);
    }
    put(out, result.findings.empty() ? "No finding" : "Findings: ", count_of(result.findings),
        emphasis::heading);
    for (const finding& each : result.findings) {
        put_finding(out, each);
    }
    return out.text;
}
