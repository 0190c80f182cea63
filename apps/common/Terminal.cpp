// SPDX-License-Identifier: Apache-2.0
#include "Terminal.h"

#include "common/HarmlessText.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace
{
constexpr int DefaultWidth = 80;
constexpr qint64 FirstBlock = qint64{64} * 1024;

#ifdef Q_OS_WIN
bool IsTerminal(FILE* stream)
{
    return _isatty(_fileno(stream)) != 0;
}
#else
bool IsTerminal(FILE* stream)
{
    return ::isatty(::fileno(stream)) != 0;
}
#endif

/// A progress bar may stand on the terminal's line.
void EraseProgress()
{
    if (IsTerminal(stderr))
        std::fputs("\r\033[K", stderr);
}

void Write(const QByteArray& octets)
{
    // A failure stays noted in the stream; Flush tells of it.
    static_cast<void>(std::fwrite(octets.constData(), 1, static_cast<std::size_t>(octets.size()), stdout));
}
} // namespace

void Terminal::Print(const QString& text)
{
    Write(HarmlessText::Lines(text).toUtf8());
}

void Terminal::PrintLine(const QString& line)
{
    Write(HarmlessText::Line(line).toUtf8() + '\n');
}

void Terminal::PrintJson(const QJsonObject& object)
{
    Write(HarmlessText::Json(QJsonDocument(object).toJson(QJsonDocument::Compact)) + '\n');
}

void Terminal::PrintOctets(const QByteArray& octets)
{
    if (OutputIsTerminal())
        Print(QString::fromUtf8(octets));
    else
        Write(octets);
}

bool Terminal::Flush()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void Terminal::Complain(const QString& words)
{
    std::fflush(stdout);
    EraseProgress();
    const QString name = QCoreApplication::applicationName();
    const QByteArray line = (HarmlessText::Words(name + QStringLiteral(": ") + words) + u'\n').toUtf8();
    std::fputs(line.constData(), stderr);
}

void Terminal::TakeMessagesOfQt()
{
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { Complain(QStringLiteral("Qt: ") + text); });
}

bool Terminal::InputIsTerminal()
{
    return IsTerminal(stdin);
}

bool Terminal::OutputIsTerminal()
{
    return IsTerminal(stdout);
}

bool Terminal::CanAsk()
{
    return IsTerminal(stdin) && IsTerminal(stderr);
}

int Terminal::Width()
{
#ifndef Q_OS_WIN
    winsize size = {};
    if (OutputIsTerminal() && ::ioctl(::fileno(stdout), TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
#endif
    return DefaultWidth;
}

bool Terminal::ReadInput(QByteArray& octets)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    // A redirected file tells its size, a pipe does not. One octet more finds the end without another block.
    octets.resize(qMax(input.size() + 1, FirstBlock));
    qint64 length = 0;
    for (;;) {
        const qint64 count = input.read(octets.data() + length, octets.size() - length);
        if (count < 0 || (count == 0 && input.error() != QFileDevice::NoError))
            return false;
        if (count == 0)
            break;
        length += count;
        if (length == octets.size())
            octets.resize(octets.size() * 2);
    }
    octets.resize(length);
    return true;
}
