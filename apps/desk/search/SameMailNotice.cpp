// SPDX-License-Identifier: Apache-2.0
#include "SameMailNotice.h"

#include "SameMails.h"
#include "SearchService.h"
#include "messages/search/SearchText.h"
#include "platform/records/Recordset.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

namespace
{
/// Mails that are read for one message on show.
constexpr int MostCompared = 10;
constexpr int MostHits = 50;
constexpr int PatienceMilliseconds = 2000;
constexpr double Second = 1.0 / (24 * 60 * 60);

/// What its own kind alone meets: a mail by its identity or else its subject, and by its second.
SearchQuestion QuestionFor(const cMessage& message)
{
    SearchQuestion question;
    const Kinship kinship = KinshipOf(message.CDOMessage()->Octets());
    const QByteArray first = message.MessageType() == emtSMS ? kinship.Sender : kinship.Mails.value(0, kinship.Subject);
    if (!first.isEmpty())
        question.AnyOf = {first};
    if (!message.Sent().IsNone()) {
        question.After = Date(message.Sent().DayNumber() - 2 * Second);
        question.Before = Date(message.Sent().DayNumber() + 2 * Second);
    }
    return question;
}
} // namespace

SameMailNotice::SameMailNotice(DeskStation& station, SearchService& search, Place place, QWidget& window)
    : QObject(&window),
      Station_(station),
      Search_(search),
      Place_(place),
      Bar_(new NoticeBar(QStringLiteral("search"), tr("Show it"), &window))
{
    Bar_->setObjectName(QStringLiteral("sameMailNotice"));
    connect(Bar_, &NoticeBar::ButtonClicked, this, [this] { Q_EMIT MessageWanted(Other_); });
    connect(&Search_, &SearchService::Found, this, &SameMailNotice::TakeFound);
    connect(&Search_, &SearchService::StateChanged, this, &SameMailNotice::TakeState);
    RestTimer_.setSingleShot(true);
    RestTimer_.setInterval(RestMilliseconds);
    connect(&RestTimer_, &QTimer::timeout, this, &SameMailNotice::Look);
    PatienceTimer_.setSingleShot(true);
    PatienceTimer_.setInterval(PatienceMilliseconds);
    connect(&PatienceTimer_, &QTimer::timeout, this, &SameMailNotice::TakeLost);
}

void SameMailNotice::Show(const cMessagePtr& message)
{
    const bool isAnother = !message || !Message_ || message->Reference() != Message_->Reference();
    Message_ = message;
    if (!isAnother)
        return;
    Asked_ = 0;
    MustLook_ = false;
    Bar_->Show(QString());
    PatienceTimer_.stop();
    if (message && message->Reference() > 0)
        RestTimer_.start();
    else
        RestTimer_.stop();
}

void SameMailNotice::Look()
{
    if (!Message_ || !Station_.Database().IsOpen())
        return;
    if (Search_.IsComplete()) {
        AskIndex();
        return;
    }
    MustLook_ = Place_ != Place::InWindow;
    if (MustLook_)
        return;
    try {
        ShowSame(SameMails::Alike(Station_.Database(), *Message_));
    } catch (const dao::Error&) {
        // The desk's own window says that the station cannot be reached.
    }
}

void SameMailNotice::AskIndex()
{
    SearchOptions options;
    options.Most = MostHits;
    options.IsCounted = false;
    Asked_ = Search_.Search(Place_ == Place::InWindow ? SearchService::Asker::MessageWindow
                                                      : SearchService::Asker::SelectedMessage,
                            QuestionFor(*Message_), options);
    PatienceTimer_.start();
}

/// Somebody stored something, and the index was behind it for a moment.
void SameMailNotice::TakeState()
{
    if (MustLook_ && Search_.IsComplete()) {
        MustLook_ = false;
        Look();
    }
}

/// Another window has asked before the answer came.
void SameMailNotice::TakeLost()
{
    if (Asked_ != 0)
        Look();
}

void SameMailNotice::TakeFound(int search, const SearchResult& result)
{
    if (search != Asked_ || !Message_)
        return;
    Asked_ = 0;
    PatienceTimer_.stop();
    QList<qint32> found;
    for (const SearchHit& hit : result.Hits)
        found.append(hit.Reference);
    found.removeAll(Message_->Reference());
    try {
        if (!found.isEmpty() && Station_.Database().IsOpen())
            ShowSame(SameMails::Alike(Station_.Database(), *Message_, found));
    } catch (const dao::Error&) {
        // The desk's own window says that the station cannot be reached.
    }
}

void SameMailNotice::ShowSame(const QList<qint32>& alike)
{
    QStringList folders;
    Other_ = 0;
    int compared = 0;
    for (const qint32 reference : alike) {
        if (reference == Message_->Reference())
            continue;
        if (++compared > MostCompared)
            break;
        if (!SameMails::IsSame(Station_.Database(), *Message_, reference, SameMails::Sameness::ButForTrace))
            continue;
        if (Other_ == 0)
            Other_ = reference;
        const QString folder = FolderOf(reference);
        if (!folders.contains(folder))
            folders.append(folder);
    }
    Bar_->Show(folders.isEmpty() ? QString() : tr("The same message is also in %1.").arg(folders.join(tr(" and in "))));
}

QString SameMailNotice::FolderOf(qint32 reference) const
{
    const auto row = Station_.Database().OpenMessageRows({QStringLiteral("Category")},
                                                         QStringLiteral("[Reference]=%1").arg(reference));
    const clsCategory* folder =
        row->AtEOF()
            ? nullptr
            : Station_.Database().MessageCategories().FindCategory(row->Collect(QStringLiteral("Category")).toInt());
    return folder ? folder->Description() : tr("another folder");
}
