// SPDX-License-Identifier: Apache-2.0
#include "ContactSaving.h"

#include "ContactConflict.h"
#include "ContactForm.h"
#include "Words.h"
#include "common/UserInterface.h"
#include "contacts/ContactDuplicates.h"

#include <QCoreApplication>

#include <optional>

namespace
{
QString SavingText(const char* text)
{
    return QCoreApplication::translate("ContactSaving", text);
}

bool WantsToSaveAllTheSame(const clsKVContact& known, const QString& detail)
{
    return UserInterface::Confirm(
        SavingText("%1 has %2 already. Save another contact with it?").arg(known.Name, detail));
}
} // namespace

QString ContactSaving::WordsOf(const dao::Error& error)
{
    return SavingText("The directory of contacts says: %1").arg(error.Description());
}

bool ContactSaving::SaveNew(EmbeddedDirectory& directory, ContactForm& form, clsKVContact& saved)
{
    const QString problem = form.TakeProblem();
    if (!problem.isEmpty()) {
        Words::Warn(problem);
        return false;
    }
    clsKVContact contact = form.Contact();
    contact.Reference = 0;
    try {
        const ContactDuplicates::Match match = ContactDuplicates::FindIn(directory, contact);
        if (match.Contact && !WantsToSaveAllTheSame(*match.Contact, match.Detail))
            return false;
        directory.SaveContact(contact);
    } catch (const dao::Error& error) {
        Words::Warn(WordsOf(error));
        return false;
    }
    saved = contact;
    return true;
}

namespace
{
/// One attempt after somebody else's change; nothing when the user gave up.
std::optional<ContactSaving::Outcome> Resolve(EmbeddedDirectory& directory, ContactForm& form, clsKVContact& before,
                                              clsKVContact& mine)
{
    const clsKVContactPtr theirs = directory.GetContact(before.Reference);
    switch (ContactConflict::Ask(before, mine, theirs, &form)) {
    case ContactConflict::Choice::Combine:
        mine = ContactConflict::Combined(before, mine, *theirs);
        before = *theirs;
        return std::nullopt;
    case ContactConflict::Choice::TakeTheirs:
        mine = *theirs;
        return ContactSaving::Outcome::TheirsTaken;
    case ContactConflict::Choice::SaveAsNew:
        mine.Reference = 0;
        directory.SaveContact(mine);
        return ContactSaving::Outcome::Saved;
    case ContactConflict::Choice::Cancel:
        break;
    }
    return ContactSaving::Outcome::NotSaved;
}

bool IsConflict(const dao::Error& error)
{
    return error.Number() == dao::errChangedByAnother || error.Number() == dao::errRecordDeleted;
}
} // namespace

ContactSaving::Outcome ContactSaving::SaveChanges(EmbeddedDirectory& directory, ContactForm& form,
                                                  clsKVContact& contact)
{
    const QString problem = form.TakeProblem();
    if (!problem.isEmpty()) {
        Words::Warn(problem);
        return Outcome::NotSaved;
    }
    clsKVContact before = form.Shown();
    contact = form.Edited();
    // As often as somebody else is quicker.
    for (;;) {
        try {
            directory.ChangeContact(before, contact);
            return Outcome::Saved;
        } catch (const dao::Error& error) {
            if (!IsConflict(error)) {
                Words::Warn(WordsOf(error));
                return Outcome::NotSaved;
            }
        }
        try {
            if (const std::optional<Outcome> outcome = Resolve(directory, form, before, contact))
                return *outcome;
        } catch (const dao::Error& error) {
            Words::Warn(WordsOf(error));
            return Outcome::NotSaved;
        }
    }
}
