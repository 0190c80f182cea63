// SPDX-License-Identifier: Apache-2.0

// What the page on hooking up says about sending, done as it stands there: by msmtp through a real mail server of a
// provider, which wants TLS and a password, and by the mail server of this computer.

#include "SendingMachineTest.h"

#include <QDeadlineTimer>
#include <QThread>

namespace
{
constexpr int SecondsToBeDelivered = 20;
const QString Accounts = QStringLiteral("Who runs it");
const QString ByProvider = QStringLiteral("msmtp sends by your provider");
const QString ByThisComputer = QStringLiteral("Sending by this computer's mail server");

/// A provider of mail, reached as one on the internet is: by its name, and with a certificate. It has no mailbox
/// "nobody", asks for patience with "later" while /run/greylisting is there, and takes mail only from who has logged
/// in.
const QString Provider = QStringLiteral(R"(
useradd --system Debian-exim
mkdir -p /var/spool/exim4/{input,msglog,db} /var/log/exim4 /var/lib/exim4 /var/mailbox
chown -R Debian-exim:Debian-exim /var/spool/exim4 /var/log/exim4 /var/mailbox
chmod u+s /usr/sbin/exim4
echo '127.0.0.1 smtp.harbourfm.example.org' >>/etc/hosts
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=smtp.harbourfm.example.org \
    -addext subjectAltName=DNS:smtp.harbourfm.example.org -keyout /etc/exim4/key.pem -out /etc/exim4/cert.pem 2>/dev/null
chown Debian-exim /etc/exim4/key.pem
cat /etc/exim4/cert.pem >>/etc/ssl/certs/ca-certificates.crt
cat >/etc/exim4/exim4.conf <<'END'
primary_hostname = smtp.harbourfm.example.org
daemon_smtp_ports = 587
local_interfaces = 127.0.0.1
tls_advertise_hosts = *
tls_certificate = /etc/exim4/cert.pem
tls_privatekey = /etc/exim4/key.pem
auth_advertise_hosts = ${if eq{$tls_in_cipher}{}{}{*}}
acl_smtp_rcpt = acl_check_rcpt
keep_environment =
untrusted_set_sender = *
local_from_check = false
begin acl
acl_check_rcpt:
  deny    message = no such mailbox here
          local_parts = nobody
  defer   message = greylisted, try again later
          local_parts = later
          condition = ${if exists{/run/greylisting}}
  accept  authenticated = *
  deny    message = who are you
begin routers
all:
  driver = accept
  transport = box
begin transports
box:
  driver = appendfile
  file = /var/mailbox/all
  envelope_to_add
  user = Debian-exim
begin authenticators
plain:
  driver = plaintext
  public_name = PLAIN
  server_condition = ${if and{{eq{$auth2}{studio}}{eq{$auth3}{SECRET}}}}
  server_set_id = $auth2
END
exim4 -bd
)");
} // namespace

