// SPDX-License-Identifier: Apache-2.0
#include "messages/TextMessage.h"

#include "common/ClockHelper.h"
#include "common/FileHelper.h"

#include <QDateTime>

namespace
{
constexpr qsizetype LongestSubject = 1000;

/// Takes the next line off the text, without its line end.
QString TakeLine(QString& text)
{
    const qsizetype end = text.indexOf(u'\n');
    const QString line = end < 0 ? text : text.left(end);
    text.remove(0, end < 0 ? text.size() : end + 1);
    return line;
}

/// Its beginning on one line; the column that lists and searches read holds 255 characters.
QString SubjectOf(const QString& text)
{
    const QString line = text.left(LongestSubject).simplified();
    return !line.isEmpty() && line.back().isHighSurrogate() ? line.chopped(1) : line;
}

QString EscapedLines(const QString& text)
{
    QString html = text.toHtmlEscaped();
    html.replace(u'\n', QStringLiteral("<br>"));
    return html;
}
} // namespace

QString DecodeTextMessage(const QByteArray& octets)
{
    QString text = FileHelper::DecodeText(octets);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (text.endsWith(u'\n'))
        text.chop(1);
    return text;
}

TextMessage ReadTextMessageFile(const QByteArray& octets, QString& problem)
{
    problem.clear();
    TextMessage message;
    QString rest = DecodeTextMessage(octets);
    for (QString line = TakeLine(rest); !line.trimmed().isEmpty(); line = TakeLine(rest)) {
        const qsizetype colon = line.indexOf(u':');
        const QString name = line.left(colon).trimmed().toLower();
        const QString value = line.mid(colon + 1).trimmed();
        if (colon < 0) {
            problem =
                QStringLiteral("is not a text message: it has no empty line between its first lines and the text");
        } else if (name == u"from") {
            message.From = value;
        } else if (name == u"to") {
            message.To = value;
        } else if (name == u"received") {
            const QDateTime time = QDateTime::fromString(value, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
            message.Received = Date::FromDateTime(time);
            if (!time.isValid())
                problem = QStringLiteral("has a Received line that is no date: \"%1\"").arg(value);
        }
        if (!problem.isEmpty())
            return message;
    }
    message.Text = rest;
    if (message.From.isEmpty())
        problem = QStringLiteral("is not a text message: it has no From line");
    return message;
}

cMessagePtr MakeMessage(const TextMessage& text)
{
    const Date received = text.Received.IsNone() ? ClockHelper::CurrentTime() : text.Received;
    const auto mail = std::make_shared<cdo::Message>();
    mail->SetFrom(text.From);
    if (!text.To.isEmpty())
        mail->SetTo(text.To);
    mail->SetSubject(SubjectOf(text.Text));
    mail->SetSentOn(ClockHelper::LocalToUTC(received).ToDateTime(Qt::UTC));
    mail->SetTextBody(text.Text);
    mail->SetHTMLBody(EscapedLines(text.Text));

    auto message = std::make_shared<cMessage>();
    message->SetMessageType(emtSMS);
    message->SetCDOMessage(mail);
    message->SetReceived(received);
    message->SetSent(received);
    return message;
}
