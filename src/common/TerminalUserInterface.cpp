// SPDX-License-Identifier: Apache-2.0
#include "common/TerminalUserInterface.h"

#include "common/HarmlessText.h"

#include <QElapsedTimer>

#include <csignal>
#include <optional>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <cerrno>
#include <termios.h>
#include <unistd.h>
#endif

namespace
{
constexpr int LineWidth = 79;
constexpr int BarWidth = 30;
constexpr qint64 RedrawInterval = 100; // milliseconds

volatile std::sig_atomic_t interrupted = 0;
int runningDisplays = 0;
void (*previousHandler)(int) = SIG_DFL;

extern "C" void NoteInterrupt(int)
{
    interrupted = 1;
}

/// Takes interrupts over for as long as any piece of work is on display.
class InterruptScope
{
public:
    InterruptScope()
    {
        if (runningDisplays++ > 0)
            return;
        interrupted = 0;
        previousHandler = std::signal(SIGINT, NoteInterrupt);
    }
    ~InterruptScope()
    {
        if (--runningDisplays == 0)
            std::signal(SIGINT, previousHandler);
    }
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;
};

#ifdef Q_OS_WIN
bool IsTerminal(int stream)
{
    return _isatty(stream) != 0;
}

qint64 ReadOctet(int stream, char& octet)
{
    return _read(stream, &octet, 1);
}

qint64 WriteOctets(int stream, const char* octets, qint64 count)
{
    return _write(stream, octets, static_cast<unsigned int>(count));
}

class HiddenTyping
{
public:
    HiddenTyping(int, bool) {}
};
#else
bool IsTerminal(int stream)
{
    return ::isatty(stream) != 0;
}

qint64 ReadOctet(int stream, char& octet)
{
    return ::read(stream, &octet, 1);
}

qint64 WriteOctets(int stream, const char* octets, qint64 count)
{
    const qint64 written = ::write(stream, octets, static_cast<size_t>(count));
    return written < 0 && errno == EINTR ? 0 : written;
}

/// What is typed does not appear, where that is asked for.
class HiddenTyping
{
public:
    HiddenTyping(int stream, bool hide) : Stream_(stream)
    {
        if (!hide || ::tcgetattr(stream, &Before_) != 0)
            return;
        termios hidden = Before_;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        Hidden_ = ::tcsetattr(stream, TCSAFLUSH, &hidden) == 0;
    }
    ~HiddenTyping()
    {
        if (Hidden_)
            ::tcsetattr(Stream_, TCSAFLUSH, &Before_);
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

private:
    int Stream_;
    bool Hidden_ = false;
    termios Before_ = {};
};
#endif

QString ProgressLine(const QString& caption, qint64 done, qint64 total)
{
    const int percent =
        total > 0
            ? static_cast<int>(100.0 * static_cast<double>(qBound<qint64>(0, done, total)) / static_cast<double>(total))
            : 0;
    const QString filled(BarWidth * percent / 100, u'#');
    const QString bar = QStringLiteral(" [") + filled.leftJustified(BarWidth, u'-') + QStringLiteral("] ") +
                        QString::number(percent).rightJustified(3) + u'%';
    return HarmlessText::Words(caption).left(LineWidth - bar.size()) + bar;
}
} // namespace

class TerminalProgress final : public ProgressDisplay
{
public:
    TerminalProgress(TerminalUserInterface& owner, const QString& caption) : Owner_(owner), Caption_(caption) {}
    ~TerminalProgress() override { Owner_.EraseLine(); }
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    bool Advance(qint64 done, qint64 total) override
    {
        if (!SinceDrawn_.isValid() || SinceDrawn_.hasExpired(RedrawInterval)) {
            Owner_.DrawLine(ProgressLine(Caption_, done, total));
            SinceDrawn_.start();
        }
        return interrupted == 0;
    }

private:
    InterruptScope Interrupts_;
    TerminalUserInterface& Owner_;
    QString Caption_;
    QElapsedTimer SinceDrawn_;
};

TerminalUserInterface::TerminalUserInterface(int input, int error)
    : Input_(input), Error_(error), ErrorIsTerminal_(IsTerminal(error))
{
}

bool TerminalUserInterface::CanAsk() const
{
    return ErrorIsTerminal_ && IsTerminal(Input_);
}

void TerminalUserInterface::Write(const QString& text)
{
    const QByteArray octets = text.toLocal8Bit();
    for (qint64 done = 0; done < octets.size();) {
        const qint64 count = WriteOctets(Error_, octets.constData() + done, octets.size() - done);
        if (count < 0)
            return; // nobody reads it any more
        done += count;
    }
}

void TerminalUserInterface::ShowText(const QString& title, const QString& text)
{
    EraseLine();
    Write(HarmlessText::Lines(title.isEmpty() ? text : title + u'\n' + text) + u'\n');
}

bool TerminalUserInterface::ReadLine(QString& line)
{
    QByteArray octets;
    char octet = 0;
    qint64 count = 0;
    while ((count = ReadOctet(Input_, octet)) == 1 && octet != '\n')
        octets += octet;
    line = QString::fromLocal8Bit(octets);
    if (line.endsWith(u'\r'))
        line.chop(1);
    return count == 1 || (count == 0 && !octets.isEmpty());
}

void TerminalUserInterface::DrawLine(const QString& line)
{
    if (!ErrorIsTerminal_)
        return;
    Write(QStringLiteral("\r\033[K") + line);
    LineIsDrawn_ = true;
}

void TerminalUserInterface::EraseLine()
{
    if (LineIsDrawn_)
        Write(QStringLiteral("\r\033[K"));
    LineIsDrawn_ = false;
}

MessageBoxAnswer TerminalUserInterface::MessageBox(const MessageBoxRequest& request)
{
    ShowText(request.Title, request.Text);
    if (request.Buttons == MessageBoxButtons::OK)
        return MessageBoxAnswer::OK;
    if (!CanAsk()) {
        Write(QStringLiteral("(Nobody to ask here: No.)\n"));
        return MessageBoxAnswer::No;
    }
    const bool defaultYes = request.DefaultAnswer == MessageBoxAnswer::Yes;
    for (;;) {
        Write(defaultYes ? QStringLiteral("[Y/n] ") : QStringLiteral("[y/N] "));
        QString line;
        if (!ReadLine(line))
            return MessageBoxAnswer::No;
        const QString answer = line.trimmed().toLower();
        if (answer == u"y" || answer == u"yes" || (answer.isEmpty() && defaultYes))
            return MessageBoxAnswer::Yes;
        if (answer == u"n" || answer == u"no" || answer.isEmpty())
            return MessageBoxAnswer::No;
    }
}

int TerminalUserInterface::InputBox(const InputBoxRequest& request, QString& result)
{
    result.clear();
    ShowText(request.Title, request.Prompt);
    if (!CanAsk()) {
        Write(QStringLiteral("(Nobody to ask here: cancelled.)\n"));
        return -1;
    }
    const bool secret = !request.PasswordChar.isEmpty();
    const bool hasDefault = !request.Default.isEmpty();
    for (;;) {
        QString line;
        bool ended = false;
        {
            const HiddenTyping hidden(Input_, secret); // before the prompt: an answer typed at once is hidden too
            Write(hasDefault && !secret ? HarmlessText::Line(u'[' + request.Default + QStringLiteral("] "))
                                        : QStringLiteral("> "));
            ended = !ReadLine(line);
        }
        if (secret)
            Write(QStringLiteral("\n"));
        if (ended)
            return -1;
        if (request.MaxLength > 0 && line.size() > request.MaxLength) {
            Write(QStringLiteral("At most %1 characters.\n").arg(request.MaxLength));
            continue;
        }
        result = line.isEmpty() ? request.Default : line;
        return 0;
    }
}

void TerminalUserInterface::SetBusyPointer(bool) {}

std::unique_ptr<ProgressDisplay> TerminalUserInterface::Progress(const QString& caption)
{
    return std::make_unique<TerminalProgress>(*this, caption);
}

void TerminalUserInterface::Yield() {}

void TerminalUserInterface::RunTimeError(const dao::Error& error)
{
    ShowText(QString(), QStringLiteral("Run-time error '%1': %2").arg(error.Number()).arg(error.Description()));
}
