// SPDX-License-Identifier: Apache-2.0
#include "ContactHistory.h"

#include "HistoryRows.h"
#include "common/GeneralHelper.h"
#include "common/UserInterface.h"
#include "contacts/SenderContact.h"
#include "messages/AddressKey.h"
#include "messages/MessageHistory.h"
#include "platform/widgets/ListView.h"
#include "prizes/PrizeRows.h"
#include "search/SearchService.h"
#include "station/DeskStation.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
enum Tab
{
    tabMessages = 0,
    tabPrizes = 1
};

constexpr double WideTwips = 3600;
constexpr double MiddleTwips = 2400;
constexpr double NarrowTwips = 1700;

/// The addresses of a contact as the search takes them: only those that can match, since with none it finds everything.
/// One with a bar in it would be taken for two, of which the second may be somebody else's.
QString AddressesOf(const clsKVContact& contact)
{
    QStringList addresses{contact.Email.trimmed(), contact.SecondEmail.trimmed()};
    // Senders who have a name instead of a number are searched for as they stand in a key.
    for (const QString& number : {contact.Mobile, contact.Telephone}) {
        const QStringList entries = MakeAddressKey(number, emtSMS).split(u'|', Qt::SkipEmptyParts);
        if (entries.size() == 1 && GeneralHelper::PhoneNumberKey(number).isEmpty())
            addresses.append(entries.first());
    }
    addresses.removeIf([](const QString& address) { return address.isEmpty() || address.contains(u'|'); });
    return addresses.join(u'|');
}

QString NumbersOf(const clsKVContact& contact)
{
    QStringList numbers = SenderContact::NumbersOf(contact);
    numbers.removeIf([](const QString& number) { return GeneralHelper::PhoneNumberKey(number).isEmpty(); });
    return numbers.join(u'|');
}

/// By which the index knows the messages of these addresses and numbers, as far as it does: names and short numbers
/// are words like any other there.
QList<QByteArray> TermsOf(const QString& addresses, const QString& numbers)
{
    QList<QByteArray> terms;
    for (const QString& address : addresses.split(u'|', Qt::SkipEmptyParts))
        terms.append(SearchWords::AddressTerm(address));
    for (const QString& number : numbers.split(u'|', Qt::SkipEmptyParts))
        terms.append(SearchWords::NumberTerm(number));
    terms.removeAll(QByteArray());
    return terms;
}
} // namespace

