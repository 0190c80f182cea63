#include "ControlCollection.h"

#include "ControlPlugin.h"
#include "messages/controls/uMessageBasic.h"
#include "messageslist/uMessagesList.h"

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
}

ControlCollection::~ControlCollection() = default;

QList<QDesignerCustomWidgetInterface*> ControlCollection::customWidgets() const
{
    QList<QDesignerCustomWidgetInterface*> controls;
    for (const auto& control : Controls_)
        controls.append(control.get());
    return controls;
}
