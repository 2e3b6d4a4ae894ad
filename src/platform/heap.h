// SPDX-License-Identifier: MIT
#pragma once

/// Sets the C library's heap up for films: blocks of up to 2.75 MB, such as the vectors and
/// quantisers that a decoder asks for and frees with each picture, stay with the process when they
/// are freed; larger ones go back to the system. New memory for each of them costs a page fault per
/// 4 KB. Call before there are other threads.
void set_up_heap();

/// Gives what is free back to the system. Any thread; takes some milliseconds.
void trim_heap();
