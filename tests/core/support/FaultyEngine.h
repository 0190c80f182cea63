// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

/// Stands in front of the engine that makes new files and lets the n-th access to a database fail: each opening and
/// each call of a store counts as one. While the object lives every database is opened through it, so it has to be made
/// before the first is opened, and to outlive the last. One at a time.
///
/// What fails does nothing; a commit that fails takes its changes back. Taking back itself never fails.
class FaultyEngine
{
public:
    FaultyEngine();
    ~FaultyEngine();
    FaultyEngine(const FaultyEngine&) = delete;
    FaultyEngine& operator=(const FaultyEngine&) = delete;

    /// From now on the access of that number (from 1) raises what failure throws, and with isLasting every later one
    /// too.
    void FailAt(int number, std::function<void()> failure, bool isLasting = false);
    void Heal();
    /// Whether a failure came since FailAt.
    bool HasFailed() const;
};