ContactHistory::ContactHistory(DeskStation& station, QWidget* parent)
    : QTabWidget(parent),
      Station_(station),
      Messages_(new ListView(this)),
      MessagesNote_(new QLabel(this)),
      Prizes_(new ListView(this)),
      PrizesNote_(new QLabel(this)),
      Shown_(std::make_unique<HistoryRows>(*Messages_)),
      Timer_(this)
{
    setObjectName(QStringLiteral("contactTabs"));
    Messages_->setObjectName(QStringLiteral("contactMessages"));
    Messages_->setAccessibleName(tr("Messages to and from the contact"));
    Messages_->AddColumn(tr("Subject"), WideTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Subject"));
    Messages_->AddColumn(tr("From"), MiddleTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("FromKey"));
    Messages_->AddColumn(tr("Folder"), NarrowTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("FOLDER"));
    Messages_->AddColumn(tr("Sent"), MiddleTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("SENT"));
    MessagesNote_->setObjectName(QStringLiteral("contactMessagesNote"));
    Prizes_->setObjectName(QStringLiteral("contactPrizes"));
    Prizes_->setAccessibleName(tr("Prizes of the contact"));
    Prizes_->AddColumn(tr("Prize"), WideTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Title"));
    Prizes_->AddColumn(tr("Role"), NarrowTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("FOLDER"));
    Prizes_->AddColumn(tr("Won"), MiddleTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("WonDate"));
    Prizes_->AddColumn(tr("Sent"), MiddleTwips, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("SentDate"));
    PrizesNote_->setObjectName(QStringLiteral("contactPrizesNote"));
    addTab(MakePage(Messages_, MessagesNote_), tr("Me&ssages"));
    addTab(MakePage(Prizes_, PrizesNote_), tr("&Prizes"));
    Timer_.setObjectName(QStringLiteral("contactHistoryWait"));
    Timer_.setSingleShot(true);
    Timer_.setInterval(WaitMilliseconds);
    connect(&Timer_, &QTimer::timeout, this, &ContactHistory::Fill);
    connect(this, &QTabWidget::currentChanged, this, &ContactHistory::Wait);
    connect(Messages_, &ListView::ItemActivated, this,
            [this](const QString& key) { Q_EMIT MessageWanted(key.mid(1).toInt()); });
    connect(Prizes_, &ListView::ItemActivated, this, [this](const QString& key) {
        const qint32 reference = key.mid(1).toInt();
        if (key.startsWith(u'w'))
            Q_EMIT WinnerWanted(reference);
        else
            Q_EMIT PrizeWanted(reference);
    });
}

ContactHistory::~ContactHistory() = default;

void ContactHistory::SetSearch(SearchService& search)
{
    Search_ = &search;
    connect(&search, &SearchService::Found, this, &ContactHistory::TakeFound);
}

QWidget* ContactHistory::MakePage(ListView* list, QLabel* note)
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    note->setWordWrap(true);
    // The dates are seen whole, whatever the window's width.
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    // Those on show tell how wide dates are: all are about the same.
    list->header()->setResizeContentsPrecision(0);
    for (const char* key : {"SENT", "WonDate", "SentDate"}) {
        if (const int column = list->ColumnNamed(QLatin1String(key)); column >= 0)
            list->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    }
    layout->addWidget(note);
    layout->addWidget(list, 1);
    return page;
}

void ContactHistory::ShowContact(const clsKVContactPtr& contact)
{
    Contact_ = contact;
    Refresh();
}

void ContactHistory::Refresh()
{
    Messages_->Clear();
    *Shown_ = HistoryRows(*Messages_);
    Prizes_->Clear();
    MessagesNote_->clear();
    PrizesNote_->clear();
    IsFilled_[tabMessages] = IsFilled_[tabPrizes] = false;
    Wait();
}

void ContactHistory::Wait()
{
    Asked_ = 0;
    if (!Contact_ || IsFilled_[currentIndex()]) {
        Timer_.stop();
        return;
    }
    Timer_.start();
    if (currentIndex() == tabMessages)
        AskIndex();
}

void ContactHistory::AskIndex()
{
    if (!Search_ || !Search_->IsComplete())
        return;
    SearchQuestion question;
    question.AnyOf = TermsOf(AddressesOf(*Contact_), NumbersOf(*Contact_));
    if (question.AnyOf.isEmpty())
        return;
    SearchOptions options;
    options.Most = MostSooner;
    options.IsCounted = false;
    Asked_ = Search_->Search(SearchService::Asker::ContactHistory, question, options);
}

void ContactHistory::TakeFound(int search, const SearchResult& result)
{
    if (search != Asked_)
        return;
    Asked_ = 0;
    QList<qint32> references;
    for (const SearchHit& hit : result.Hits)
        references.append(hit.Reference);
    HistoryRows rows(*Messages_);
    try {
        MessageHistory::FillAmong(Station_.Database(), rows, AddressesOf(*Contact_), NumbersOf(*Contact_), references);
    } catch (const dao::Error&) {
        return; // the query says what is wrong
    }
    Show(rows);
}

void ContactHistory::Show(const HistoryRows& rows)
{
    if (rows == *Shown_)
        return;
    *Shown_ = rows;
    rows.PutInto(*Messages_);
}

void ContactHistory::Fill()
{
    const int tab = currentIndex();
    QLabel* note = tab == tabMessages ? MessagesNote_ : PrizesNote_;
    IsFilled_[tab] = true;
    Asked_ = 0; // an answer that comes now is late
    const BusyPointer busy;
    try {
        note->setText(tab == tabMessages ? FillMessages() : FillPrizes());
    } catch (const dao::Error& error) {
        note->setText(Station_.Words(error.Number(), error.Description()));
    }
}

QString ContactHistory::FillMessages()
{
    const QString addresses = AddressesOf(*Contact_);
    const QString numbers = NumbersOf(*Contact_);
    if (addresses.isEmpty() && numbers.isEmpty())
        return tr("There is no address and no number to look for.");
    HistoryRows rows(*Messages_);
    Station_.Database().FillMessagesListView(&rows, addresses, numbers);
    Show(rows);
    const cTolvaDatabase& database = Station_.Database();
    if (database.LastErrorNumber() != 0)
        return Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
    const int count = rows.Count();
    if (count == 0)
        return tr("No messages to or from this contact.");
    return count == 1 ? tr("1 message") : tr("%1 messages").arg(QLocale().toString(count));
}

QString ContactHistory::FillPrizes()
{
    // Nobody's number means everybody to the search.
    if (Contact_->Reference == 0)
        return tr("The contact is not saved yet.");
    Station_.Database().FillPrizesListView(Prizes_, Contact_->Reference);
    return WinsInWords();
}

QString ContactHistory::WinsInWords() const
{
    const qint32 wins = Station_.Database().GetNumberWinsForContact(Contact_->Reference);
    if (wins < 0)
        return tr("The prizes cannot be read at the moment.");
    const std::optional<PrizeRows::Winner> last = PrizeRows::LastWinOf(Station_, Contact_->Reference);
    if (wins == 0 || !last)
        return Prizes_->ItemCount() == 0 ? tr("No prizes yet.") : tr("Has not won a prize yet.");
    const cPrizePtr prize = Station_.Database().GetPrize(last->PrizeReference, false);
    const QString what = prize ? PrizeRows::Quoted(prize->Title()) : tr("a prize that was deleted since");
    const QString when = PrizeRows::DayWords(last->WonDate);
    return wins == 1 ? tr("Has won once: %1 on %2.").arg(what, when)
                     : tr("Has won %1 times, the last time %2 on %3.").arg(QLocale().toString(wins), what, when);
}
