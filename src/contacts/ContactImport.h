// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "contacts/VCard.h"
#include "platform/directory/EmbeddedDirectory.h"

/// Taking contacts of a file over into the directory: first a plan, which is shown, then all of it or nothing.
namespace ContactImport
{
/// What is done with a contact whose e-mail address or number the directory has already.
enum class Duplicates
{
    Skip,
    Update, ///< The one that is there takes over what it lacks; what it has stays.
    Add
};

struct Entry
{
    clsKVContactPtr Contact; ///< As the file has it.
    clsKVContactPtr Known; ///< Who has the same address or number: in the directory, or before it in the file. Or null.
    QString Detail;        ///< Which one.
};

/// Looks each contact up in the directory and among those before it.
QList<Entry> Plan(const EmbeddedDirectory& directory, const QList<clsKVContact>& contacts);
/// How many of them are known already.
int KnownIn(const QList<Entry>& plan);

struct Result
{
    int Added = 0;
    int Updated = 0;
    int Skipped = 0; ///< Known, and with nothing new to take over where that was asked for.
};

/// Carries the plan out, all of it or, when dao::Error comes out, nothing.
Result Run(EmbeddedDirectory& directory, const QList<Entry>& plan, Duplicates duplicates);

/// The contact that is there with what it lacks from the other: empty details are filled, and a number or address for
/// which there is no place stands in other.
clsKVContact Merged(const clsKVContact& known, const clsKVContact& taken);
} // namespace ContactImport
