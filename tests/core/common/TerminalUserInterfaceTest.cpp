// SPDX-License-Identifier: Apache-2.0
#include "common/TerminalUserInterface.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace
{
const MessageBoxRequest Confirmation = {QStringLiteral("Really?"), QString(), MessageBoxButtons::YesNo,
                                        MessageBoxIcon::Question, MessageBoxAnswer::No};

/// Reads what is there without waiting for more.
QByteArray ReadAvailable(int stream)
{
    QByteArray octets;
    for (pollfd wait = {stream, POLLIN, 0}; ::poll(&wait, 1, 0) == 1 && (wait.revents & POLLIN) != 0;) {
        std::array<char, 4096> chunk;
        const ssize_t count = ::read(stream, chunk.data(), chunk.size());
        if (count <= 0)
            break;
        octets.append(chunk.data(), count);
    }
    return octets;
}

/// A terminal with a person at it: what is typed is read by the program, what it writes can be looked at.
class Terminal
{
public:
    Terminal()
    {
        Person_ = ::posix_openpt(O_RDWR | O_NOCTTY);
        ::grantpt(Person_);
        ::unlockpt(Person_);
        Program_ = ::open(::ptsname(Person_), O_RDWR | O_NOCTTY);
        termios settings = {};
        ::tcgetattr(Program_, &settings);
        settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        ::tcsetattr(Program_, TCSANOW, &settings);
    }
    ~Terminal()
    {
        ::close(Program_);
        ::close(Person_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int Stream() const { return Program_; }
    void Type(const QByteArray& text) { EXPECT_EQ(::write(Person_, text.constData(), text.size()), text.size()); }
    QByteArray Shown() const { return ReadAvailable(Person_); }
    QByteArray WaitForText() const
    {
        pollfd wait = {Person_, POLLIN, 0};
        ::poll(&wait, 1, -1);
        return Shown();
    }

private:
    int Person_ = -1;
    int Program_ = -1;
};

class Pipe
{
public:
    Pipe() { EXPECT_EQ(::pipe(Ends_.data()), 0); }
    ~Pipe()
    {
        ::close(Ends_[0]);
        ::close(Ends_[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int ReadEnd() const { return Ends_[0]; }
    int WriteEnd() const { return Ends_[1]; }
    QByteArray Written() const { return ReadAvailable(Ends_[0]); }

private:
    std::array<int, 2> Ends_ = {-1, -1};
};
} // namespace

TEST(TerminalUserInterfaceTest, ABoxIsTextOnTheErrorStream)
{
    const Pipe output;
    TerminalUserInterface user(0, output.WriteEnd());
    EXPECT_EQ(user.MessageBox({QStringLiteral("Käse\n\nagain"), QString()}), MessageBoxAnswer::OK);
    EXPECT_EQ(output.Written(), "K\xC3\xA4se\n\nagain\n");
    EXPECT_EQ(user.MessageBox({QStringLiteral("Text"), QStringLiteral("Title")}), MessageBoxAnswer::OK);
    EXPECT_EQ(output.Written(), "Title\nText\n");
    user.RunTimeError(dao::Error(3021, QStringLiteral("No current record")));
    EXPECT_EQ(output.Written(), "Run-time error '3021': No current record\n");
}

TEST(TerminalUserInterfaceTest, ATextCannotSteerTheTerminal)
{
    const Pipe output;
    TerminalUserInterface user(0, output.WriteEnd());
    user.MessageBox({QStringLiteral("a\x1B[2Jb\rc\td"), QString()});
    EXPECT_EQ(output.Written(), "a\xEF\xBF\xBD[2Jb c\td\n");
}

TEST(TerminalUserInterfaceTest, WhereNobodyCanBeAskedTheAnswerIsNo)
{
    const Pipe pipe;
    Terminal terminal;
    terminal.Type("y\n");
    for (const auto& [input, error] :
         {std::pair(terminal.Stream(), pipe.WriteEnd()), std::pair(pipe.ReadEnd(), terminal.Stream())}) {
        TerminalUserInterface user(input, error);
        EXPECT_EQ(user.MessageBox(Confirmation), MessageBoxAnswer::No);
        QString result = QStringLiteral("before");
        EXPECT_EQ(user.InputBox({QStringLiteral("Name?"), QString(), QStringLiteral("x"), 0, QString()}, result), -1);
        EXPECT_EQ(result, QString());
        EXPECT_EQ(error == pipe.WriteEnd() ? pipe.Written() : terminal.Shown(),
                  "Really?\n(Nobody to ask here: No.)\nName?\n(Nobody to ask here: cancelled.)\n");
    }
}

TEST(TerminalUserInterfaceTest, AQuestionIsAnsweredByItsFirstLetterOrWord)
{
    Terminal terminal;
    TerminalUserInterface user(terminal.Stream(), terminal.Stream());
    MessageBoxRequest defaultYes = Confirmation;
    defaultYes.DefaultAnswer = MessageBoxAnswer::Yes;
    terminal.Type("y\n YES \nn\nno\n\n\nwhat?\ny\n");
    EXPECT_EQ(user.MessageBox(Confirmation), MessageBoxAnswer::Yes);
    EXPECT_EQ(user.MessageBox(Confirmation), MessageBoxAnswer::Yes);
    EXPECT_EQ(user.MessageBox(defaultYes), MessageBoxAnswer::No);
    EXPECT_EQ(user.MessageBox(defaultYes), MessageBoxAnswer::No);
    EXPECT_EQ(user.MessageBox(Confirmation), MessageBoxAnswer::No);
    EXPECT_EQ(user.MessageBox(defaultYes), MessageBoxAnswer::Yes);
    terminal.Shown();
    EXPECT_EQ(user.MessageBox(Confirmation), MessageBoxAnswer::Yes);
    EXPECT_EQ(terminal.Shown(), "Really?\n[y/N] [y/N] ");
}

TEST(TerminalUserInterfaceTest, TheEndOfTheInputIsNoAndCancelled)
{
    Terminal terminal;
    TerminalUserInterface user(terminal.Stream(), terminal.Stream());
    terminal.Type("\x04\x04");
    MessageBoxRequest defaultYes = Confirmation;
    defaultYes.DefaultAnswer = MessageBoxAnswer::Yes;
    EXPECT_EQ(user.MessageBox(defaultYes), MessageBoxAnswer::No);
    QString result;
    EXPECT_EQ(user.InputBox({QStringLiteral("Name?"), QString(), QStringLiteral("x"), 0, QString()}, result), -1);
    EXPECT_EQ(result, QString());
}

TEST(TerminalUserInterfaceTest, AnInputBoxTakesALineOrItsDefault)
{
    Terminal terminal;
    TerminalUserInterface user(terminal.Stream(), terminal.Stream());
    const InputBoxRequest request = {QStringLiteral("Name?"), QString(), QStringLiteral("Desk"), 5, QString()};
    terminal.Type("\nK\xC3\xA4se\ntoo long\nshort\n");
    QString result;
    EXPECT_EQ(user.InputBox(request, result), 0);
    EXPECT_EQ(result, u"Desk");
    EXPECT_EQ(user.InputBox(request, result), 0);
    EXPECT_EQ(result, u"Käse");
    terminal.Shown();
    EXPECT_EQ(user.InputBox(request, result), 0);
    EXPECT_EQ(result, u"short");
    EXPECT_EQ(terminal.Shown(), "Name?\n[Desk] At most 5 characters.\n[Desk] ");
}

TEST(TerminalUserInterfaceTest, AMaskedInputIsNeverShown)
{
    Terminal terminal;
    termios settings = {};
    ::tcgetattr(terminal.Stream(), &settings);
    settings.c_lflag |= ECHO;
    ::tcsetattr(terminal.Stream(), TCSANOW, &settings);
    TerminalUserInterface user(terminal.Stream(), terminal.Stream());
    QByteArray shown;
    std::thread person([&] {
        while (!shown.endsWith("> "))
            shown += terminal.WaitForText();
        terminal.Type("secret\n");
    });
    QString result;
    const int answer =
        user.InputBox({QStringLiteral("Password?"), QString(), QString(), 0, QStringLiteral("*")}, result);
    person.join();
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(result, u"secret");
    EXPECT_EQ(shown + terminal.Shown(), "Password?\n> \n");
    ::tcgetattr(terminal.Stream(), &settings);
    EXPECT_NE(settings.c_lflag & ECHO, 0U);
}

TEST(TerminalUserInterfaceTest, ProgressIsOneLineThatGoesAway)
{
    Terminal terminal;
    TerminalUserInterface user(terminal.Stream(), terminal.Stream());
    auto display = user.Progress(QStringLiteral("Copying..."));
    EXPECT_TRUE(display->Advance(1, 2));
    EXPECT_EQ(terminal.Shown(), "\r\033[KCopying... [###############---------------]  50%");
    user.MessageBox({QStringLiteral("In between"), QString()});
    EXPECT_EQ(terminal.Shown(), "\r\033[KIn between\n");
    display.reset();
    EXPECT_EQ(terminal.Shown(), "");
    display = user.Progress(QString(200, u'x'));
    EXPECT_TRUE(display->Advance(0, 0));
    EXPECT_EQ(terminal.Shown().size(), 4 + 79);
    display.reset();
    EXPECT_EQ(terminal.Shown(), "\r\033[K");
}

TEST(TerminalUserInterfaceTest, ProgressIsDrawnTenTimesASecondAtMost)
{
    Terminal terminal;
    TerminalUserInterface user(terminal.Stream(), terminal.Stream());
    const auto display = user.Progress(QStringLiteral("Copying..."));
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 1000; ++i)
        display->Advance(i, 1000);
    EXPECT_LE(terminal.Shown().count('\r'), timer.elapsed() / 100 + 1);
}

TEST(TerminalUserInterfaceTest, ProgressIsNotDrawnWhereThereIsNoTerminal)
{
    const Pipe output;
    TerminalUserInterface user(0, output.WriteEnd());
    {
        const auto display = user.Progress(QStringLiteral("Copying..."));
        EXPECT_TRUE(display->Advance(1, 2));
    }
    EXPECT_EQ(output.Written(), "");
}

TEST(TerminalUserInterfaceTest, AnInterruptStopsAllWorkOnDisplayAndNothingElse)
{
    const auto before = std::signal(SIGINT, SIG_IGN);
    const Pipe output;
    TerminalUserInterface user(0, output.WriteEnd());
    {
        const auto outer = user.Progress(QStringLiteral("Outer"));
        {
            const auto inner = user.Progress(QStringLiteral("Inner"));
            EXPECT_TRUE(inner->Advance(0, 2));
            std::raise(SIGINT);
            EXPECT_FALSE(inner->Advance(1, 2));
        }
        EXPECT_FALSE(outer->Advance(1, 2));
    }
    EXPECT_EQ(std::signal(SIGINT, SIG_IGN), SIG_IGN) << "the handler from before is back";
    EXPECT_TRUE(user.Progress(QStringLiteral("Next"))->Advance(0, 2));
    std::signal(SIGINT, before);
}
