// SPDX-License-Identifier: MIT
#include "enhance/enhance.h"

int main(int argc, char** argv) {
    return enhance_main(argc, argv);
}
