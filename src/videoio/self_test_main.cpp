// SPDX-License-Identifier: MIT
#include "videoio/self_test.h"

int main(int argc, char** argv) {
    return _main(argc, argv);
}
