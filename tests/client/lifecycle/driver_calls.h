// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// Counts the driver's start, end, connections made and dropped, in the place of the driver's own functions, and checks
/// them when everything else in the process has ended: what is wrong then is printed, and the exit status is 1.
namespace driver_calls {

/// What must happen from now on until the end of the process. Some builds of the driver start themselves when they are
/// loaded; that is not counted.
void expect(int starts, int clients);

int starts();
int liveClients();

} // namespace driver_calls
