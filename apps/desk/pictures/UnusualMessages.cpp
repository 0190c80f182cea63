// SPDX-License-Identifier: Apache-2.0
#include "UnusualMessages.h"

#include "common/ClockHelper.h"
#include "database/cTolvaDatabase.h"

#include <QScopeGuard>

namespace
{
struct Unusual
{
    const char* From;
    const char* Subject;
    const char* Body;
};

const Unusual All[] = {
    {"\"Wilhelmina Featherstonehaugh-Cholmondeley of the Upper Saltmere and District Allotment Holders\xE2\x80\x99 "
     "Association\" <wilhelmina.featherstonehaugh-cholmondeley@upper-saltmere-allotments.example.org>",
     "A subject of the sort that people write who put the whole letter into it because they are not sure that anybody "
     "ever reads what stands below, and who then add that it is about the marrow competition",
     "The marrow weighed eleven kilograms. I have witnesses."},
    {"\xD7\xA0\xD7\x95\xD7\xA2\xD7\x94 \xD7\x9C\xD7\x95\xD7\x99 <noa@example.org>",
     "\xD7\x91\xD7\xA7\xD7\xA9\xD7\xAA \xD7\xA9\xD7\x99\xD7\xA8 \xD7\x9C\xD7\x99\xD7\x95\xD7\x9D "
     "\xD7\x94\xD7\x94\xD7\x95\xD7\x9C\xD7\x93\xD7\xAA (90) \xE2\x80\x93 Harbour FM",
     "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D,\n\xD7\xA1\xD7\x91\xD7\xAA\xD7\x90 \xD7\x97\xD7\x95\xD7\x92\xD7\x92\xD7\xAA "
     "90. \xD7\xAA\xD7\x95\xD7\x93\xD7\x94!"},
    {"\xD9\x84\xD9\x8A\xD9\x84\xD9\x89 <layla@example.org>",
     "\xD8\xA3\xD8\xBA\xD9\x86\xD9\x8A\xD8\xA9 \xD9\x84\xD8\xA3\xD9\x85\xD9\x8A \xD9\x85\xD9\x86 "
     "\xD9\x81\xD8\xB6\xD9\x84\xD9\x83\xD9\x85",
     "\xD9\x85\xD8\xB1\xD8\xAD\xD8\xA8\xD8\xA7\n\xD8\xB4\xD9\x83\xD8\xB1\xD8\xA7"},
    {"Jo <jo@example.org>",
     "\xF0\x9F\x8E\x88\xF0\x9F\x8E\x82 Happy 50th Dad!! \xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D"
     "\xF0\x9F\x91\xA7 \xE2\x9D\xA4\xEF\xB8\x8F",
     "\xF0\x9F\x8E\xB5 Please play it loud."},
    {"Bodil & S\xC3\xB8n <bodil@example.org>",
     "\xE2\x80\x9C"
     "Curly quotes\xE2\x80\x9D & <angle brackets> & 100 %",
     "Text"},
    {"", "", ""},
};

cMessagePtr MakeMessage(const QString& from, const QString& subject, const QString& body, Date sent)
{
    const auto mail = std::make_shared<cdo::Message>();
    mail->SetFrom(from);
    mail->SetTo(QStringLiteral("Harbour FM <studio@harbourfm.example.org>"));
    mail->SetSubject(subject);
    mail->SetTextBody(body);
    const auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(mail);
    message->SetSent(sent);
    message->SetReceived(sent);
    return message;
}
} // namespace

int UnusualMessages::FileInto(cTolvaDatabase& database)
{
    clsCategory folder;
    folder.SetDescription(QStringLiteral("Unusual"));
    database.SaveMessageCategory(folder, false);
    database.UpdateCategoryTree();
    double day = Date(2026, 11, 20, 18, 30).DayNumber();
    for (const Unusual& unusual : All) {
        day -= 0.01;
        const cMessagePtr message = MakeMessage(QString::fromUtf8(unusual.From), QString::fromUtf8(unusual.Subject),
                                                QString::fromUtf8(unusual.Body), Date(day));
        message->SetCategory(static_cast<enTolvaMessageCategories>(folder.Reference()));
        database.SaveMessage(message);
    }
    return folder.Reference();
}

void UnusualMessages::FileMany(cTolvaDatabase& database, int count)
{
    const QStringList subjects = {QStringLiteral("Request for the breakfast show"),
                                  QStringLiteral("Traffic at the bridge"), QStringLiteral("Competition answer"),
                                  QStringLiteral("Thank you for the concert"), QStringLiteral("Birthday on Sunday")};
    const bool raise = database.RaiseEvents();
    database.SetRaiseEvents(false);
    const auto restore = qScopeGuard([&] { database.SetRaiseEvents(raise); });
    dao::Transaction transaction;
    const double start = Date(2026, 11, 1).DayNumber();
    for (int i = 0; i < count; ++i) {
        const cMessagePtr message =
            MakeMessage(QStringLiteral("Listener %1 <listener%1@example.org>").arg(i),
                        QStringLiteral("%1 (%2)").arg(subjects.at(i % subjects.size())).arg(i + 1),
                        QStringLiteral("Message number %1.").arg(i + 1), Date(start - i * 0.01));
        message->SetCategory(tmcInbox);
        message->SetFlags(i % 3 == 0 ? 0 : mfRead);
        database.SaveMessage(message);
    }
    transaction.Commit();
}
