// SPDX-License-Identifier: Apache-2.0
#include "messages/AddressBoxOnShow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>

#include <random>

namespace
{
/// Random keys, clicks and calls, with what must hold after each of them.
class uMessageAddressRandomTest : public AddressBoxOnShow
{
protected:
    ~uMessageAddressRandomTest() override { QGuiApplication::clipboard()->clear(); }

    int Below(int limit) { return static_cast<int>(Random() % static_cast<quint64>(limit)); }
    int Place() { return Below(static_cast<int>(Control.text().size()) + 1); }

    /// Every protected run is one that was added, or several of them that lie side by side.
    void ExpectWholeRuns(const QString& step)
    {
        const QString text = Control.text();
        const QString states = States();
        int start = 0;
        while (start < text.size()) {
            int end = start;
            while (end < text.size() && states.at(end) == states.at(start))
                ++end;
            if (states.at(start) == u'P') {
                QString rest = text.mid(start, end - start);
                for (bool isCut = true; isCut && !rest.isEmpty();) {
                    isCut = false;
                    for (const QString& run : Runs) {
                        if (rest.startsWith(run)) {
                            rest = rest.mid(run.size());
                            isCut = true;
                        }
                    }
                }
                ASSERT_TRUE(rest.isEmpty())
                    << "seed " << Seed << ", " << step.toStdString() << ": half a run in " << text.toStdString() << '\n'
                    << states.toStdString();
            }
            start = end;
        }
    }

    QString Step()
    {
        static const QList<Qt::Key> keys = {Qt::Key_Left,      Qt::Key_Right,     Qt::Key_Home,   Qt::Key_End,
                                            Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Delete,
                                            Qt::Key_Up,        Qt::Key_Down};
        // Long texts show nothing more and take their time.
        if (Control.text().size() > 250) {
            Key(Qt::Key_A, Qt::ControlModifier);
            Key(Qt::Key_Delete);
            return QStringLiteral("cleared");
        }
        switch (Below(9)) {
        case 0: {
            const QString typed = QStringLiteral("ab ;,@\"<>").at(Below(9));
            Type(typed);
            return QStringLiteral("typed ") + typed;
        }
        case 1: {
            const int place = Place();
            ClickAt(place, Below(3) > 0 ? Qt::LeftButton : Qt::RightButton);
            return QStringLiteral("clicked at %1").arg(place);
        }
        case 2: {
            // Within a run the program has nothing to add.
            if (!Box.RunAround(Box.SelStart())) {
                Box.SetSelLength(0);
                const int which = Below(static_cast<int>(Names.size()));
                Control.AddAddress(Names.at(which), Addresses.at(which));
            }
            return QStringLiteral("added");
        }
        case 3:
            Key(Below(2) == 0 ? Qt::Key_Z : Qt::Key_Y, Qt::ControlModifier);
            return QStringLiteral("undone or redone");
        case 4: {
            QInputMethodEvent event;
            event.setCommitString(QStringLiteral("日"));
            QApplication::sendEvent(&Box, &event);
            return QStringLiteral("committed");
        }
        case 5:
            QGuiApplication::clipboard()->setText(QStringLiteral("p@q.org, "));
            Key(Qt::Key_V, Qt::ControlModifier);
            return QStringLiteral("pasted");
        default: {
            const Qt::Key key = keys.at(Below(static_cast<int>(keys.size())));
            const bool isSelecting = Below(6) == 0 && (key == Qt::Key_Home || key == Qt::Key_End);
            Key(key, isSelecting ? Qt::ShiftModifier : Qt::NoModifier);
            return QStringLiteral("key %1 %2").arg(key).arg(isSelecting);
        }
        }
    }

    const unsigned Seed = std::random_device()();
    std::mt19937 Random{Seed};
    const QStringList Names = {QStringLiteral("Ann"), QString(), QStringLiteral("Zoë 📻"), QStringLiteral("אבג")};
    const QStringList Addresses = {QStringLiteral("a@b.org"), QStringLiteral("c@d.org"), QStringLiteral("z@b.org"),
                                   QString()};
    const QStringList Runs = {QStringLiteral("\"Ann\" <a@b.org>"), QStringLiteral(" <c@d.org>"),
                              QStringLiteral("\"Zoë 📻\" <z@b.org>"), QStringLiteral("\"אבג\"")};
};
} // namespace

TEST_F(uMessageAddressRandomTest, NoKeyAndNoClickLeavesHalfARun)
{
    RecordProperty("seed", std::to_string(Seed));
    for (int round = 0; round < 1500 && !HasFatalFailure(); ++round) {
        const QString step = Step();
        ExpectWholeRuns(step);
        ASSERT_EQ(Box.Text(), Box.toPlainText()) << "seed " << Seed;
        ASSERT_EQ(Box.Tag(), QStringLiteral("0"));
    }
}

/// Backspace and Delete against a plain model of the text and its runs, from every place of it.
TEST_F(uMessageAddressRandomTest, BackspaceAndDeleteDoWhatTheModelDoes)
{
    for (int round = 0; round < 120; ++round) {
        Control.Settext(QString());
        for (int i = Below(4) + 1; i > 0; --i) {
            if (Below(3) == 0)
                Type(QStringLiteral("xy"));
            const int which = Below(static_cast<int>(Names.size()));
            Control.AddAddress(Names.at(which), Addresses.at(which));
        }
        QString text = Control.text();
        const QString states = States();
        int place = Place();
        // Only where a caret can stand.
        if (place < text.size() && text.at(place).isLowSurrogate())
            ++place;
        Box.SetSelStart(place);
        const bool isBackspace = Below(2) == 0;
        const int size = static_cast<int>(text.size());
        int start = place;
        int end = place;
        if (isBackspace && place > 0) {
            start = place - 1;
            if (states.at(start) == u'P') {
                while (start > 0 && states.at(start - 1) == u'P')
                    --start;
                while (end < size && states.at(end) == u'P')
                    ++end;
                // The walk goes two places at least: right behind a run's first character it goes one too far.
                if (start == place - 1 && start > 0)
                    --start;
            }
        } else if (!isBackspace && place < size) {
            if (states.at(place) == u'P') {
                while (start > 0 && states.at(start - 1) == u'P')
                    --start;
                while (end < size && states.at(end) == u'P')
                    ++end;
                end = qMin(end + 1, size);
            } else if (place > 0 && states.at(place - 1) == u'P') {
                end = place + 1;
            } else {
                // A caret that is not at the beginning has stepped over the free character that it looked at.
                start = place > 0 ? place + 1 : place;
                end = qMin(start + 1, size);
                if (start < size && states.at(start) == u'P')
                    while (end < size && states.at(end) == u'P')
                        ++end;
            }
        }
        Key(isBackspace ? Qt::Key_Backspace : Qt::Key_Delete);
        QString expected = text;
        expected.remove(start, end - start);
        if (expected.trimmed().isEmpty())
            expected.clear();
        ASSERT_EQ(Control.text(), expected) << "seed " << Seed << (isBackspace ? " Backspace" : " Delete") << " at "
                                            << place << " of " << text.toStdString();
    }
}
