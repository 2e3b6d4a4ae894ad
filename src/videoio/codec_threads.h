// SPDX-License-Identifier: MIT
#pragma once

/// How many threads decode or encode one film: as many as there are processors, four at most. Any
/// thread.
int codec_threads();
