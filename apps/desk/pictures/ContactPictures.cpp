// SPDX-License-Identifier: Apache-2.0
#include "ContactPictures.h"

#include "contacts/ContactChooser.h"
#include "contacts/ContactHistory.h"
#include "contacts/ContactImportDialog.h"
#include "contacts/ContactsWindow.h"
#include "station/DeskStation.h"
#include "window/Appearance.h"

#include <QApplication>
#include <QElapsedTimer>

namespace
{
constexpr int ContactPatience = 20000;
constexpr int Many = 1200;
constexpr QSize ContactWindowSize(980, 680);

const QString LongName = QStringLiteral("The Porthmellin Amateur Players' Society (Costume Department and Repairs)");

QList<clsKVContact> People()
{
    return {
        {0, QStringLiteral("Loveday Tregenza"), QStringLiteral("07700 900123"), QStringLiteral("01632 960123"),
         QStringLiteral("loveday@example.org"), QStringLiteral("lt@choir.example"),
         QStringLiteral("14 Harbour Row, Porthmellin\nSings in the choir; call after seven.")},
        {0,
         LongName,
         {},
         QStringLiteral("01632 960456"),
         QStringLiteral("costumes.and.repairs@amateur-players.porthmellin.example"),
         {},
         QStringLiteral("c/o The Village Hall")},
        {0,
         QStringLiteral("רבקה לוי"),
         QStringLiteral("+972 50 555 0123"),
         {},
         QStringLiteral("rivka@example.org"),
         {},
         {}},
        {0, QStringLiteral("Zoë Penrôse 🎶"), QStringLiteral("82211"), {}, {}, {}, {}},
    };
}

void Settle(ContactsWindow& window)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    } while ((!window.History().IsFilled() || timer.elapsed() < 300) && timer.elapsed() < ContactPatience);
}

/// The first mail's sender becomes a contact, so that the history has something to show.
qint32 Fill(EmbeddedDirectory& directory)
{
    qint32 first = 0;
    directory.InOneStep([&] {
        for (clsKVContact contact : People()) {
            directory.SaveContact(contact);
            first = first == 0 ? contact.Reference : first;
        }
        for (int i = 1; i <= Many; ++i) {
            clsKVContact contact;
            contact.Name = QStringLiteral("Listener %1").arg(i, 4, 10, QLatin1Char('0'));
            contact.Mobile = QStringLiteral("07700 90%1").arg(i, 4, 10, QLatin1Char('0'));
            directory.SaveContact(contact);
        }
    });
    return first;
}

void Dialogs(DeskStation& station, const ContactPictures::Save& save)
{
    ContactChooser chooser(station.Directory());
    chooser.SetSearchText(QStringLiteral("listener 00"));
    chooser.show();
    QApplication::processEvents();
    save(chooser, "contact-chooser", 1);
    chooser.close();
    QList<clsKVContact> taken = People().mid(0, 2);
    taken.append({0, QStringLiteral("Jory Hocking"), QStringLiteral("07700 900777"), {}, {}, {}, {}});
    ContactImportDialog import(ContactImport::Plan(station.Directory(), taken),
                               {QStringLiteral("Card 4, line 38, \"Wella Rowe\": is cut off.")});
    import.show();
    QApplication::processEvents();
    save(import, "contact-import", 1);
    import.close();
}
} // namespace

void ContactPictures::Take(DeskStation& station, const Save& save)
{
    ContactsWindow window(station);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    window.resize(ContactWindowSize);
    Settle(window);
    save(window, "contacts-empty", 1);
    const qint32 first = Fill(station.Directory());
    window.Refresh();
    window.ShowContact(first);
    Settle(window);
    save(window, "contacts", 1);
    save(window, "contacts-200", 2);
    window.ShowContact(first + 1);
    window.History().setCurrentIndex(1);
    Settle(window);
    save(window, "contacts-long-names", 1);
    Appearance::Apply(QStringLiteral("dark"));
    Settle(window);
    save(window, "contacts-dark", 1);
    Appearance::Apply(QStringLiteral("light"));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    window.ShowContact(first + 2);
    window.History().setCurrentIndex(0);
    Settle(window);
    save(window, "contacts-right-to-left", 1);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    window.close();
    Dialogs(station, save);
}
