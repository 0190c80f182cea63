// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

class ContactForm;

/// How the desk saves what stands in a form, with all that may stand against it told or asked.
namespace ContactSaving
{
/// Saves the form's contact as a new one. Asks first when somebody in the directory has one of its addresses or numbers
/// already. False, after words, when it was not saved.
bool SaveNew(EmbeddedDirectory& directory, ContactForm& form, clsKVContact& saved);

/// What became of a change.
enum class Outcome
{
    Saved,
    TheirsTaken, ///< Somebody else had changed it, and the user wants that and not the own change.
    NotSaved     ///< After words or by the user's choice; everything is still in the form.
};

/// Saves what was changed in the form of a contact. Where somebody else changed or deleted it meanwhile, the user sees
/// both and chooses. contact: what is stored then, for the two good outcomes.
Outcome SaveChanges(EmbeddedDirectory& directory, ContactForm& form, clsKVContact& contact);

/// Why the directory could not do something, as the user reads it.
QString WordsOf(const dao::Error& error);
} // namespace ContactSaving
