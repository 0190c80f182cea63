// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The page on hooking up, as somebody does what it says: under a heading, files in a block of code behind
/// "In `/path`" or "Save this as `/path`, mode 0755", and commands in blocks of shell lines.
class HookupPage
{
public:
    /// text: of the page.
    explicit HookupPage(const QString& text) : Text_(text) {}

    /// All that stands under a heading, as a text of bash for root. Settings go to the end of their file. Empty when
    /// there is no such heading, or a block of it says neither its file nor that it is a command.
    QString Instructions(const QString& heading) const;

private:
    QString Section(const QString& heading) const;

    QString Text_;
};
