// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>
#include <vector>

/// The controls of the library, for the widget box of Qt Designer. Designer makes and owns it.
class ControlCollection : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit ControlCollection(QObject* parent = nullptr);
    ~ControlCollection() override;

    QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

private:
    std::vector<std::unique_ptr<QDesignerCustomWidgetInterface>> Controls_;
};
