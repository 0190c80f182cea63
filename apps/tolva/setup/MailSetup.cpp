// SPDX-License-Identifier: Apache-2.0
#include "setup/MailSetup.h"

#include <QRegularExpression>

#include <limits>

namespace
{
bool Matches(const QString& text, const char* pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(pattern))).match(text).hasMatch();
}

/// Accounts, and the station's folder for them: what the page says under "Who runs it", once.
QString AccountsFor(const QString& station)
{
    return QStringLiteral("getent group station >/dev/null || groupadd --system station\n"
                          "id tolva >/dev/null 2>&1 ||\n"
                          "    useradd --system --gid station --home-dir /var/lib/tolva --create-home tolva\n"
                          "chown -R tolva:station %1\n"
                          "chmod -R u+rwX,g+rwX,o-rwx %1\n"
                          "find %1 -type d -exec chmod g+s {} +\n")
        .arg(station);
}

QString Placing(const MailSetupFile& file)
{
    const QString source = file.Path.mid(1);
    const QString folder = QStringLiteral("mkdir -p %1\n").arg(file.Path.section(u'/', 0, -2));
    if (file.How == MailSetupFile::Kind::Addition) {
        // By its first line, so that a second run adds nothing.
        return folder +
               QStringLiteral("grep -qxFe \"$(head -n 1 %1)\" %2 2>/dev/null || cat %1 >>%2\n").arg(source, file.Path);
    }
    // With the owner and the rights of the file that is there.
    const QString mode = file.IsScript() ? QStringLiteral("chmod 0755 %1\n").arg(file.Path) : QString();
    return folder + QStringLiteral("cat %1 >%2\n").arg(source, file.Path) + mode;
}

/// Where systemd runs, the units of the way for this station.
QString Enabling(const MailWay& way, const QString& station)
{
    if (way.Units.isEmpty())
        return QString();
    QString script = QStringLiteral("if [ -d /run/systemd/system ]; then\n");
    for (const QString& unit : way.Units) {
        script += QStringLiteral("    systemctl enable --now \"tolva-%1@$(systemd-escape --path %2).%3\"\n")
                      .arg(unit.section(u'.', 0, 0), station, unit.section(u'.', 1));
    }
    return script + QStringLiteral("else\n    echo 'Without systemd let cron do the rest, as docs/hookups.md shows.'\n"
                                   "fi\n");
}
} // namespace

QString MailSetup::WhyNot(const MailSetupValues& values)
{
    if (!Matches(values.Station, "/[A-Za-z0-9/_.-]+"))
        return QStringLiteral("Settings of mail programs take folders of letters, digits and \"/_.-\" only; move the "
                              "station, or write them by hand.");
    if (!values.Address.isEmpty() && !Matches(values.Address, "[A-Za-z0-9._+-]+@[A-Za-z0-9.-]+"))
        return QStringLiteral("\"%1\" is no mail address, such as studio@example.org.").arg(values.Address);
    if (!values.Host.isEmpty() && !Matches(values.Host, "[A-Za-z0-9.-]+"))
        return QStringLiteral("\"%1\" is no name of a server, such as imap.example.org.").arg(values.Host);
    if (!values.Login.isEmpty() && !Matches(values.Login, "[A-Za-z0-9._+@-]+"))
        return QStringLiteral("The login \"%1\" holds what settings cannot hold; write them by hand.")
            .arg(values.Login);
    if (!values.Port.isEmpty() && (!Matches(values.Port, "[0-9]{1,5}") || values.Port.toInt() < 1 ||
                                   values.Port.toInt() > std::numeric_limits<quint16>::max()))
        return QStringLiteral("\"%1\" is no port, such as 587.").arg(values.Port);
    return QString();
}

QString MailSetup::InstallationOf(const MailWay& way, const MailSetupValues& values)
{
    QString script = QStringLiteral("#!/bin/sh\n"
                                    "# Puts the files of this folder where %1 wants them. For root; look them over "
                                    "first.\n"
                                    "set -eu\n"
                                    "cd \"$(dirname \"$0\")\"\n\n")
                         .arg(way.Name);
    script += AccountsFor(values.Station) + u'\n';
    QString files;
    for (const MailSetupFile& file : way.Files)
        files += Placing(file);
    if (way.Name == u"gammu-smsd") {
        // Its script writes into the spool as soon as the daemon calls it.
        script += way.After.join(u'\n') + u'\n' + files;
        return script;
    }
    // What holds a password is made by these with its rights, once.
    for (const QString& command : way.Before) {
        const QString path = command.section(u' ', -1);
        script += command.contains(QStringLiteral("/dev/null"))
                      ? QStringLiteral("mkdir -p %1\n[ -e %2 ] || %3\n").arg(path.section(u'/', 0, -2), path, command)
                      : command + u'\n';
    }
    script += files;
    for (const QString& command : way.After)
        script += command + u'\n';
    return script + Enabling(way, values.Station);
}
