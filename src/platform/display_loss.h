// SPDX-License-Identifier: MIT
#pragma once

/// From now on the process ends at once, with status 1 and a message on standard error, when the X
/// server goes away or refuses something: the window may be gone. Xlib would end it the ordinary
/// way: libraries are taken down then while other threads still call them. After the window is
/// open. [main]
void end_with_display();
