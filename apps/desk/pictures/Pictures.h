// SPDX-License-Identifier: Apache-2.0
#pragma once

struct DeskOptions;

/// The desk goes through itself and saves pictures of what a user would see, on a copy of a station, so that nothing in
/// the station changes.
namespace Pictures
{
/// Exit code. The files' names go to the standard output, problems to the error stream.
int Take(const DeskOptions& options);
} // namespace Pictures
