// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// How the computers that share a file lock it.
enum class LockingMode : qint32
{
    Unknown = -1,
    PageLevel = 0,
    RecordLevel = 1
};
