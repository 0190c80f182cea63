// SPDX-License-Identifier: Apache-2.0
#include "Routes.h"

namespace
{
const QString WhoRunsIt = QStringLiteral("Who runs it");
const QString Script = QStringLiteral("The mail server's script");
const QString Maildir = QStringLiteral("A maildir");

const QString PostfixInstallation = QStringLiteral(R"(
useradd --system postfix
groupadd --system postdrop
useradd --create-home listener
cp /usr/share/postfix/main.cf.debian /etc/postfix/main.cf
cp /usr/share/postfix/master.cf.dist /etc/postfix/master.cf
cp /usr/share/postfix/dynamicmaps.cf /etc/postfix/
chgrp postdrop /usr/sbin/postqueue /usr/sbin/postdrop
chmod g+s /usr/sbin/postqueue /usr/sbin/postdrop
postconf -e maillog_file=/var/log/mail.log myhostname=station.test inet_interfaces=loopback-only \
    "mydestination=station.test, localhost, harbourfm.example.org"
touch /etc/aliases
newaliases
postfix set-permissions 2>/dev/null || true
postfix start 2>/dev/null
)");
const QString BySendmail =
    QStringLiteral("find /tmp/mails -type f | sort | xargs -P 4 -n 1 sh -c "
                   "'sendmail -i -f listener@station.test studio@harbourfm.example.org <\"$0\"'");
const QString PostfixQueue =
    QStringLiteral("find /var/spool/postfix/{maildrop,incoming,active,deferred} -type f | wc -l");

Route Postfix(const QString& name, const QString& setUpName, const QString& heading)
{
    Route route;
    route.Name = name;
    route.SetUpName = setUpName;
    route.Tree = QStringLiteral("postfix");
    route.Headings = QStringList{WhoRunsIt, Script, heading};
    route.Installation = PostfixInstallation;
    route.Deliver = BySendmail;
    // Killed while it takes a mail over from sendmail, Postfix has two of it, each with a number of its own.
    route.DeliverIntoQueue = QStringLiteral("postconf -e defer_transports=local,tolva\n"
                                            "postfix reload 2>/dev/null\n%1\n"
                                            "until [ \"$(find /var/spool/postfix/{maildrop,incoming,active} -type f | "
                                            "wc -l)\" = 0 ]; do sleep 0.1; done\n"
                                            "postconf -e defer_transports=\npostfix reload 2>/dev/null")
                                 .arg(BySendmail);
    route.Attempt = QStringLiteral("postqueue -f");
    route.Held = PostfixQueue;
    route.PutOff = QStringLiteral("find /var/spool/postfix/deferred -type f | wc -l");
    // All of its processes are of one group.
    route.KillServer = QStringLiteral("kill -9 -- -$(cat /var/spool/postfix/pid/master.pid)\n"
                                      "while kill -0 -- -$(cat /var/spool/postfix/pid/master.pid) 2>/dev/null; do "
                                      "sleep 0.05; done");
    route.RestartServer = QStringLiteral("postfix start 2>/dev/null");
    route.ShortenQueue = QStringLiteral("postconf -e maximal_queue_lifetime=3s bounce_queue_lifetime=3s "
                                        "minimal_backoff_time=1s maximal_backoff_time=1s queue_run_delay=1s\n"
                                        "postfix reload 2>/dev/null");
    return route;
}

const QString EximInstallation = QStringLiteral(R"(
useradd --system Debian-exim
useradd --create-home listener
mkdir -p /var/spool/exim4/{input,msglog,db} /var/log/exim4 /var/lib/exim4
chown -R Debian-exim:Debian-exim /var/spool/exim4 /var/log/exim4
chmod u+s /usr/sbin/exim4
cat >/etc/exim4/update-exim4.conf.conf <<END
dc_eximconfig_configtype='internet'
dc_other_hostnames='harbourfm.example.org:station.test'
dc_local_interfaces='127.0.0.1'
dc_use_split_config='true'
dc_localdelivery='mail_spool'
END
echo station.test >/etc/mailname
touch /etc/aliases
cat >/etc/exim4/conf.d/main/000_localmacros <<END
MESSAGE_SIZE_LIMIT = 100M
END
)");

Route Exim(const QString& name, const QString& setUpName, const QStringList& headings)
{
    Route route;
    route.Name = name;
    route.SetUpName = setUpName;
    route.Tree = QStringLiteral("exim");
    route.Headings = QStringList{WhoRunsIt} + headings;
    route.Installation = EximInstallation;
    route.Deliver = BySendmail;
    route.Attempt = QStringLiteral("exim4 -qff");
    route.Held = QStringLiteral("exim4 -bpc");
    route.DeliverIntoQueue =
        QString(BySendmail).replace(QStringLiteral("sendmail -i"), QStringLiteral("sendmail -odq -i"));
    route.KillServer = QStringLiteral("kill -9 $(pidof exim4) 2>/dev/null || true");
    route.ShortenQueue = QStringLiteral("printf '* * F,3s,1s\\n' >/etc/exim4/conf.d/retry/30_exim4-config\n"
                                        "update-exim4.conf");
    return route;
}

/// A mailbox at a provider, reached as one on the internet is: by its name, and with a certificate.
const QString ImapInstallation = QStringLiteral(R"(
useradd --system dovecot
useradd --system dovenull
useradd --system imapbox
echo '127.0.0.1 imap.harbourfm.example.org' >>/etc/hosts
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=imap.harbourfm.example.org \
    -addext subjectAltName=DNS:imap.harbourfm.example.org -keyout /etc/dovecot/private/key.pem -out /etc/dovecot/cert.pem 2>/dev/null
cp /etc/dovecot/cert.pem /usr/lib/ssl/certs/provider.pem
openssl rehash /usr/lib/ssl/certs 2>/dev/null
cat /etc/dovecot/cert.pem >>/etc/ssl/certs/ca-certificates.crt
cat >/etc/dovecot/dovecot.conf <<END
protocols = imap
listen = 127.0.0.1
ssl = required
ssl_cert = </etc/dovecot/cert.pem
ssl_key = </etc/dovecot/private/key.pem
mail_location = maildir:/var/imap/%u
log_path = /var/log/dovecot.log
passdb {
  driver = static
  args = password=PASSWORD
}
userdb {
  driver = static
  args = uid=imapbox gid=imapbox home=/var/imap/%u
}
END
mkdir -p /var/imap/studio/{new,cur,tmp}
chown -R imapbox:imapbox /var/imap
dovecot
)");
/// Also those that the master's children have started, which keep its sockets.
const QString KillDovecot = QStringLiteral("processes='dovecot|imap|imap-login|anvil|log|config|stats|auth'\n"
                                           "while pkill -9 -x \"$processes\"; do sleep 0.05; done\n"
                                           "rm -f /run/dovecot/master.pid");
/// As a delivery agent does it: under its name only when it is whole.
const QString IntoMailbox = QStringLiteral(R"(
chown imapbox:imapbox /tmp/mails/*
for mail in /tmp/mails/*; do mv "$mail" "/var/imap/studio/new/$(date +%s).$(basename "$mail").provider"; done
)");

Route Mbsync()
{
    Route route;
    route.Name = QStringLiteral("MbsyncFromDovecot");
    route.SetUpName = QStringLiteral("mbsync");
    route.TakesHeaderless = false;
    route.Tree = QStringLiteral("imap");
    route.Headings = QStringList{WhoRunsIt, QStringLiteral("mbsync copies a mailbox")};
    route.Installation = ImapInstallation;
    route.Start = QStringLiteral("echo PASSWORD >/etc/tolva/imap-password");
    route.Deliver = IntoMailbox;
    route.IsHeldElsewhere = true;
    route.Attempt = QStringLiteral("runuser -u tolva -- /usr/local/bin/tolva-fetch");
    route.Held = QStringLiteral("find /srv/station*/Incoming/{new,cur} -type f | wc -l");
    // Two hundred are copied in a moment: nobody sees the middle of it.
    return route;
}

Route Fetchmail()
{
    Route route;
    route.Name = QStringLiteral("FetchmailFromDovecot");
    route.SetUpName = QStringLiteral("fetchmail");
    route.Tree = QStringLiteral("imap");
    route.Headings = QStringList{WhoRunsIt, Script, QStringLiteral("fetchmail empties a mailbox")};
    route.Installation = ImapInstallation;
    route.Deliver = IntoMailbox;
    route.Attempt = QStringLiteral("runuser -u tolva -- env HOME=/var/lib/tolva /usr/local/bin/tolva-fetch");
    route.Held = QStringLiteral("find /var/imap/studio/{new,cur} -type f | wc -l");
    route.KillServer = KillDovecot;
    route.LeavesPieces = true;
    route.RestartServer = QStringLiteral("dovecot");
    return route;
}

Route WatchedMaildir()
{
    Route route;
    route.Name = QStringLiteral("WatchedMaildir");
    route.Headings = QStringList{WhoRunsIt};
    route.FillsTheStationsFolder = true;
    route.Installation = QStringLiteral("mkdir -p /srv/station/Incoming/{new,cur,tmp}");
    // Some were seen by another program already.
    route.Deliver = QStringLiteral(R"(
chown tolva:station /tmp/mails/*
i=0
box=$(echo /srv/station*/Incoming)
for mail in /tmp/mails/*; do
    name=$(date +%s).$(basename "$mail").other
    if [ $((++i % 3)) -eq 0 ]; then mv "$mail" "$box/cur/$name:2,S"; else mv "$mail" "$box/new/$name"; fi
done
)");
    route.Attempt = QStringLiteral("@") + Maildir;
    route.Held = QStringLiteral("find /srv/station*/Incoming/{new,cur} -type f | wc -l");
    return route;
}

Route EximMaildir()
{
    Route route =
        Exim(QStringLiteral("EximMaildir"), QStringLiteral("exim-maildir"), {QStringLiteral("Exim: a maildir")});
    // All are in the maildir before the first is filed.
    route.KillServer.clear();
    route.Attempt = QStringLiteral("exim4 -qff; @") + Maildir;
    route.Held = QStringLiteral(
        "echo $(($(exim4 -bpc) + $(find /srv/station*/Incoming/{new,cur} -type f 2>/dev/null | wc -l)))");
    return route;
}

Route Gammu()
{
    Route route;
    route.Name = QStringLiteral("GammuDaemon");
    route.SetUpName = QStringLiteral("gammu-smsd");
    route.Tree = QStringLiteral("gammu");
    route.Headings = QStringList{WhoRunsIt, QStringLiteral("gammu-smsd")};
    // The telephone is the one that gammu brings for trying things out: a folder.
    route.Installation = QStringLiteral(R"(
useradd --system --create-home gammu
mkdir -p /tmp/phone /var/spool/gammu/{inbox,outbox,sent,error}
chown -R gammu: /tmp/phone /var/spool/gammu
cat >/etc/gammu-smsdrc <<END
[gammu]
model = dummy
connection = none
device = /tmp/phone

[smsd]
service = files
logfile = /tmp/smsd.log
inboxpath = /var/spool/gammu/inbox/
outboxpath = /var/spool/gammu/outbox/
sentsmspath = /var/spool/gammu/sent/
errorsmspath = /var/spool/gammu/error/
ReceiveFrequency = 1
LoopSleep = 1
END
)");
    // What stands last counts: nobody waits ten minutes here for a part that never comes.
    route.Start = QStringLiteral("sed -i 's/^MultipartTimeout = 600$/MultipartTimeout = 3/' /etc/gammu-smsdrc\n"
                                 "touch /tmp/smsd.log; chown gammu: /tmp/smsd.log\n"
                                 "runuser -u gammu -- gammu-smsd -c /etc/gammu-smsdrc -p /tmp/smsd.pid -d");
    route.Deliver = QStringLiteral(R"SH(
for text in /tmp/mails/*; do
    runuser -u gammu -- gammu -c /etc/gammu-smsdrc savesms TEXT -folder 1 -unread -sender +447700900123 \
        -autolen 1000 -text "$(cat "$text")" >/dev/null
done
)SH");
    route.Attempt = QStringLiteral("runuser -u gammu -- /usr/local/bin/tolva-sms");
    route.Held = QStringLiteral("find /tmp/phone/sms/1 /var/spool/tolva-sms -type f ! -name '.*' | wc -l");
    route.PutOff = QStringLiteral("find /var/spool/tolva-sms -name '*.sms' | wc -l");
    route.What = Route::Brings::Texts;
    return route;
}
} // namespace

const QList<Route>& AllRoutes()
{
    static const QList<Route> routes = {
        Postfix(QStringLiteral("PostfixAlias"), QStringLiteral("postfix-alias"), QStringLiteral("Postfix: an alias")),
        Postfix(QStringLiteral("PostfixTransport"), QStringLiteral("postfix"),
                QStringLiteral("Postfix: a transport of its own")),
        Exim(QStringLiteral("EximPipe"), QStringLiteral("exim"), {Script, QStringLiteral("Exim: a pipe")}),
        EximMaildir(),
        Mbsync(),
        Fetchmail(),
        WatchedMaildir(),
        Gammu(),
    };
    return routes;
}
