// SPDX-License-Identifier: Apache-2.0

// What the compose window has of spelling.

#include "AddressBox.h"
#include "BodyEdit.h"
#include "ComposeWindow.h"
#include "answering/ShortWait.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/LockPatience.h"
#include "spelling/SpellingMarks.h"
#include "spelling/SpellingTools.h"
#include "station/DeskStation.h"

#include <QLabel>
#include <QMenuBar>

void ComposeWindow::CheckSpelling(Speller& speller)
{
    auto* menu = menuBar()->addMenu(tr("Spe&lling"));
    menu->setObjectName(QStringLiteral("spelling"));
    auto* spelling = new SpellingTools(*Body_, speller, *menu);
    spelling->Marks().SetForeignLine(Composing::ForwardedLine());
    connect(spelling, &SpellingTools::Told, Note_, &QLabel::setText);
    // Names are right as they are: of whom it goes to, and of who writes.
    QStringList own{Composing::WriterOf(Station_.Database()).StationName};
    if (const clsKVUser* user = Station_.Directory().CurrentUser()) {
        // Where somebody has the directory locked, the name as it was read last.
        const dao::LockPatience patience(ShortWait::Milliseconds);
        own.append(user->Name());
    }
    const auto tellNames = [this, spelling, own] {
        spelling->Marks().SetNames(own + QStringList{To_->Recipients(), CC_->Recipients(), BCC_->Recipients()});
    };
    for (AddressBox* box : {To_, CC_, BCC_})
        connect(box, &AddressBox::Changed, spelling, tellNames);
    tellNames();
}
