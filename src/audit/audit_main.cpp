#include <cstdlib>
#include <string>

#include "audit/audit_run.h"
#include "audit/progress.h"
#include "base/end_process.h"
#include "base/ground.h"
#include "inventory/management_tool.h"

// What ends the tool at once ends the audit likewise, with its own status. The library has said
// what is wrong, as far as it does.
void end_process(exit_status status) {
    const std::string& file = file_being_read();
    give_up(fill_in("cannot go on%s%s: cnatool ends with status %s here",
                    {file.empty() ? "" : " in ", file, std::to_string(status)}));
    std::exit(AUDIT_GAVE_UP);
}

int main(int argc, char** argv) {
    prepare_process();
    return audit_run(argc, argv);
}
