// SPDX-License-Identifier: Apache-2.0
#include "setup/MailSetup.h"

// The texts of the page on hooking up, with marks in the place of what differs between stations.

namespace
{
using FileKind = MailSetupFile::Kind;

MailSetupFile MailScript()
{
    return {QStringLiteral("/usr/local/bin/tolva-mail"), QStringLiteral(R"TEXT(#!/bin/sh
# Files the mail on standard input. Any failure is temporary for the mail server: it keeps the mail and tries again.
umask 0007
if /usr/bin/tolva file @STATION@ --category Inbox --once >/dev/null; then
    exit 0
fi
exit 75
)TEXT")};
}

MailWay PostfixAliasWay()
{
    MailWay way;
    way.Name = QStringLiteral("postfix-alias");
    way.Summary = QStringLiteral("Postfix of this computer, by an alias");
    way.Files.push_back(MailScript());
    way.Files.push_back({QStringLiteral("/etc/aliases"), QStringLiteral(R"TEXT(@LOCAL@: tolva
)TEXT"),
                         FileKind::Addition});
    way.Files.push_back({QStringLiteral("/var/lib/tolva/.forward"), QStringLiteral(R"TEXT("|/usr/local/bin/tolva-mail"
)TEXT")});
    way.Files.push_back({QStringLiteral("/etc/postfix/main.cf"), QStringLiteral(R"TEXT(mailbox_size_limit = 0
message_size_limit = 100000000
)TEXT"),
                         FileKind::Addition});
    way.After = {QStringLiteral("newaliases"), QStringLiteral("postfix reload")};
    return way;
}

MailWay PostfixTransportWay()
{
    MailWay way;
    way.Name = QStringLiteral("postfix");
    way.Summary = QStringLiteral("Postfix of this computer, by a transport of its own");
    way.Files.push_back(MailScript());
    way.Files.push_back({QStringLiteral("/etc/postfix/master.cf"),
                         QStringLiteral(R"TEXT(tolva     unix  -       n       n       -       1       pipe
  flags=R user=tolva:station argv=/usr/local/bin/tolva-mail
)TEXT"),
                         FileKind::Addition});
    way.Files.push_back({QStringLiteral("/etc/postfix/main.cf"),
                         QStringLiteral(R"TEXT(transport_maps = hash:/etc/postfix/transport
local_recipient_maps = $transport_maps proxy:unix:passwd.byname $alias_maps
mailbox_size_limit = 0
message_size_limit = 100000000
)TEXT"),
                         FileKind::Addition});
    way.Files.push_back({QStringLiteral("/etc/postfix/transport"), QStringLiteral(R"TEXT(@ADDRESS@    tolva:
)TEXT"),
                         FileKind::Addition});
    way.After = {QStringLiteral("postmap /etc/postfix/transport"), QStringLiteral("postfix reload")};
    return way;
}

MailWay EximPipeWay()
{
    MailWay way;
    way.Name = QStringLiteral("exim");
    way.Summary = QStringLiteral("Exim of this computer, by a pipe");
    way.Files.push_back(MailScript());
    way.Files.push_back({QStringLiteral("/etc/exim4/conf.d/router/350_tolva"), QStringLiteral(R"TEXT(tolva_router:
  driver = accept
  domains = @DOMAIN@
  local_parts = @LOCAL@
  transport = tolva_pipe
)TEXT")});
    way.Files.push_back({QStringLiteral("/etc/exim4/conf.d/transport/30_tolva"), QStringLiteral(R"TEXT(tolva_pipe:
  driver = pipe
  command = /usr/local/bin/tolva-mail
  user = tolva
  group = station
  return_path_add
  message_prefix =
  message_suffix =
  log_output
  timeout = 10m
  timeout_defer
  temp_errors = *
)TEXT")});
    way.After = {QStringLiteral("update-exim4.conf")};
    return way;
}

MailWay EximMaildirWay()
{
    MailWay way;
    way.Name = QStringLiteral("exim-maildir");
    way.Summary = QStringLiteral("Exim of this computer, into a maildir that is emptied");
    way.Units = {QStringLiteral("receive.path")};
    way.Files.push_back({QStringLiteral("/etc/exim4/conf.d/router/350_tolva"), QStringLiteral(R"TEXT(tolva_router:
  driver = accept
  domains = @DOMAIN@
  local_parts = @LOCAL@
  transport = tolva_maildir
)TEXT")});
    way.Files.push_back({QStringLiteral("/etc/exim4/conf.d/transport/30_tolva"), QStringLiteral(R"TEXT(tolva_maildir:
  driver = appendfile
  directory = @STATION@/Incoming
  maildir_format
  create_directory
  user = tolva
  group = station
  mode = 0660
  directory_mode = 2770
  return_path_add
)TEXT")});
    way.After = {QStringLiteral("update-exim4.conf")};
    return way;
}

MailWay MbsyncWay()
{
    MailWay way;
    way.Name = QStringLiteral("mbsync");
    way.Summary = QStringLiteral("a mailbox at a provider, which mbsync copies");
    way.NeedsAddress = false;
    way.AtProvider = MailWay::Provider::Mailbox;
    way.Units = {QStringLiteral("receive.path"), QStringLiteral("fetch.timer")};
    way.Next = {QStringLiteral("Then write the mailbox's password into /etc/tolva/imap-password.")};
    way.Before = {QStringLiteral("install -o tolva -g station -m 0600 /dev/null /etc/tolva/imap-password"),
                  QStringLiteral("install -d -o tolva -g station -m 2770 @STATION@/Incoming @STATION@/Incoming/new "
                                 "@STATION@/Incoming/cur @STATION@/Incoming/tmp")};
    way.Files.push_back({QStringLiteral("/etc/tolva/mbsyncrc"), QStringLiteral(R"TEXT(IMAPAccount studio
Host @HOST@
User @LOGIN@
PassCmd "cat /etc/tolva/imap-password"
SSLType IMAPS

IMAPStore provider
Account studio

MaildirStore station
Inbox @STATION@/Incoming

Channel studio
Far :provider:
Near :station:
Sync PullNew
Create Near
Expunge None
SyncState /var/lib/tolva/
)TEXT")});
    way.Files.push_back({QStringLiteral("/usr/local/bin/tolva-fetch"), QStringLiteral(R"TEXT(#!/bin/sh
# Fetches what is new, and files what lies in the maildir.
umask 0007
mbsync -q -c /etc/tolva/mbsyncrc studio
fetched=$?
/usr/bin/tolva file @STATION@ --take @STATION@/Incoming >/dev/null && exit $fetched
)TEXT")});
    return way;
}

MailWay FetchmailWay()
{
    MailWay way;
    way.Name = QStringLiteral("fetchmail");
    way.Summary = QStringLiteral("a mailbox at a provider, which fetchmail empties");
    way.NeedsAddress = false;
    way.AtProvider = MailWay::Provider::Mailbox;
    way.Units = {QStringLiteral("fetch.timer")};
    way.Next = {
        QStringLiteral("Then put the mailbox's password in the place of PASSWORD in /var/lib/tolva/.fetchmailrc.")};
    way.Before = {QStringLiteral("install -o tolva -g station -m 0600 /dev/null /var/lib/tolva/.fetchmailrc")};
    way.Files.push_back(MailScript());
    way.Files.push_back({QStringLiteral("/var/lib/tolva/.fetchmailrc"), QStringLiteral(R"TEXT(set invisible
set no bouncemail
set no spambounce
poll @HOST@ protocol imap bad-header accept
  user "@LOGIN@" password "PASSWORD" ssl
  fetchall
  no rewrite
  mda "/usr/local/bin/tolva-mail"
)TEXT")});
    way.Files.push_back({QStringLiteral("/usr/local/bin/tolva-fetch"), QStringLiteral(R"TEXT(#!/bin/sh
# Fetches what lies in the mailbox. 1 says that there was nothing.
umask 0007
fetchmail --silent --fetchmailrc /var/lib/tolva/.fetchmailrc
code=$?
[ "$code" -eq 1 ] || exit "$code"
)TEXT")});
    return way;
}

MailWay GammuWay()
{
    MailWay way;
    way.Name = QStringLiteral("gammu-smsd");
    way.Summary = QStringLiteral("text messages, by gammu-smsd");
    way.NeedsAddress = false;
    way.Next = {QStringLiteral(
        "The additions to /etc/gammu-smsdrc belong to the end of its section smsd, where they are put.")};
    way.Files.push_back({QStringLiteral("/etc/gammu-smsdrc"),
                         QStringLiteral(R"TEXT(RunOnReceive = /usr/local/bin/tolva-sms
MultipartTimeout = 600
)TEXT"),
                         FileKind::Addition});
    way.Files.push_back({QStringLiteral("/usr/local/bin/tolva-sms"), QStringLiteral(R"TEXT(#!/bin/bash
# Files a received text message. What cannot be filed now is kept in the spool and filed at the next call.
umask 0007
station=@STATION@
spool=/var/spool/tolva-sms
# The daemon closes all streams; programs need some.
exec </dev/null >>"$spool/.log" 2>&1

# Older daemons number the decoded parts from 0, newer ones from 1.
text=''
if [ "${DECODED_PARTS:-0}" -gt 0 ]; then
    for ((i = 0; i <= DECODED_PARTS; ++i)); do
        part=DECODED_${i}_TEXT
        text+=${!part:-}
    done
fi
if [ -z "$text" ]; then
    for ((i = 1; i <= ${SMS_MESSAGES:-0}; ++i)); do
        part=SMS_${i}_TEXT
        text+=${!part:-}
    done
fi

# First into the spool, under its name only when it is whole.
if [ "${SMS_MESSAGES:-0}" -gt 0 ]; then
    new=$(mktemp "$spool/.new.XXXXXX") || exit 1
    printf 'From: %s\nReceived: %s\n\n%s\n' "$SMS_1_NUMBER" "$(date '+%Y-%m-%d %H:%M:%S')" "$text" >"$new" || exit 1
    sync "$new" || exit 1
    mv "$new" "$spool/$(date +%s%N)-${new##*.}.sms" || exit 1
fi

# Options of filing: a line TOLVA_SMS_OPTIONS=--answer, for instance. Read here, so that a fault in it loses no text.
[ -r /etc/tolva/sms.conf ] && . /etc/tolva/sms.conf

# Then all that waits, one call of the script at a time.
exec 9>"$spool/.lock"
flock 9
/usr/bin/tolva file "$station" ${TOLVA_SMS_OPTIONS:-} --take "$spool" >/dev/null
)TEXT")});
    way.After = {QStringLiteral("install -d -o gammu -g station -m 2770 /var/spool/tolva-sms"),
                 QStringLiteral("usermod -a -G station gammu")};
    return way;
}

/// From where the station's mails go out.
QString AddressSetting()
{
    return QStringLiteral("runuser -u tolva -- tolva setting @STATION@ Station.EmailAddress @ADDRESS@");
}

MailWay MsmtpWay(MailSetupValues::Safety how)
{
    using Safety = MailSetupValues::Safety;
    MailWay way;
    way.Name = QStringLiteral("msmtp");
    way.Summary = QStringLiteral("sending by the SMTP server of a provider");
    way.AtProvider = MailWay::Provider::SmtpServer;
    way.Units = {QStringLiteral("send.timer")};
    const QString safety = how == Safety::None
                               ? QStringLiteral("tls off\nauth off\n")
                               : QStringLiteral("tls on\ntls_starttls %1\nauth on\nuser @LOGIN@\n"
                                                "passwordeval \"cat /etc/tolva/smtp-password\"\n")
                                     .arg(how == Safety::StartTls ? QStringLiteral("on") : QStringLiteral("off"));
    if (how != Safety::None) {
        way.Before = {QStringLiteral("install -o tolva -g station -m 0600 /dev/null /etc/tolva/smtp-password")};
        way.Next = {QStringLiteral("Then write the password for that server into /etc/tolva/smtp-password.")};
    }
    way.Files.push_back({QStringLiteral("/etc/tolva/msmtprc"), QStringLiteral(R"TEXT(defaults
timeout 60

account studio
host @HOST@
port @PORT@
)TEXT") + safety + QStringLiteral("\naccount default : studio\n")});
    way.Files.push_back({QStringLiteral("/usr/local/bin/tolva-smtp"), QStringLiteral(R"TEXT(#!/bin/sh
# Hands the mail on standard input to the provider's SMTP server.
exec msmtp -C /etc/tolva/msmtprc "$@"
)TEXT")});
    way.Files.push_back({QStringLiteral("/etc/tolva/send.conf"),
                         QStringLiteral("TOLVA_SEND_OPTIONS=--sendmail /usr/local/bin/tolva-smtp --per-minute 30\n")});
    way.After = {AddressSetting()};
    return way;
}

MailWay SendmailWay()
{
    MailWay way;
    way.Name = QStringLiteral("sendmail");
    way.Summary = QStringLiteral("sending by the mail server of this computer");
    way.Units = {QStringLiteral("send.timer")};
    way.Files.push_back(
        {QStringLiteral("/etc/tolva/send.conf"), QStringLiteral("TOLVA_SEND_OPTIONS=--sendmail /usr/sbin/sendmail\n")});
    way.After = {AddressSetting()};
    return way;
}

/// The one that such servers usually have.
QString PortOf(const MailSetupValues& values)
{
    if (!values.Port.isEmpty())
        return values.Port;
    switch (values.How) {
    case MailSetupValues::Safety::StartTls:
        return QStringLiteral("587");
    case MailSetupValues::Safety::Tls:
        return QStringLiteral("465");
    case MailSetupValues::Safety::None:
        break;
    }
    return QStringLiteral("25");
}

QString Filled(QString text, const MailSetupValues& values)
{
    text.replace(QStringLiteral("@STATION@"), values.Station);
    text.replace(QStringLiteral("@ADDRESS@"), values.Address);
    text.replace(QStringLiteral("@LOCAL@"), values.Address.section(u'@', 0, 0));
    text.replace(QStringLiteral("@DOMAIN@"), values.Address.section(u'@', 1));
    text.replace(QStringLiteral("@HOST@"), values.Host);
    text.replace(QStringLiteral("@LOGIN@"), values.Login);
    text.replace(QStringLiteral("@PORT@"), PortOf(values));
    return text;
}
} // namespace

std::vector<MailWay> MailSetup::Ways(const MailSetupValues& values)
{
    std::vector<MailWay> ways = {PostfixAliasWay(), PostfixTransportWay(), EximPipeWay(),
                                 EximMaildirWay(),  MbsyncWay(),           FetchmailWay(),
                                 GammuWay(),        MsmtpWay(values.How),  SendmailWay()};
    for (MailWay& way : ways) {
        for (MailSetupFile& file : way.Files)
            file.Content = Filled(file.Content, values);
        for (QStringList* commands : {&way.Before, &way.After}) {
            for (QString& command : *commands)
                command = Filled(command, values);
        }
    }
    return ways;
}
