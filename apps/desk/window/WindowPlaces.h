// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

class DeskSettings;
class QWidget;

/// The windows of the desk come up as their user left them: as large, with their splitters and columns as they were;
/// the window of contacts, of which there is one, also where it was. Watches the program's windows while it lives, so
/// that none has to know the settings, and leaves those alone that it does not know by name. No window comes up larger
/// than the screen. The settings outlive it.
class WindowPlaces : public QObject
{
public:
    explicit WindowPlaces(DeskSettings& settings);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Restore(QWidget& window) const;
    bool RestoreSize(QWidget& window) const;
    void Remember(const QWidget& window);

    DeskSettings& Settings_;
};
