// SPDX-License-Identifier: MIT
#include "app/commands/posix/large_heap.h"
#include "app/commands/program.h"

int main(int argc, char** argv) {
    zr::UseLargeHeap();
    return zr::RunProgram(argc, argv);
}
