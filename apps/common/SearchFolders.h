// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/SearchQuestion.h"

#include <QHash>
#include <QSet>

#include <optional>

/// The folders that a question names ("in:saved"): those whose name or path begins so, without regard to case, accents
/// and blanks. Empty when it names none that there is; nothing when it names none. paths: as FolderPaths gives them.
std::optional<QSet<qint32>> FoldersMeant(const SearchQuestion& question, const QHash<qint32, QString>& paths);
