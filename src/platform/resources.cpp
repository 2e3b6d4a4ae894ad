// SPDX-License-Identifier: MIT
#include "platform/resources.h"

#include "resources/default_font_data.h"

#include <cstdio>
#include <cstring>

namespace {

struct Resource {
    const char* category;
    const char* identifier;
    const unsigned char* data;
    int size;
};

// Everything that is compiled in.
constexpr Resource resources[] = {
    {"GLF", "DEFAULT", default_font_data, sizeof default_font_data},
};

}  // namespace

void load_resource(const char* category, const char* identifier, const unsigned char** data,
                   int* size) {
    for (const Resource& resource : resources) {
        if (std::strcmp(resource.category, category) == 0 &&
            std::strcmp(resource.identifier, identifier) == 0) {
            *data = resource.data;
            *size = resource.size;
            return;
        }
    }
    std::printf("Query for resource CATEGORY=%s ID=%s\n", category, identifier);
    *data = nullptr;
    *size = 0;
}