class SendingTest : public SendingMachineTest
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(MakeMachine(QStringLiteral("exim")));
        if (IsSkipped() || HasFatalFailure())
            return;
        if (Computer().Run(QStringLiteral("command -v msmtp")).Code != 0)
            GTEST_SKIP() << "msmtp is not installed";
        ASSERT_NO_FATAL_FAILURE(Must(Provider));
    }
    void FilesOfPage(const QString& heading) const
    {
        for (const QString& part : {Accounts, heading})
            ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("cd /root\n") + InstructionsOf(part)));
        Must(QStringLiteral("tolva delete /srv/station 1 --permanently"));
    }
    void FilesOfSetUp(const QString& words) const
    {
        // Twice, which is to do no harm.
        Must(QStringLiteral(
                 "tolva setup mail /srv/station %1 --address studio@harbourfm.example.org --output /root/out\n"
                 "sh /root/out/install.sh; sh /root/out/install.sh")
                 .arg(words));
    }
    void GivePassword(const QByteArray& password) const
    {
        Must(QStringLiteral("printf '%1\n' >/etc/tolva/smtp-password").arg(QString::fromLatin1(password)));
    }
    static QByteArray MailTo(const QByteArray& to, const QByteArray& subject)
    {
        return "From: Harbour FM <studio@harbourfm.example.org>\nTo: " + to + "\nSubject: " + subject +
               "\nMessage-ID: <" + subject.toHex() + "@harbourfm.example.org>\n\nHello, this is " + subject + ".\n";
    }
    /// Files mails, and marks them to be sent.
    void LetWait(const QList<QByteArray>& mails) const
    {
        for (const QByteArray& mail : mails)
            ASSERT_NO_FATAL_FAILURE(File(QString(), mail));
        MarkToBeSent();
    }
    /// What the provider delivered to a mailbox.
    QList<QByteArray> Mailbox(const QByteArray& name) const
    {
        QList<QByteArray> mails;
        const QByteArray all = '\n' + Computer().Run(QStringLiteral("cat /var/mailbox/all 2>/dev/null")).Output;
        const QByteArray mark = "\nFrom studio@";
        for (qsizetype from = all.indexOf(mark); from >= 0;) {
            const qsizetype next = all.indexOf(mark, from + 1);
            const QByteArray mail = all.mid(from, next < 0 ? -1 : next - from);
            if (mail.contains("\nEnvelope-to: " + name + '@'))
                mails.append(mail);
            from = next;
        }
        return mails;
    }
    void ExpectInMailbox(const QByteArray& name, qsizetype count) const
    {
        const QDeadlineTimer deadline(SecondsToBeDelivered * 1000);
        while (Mailbox(name).size() < count && !deadline.hasExpired())
            QThread::msleep(MillisecondsBetweenLooks);
        EXPECT_EQ(Mailbox(name).size(), count) << name.constData() << Log().constData();
    }
    QByteArray Log() const
    {
        return Computer()
            .Run(QStringLiteral("tail -n 20 /var/log/exim4/mainlog /var/log/exim4/paniclog 2>/dev/null"))
            .Output;
    }
};

TEST_F(SendingTest, AProvidersServerGetsEachMailAsThePageSetsItUp)
{
    ASSERT_NO_FATAL_FAILURE(FilesOfPage(ByProvider));
    GivePassword("SECRET");
    ASSERT_NO_FATAL_FAILURE(LetWait({MailTo("ann@listeners.example", "one"),
                                     MailTo("bob@listeners.example\nBcc: boss@harbourfm.example.org", "two")}));
    const Run run = Send();
    EXPECT_EQ(run.Code, 0) << run.Said.constData();
    for (const char* name : {"ann", "bob", "boss"})
        ExpectInMailbox(name, 1);
    EXPECT_TRUE(Mailbox("ann").value(0).contains("Hello, this is one."));
    EXPECT_FALSE(Mailbox("bob").value(0).contains("boss")) << Mailbox("bob").value(0).constData();
    EXPECT_EQ(NumberOf(QStringLiteral("tolva pending /srv/station | wc -l")), 0);
    // It came over TLS from who had logged in, and the password stands nowhere but in its file.
    EXPECT_EQ(NumberOf(QStringLiteral("grep -c ' P=esmtpsa .*A=plain:studio' /var/log/exim4/mainlog")), 2);
    EXPECT_EQ(
        NumberOf(QStringLiteral("grep -rl SECRET /etc/tolva /srv/station /usr/local/bin/tolva* /var/log | wc -l")), 1);
    EXPECT_EQ(Computer().Run(QStringLiteral("stat -c '%a %U' /etc/tolva/smtp-password")).Output, "600 tolva\n");
}

