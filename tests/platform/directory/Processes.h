// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

/// Runs the work in so many processes that start it together; how many of them failed. Call it while this process has
/// no database open: a copied process must not use another's.
int FailedProcesses(int count, const std::function<void()>& work);
