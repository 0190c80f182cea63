// SPDX-License-Identifier: Apache-2.0
#include "BenchStation.h"

#include "Measure.h"
#include "common/UserInterface.h"
#include "database/StationDialogs.h"
#include "messages/AddressKey.h"
#include "platform/records/DBEngine.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace
{
/// Gives a new station the details that it insists on.
class BenchUserInterface : public UserInterface, public StationDialogs
{
public:
    MessageBoxAnswer MessageBox(const MessageBoxRequest&) override { return MessageBoxAnswer::OK; }
    int InputBox(const InputBoxRequest&, QString&) override { return -1; }
    void PageSetupLabels(cPageSetup&) override {}
    bool DatabaseSettings(cTolvaDatabase& database) override
    {
        database.SetStationPhoneNumber(QStringLiteral("01632 960100"));
        return true;
    }
    void SetBusyPointer(bool) override {}
    std::unique_ptr<ProgressDisplay> Progress(const QString&) override { return std::make_unique<NoProgress>(); }
    void Yield() override { QCoreApplication::processEvents(); }
    void RunTimeError(const dao::Error& error) override { Require(false, error.what()); }

private:
    class NoProgress : public ProgressDisplay
    {
        bool Advance(qint64, qint64) override { return true; }
    };
};

const char Paragraph[] =
    "Hello Harbour FM, it is raining on the allotment again and the radio is the only thing in the shed that "
    "works. Could you play the one about the lighthouse for my neighbour, who has lent me a ladder?\r\n";

/// A mail and what the row says of it.
struct Sample
{
    QString Subject;
    QByteArray Mail;
};

Sample PlainSample(int number)
{
    return {QStringLiteral("Request number %1 from the allotment").arg(number), SampleMail(number)};
}

Sample MixedSample(int number)
{
    static const QStringList words = {QStringLiteral("lighthouse"),
                                      QStringLiteral("\u041F\u0440\u0438\u0432\u0435\u0442"),
                                      QStringLiteral("Gr\u00FC\u00DFe"),
                                      QStringLiteral("\u0645\u0631\u062D\u0628\u0627"),
                                      QStringLiteral("\u6E2F\u306E\u6B4C"),
                                      QStringLiteral("allotment"),
                                      QStringLiteral("\u03BA\u03CD\u03BC\u03B1"),
                                      QStringLiteral("\u05E9\u05DC\u05D5\u05DD"),
                                      QStringLiteral("radio"),
                                      QStringLiteral("\U0001F3B5")};
    constexpr int MostWords = 40;
    QString subject = QString::number(number);
    for (int i = 0; i < (number * 7) % MostWords; ++i)
        subject += QLatin1Char(' ') + words.at((number + i * i) % words.size());
    QByteArray mail = SampleMail(number);
    const qsizetype start = mail.indexOf("Subject: ");
    mail.replace(start, mail.indexOf("\r\n", start) - start,
                 "Subject: =?utf-8?b?" + subject.toUtf8().toBase64() + "?=");
    constexpr qsizetype Size = 5000;
    while (mail.size() < Size)
        mail += Paragraph;
    return {subject, mail};
}

void AddRow(dao::Recordset& rows, int number, const Sample& sample)
{
    rows.AddNew();
    const auto set = [&rows](const char16_t* name, const QVariant& value) {
        rows.SetCollect(QString::fromUtf16(name), value);
    };
    set(u"FromKey", MakeAddressKey(SampleSender(number), emtEmail));
    set(u"ToKey", QStringLiteral("|studio@harbourfm.example.org|"));
    set(u"CcKey", QString());
    set(u"Received", 46000.0 + number * 0.001);
    set(u"Sent", 46000.0 + number * 0.001 - 0.0002);
    set(u"MessageType", emtEmail);
    set(u"Category", 1 + number % 7);
    set(u"HasHighlightWords", 0);
    set(u"Priority", 0);
    set(u"PersonalToContact", 0);
    set(u"Flags", number % 2);
    set(u"Subject", sample.Subject.left(250));
    rows[QStringLiteral("Message")].SetOctets(sample.Mail);
    set(u"MultiPartMessage", 0);
    set(u"SourceIndex", 0);
    rows.Update();
}
} // namespace

QString SampleSender(int number)
{
    return QStringLiteral("Listener %1 <listener%1@example.com>").arg(number % 5000);
}

QByteArray SampleMail(int number)
{
    QByteArray mail = "Received: from mx.example.net (mx.example.net [192.0.2.7])\r\n"
                      "\tby mail.harbourfm.example.org with ESMTPS id 4Zx1aB0q; Sat, 21 Nov 2026 10:00:00 +0000\r\n"
                      "From: " +
                      SampleSender(number).toUtf8() +
                      "\r\n"
                      "To: Harbour FM <studio@harbourfm.example.org>\r\n"
                      "Subject: =?utf-8?q?Request_number_" +
                      QByteArray::number(number) +
                      "_from_the_allotment?=\r\n"
                      "Date: Sat, 21 Nov 2026 09:59:57 +0000\r\n"
                      "Message-ID: <" +
                      QByteArray::number(number) +
                      "@example.com>\r\n"
                      "MIME-Version: 1.0\r\n"
                      "Content-Type: multipart/alternative; boundary=\"=_part\"\r\n"
                      "\r\n"
                      "--=_part\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n";
    for (int i = 0; i < 5; ++i)
        mail += Paragraph;
    mail += "\r\n--=_part\r\nContent-Type: text/html; charset=utf-8\r\n\r\n<html><body>";
    for (int i = 0; i < 5; ++i)
        mail += QByteArray("<p>") + Paragraph + "</p>";
    mail += "</body></html>\r\n--=_part--\r\n";
    return mail;
}

namespace
{
void MakeStationOf(const QString& folder, int messages, Sample (*sample)(int), const QString& engine)
{
    static BenchUserInterface userInterface;
    UserInterface::SetCurrent(&userInterface);
    QDir().mkpath(folder);
    if (!engine.isEmpty())
        dao::DBEngine::CreateDatabase(folder + QStringLiteral("/Tolva.mdb"), QString(), engine)->Close();
    const auto station = OpenStation(folder);
    const auto database = dao::DBEngine::OpenDatabase(station->Information().Path);
    constexpr int RowsATransaction = 5000;
    for (int first = 0; first < messages; first += RowsATransaction) {
        dao::DBEngine::BeginTrans();
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        for (int number = first; number < std::min(first + RowsATransaction, messages); ++number)
            AddRow(*rows, number, sample(number));
        dao::DBEngine::CommitTrans();
    }
}
} // namespace

void MakeStation(const QString& folder, int messages, const QString& engine)
{
    MakeStationOf(folder, messages, PlainSample, engine);
}

void MakeMixedStation(const QString& folder, int messages)
{
    MakeStationOf(folder, messages, MixedSample, QString());
}

QByteArray MixedMail(int number)
{
    return MixedSample(number).Mail;
}

std::unique_ptr<cTolvaDatabase> OpenStation(const QString& folder)
{
    auto station = std::make_unique<cTolvaDatabase>();
    station->SetMakesAutomaticBackups(false);
    Require(station->OpenTolvaDatabase(folder) == 0, "the station does not open");
    return station;
}
