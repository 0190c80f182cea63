// SPDX-License-Identifier: Apache-2.0
#pragma once

class StationContext;

/// Notes in the file when, and by which version of this library, the station was used last. Failures are let go.
void NoteLastAccess(StationContext& station);
