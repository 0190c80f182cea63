// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Standard input, output and error.
namespace StandardStreams
{
/// For those that whoever started the program had closed: their numbers are taken by something that can be neither read
/// nor written, so that no file that is opened later gets what is printed, and printing is seen to fail. First of all
/// in main.
void HoldPlaces();
} // namespace StandardStreams
