#include "audit/findings.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "call/paths.h"

namespace {

using enum finding_code;
using enum severity;

struct code_row {
    finding_code code;
    severity weight;
    const char* name;
    const char* advice;
};

constexpr code_row code_rows[] = {
    {not_installed, error, "not-installed", "See what an audit without selection shows."},
    {group_dropped, error, "group-dropped", "Name all groups in one -pci-id, separated by commas."},
    {no_row, error, "no-row", "Add such a row, or leave the controller out."},
    {names_differ, error, "names-differ", "Correct it to a prefix of what the port reports."},
    {many_flashes, error, "many-flashes", "Select its flash port, and let it fit a row itself."},
    {flash_refused, error, "flash-refused", "Shorten the names of the image and its directories."},
    {image_missing, error, "image-missing", "Put the image there, or correct its name in the row."},
    {image_ambiguous, error, "image-ambiguous", "Leave only one file there whose name fits."},
    {output_incomplete, error, "output-incomplete", "Run cnatool again, or ask the tool by hand."},
    {lun_unjudged, error, "lun-unjudged", "Allow this storage in the row, or take the LUN away."},
    {row_zero_id, error, "row-zero-id", "Fill it in; only both subsystem ids together may be 0."},
    {row_bars, error, "row-bars", "Put a blank between the two bars."},
    {row_long, error, "row-long", "Split the row into several shorter ones."},
    {no_storage, warning, "no-storage", "See whether link, zoning and mapping are as wanted."},
    {not_on_chain, warning, "not-on-chain", "Compare its storage with the table by hand."},
    {output_old, warning, "output-old", "Run cnatool again, for outputs of one run."},
    {directory_missing, warning, "directory-missing",
     "Make it, or keep the images beside the table."},
    {ids_differ, warning, "ids-differ", "To flash it, add a row with all four identifiers."},
    {port_skipped, warning, "port-skipped", "See why the management tool gives no serial number."},
    {row_unreachable, warning, "row-unreachable", "Join it with the earlier row, or correct it."},
    {row_hidden, warning, "row-hidden", "Begin it with a number sign, or take the sign out."},
    {row_products, warning, "row-products", "See whether all products of that vendor are meant."},
    {row_empty, note, "row-empty", "Take the line out, or begin it with a number sign."},
    {row_bytes, note, "row-bytes", "Compare the texts with the management tool's, by byte."},
    {accept_unused, note, "accept-unused", "Take the entry out of --accept."},
};

constexpr auto* out_of_order =
    std::ranges::adjacent_find(code_rows, std::ranges::greater_equal{}, &code_row::code);
static_assert(out_of_order == std::end(code_rows) &&
                  std::size(code_rows) == static_cast<std::size_t>(finding_code::count),
              "each code has its row, in the order of finding_code");

const code_row& row_of(finding_code code) { return code_rows[static_cast<std::size_t>(code)]; }

bool accepts(const accepted_finding& accepted, const finding& found) {
    return accepted.code == found.code &&
           (!accepted.place || *accepted.place == name_of(found.place));
}

}  // namespace

finding_place at_port(const hba_info& port) {
    return {.serial = port.SerialNo, .port = port_name(port)};
}

finding_place in_file(std::string path, int line, int piece) {
    return {.file = std::move(path), .line = line, .piece = piece == line ? 0 : piece};
}

finding_place at_row(const fc_config_file_entry& row) {
    return in_file(pHBAConditionsPath, row.line, row.piece);
}

std::string name_of(const finding_place& place) {
    if (!place.word.empty()) {
        return place.word;
    }
    if (!place.file.empty()) {
        const std::string name = place.file.substr(place.file.rfind('/') + 1);
        return place.line > 0 ? name + ":" + std::to_string(place.line) : name;
    }
    return place.port.empty() ? place.serial : place.serial + " " + place.port;
}

const char* name_of(finding_code code) { return row_of(code).name; }

const char* name_of(severity weight) {
    constexpr const char* names[] = {"error", "warning", "note"};
    return names[static_cast<std::size_t>(weight)];
}

finding& add_finding(finding_list& findings, finding_code code, finding_place place,
                     std::string what) {
    const code_row& row = row_of(code);
    return findings.emplace_back(
        finding{code, row.weight, std::move(place), std::move(what), row.advice});
}

std::optional<std::string_view> read_accepted(std::string_view list,
                                              std::vector<accepted_finding>& accepted) {
    for (std::size_t end = 0; end != std::string_view::npos; list.remove_prefix(end + 1)) {
        end = list.find(',');
        const std::string_view entry = list.substr(0, end);
        const std::size_t at = entry.find('@');
        const auto* row = std::ranges::find(code_rows, entry.substr(0, at), &code_row::name);
        if (row == std::end(code_rows)) {
            return entry.substr(0, at);
        }
        accepted.push_back({std::string(entry), row->code, std::nullopt});
        if (at != std::string_view::npos) {
            accepted.back().place = entry.substr(at + 1);
        }
        if (end == std::string_view::npos) {
            break;
        }
    }
    return std::nullopt;
}

void accept_findings(const std::vector<accepted_finding>& accepted, finding_list& findings) {
    for (const accepted_finding& each : accepted) {
        bool is_used = false;
        for (finding& found : findings) {
            if (accepts(each, found)) {
                found.accepted = is_used = true;
            }
        }
        if (!is_used) {
            add_finding(findings, accept_unused, {.word = each.entry}, "there is no such finding.");
        }
    }
}

bool counts(const finding& found) { return !found.accepted && found.weight != severity::note; }
