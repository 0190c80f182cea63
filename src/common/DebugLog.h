// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// What the diagnostics log remembers from one line to the next. One for the process, which lives as long as it does;
/// tests install a fresh one of their own for their lifetime. User interface thread only.
class DebugLog
{
public:
    static DebugLog& Current();
    /// Does not take ownership; null goes back to the process's own.
    static void SetCurrent(DebugLog* debugLog);

    qint16 Indent() const { return Indent_; }
    /// Values below 0 become 0.
    void SetIndent(int indent) { Indent_ = static_cast<qint16>(qBound(0, indent, 0x7FFF)); }

    bool DebugPathChecked = false;     ///< The registry has been asked for a folder.
    bool ReportsFolderFailure = false; ///< The box about the folder is up; lines written meanwhile are lost.

private:
    qint16 Indent_ = 0;
};
