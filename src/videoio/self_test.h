// SPDX-License-Identifier: MIT
#pragma once

/// Prints where the fields of `VYX_OpenVideoArgs` lie and copies a film frame by frame, from a
/// caller's side: "selftest.mp4" of the working folder, or the first argument, becomes
/// "selftest-copy.avi", or the second one, in MPEG-4. Prints the time of every frame and the
/// message that ends the copy. Returns 0, or 1 when the film could not be opened.
int _main(int argc, char** argv);
