#include "base/ground.h"
#include "run/program_run.h"

int main(int argc, char** argv) {
    prepare_process();
    return program_run(argc, argv);
}
