// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spelling/SpellingEdit.h"

#include <QStringList>

/// The box for a message's text. Files that are dropped or pasted on it do not become text: they are handed on.
class BodyEdit : public SpellingEdit
{
    Q_OBJECT

public:
    explicit BodyEdit(QWidget* parent = nullptr) : SpellingEdit(parent) {}

    /// The paths of the local files among what is dragged or copied.
    static QStringList FilesIn(const QMimeData* source);

Q_SIGNALS:
    void FilesOffered(const QStringList& paths);

protected:
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
};
