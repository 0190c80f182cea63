// SPDX-License-Identifier: Apache-2.0
#include "AwardFlow.h"

#include "Words.h"
#include "common/UserInterface.h"
#include "contacts/ContactChooser.h"
#include "contacts/ContactDialog.h"
#include "contacts/SenderContact.h"
#include "messages/OwnFolders.h"
#include "prizes/PrizeAwards.h"
#include "prizes/PrizeChooser.h"
#include "station/DeskStation.h"

#include <QMessageBox>
#include <QPushButton>

namespace
{
constexpr qsizetype LongestNameOnButton = 40;

/// A name as a button's text: short, and its ampersands are no access keys.
QString OnButton(const QString& name)
{
    QString text = name.size() > LongestNameOnButton ? name.left(LongestNameOnButton) + u'\u2026' : name;
    return text.replace(u'&', QStringLiteral("&&"));
}
} // namespace

AwardFlow::AwardFlow(DeskStation& station, QObject* parent) : QObject(parent), Station_(station) {}

template <typename Work>
void AwardFlow::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        Words::Warn(tr("Nothing was awarded. %1").arg(Station_.Words(error.Number(), error.Description())));
    }
}

bool AwardFlow::MayAward(qint32 prize)
{
    const QString problem = PrizeAwards::WhyNotAwardable(Station_, prize);
    if (problem.isEmpty())
        return true;
    Words::Warn(problem);
    Q_EMIT WinnersChanged();
    return false;
}

bool AwardFlow::AskWhenNotNow(qint32 prize)
{
    const cPrizePtr stored = Station_.Database().GetPrize(prize, false);
    const QString why = stored ? PrizeRows::WhyNotNow(*stored) : QString();
    return why.isEmpty() ||
           UserInterface::Confirm(tr("%1 may not go out now. %2\n\nDo you want to award it all the same?")
                                      .arg(PrizeRows::Quoted(stored->Title()), why));
}

void AwardFlow::Award(qint32 prize, QWidget* parent)
{
    Run([&] {
        if (!MayAward(prize) || !AskWhenNotNow(prize))
            return;
        const cPrizePtr stored = Station_.Database().GetPrize(prize, false);
        ContactChooser chooser(Station_.Directory(), parent);
        chooser.setWindowTitle(tr("Award %1").arg(stored ? PrizeRows::Quoted(stored->Title()) : tr("a prize")));
        chooser.SetAction(tr("&Award"));
        if (chooser.exec() == QDialog::Accepted && chooser.Contact())
            AwardTo(prize, *chooser.Contact(), parent);
    });
}

bool AwardFlow::AwardTo(qint32 prize, const clsKVContact& contact, QWidget* parent)
{
    bool isAwarded = false;
    Run([&] {
        const QString problem = PrizeAwards::WhyCannotWin(Station_, contact.Reference);
        if (!problem.isEmpty()) {
            Words::Warn(problem);
            return;
        }
        const QString question = PrizeAwards::RecentWinQuestion(Station_, contact.Reference);
        if (!question.isEmpty() && !UserInterface::Confirm(question))
            return;
        const PrizeAwards::Result result = PrizeAwards::Award(Station_, prize, contact.Reference);
        Q_EMIT WinnersChanged();
        if (result.Winner == 0) {
            Words::Warn(result.Words);
            return;
        }
        const QString name = PrizeRows::NameOf(Station_, contact.Reference);
        if (!OfferTakingBack(prize, result.Winner, name, parent))
            return;
        isAwarded = true;
        const cPrizePtr stored = Station_.Database().GetPrize(prize, false);
        Q_EMIT Awarded(prize, result.Winner,
                       tr("Awarded %1 to %2.").arg(PrizeRows::Quoted(stored ? stored->Title() : QString()), name));
    });
    return isAwarded;
}

/// False when the award was taken back.
bool AwardFlow::OfferTakingBack(qint32 prize, qint32 winner, const QString& name, QWidget* parent)
{
    const std::optional<PrizeAwards::OverAward> found = PrizeAwards::FindOverAward(Station_, prize);
    if (!found)
        return true;
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("overAwardBox"));
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(tr("Awarded too often"));
    box.setText(PrizeAwards::OverAwardWords(*found));
    box.setInformativeText(tr("Another computer was at it in the same moment. This is what is stored now:\n\n%1")
                               .arg(PrizeAwards::WinnersInWords(Station_, found->Winners, winner)));
    const QPushButton* back =
        box.addButton(tr("&Take it back from %1").arg(OnButton(name)), QMessageBox::DestructiveRole);
    QPushButton* leave = box.addButton(tr("&Leave it as it is"), QMessageBox::RejectRole);
    box.setDefaultButton(leave);
    box.setEscapeButton(leave);
    box.exec();
    return box.clickedButton() != back || !TakeBack(winner);
}

bool AwardFlow::TakeBack(qint32 winner)
{
    QString words;
    bool isBack = false;
    Run([&] {
        isBack = PrizeAwards::TakeBack(Station_, winner, words);
        if (!isBack)
            Words::Warn(tr("The award could not be taken back. %1").arg(words));
    });
    Q_EMIT WinnersChanged();
    return isBack;
}

clsKVContactPtr AwardFlow::SenderOf(const cMessage& message, QWidget* parent)
{
    if (clsKVContactPtr known = SenderContact::Find(Station_.Directory(), message))
        return known;
    ContactDialog dialog(Station_.Directory(), SenderContact::FromMessage(message), parent);
    return dialog.exec() == QDialog::Accepted ? dialog.Contact() : nullptr;
}

void AwardFlow::AwardToSender(const cMessagePtr& message, QWidget* parent)
{
    Run([&] {
        if (!message)
            return;
        if (IsOwnFolder(message->Category())) {
            Words::Warn(tr("The station wrote this message itself. Choose a message of a listener."));
            return;
        }
        const clsKVContactPtr sender = SenderOf(*message, parent);
        if (!sender)
            return;
        PrizeChooser chooser(Station_, *sender, parent);
        if (chooser.exec() == QDialog::Accepted && MayAward(chooser.Prize()) && AskWhenNotNow(chooser.Prize()))
            AwardTo(chooser.Prize(), chooser.Winner(), parent);
    });
}
