#include "base/interruption.h"
#include "base/process_setup.h"
#include "base/run_lock.h"
#include "run/program_run.h"

int main(int argc, char** argv) {
    prepare_process();
    withhold_standard_input();
    const exit_status status = program_run(argc, argv);
    release_file_lock();
    end_by_noted_signal();
    return status;
}