TEST_F(SendingTest, RefusalsOfAProvidersServerComeBackInItsWordsByTheFilesOfSetUp)
{
    ASSERT_NO_FATAL_FAILURE(
        FilesOfSetUp(QStringLiteral("--with msmtp --host smtp.harbourfm.example.org --login studio")));
    GivePassword("SECRET");
    Must(QStringLiteral("touch /run/greylisting"));
    ASSERT_NO_FATAL_FAILURE(
        LetWait({MailTo("ann@listeners.example", "taken"), MailTo("nobody@listeners.example", "refused"),
                 MailTo("bob@listeners.example, nobody@listeners.example", "half"),
                 MailTo("later@listeners.example", "put off")}));
    const Run run = Send();
    EXPECT_NE(run.Code, 0);
    EXPECT_TRUE(run.Words.value(QStringLiteral("ann@listeners.example")).startsWith(QStringLiteral("sent")))
        << run.Said.constData();
    for (const char* to : {"nobody@listeners.example", "bob@listeners.example nobody@listeners.example"}) {
        const QString words = run.Words.value(QLatin1String(to));
        EXPECT_TRUE(words.startsWith(QStringLiteral("refused: "))) << run.Said.constData();
        EXPECT_TRUE(words.contains(QStringLiteral("nobody@listeners.example"))) << words.toStdString();
        EXPECT_TRUE(words.contains(QStringLiteral("550 no such mailbox here"))) << words.toStdString();
    }
    const QString later = run.Words.value(QStringLiteral("later@listeners.example"));
    EXPECT_TRUE(later.contains(QStringLiteral("451 greylisted, try again later"))) << run.Said.constData();
    EXPECT_FALSE(later.startsWith(QStringLiteral("refused"))) << later.toStdString();
    ExpectInMailbox("ann", 1);
    EXPECT_EQ(Mailbox("bob").size(), 0) << "it went to one of two";
    Must(QStringLiteral("rm /run/greylisting"));
    const Machine::Outcome again = Computer().Run(AsTheService() + QStringLiteral(" --message 4"));
    EXPECT_EQ(again.Code, 0) << again.Problems.constData();
    ExpectInMailbox("later", 1);
}

TEST_F(SendingTest, WithAWrongPasswordOrAWrongServerNothingIsRefusedAndAllIsSentLater)
{
    ASSERT_NO_FATAL_FAILURE(
        FilesOfSetUp(QStringLiteral("--with msmtp --host smtp.harbourfm.example.org --login studio")));
    GivePassword("WRONG");
    ASSERT_NO_FATAL_FAILURE(LetWait({MailTo("ann@listeners.example", "one")}));
    const auto states = [&] { return Computer().Run(QStringLiteral("tolva send /srv/station state --json")).Output; };
    const Run wrong = Send();
    EXPECT_NE(wrong.Code, 0);
    EXPECT_TRUE(wrong.Said.contains("authentication failed")) << wrong.Said.constData();
    EXPECT_FALSE(wrong.Said.contains("WRONG")) << wrong.Said.constData();
    EXPECT_TRUE(states().contains("notYet")) << states().constData();
    GivePassword("SECRET");
    // A server that has another one's certificate.
    Must(QStringLiteral("sed -i 's/^host .*/host localhost/' /etc/tolva/msmtprc"));
    const QString atOnce = AsTheService() + QStringLiteral(" --message 1");
    EXPECT_NE(Computer().Run(atOnce).Code, 0);
    EXPECT_TRUE(states().contains("notYet")) << states().constData();
    EXPECT_EQ(Mailbox("ann").size(), 0);
    Must(QStringLiteral("sed -i 's/^host .*/host smtp.harbourfm.example.org/' /etc/tolva/msmtprc"));
    const Machine::Outcome sent = Computer().Run(atOnce);
    EXPECT_EQ(sent.Code, 0) << sent.Output.constData() << sent.Problems.constData();
    ExpectInMailbox("ann", 1);
}

TEST_F(SendingTest, TheMailServerOfThisComputerTakesTheMails)
{
    // It is the provider's one, which takes what programs of its own computer hand over.
    ASSERT_NO_FATAL_FAILURE(FilesOfPage(ByThisComputer));
    ASSERT_NO_FATAL_FAILURE(LetWait({MailTo("ann@listeners.example", "one")}));
    const Run run = Send();
    EXPECT_EQ(run.Code, 0) << run.Said.constData();
    ExpectInMailbox("ann", 1);
    ASSERT_NO_FATAL_FAILURE(FilesOfSetUp(QStringLiteral("--with sendmail")));
    ASSERT_NO_FATAL_FAILURE(LetWait({MailTo("ann@listeners.example", "two")}));
    EXPECT_EQ(Send().Code, 0);
    ExpectInMailbox("ann", 2);
}
