// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"

#include <cstdio>
#include <cstring>

int harrowby::test::runNamedTest(std::initializer_list<NamedTest> tests, int argc, char **argv)
{
    for (const NamedTest &test : tests) {
        if (argc < 2 || std::strcmp(argv[1], test.name) != 0)
            continue;
        argv[1] = argv[0];
        return test.run(argc - 1, argv + 1);
    }
    std::fprintf(stderr, "%s TEST [FUNCTION ...] [OPTION ...]\n", argv[0]);
    for (const NamedTest &test : tests)
        std::fprintf(stderr, "    %s\n", test.name);
    return 2;
}
