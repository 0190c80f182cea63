// SPDX-License-Identifier: Apache-2.0
#include "ControlCollection.h"

#include "ControlPlugin.h"
#include "messages/controls/uMessageAddress.h"
#include "messages/controls/uMessageBasic.h"
#include "messageslist/uMessagesList.h"
#include "prizes/controls/uPrizeBasic.h"
#include "prizes/controls/uPrizesList.h"

namespace
{

template <class Control>
std::unique_ptr<QDesignerCustomWidgetInterface> Make(const QString& header, const QString& icon, const QString& toolTip,
                                                     const QString& whatsThis)
{
    return std::make_unique<ControlPlugin<Control>>(header, ControlEntry{icon, toolTip, whatsThis});
}

} // namespace

ControlCollection::ControlCollection(QObject* parent) : QObject(parent)
{
    Controls_.push_back(Make<uMessagesList>(
        QStringLiteral("messageslist/uMessagesList.h"), QStringLiteral("folderinbox"),
        QStringLiteral("The folders and messages of a contact desk"),
        QStringLiteral("A tree of folders, a find bar and the list of messages. Set TolvaDatabase when the station is "
                       "open; take MessageSelected, OpenMessage and NewMessage.")));
    Controls_.push_back(
        Make<uMessageBasic>(QStringLiteral("messages/controls/uMessageBasic.h"), QStringLiteral("open"),
                            QStringLiteral("One message of a contact desk"),
                            QStringLiteral("Shows an e-mail or SMS. Nothing in it runs and nothing is fetched.")));
    Controls_.push_back(
        Make<uMessageAddress>(QStringLiteral("messages/controls/uMessageAddress.h"), QStringLiteral("users"),
                              QStringLiteral("The recipients of a message that is written"),
                              QStringLiteral("A box for To and Cc. AddAddress adds an entry that behaves as one; take "
                                             "Change and AddressClicked.")));
    Controls_.push_back(
        Make<uPrizesList>(QStringLiteral("prizes/controls/uPrizesList.h"), QStringLiteral("newprize"),
                          QStringLiteral("The prizes of a contact desk"),
                          QStringLiteral("The kinds of prizes, a find bar and the list. Set TolvaDatabase when the "
                                         "station is open; take PrizeSelected, OpenPrize and NewPrize.")));
    Controls_.push_back(
        Make<uPrizeBasic>(QStringLiteral("prizes/controls/uPrizeBasic.h"), QStringLiteral("newwinner"),
                          QStringLiteral("One prize of a contact desk"),
                          QStringLiteral("Shows a prize's title, script and winners. Set DirectoryDatabase for the "
                                         "winners' names and Prize; take AddWinner and DisplayWinner.")));
}

ControlCollection::~ControlCollection() = default;

QList<QDesignerCustomWidgetInterface*> ControlCollection::customWidgets() const
{
    QList<QDesignerCustomWidgetInterface*> controls;
    for (const auto& control : Controls_)
        controls.append(control.get());
    return controls;
}
