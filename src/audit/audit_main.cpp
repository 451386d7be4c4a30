#include <cstdlib>

#include "audit/audit_run.h"
#include "audit/diagnostics.h"
#include "base/end_process.h"
#include "base/process_setup.h"

// What ends the tool at once also ends the audit, with the status of an audit.
void end_process(exit_status status) {
    cannot_go_on(status);
    std::exit(AUDIT_GAVE_UP);
}

int main(int argc, char** argv) {
    prepare_process();
    return audit_run(argc, argv);
}
