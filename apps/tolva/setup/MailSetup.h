// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// What is this station's own in the settings of the programs that bring it mail.
struct MailSetupValues
{
    QString Station; ///< Its folder, from the root.
    QString Address; ///< Where it gets mail.
    QString Host;    ///< Of the mailbox at a provider; empty where there is none.
    QString Login;   ///< There.
};

/// A file that a way of bringing mail needs.
struct MailSetupFile
{
    enum class Kind
    {
        Whole,   ///< It is the way's own.
        Addition ///< It goes to the end of a file that is there.
    };
    QString Path;
    QString Content;
    Kind How = Kind::Whole;

    bool IsScript() const { return Content.startsWith(QStringLiteral("#!")); }
};

/// One way by which messages come in: files, and what root types before and behind them.
struct MailWay
{
    QString Name;
    QString Summary;
    bool NeedsAddress = true;
    bool NeedsMailbox = false;  ///< Host and login at a provider.
    bool FillsIncoming = false; ///< Mails go into the maildir of the station's folder and are taken from there.
    QStringList Before;
    std::vector<MailSetupFile> Files;
    QStringList After;
};

namespace MailSetup
{
/// All ways, with these values. docs/hookups.md shows the same.
std::vector<MailWay> Ways(const MailSetupValues& values);
/// Why a value cannot stand in settings and scripts; empty when it can.
QString WhyNot(const MailSetupValues& values);
/// The script that puts the files of a way where they belong, accounts included; running it again changes nothing.
QString InstallationOf(const MailWay& way, const MailSetupValues& values);
} // namespace MailSetup
