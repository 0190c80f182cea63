// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "messages/cMessages.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace
{
const QString ListTemplate = QStringLiteral(
    "<html><head><title>List</title></head><body><p><ZRT_MESSAGES_COUNT> messages</p><table><ZRT_MESSAGES_REPEAT>"
    "<tr><td><ZRT_MESSAGE_FROMNAME></td><td><ZRT_MESSAGE_SUBJECTSHORT></td><td><ZRT_MESSAGE_RECEIVED></td>"
    "<td><ZRT_MESSAGE_TEXTBODYSHORT></td></tr></ZRT_MESSAGES_REPEAT></table></body></html>");
const QString PageTemplate = QStringLiteral(
    "<html><head><title>Page</title><style>h1 {font-size: 14pt}</style></head><body><h1><ZRT_MESSAGE_SUBJECT></h1>"
    "<p>From <ZRT_MESSAGE_FROM><br>To <ZRT_MESSAGE_TO><br>Received <ZRT_MESSAGE_RECEIVED></p>"
    "<div><ZRT_MESSAGE_BODY></div></body></html>");

/// What the floor puts on the page for one mail: the parts that the template asks for, encoded and appended.
void AppendRow(const BareMail& mail, const QString& received, QString* page)
{
    const QString name = mail.From.section(u'<', 0, 0).trimmed();
    *page += QLatin1String("<tr><td>") + name.toHtmlEscaped() + QLatin1String("</td><td>") +
             mail.Subject.left(65).toHtmlEscaped() + QLatin1String("</td><td>") + received +
             QLatin1String("</td><td>") + mail.Text.section(u'\n', 0, 1).toHtmlEscaped() + QLatin1String("</td></tr>");
}

void AppendPage(const BareMail& mail, const QString& received, QString* page)
{
    *page += QLatin1String("<p class=\"breakhere\"></p><h1>") + mail.Subject.toHtmlEscaped() +
             QLatin1String("</h1><p>From ") + mail.From.toHtmlEscaped() + QLatin1String("<br>To ") +
             mail.To.toHtmlEscaped() + QLatin1String("<br>Received ") + received + QLatin1String("</p><div>") +
             mail.HTML + QLatin1String("</div>");
}

struct Kind
{
    std::string Name;
    const QString& Template;
    qint32 Flags;
    void (*Append)(const BareMail&, const QString&, QString*);
    double Limit;
};

Date ReceivedOf(int number)
{
    return Date(46000.0 + number * 0.001);
}

/// Mails that nobody has read yet, as they come from the station.
cMessages MakeMessages(int count)
{
    cMessages messages;
    for (int i = 0; i < count; ++i) {
        const auto message = std::make_shared<cMessage>();
        message->SetReference(i + 1);
        message->SetReceived(ReceivedOf(i));
        message->SetCDOMessage(std::make_shared<cdo::Message>(SampleMail(i)));
        messages.Add(message);
    }
    return messages;
}

double SecondsOfFilling(int count, const Kind& kind)
{
    std::vector<double> times;
    for (int round = 0; round < 5; ++round) {
        const cMessages messages = MakeMessages(count);
        const auto start = std::chrono::steady_clock::now();
        const QString page = messages.ProcessHTMLTags(kind.Template, kind.Flags);
        times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        Require(page.count(QStringLiteral("Request number")) >= count, "a message is not on the page");
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void CompareFilling(const Kind& kind, int count)
{
    constexpr int Rounds = 5;
    // Each round reads mails that have not been read before; the first does not count.
    std::vector<cMessages> collections;
    for (int round = 0; round < Rounds + 1; ++round)
        collections.push_back(MakeMessages(count));
    std::vector<QByteArray> mails;
    for (int i = 0; i < count; ++i)
        mails.push_back(SampleMail(i));
    std::size_t next = 0;
    Compare(
        {kind.Name + " of " + std::to_string(count), "a GMime parse of each mail, and its page as a string", kind.Limit,
         Rounds, 1},
        [&] {
            QString page;
            for (int i = 0; i < count; ++i)
                kind.Append(ReadMail(mails[static_cast<std::size_t>(i)]), ReceivedOf(i).GeneralDate(), &page);
            Require(page.count(QStringLiteral("Request number")) >= count, "a mail is not on the page");
        },
        [&] {
            const QString page = collections.at(next++).ProcessHTMLTags(kind.Template, kind.Flags);
            Require(page.count(QStringLiteral("Request number")) >= count, "a message is not on the page");
        });
}
} // namespace

void BenchTemplates(int large)
{
    const Kind kinds[] = {{"template list", ListTemplate, 0, AppendRow, 2.0},
                          {"template pages", PageTemplate, mphPrintMessagePerPage, AppendPage, 2.0}};
    for (const Kind& kind : kinds) {
        for (const int count : {large / 100, large / 10, large})
            CompareFilling(kind, count);
        const int small = large / 100;
        const double smallTime = SecondsOfFilling(small, kind);
        const double largeTime = SecondsOfFilling(large, kind);
        Report(kind.Name + ", " + std::to_string(small) + " to " + std::to_string(large), "a hundred times the time",
               smallTime * 100 * 1e3, largeTime * 1e3, 1.5, "ms");
    }
}
