#include "call/help.h"

#include "base/output.h"

namespace {

constexpr char version[] = CNATOOL_VERSION;

constexpr char helpMessage_1[] =
    "\n"
    "USAGE:\t %s [ options ]\n\n"
    "Options\n\n"
    "--ctrl-wide-identical  | --ctrl-vendor-wide-identical | --check-for-valid-subsystem\n\n"
    "-v (1 ... 6 ) | -d (1 ... 6 )\n\n"
    "-? | --help (-h)| --show-return-codes (-sr) | --version.\n\n\n\n"
    "-pci-id \"vendor-id:device-id[:subvendor-id:subdevice-id],[vendor-id:device-id[:...]]\"\n"
    " <hex-value:hex-value[:hex-value[:hex-value]], ...>; (ex. \"19A2:0710,19A2:0714\").\n\n"
    "--ctrl-wide-identical\n"
    "   check, whether per controller only identical storage-sub-systems are attached.\n"
    "   (ex. only TKR Tessarak_M1 systems are attached?).\n"
    "--ctrl-vendor-wide-identical\n"
    "   check, whether all members of a controller-family are attached to identical\n"
    "   storage-sub-systems (ex. all Emulex controller are attached to DGC Tessarak_M2 systems?).\n"
    "--check-for-valid-subsystem\n"
    "   check, whether valid subsystems are attached.\n"
    "   default (only if option --flash is not set).\n\n"
    "--vox-mode\n"
    "   program exits with return-code 0 (OK) instead of return-code 13\n"
    "   (No FC-controller installed).\n\n"
    "--silent\n"
    "   no output-data will be logged or printed (especially in combination with option -v or "
    "-d).\n\n"
    "--conpath <path>\n"
    "   path of directory in which FC_HBA_Conditions.txt is diposited.\n\n"
    "--flash\t\t\tflash controller.\n\n"
    "--show-return-codes\tshow return-code list.\n\n"
    "--version\t\tshow version of this program.\n\n"
    "--help\t\t\tshow help message.\n\n"
    "-?\tshow help message.\n\n"
    "-v (1,...,6)\tverbose-level (min, 1 to max, 6).\n\n"
    "-d (1,...,6)\tdebug-level (min, 1 to max, 6; output can be found in Servie_DLL.log).\n\n";

constexpr char helpMessage_2[] =
    "Examples:\n\n"
    "1) %s -v 1 -pci-id \"19A2:0700,19A2:0710:1B7E:11C1\" -check-for-valid-subsystem\n\n"
    "At least a pair of vendor-id and device-id must be given.\n"
    "Also a pair of subvendor-id and subdevice-id can be added.\n"
    "Each group of PCI-IDs represents a distinct PCI controller.\n"
    "Different PIC-ID groups must be comma separated.\n\n"
    "Checks, whether valid and supported storage-sub-systems are attached.\n\n\n";

constexpr char helpMessage_3[] =
    "2) %s -v 6 -pci-id \"19A2:0714\"  -ctrl-vendor-wide-identical\n\n"
    "Checks, whether all Emulex FCoE controller are attached to valid, supported and\n"
    "identical storage-sub-systems.\n\n\n";

}  // namespace

std::string tool_version() { return version; }

void print_tool_info() { Print(1, "\n%s version %s\n", program_name, tool_version().c_str()); }

void print_version() { Print(1, "%s\n", tool_version().c_str()); }

void print_help() {
    print_tool_info();
    Print(1, helpMessage_1, program_name);
    Print(1, helpMessage_2, program_name);
    Print(1, helpMessage_3, program_name);
}
