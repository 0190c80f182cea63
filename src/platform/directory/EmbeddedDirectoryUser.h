// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

/// The user who is signed in to an embedded directory. Owned by the directory and alive no longer than its file is
/// open. Name and rights are read anew when they are asked for, so that a change by the technician at another computer
/// holds at once.
class EmbeddedDirectory::User : public clsKVUser
{
public:
    User(EmbeddedDirectory& directory, qint32 reference, const QString& name);

    qint32 Reference() const override { return Reference_; }
    /// The name of the last reading when the user was deleted or the file cannot be read.
    QString Name() const override;
    /// False when the user was deleted or the file cannot be read.
    bool HasRight(DirectoryRight right) const override;

    QVariant Preference(const QString& name, const QVariant& defaultValue) const override;
    /// An invalid value removes the preference. False also for an empty name, a name of more than 255 characters, and a
    /// value that has no text form.
    bool SetPreference(const QString& name, const QVariant& value) override;

    bool LogEvent(int classNumber, int kind, const QString& title, const QString& text, int code,
                  int reference) override;

private:
    bool StorePreference(const QString& name, const QVariant& value, bool& isNew);

    EmbeddedDirectory& Directory_;
    const qint32 Reference_;
    mutable QString Name_;
};
