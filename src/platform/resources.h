// SPDX-License-Identifier: MIT
#pragma once

/// Finds data compiled into the program.
///
/// On success `*data` points at the resource, which lives as long as the program, and `*size` is
/// its length in bytes. Otherwise the query is printed on standard output and the two are null and
/// 0.
void load_resource(const char* category, const char* identifier, const unsigned char** data,
                   int* size);
