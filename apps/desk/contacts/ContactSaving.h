#pragma once

#include "platform/directory/EmbeddedDirectory.h"

class ContactForm;

/// How the desk saves what stands in a form, with all that may stand against it told or asked.
namespace ContactSaving
{
/// Saves the form's contact as a new one. Asks first when somebody in the directory has one of its addresses or numbers
/// already. False, after words, when it was not saved.
bool SaveNew(EmbeddedDirectory& directory, ContactForm& form, clsKVContact& saved);

/// Why the directory could not do something, as the user reads it.
QString WordsOf(const dao::Error& error);
} // namespace ContactSaving
