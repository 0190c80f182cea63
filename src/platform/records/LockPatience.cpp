// SPDX-License-Identifier: Apache-2.0
#include "platform/records/LockPatience.h"

namespace
{
thread_local qint64 patienceOfThread = dao::LockPatience::UsualMilliseconds;
} // namespace

dao::LockPatience::LockPatience(qint64 milliseconds) : Before_(patienceOfThread)
{
    patienceOfThread = milliseconds;
}

dao::LockPatience::~LockPatience()
{
    patienceOfThread = Before_;
}

qint64 dao::LockPatience::Milliseconds()
{
    return patienceOfThread;
}
