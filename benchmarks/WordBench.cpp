// SPDX-License-Identifier: Apache-2.0

// Finding messages by their words, beside notmuch on the same mails.

#include "BenchStation.h"
#include "KeepingList.h"
#include "Measure.h"
#include "Programs.h"
#include "Subjects.h"
#include "common/FileHelper.h"
#include "messages/AddressKey.h"
#include "messages/MessageHistory.h"
#include "messages/search/SearchFailure.h"
#include "messages/search/SearchFollowing.h"
#include "messages/search/SearchPlace.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace
{
constexpr quint64 Multiplier = 6364136223846793005ULL;
constexpr int Vocabulary = 50'000;
constexpr int WordsOfMail = 200;
constexpr enTolvaMessageCategories Folders[] = {tmcInbox, tmcOutbox, tmcSaved, tmcSent, tmcDeleted, tmcAutomatic};
constexpr double Megabyte = 1024.0 * 1024.0;

/// The same numbers in every run.
class Numbers
{
public:
    explicit Numbers(quint64 seed) : State_(seed * Multiplier + 1) {}
    double Next()
    {
        State_ = State_ * Multiplier + 1442695040888963407ULL;
        return static_cast<double>(State_ >> 11) / 9007199254740992.0;
    }

private:
    quint64 State_;
};

QByteArray WordOf(int rank)
{
    static const char* const syllables[] = {"ba", "lo",  "ter", "mi",  "sen", "ka", "dor", "vi", "nu",  "pel",
                                            "ro", "sti", "an",  "gre", "ho",  "mu", "fen", "ly", "tor", "wi"};
    QByteArray word;
    for (int rest = rank + 20; rest > 0; rest /= 20)
        word += syllables[rest % 20];
    return word;
}

/// As often as words of that rank are in a language: the first ones in every mail, most in few.
QByteArray DrawnWord(Numbers& numbers)
{
    const double rank = std::exp(numbers.Next() * std::log(static_cast<double>(Vocabulary))) - 1;
    return WordOf(static_cast<int>(rank));
}

QByteArray MailOfWords(int number)
{
    Numbers numbers(static_cast<quint64>(number));
    QByteArray subject;
    for (int i = 0; i < 5; ++i)
        subject += DrawnWord(numbers) + ' ';
    QByteArray mail = "From: Listener " + QByteArray::number(number % 5000) + " <listener" +
                      QByteArray::number(number % 5000) +
                      "@example.com>\r\nTo: Studio <studio@harbourfm.example.org>\r\nSubject: " + subject.trimmed() +
                      "\r\nDate: Sat, 21 Nov 2026 09:59:57 +0000\r\nMessage-ID: <w" + QByteArray::number(number) +
                      "@example.com>\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n";
    for (int i = 0; i < WordsOfMail; ++i)
        mail += DrawnWord(numbers) + (i % 12 == 11 ? "\r\n" : " ");
    if (number % 100 == 7)
        mail += "lighthouse";
    return mail + "\r\n";
}

void AddRow(dao::Recordset& rows, int number, const QByteArray& mail)
{
    rows.AddNew();
    const auto set = [&rows](const char16_t* name, const QVariant& value) {
        rows.SetCollect(QString::fromUtf16(name), value);
    };
    set(u"FromKey", QStringLiteral("|listener%1@example.com|").arg(number % 5000));
    set(u"ToKey", QStringLiteral("|studio@harbourfm.example.org|"));
    set(u"Received", 46000.0 + number * 0.001);
    set(u"Sent", 46000.0 + number * 0.001);
    set(u"MessageType", emtEmail);
    // Of drafts, some in a thousand, the texts themselves are compared.
    set(u"Category", number % 1000 == 5 ? tmcDrafts : Folders[static_cast<std::size_t>(number) % std::size(Folders)]);
    set(u"Flags", number % 2);
    set(u"Subject", QString::number(number));
    rows[QStringLiteral("Message")].SetOctets(mail);
    rows.Update();
}

/// Octets of the mails. maildir: empty for none.
double AddMails(const QString& folder, const QString& maildir, int first, int count)
{
    constexpr int MailsATransaction = 5000;
    const auto station = OpenStation(folder);
    const auto database = dao::DBEngine::OpenDatabase(station->Information().Path);
    double octets = 0;
    for (int begin = first; begin < first + count; begin += MailsATransaction) {
        dao::DBEngine::BeginTrans();
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        for (int number = begin; number < std::min(begin + MailsATransaction, first + count); ++number) {
            const QByteArray mail = MailOfWords(number);
            octets += static_cast<double>(mail.size());
            AddRow(*rows, number, mail);
            if (!maildir.isEmpty())
                WriteFile(maildir + QStringLiteral("/new/%1.M1P1.bench").arg(1795000000 + number), mail);
        }
        dao::DBEngine::CommitTrans();
    }
    return octets;
}

/// Until new mail is found; what else the station may have changed is compared behind it.
void BringUpNew(cTolvaDatabase& station, SearchIndex& index)
{
    constexpr int Milliseconds = 100;
    SearchFollowing following(station);
    following.Look(index.Note());
    while (index.Count() < following.Total())
        following.Take(following.Next(Milliseconds).DoIn(index));
}

void BringUp(cTolvaDatabase& station, SearchIndex& index)
{
    SearchFollowing following(station);
    Require(BringUpToDate(following, index), "the index was not brought up to date");
}

int ReadRows(cTolvaDatabase& station, const SearchResult& result)
{
    QStringList references;
    for (const SearchHit& hit : result.Hits)
        references.append(QString::number(hit.Reference));
    const auto rows =
        station.OpenMessageRows({QStringLiteral("Reference"), QStringLiteral("Subject"), QStringLiteral("FromKey")},
                                QStringLiteral("[Reference] IN (%1)").arg(references.join(u',')));
    return rows->RecordCount();
}

/// What a desk does for what was typed until somebody types on: it shows the first rows as soon as they are final, and
/// counts behind them.
int RowsOf(cTolvaDatabase& station, SearchIndex& index, const QString& typed, SearchOptions options = {})
{
    int rows = -1;
    options.First = [&](const SearchResult& result) { rows = result.IsFinal ? ReadRows(station, result) : rows; };
    options.GoesOn = [&rows] { return rows < 0; };
    try {
        const SearchResult result = index.Find(SearchQuestion::Of(typed, SearchQuestion::Reading::Typing), options);
        return rows < 0 ? ReadRows(station, result) : rows;
    } catch (const SearchFailure& failure) {
        Require(failure.Why() == SearchFailure::Reason::Interrupted, "the search failed");
        return rows;
    }
}

qint64 CountOf(SearchIndex& index, const QString& typed)
{
    return index.Find(SearchQuestion::Of(typed, SearchQuestion::Reading::Typing), {}).Count;
}

double MedianMilliseconds(const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < 15; ++i) {
        QElapsedTimer time;
        time.start();
        work();
        times.push_back(static_cast<double>(time.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// oneWord: the limit of the search for one, in milliseconds.
void BenchFinding(cTolvaDatabase& station, SearchIndex& index, const QByteArray& notmuch, double oneWord)
{
    constexpr double MostMilliseconds = 50;
    constexpr int Rare = 45'000;
    const auto word = [](int rank) { return QString::fromLatin1(WordOf(rank)) + QLatin1Char(' '); };
    const QString marked = QStringLiteral("lighthouse ");
    if (!notmuch.isEmpty()) {
        Compare(
            {"one word, its first 50 rows", "notmuch search --limit=50", 2.0, 15, 1},
            [&] {
                RunProgram(notmuch, {"search", "--limit=50", "lighthouse"});
            },
            [&] { Require(RowsOf(station, index, marked) == SearchOptions().Most, "rows are missing"); });
    }
    const struct
    {
        const char* Name;
        QString Typed;
        double Limit;
    } searches[] = {
        {"one word, its first 50 rows", marked, oneWord},
        {"a rare word", word(Rare), oneWord},
        {"a word of nearly every mail", word(3), MostMilliseconds},
        {"a prefix of two letters", QStringLiteral("li"), MostMilliseconds},
        {"two words", marked + word(30), MostMilliseconds},
        {"a phrase of frequent words", word(1) + word(2) + word(3) + word(4), MostMilliseconds},
        {"a frequent word of one sender", QStringLiteral("from:listener77@example.com ") + word(3), MostMilliseconds},
    };
    SearchOptions best;
    best.Order = SearchOrder::BestFirst;
    for (const auto& search : searches) {
        const auto find = [&] { Require(RowsOf(station, index, search.Typed) > 0, "rows are missing"); };
        Report(search.Name, "", search.Limit, MedianMilliseconds(find), 1.0, "ms");
    }
    const auto findBest = [&] { Require(RowsOf(station, index, word(3), best) > 0, "rows are missing"); };
    Report("a word of nearly every mail, best first", "", MostMilliseconds, MedianMilliseconds(findBest), 1.0, "ms");
    for (const auto& search : searches) {
        const auto count = [&] { Require(CountOf(index, search.Typed) > 0, "hits are missing"); };
        Tell(std::string(search.Name) + ", all hits counted", MedianMilliseconds(count), "ms");
    }
}

/// What the desk shows of a contact before the station's own query has run.
void BenchHistoryByIndex(cTolvaDatabase& station, SearchIndex& index)
{
    const QString address = QStringLiteral("listener77@example.com");
    SearchQuestion question;
    question.AnyOf = {SearchWords::AddressTerm(address)};
    KeepingList wanted;
    KeepingList list;
    Compare(
        {"a contact's history by the index", "by the station's query", 0.5, 7, 1},
        [&] { station.FillMessagesListView(&wanted, address, {}); },
        [&] {
            QList<qint32> references;
            for (const SearchHit& hit : index.Find(question, {}).Hits)
                references.append(hit.Reference);
            MessageHistory::FillAmong(station, list, address, {}, references);
            Require(list.Count() > 0 && list.Count() <= wanted.Count(), "the history is not the same messages");
        });
}

void BenchFollowing(const QString& folder, const QString& stationFolder, int count)
{
    constexpr int Mails = 1000;
    const QString alone = folder + QStringLiteral("/alone");
    QDir(alone).removeRecursively();
    MakeStationIn(QFile::encodeName(alone));
    AddMails(alone, QString(), 0, Mails);
    const auto small = OpenStation(alone);
    const auto station = OpenStation(stationFolder);
    SearchIndex index(SearchPlace::FileFor(*station), SearchFollowing::IdentityOf(*station));
    const QString smallFile = folder + QStringLiteral("/alone.index");
    int first = count;
    const auto makeAlone = [&] {
        SearchIndex::Remove(smallFile);
        SearchIndex fresh(smallFile, "alone");
        BringUp(*small, fresh);
    };
    const auto add = [&] {
        AddMails(stationFolder, QString(), first, Mails);
        first += Mails;
    };
    Compare(
        {"following 1,000 new mails", "indexing 1,000 mails", 1.5, 5, Mails}, makeAlone,
        [&] { BringUp(*station, index); }, add);
    Compare(
        {"1,000 new mails until they are found", "indexing 1,000 mails", 1.5, 5, Mails}, makeAlone,
        [&] { BringUpNew(*station, index); }, add);
}
/// The mails in a station and their index, as folder keeps them.
struct WordStation
{
    explicit WordStation(const QString& folder) : Folder(folder), Station(folder + QStringLiteral("/station"))
    {
        qputenv("XDG_CACHE_HOME", QFile::encodeName(folder + QStringLiteral("/cache")));
    }

    QString Folder;
    QString Station;
    QString Index() const { return SearchPlace::FileFor(*OpenStation(Station)); }
};

void BenchIndexing(const WordStation& words, int count, const QByteArray& notmuch)
{
    const QString maildir = words.Folder + QStringLiteral("/mail");
    for (const char* part : {"new", "cur", "tmp"})
        QDir().mkpath(maildir + u'/' + QString::fromLatin1(part));
    MakeStationIn(QFile::encodeName(words.Station));
    std::fprintf(stderr, "Making %d mails of words\n", count);
    const double octets = AddMails(words.Station, notmuch.isEmpty() ? QString() : maildir, 0, count);

    const QString file = words.Index();
    double peak = 0;
    const auto build = [&] {
        const rusage used = RunProgram(TOLVA_PROGRAM, {"index", QFile::encodeName(words.Station)});
        peak = std::max(peak, static_cast<double>(used.ru_maxrss) / 1024.0);
    };
    if (notmuch.isEmpty()) {
        QElapsedTimer time;
        time.start();
        build();
        Tell("indexing mails", static_cast<double>(time.elapsed()) / 1e3, "s");
    } else {
        const QString settings = words.Folder + QStringLiteral("/notmuch");
        WriteFile(settings, "[database]\npath=" + QFile::encodeName(maildir) +
                                "\n[user]\nname=Bench\nprimary_email=bench@example.org\n[new]\ntags=new\n");
        qputenv("NOTMUCH_CONFIG", QFile::encodeName(settings));
        Compare(
            {"indexing mails", "notmuch new on them", 1.0, 1, count},
            [&] {
                QDir(maildir + QStringLiteral("/.notmuch")).removeRecursively();
                RunProgram(notmuch, {"new", "--quiet"});
            },
            build, [&] { SearchIndex::Remove(file); });
    }
    Report("the index on the disk", "the mails", octets / Megabyte,
           static_cast<double>(QFileInfo(file).size()) / Megabyte, 0.6, "MB");
    Report("peak memory, indexing", "", 60, peak, 1.0, "MB");
}
} // namespace

void BenchWords(const QString& folder, int count, bool isBesideNotmuch)
{
    constexpr int MostUsual = 100'000;
    const WordStation words(folder);
    const bool isKept = QFileInfo::exists(words.Station);
    const QByteArray notmuch =
        isBesideNotmuch && !isKept ? FindProgram("notmuch", "the speed of finding words") : QByteArray();
    if (!isKept)
        BenchIndexing(words, count, notmuch);
    {
        const auto station = OpenStation(words.Station);
        SearchIndex index(words.Index(), SearchFollowing::IdentityOf(*station));
        BringUp(*station, index);
        BenchFinding(*station, index, notmuch, count > MostUsual ? 50 : 15);
        BenchHistoryByIndex(*station, index);
    }
    BenchFollowing(folder, words.Station, count);
}
