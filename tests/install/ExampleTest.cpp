// SPDX-License-Identifier: Apache-2.0

// Runs the example host on a station and looks at what it shows: exampleTest FOLDER USER. 0 when it shows the messages
// of the station and the one that is selected.

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <messages/controls/uMessageBasic.h>
#include <messageslist/uMessagesList.h>

int ExampleMain(int argc, char** argv);

namespace
{

/// Null while there is none.
template <class Control>
Control* Shown()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* control = window->findChild<Control*>(); control != nullptr && control->isVisible())
            return control;
    }
    return nullptr;
}

class Driver : public QTimer
{
public:
    Driver()
    {
        Running_.start();
        setInterval(50);
        callOnTimeout([this] { Look(); });
        start();
    }
    bool HasSeenAll() const { return HasSeenAll_; }

private:
    void Look()
    {
        const auto* list = Shown<uMessagesList>();
        const auto* message = Shown<uMessageBasic>();
        HasSeenAll_ = list != nullptr && message != nullptr && list->NumberItems() > 1 &&
                      message->Message() != nullptr && message->Message()->Reference() == list->SelectedReference();
        constexpr qint64 patience = 20'000;
        if (HasSeenAll_) {
            std::printf("%d messages, \"%s\" on show\n", list->NumberItems(),
                        qPrintable(message->Message()->CDOMessage()->Subject()));
            QApplication::closeAllWindows();
        } else if (Running_.elapsed() > patience) {
            std::fputs("The example shows no message.\n", stderr);
            std::_Exit(1);
        }
    }

    QElapsedTimer Running_;
    bool HasSeenAll_ = false;
};

Driver* TheDriver = nullptr;

/// The application object is made within the example.
void StartDriver()
{
    TheDriver = new Driver;
}
Q_COREAPP_STARTUP_FUNCTION(StartDriver)

} // namespace

int main(int argc, char** argv)
{
    const int code = ExampleMain(argc, argv);
    if (code != 0)
        return code;
    return TheDriver != nullptr && TheDriver->HasSeenAll() ? 0 : 1;
}
