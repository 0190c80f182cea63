// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where random numbers come from. Tests install one that gives the numbers they want.
class RandomSource
{
public:
    virtual ~RandomSource() = default;
    /// A number from 0 up to, and not with, 1.
    virtual double NextBelowOne() const = 0;

    /// The one in force; at first the system's, seeded by the system.
    static const RandomSource& Current();
    /// Does not take ownership; null goes back to the system's.
    static void SetCurrent(const RandomSource* source);
};
