// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/Icons.h"

#include <QIcon>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

/// What Designer's widget box shows of one control.
struct ControlEntry
{
    QString Icon; ///< Name of one of the library's pictures.
    QString ToolTip;
    QString WhatsThis;
};

/// One control in Designer's widget box. Owned by the collection.
template <class Control>
class ControlPlugin : public QDesignerCustomWidgetInterface
{
public:
    ControlPlugin(QString header, ControlEntry entry) : Header_(std::move(header)), Entry_(std::move(entry)) {}

    QString name() const override { return QString::fromLatin1(Control::staticMetaObject.className()); }
    QString group() const override { return QStringLiteral("Contact desk"); }
    QString toolTip() const override { return Entry_.ToolTip; }
    QString whatsThis() const override { return Entry_.WhatsThis; }
    QString includeFile() const override { return Header_; }
    QIcon icon() const override { return Icons::Get(Entry_.Icon); }
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* parent) override { return new Control(parent); }
    QString domXml() const override
    {
        return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\"/></ui>").arg(name(), ObjectName());
    }

private:
    /// "uMessagesList" becomes "messagesList".
    QString ObjectName() const
    {
        const QString words = name().mid(1);
        return words.left(1).toLower() + words.mid(1);
    }

    QString Header_;
    ControlEntry Entry_;
};
