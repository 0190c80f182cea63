// SPDX-License-Identifier: Apache-2.0

// The query of the messages list: what UpdateDisplay asks the database for.

#include "common/UserPreferences.h"
#include "common/controls/StationListHandler.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/MessagesListTexts.h"
#include "messageslist/uMessagesList.h"
#include "platform/directory/clsKVUser.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/TabStrip.h"

namespace
{

/// Tabs that a host may add.
enum Tab
{
    tabGeneral = 0,
    tabPersonal = 1
};

void Join(QString& condition, const QString& further)
{
    if (!condition.isEmpty())
        condition += QStringLiteral(" AND ");
    condition += further;
}
} // namespace

void uMessagesList::ReadSortOrder()
{
    const UserPreferences::Preference& order = UserPreferences::MessageOrder;
    SortOrder_ = CurrentUser() ? CurrentUser()->Preference(order.Name, order.Default).toInt() : order.Default;
}

uMessagesList::Query uMessagesList::MakeQuery()
{
    Query query;
    ReadSortOrder();
    if (SortOrder_ == mlsoSent)
        query.Order = QStringLiteral(" ORDER BY [Sent] DESC, [Reference]");
    else if (SortOrder_ == mlsoReceived)
        query.Order = QStringLiteral(" ORDER BY [Received] DESC, [Reference]");

    // The text goes in as it was typed: wildcards are the user's, and a double quote ends the pattern.
    if (IsFiltered())
        Join(query.Condition, QStringLiteral("([Subject] LIKE \"*") + FindText_ + QStringLiteral("*\" )"));
    const QString selected = treeCategories_->SelectedKey();
    if (CurrentCategory_ > 0 && !selected.isEmpty())
        Join(query.Condition, QStringLiteral("([Category]=%1) ").arg(CategoryOfKey(selected)));
    const QString personal = PersonalCondition();
    if (!personal.isEmpty())
        Join(query.Condition, personal);
    if (!ArrivedSince_.IsNone())
        Join(query.Condition,
             QStringLiteral("[Received]>=#%1#").arg(ArrivedSince_.Format(QStringLiteral("mm/dd/yyyy hh:nn:ss"))));
    return query;
}

void uMessagesList::SetArrivedSince(Date moment)
{
    if (moment == ArrivedSince_)
        return;
    ArrivedSince_ = moment;
    // A property throws nothing at who sets it.
    HandleReading("ArrivedSince", [this] { UpdateDisplay(); });
}

/// The query's text behind the name of the table.
QString uMessagesList::ClausesOf(const Query& query)
{
    QString text = query.Condition;
    if (!text.isEmpty())
        text.prepend(QStringLiteral(" WHERE "));
    if (!text.contains(QStringLiteral("ORDER BY"), Qt::CaseInsensitive))
        text += QLatin1Char(' ') + query.Order;
    return text;
}

/// What a row shows stands in these, or does not change without them: the sender and the subject stand in the mail, and
/// their keys beside it. The key of the table first.
const QStringList& uMessagesList::ComparedColumns()
{
    static const QStringList columns = {QStringLiteral("Reference"),         QStringLiteral("Flags"),
                                        QStringLiteral("Category"),          QStringLiteral("Sent"),
                                        QStringLiteral("Received"),          QStringLiteral("Priority"),
                                        QStringLiteral("Subject"),           QStringLiteral("FromKey"),
                                        QStringLiteral("PersonalToContact"), QStringLiteral("HasHighlightWords"),
                                        QStringLiteral("MessageType")};
    return columns;
}

QString uMessagesList::PersonalCondition() const
{
    if (!CurrentUser())
        return {};
    const qint32 user = CurrentUser()->Reference();
    switch (tbsList_->Tab()) {
    case tabGeneral:
        return QStringLiteral("([PersonalToContact]=0 or [PersonalToContact] is NULL or [PersonalToContact]=%1) ")
            .arg(user);
    case tabPersonal:
        return QStringLiteral("[PersonalToContact]=%1 ").arg(user >= 1 ? user : -1);
    default:
        return {};
    }
}
