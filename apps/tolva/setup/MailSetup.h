// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// What is this station's own in the settings of the programs that bring it mail or take it away.
struct MailSetupValues
{
    /// How a connection to a provider's SMTP server is made safe.
    enum class Safety
    {
        StartTls, ///< The connection begins without, as on port 587.
        Tls,      ///< From its beginning, as on port 465.
        None      ///< A server of the house, which asks nobody for a login.
    };
    QString Station; ///< Its folder, from the root.
    QString Address; ///< Where it gets mail, and from where it sends.
    QString Host;    ///< Of the mailbox, or the SMTP server, at a provider; empty where there is none.
    QString Login;   ///< There.
    QString Port;    ///< Of the SMTP server; empty for the usual one.
    Safety How = Safety::StartTls;
};

/// A file that a way needs.
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

/// One way by which messages come in or go out: files, and what root types before and behind them.
struct MailWay
{
    enum class Provider
    {
        None,
        Mailbox,   ///< An IMAP server is asked for, and the login there.
        SmtpServer ///< One that takes mails.
    };
    QString Name;
    QString Summary;
    bool NeedsAddress = true;
    Provider AtProvider = Provider::None;
    QStringList Before;
    std::vector<MailSetupFile> Files;
    QStringList After;
    QStringList Units; ///< Of systemd, without the beginning "tolva-" and the station: "fetch.timer".
    QStringList Next;  ///< What is left to do then, in sentences.
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
