// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QtGlobal>

namespace dao
{

/// How long this thread waits for what somebody else has locked before it raises 3260, while this stands: for what a
/// window does beside its work and may as well do later. Looking whether a database's file stands at its place, and a
/// server that does not answer, keep their own time. A local object; the innermost counts.
class TOLVA_EXPORT LockPatience
{
public:
    static constexpr qint64 UsualMilliseconds = 5000;

    explicit LockPatience(qint64 milliseconds);
    ~LockPatience();
    LockPatience(const LockPatience&) = delete;
    LockPatience& operator=(const LockPatience&) = delete;

    /// Of this thread, now.
    static qint64 Milliseconds();

private:
    qint64 Before_;
};

} // namespace dao
