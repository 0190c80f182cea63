// SPDX-License-Identifier: Apache-2.0

// Loads the plugin as Qt Designer does: pluginTest PLUGIN NAME... 0 when it offers exactly these controls, each with
// all that the widget box and the property editor show.

#include <QApplication>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QWidget>
#include <QXmlStreamReader>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <cstdio>
#include <memory>

namespace
{

int Failures = 0;

void Check(bool holds, const QString& what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Not so: %s\n", qPrintable(what));
    ++Failures;
}

int OwnProperties(const QWidget& widget)
{
    int count = 0;
    const QMetaObject* meta = widget.metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
        count += meta->property(i).isDesignable() ? 1 : 0;
    return count;
}

void CheckControl(QDesignerCustomWidgetInterface& control)
{
    const QString name = control.name();
    Check(!control.icon().isNull() && !control.icon().pixmap(24, 24).isNull(), name + QStringLiteral(" has an icon"));
    Check(!control.toolTip().isEmpty(), name + QStringLiteral(" has a tool tip"));
    Check(!control.whatsThis().isEmpty(), name + QStringLiteral(" is explained"));
    Check(control.includeFile().endsWith(name + QStringLiteral(".h")), name + QStringLiteral(" names its header"));
    QXmlStreamReader xml(control.domXml());
    while (!xml.atEnd())
        xml.readNext();
    Check(!xml.hasError(), name + QStringLiteral(" has a form that can be read"));

    QWidget parent;
    const std::unique_ptr<QWidget> widget(control.createWidget(&parent));
    Check(widget != nullptr, name + QStringLiteral(" is made"));
    if (!widget)
        return;
    Check(name == QLatin1String(widget->metaObject()->className()), name + QStringLiteral(" is of its class"));
    Check(OwnProperties(*widget) > 0, name + QStringLiteral(" has properties"));
    widget->resize(600, 400);
    Check(!widget->grab().isNull(), name + QStringLiteral(" is drawn without a station"));
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QStringList expected = QApplication::arguments().mid(2);
    QPluginLoader loader(QApplication::arguments().value(1));
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    if (collection == nullptr) {
        std::fprintf(stderr, "The plugin was not loaded: %s\n", qPrintable(loader.errorString()));
        return 1;
    }
    QStringList names;
    for (QDesignerCustomWidgetInterface* control : collection->customWidgets()) {
        names.append(control->name());
        CheckControl(*control);
    }
    names.sort();
    expected.sort();
    Check(names == expected, QStringLiteral("the controls are %1").arg(names.join(u' ')));
    return Failures == 0 ? 0 : 1;
}
