// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

#include <QString>

#include <new>
#include <utility>

/// Runs statements whose errors do not stop the run, and keeps the newest error for the points that test it. A plain
/// value of the operation that owns it:
///
///     PendingError error;
///     error.Try([&] { rows->Edit(); });
///     if (error)
///         ReportProblem(QStringLiteral("editing the row"), error.Number(), silent, error.Description());
class PendingError
{
public:
    static constexpr int InvalidCall = 5;
    static constexpr int OutOfMemory = 7;

    /// Runs statement; true when it ran to its end. Otherwise its error is pending, in place of any earlier one: a
    /// dao::Error under its own number, lack of memory as OutOfMemory, any other std::exception as InvalidCall. What is
    /// no std::exception passes through. A success leaves an earlier error pending.
    template <class F>
    bool Try(F&& statement)
    {
        try {
            std::forward<F>(statement)();
            return true;
        } catch (const dao::Error& error) {
            Set(error.Number(), error.Description());
        } catch (const std::bad_alloc&) {
            Set(OutOfMemory, QStringLiteral("Out of memory"));
        } catch (const std::exception& error) {
            const QString text = QString::fromUtf8(error.what());
            Set(InvalidCall, text.isEmpty() ? QStringLiteral("Invalid procedure call or argument") : text);
        }
        return false;
    }

    /// 0 when no error is pending.
    int Number() const { return Number_; }
    const QString& Description() const { return Description_; }
    explicit operator bool() const { return Number_ != 0; }
    void Set(int number, const QString& description)
    {
        Number_ = number;
        Description_ = description;
    }
    void Clear() { Set(0, QString()); }

private:
    int Number_ = 0;
    QString Description_;
};
