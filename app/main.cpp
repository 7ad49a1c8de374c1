// SPDX-License-Identifier: MIT
#include "app/store_program.h"

int main(int argc, char **argv)
{
    return harrowby::app::runStoreProgram(argc, argv);
}
