// SPDX-License-Identifier: MIT
#pragma once

/// Puts the player behind the forms: from now on `player_control` is the engine. [main]
void connect_forms();
