// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <utility>

/// Acts as the user in the next window of this class that shows, while the code under test waits in it. Made before the
/// call that shows the window. The test fails when none shows during the life of this object, and when none shows
/// within ten seconds, in which case a modal window of another class is closed, so that the test ends.
template <typename Window>
class WhenShown
{
public:
    explicit WhenShown(std::function<void(Window&)> action) : Action_(std::move(action))
    {
        Waiting_.start();
        Timer_.callOnTimeout([this] { Look(); });
        Timer_.start(2);
    }
    ~WhenShown()
    {
        if (!Shown_)
            ADD_FAILURE() << "did not show: " << Window::staticMetaObject.className();
    }
    WhenShown(const WhenShown&) = delete;
    WhenShown& operator=(const WhenShown&) = delete;

    bool Shown() const { return Shown_; }

private:
    void Look()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* const window = qobject_cast<Window*>(widget);
            if (!window || !window->isVisible() || !window->isActiveWindow())
                continue;
            Timer_.stop();
            Shown_ = true;
            Action_(*window);
            return;
        }
        if (Waiting_.hasExpired(10'000)) {
            Timer_.stop();
            if (QWidget* const modal = QApplication::activeModalWidget())
                modal->close();
        }
    }

    std::function<void(Window&)> Action_;
    QElapsedTimer Waiting_;
    QTimer Timer_;
    bool Shown_ = false;
};
