// SPDX-License-Identifier: MIT
#pragma once

/// The number of blocks this thread has taken from the heap so far, by `new`, by `malloc` and its
/// kin, in this program and in the libraries it uses.
long heap_allocations();
